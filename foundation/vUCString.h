#ifndef FOUNDATION_VUCSTRING_H
#define FOUNDATION_VUCSTRING_H

// vUCString: a vString whose ASCII letters are always upper case. Every
// constructor and every mutator folds, and every operation that takes a search
// argument folds that argument first, so a vUCString compares and searches
// without any further case handling. toLowerCase(), capitalize() and capitalizeEveryWord() do nothing: the folding always
// wins. The writable operator[] can break the invariant; the caller answers
// for that.

#include "foundation/vString.h"

class vUCString : public vString {
 public:
  vUCString();
  vUCString(char const* text);
  vUCString(char c);
  vUCString(int n, char const* s);
  vUCString(vString const& other);
  vUCString(vUCString const& other);
  vUCString(vUCString&& other) noexcept;
  ~vUCString() override;

  void center(int n, char c) override;
  void right(int n, char c) override;
  void extendTo(int n, char c) override;
  void fill(char c) override;
  void fill(int n, char c) override;
  // Returns a plain vString.
  vString get(int startIndex, int endIndex) const override;
  vString get(vString const& open, vString const& close) const override;
  void get(char* out, int start, int outlen) const override;
  int search(char c) const override;
  int count(char c) const override;
  void replace(char from, char to) override;
  void replace(vString const& from, vString const& to) override;
  void removeAll(char c) override;
  int search(vString const& text, int start = 0) const override;
  int search(char const* text, int start = 0) const override;
  int searchForLast(char c, int& pos) const override;
  int searchForLast(vString const& text, int& pos) const override;
  int write(float value, int first, int last, long flags, char fill, int width, int precision) override;
  int write(int value, int first, int last, long flags, char fill, int width, int precision) override;
  void toUpperCase() override;
  void toLowerCase() override;
  void capitalize() override;
  void capitalizeEveryWord() override;
  bool splitAtToken(vString& left, vString& right, char token) const override;
  bool splitAtToken(vString& left, vString& right, vString const& token) const override;
  vString pop(vString const& delimiter) override;
  vUCString& operator=(vString const& other) override;
  vUCString& operator=(char const* text) override;
  vUCString& operator=(char c) override;
  vUCString& operator=(vUCString const& other);
  vUCString& operator=(vUCString&& other) noexcept;
  vUCString& operator+=(vString const& other) override;
  vUCString& operator+=(char const* text) override;
  vUCString& operator+=(char c) override;
  vUCString& operator<<(double v) override;
  vUCString& operator<<(float v) override;
  vUCString& operator<<(int v) override;
  vUCString& operator<<(long long v) override;
  vUCString& operator<<(char const* text) override;
  vUCString& operator<<(char c) override;
  vUCString& operator<<(vString const& text) override;
  std::istream& getQuotedString(std::istream& in, bool ignoreQuotes) override;
  int find_first_not_of(vString const& set, unsigned int pos = 0) const override;
  int find_first_of(vString const& set, unsigned int pos = 0) const override;
  vString& replace(unsigned int pos, unsigned int n, vString const& text, unsigned int tpos, unsigned int tn) override;
  vUCString& append(vString const& text) override;
  void printf(char const* format, ...) override __attribute__((format(printf, 2, 3)));

  // The upper-case form of c (locale fold).
  static char fold(char c);

 protected:
  void myFold() override;

 private:
  // Folds what an append added; the rest is folded already.
  void myFoldFrom(unsigned int from);
};

std::istream& operator>>(std::istream& in, vUCString& s);

#endif
