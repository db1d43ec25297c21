#ifndef FOUNDATION_VLCSTRING_H
#define FOUNDATION_VLCSTRING_H

// vLCString: a vString whose ASCII letters are always lower case. Every
// constructor and every mutator folds, and every operation that takes a search
// argument folds that argument first, so a vLCString compares and searches
// without any further case handling. toUpperCase(), capitalize() and capitalizeEveryWord() do nothing: the folding always
// wins. The writable operator[] can break the invariant; the caller answers
// for that.

#include "foundation/vString.h"

class vLCString : public vString {
 public:
  vLCString();
  vLCString(char const* text);
  vLCString(char c);
  vLCString(int n, char const* s);
  vLCString(vString const& other);
  vLCString(vLCString const& other);
  vLCString(vLCString&& other) noexcept;
  ~vLCString() override;

  void center(int n, char c) override;
  void swapContents(vString& other) override;
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
  vLCString& operator=(vString const& other) override;
  vLCString& operator=(char const* text) override;
  vLCString& operator=(char c) override;
  vLCString& operator=(vLCString const& other);
  vLCString& operator=(vLCString&& other) noexcept;
  vLCString& operator+=(vString const& other) override;
  vLCString& operator+=(char const* text) override;
  vLCString& operator+=(char c) override;
  vLCString& operator<<(double v) override;
  vLCString& operator<<(float v) override;
  vLCString& operator<<(int v) override;
  vLCString& operator<<(long long v) override;
  vLCString& operator<<(char const* text) override;
  vLCString& operator<<(char c) override;
  vLCString& operator<<(vString const& text) override;
  std::istream& getQuotedString(std::istream& in, bool ignoreQuotes) override;
  int find_first_not_of(vString const& set, unsigned int pos = 0) const override;
  int find_first_of(vString const& set, unsigned int pos = 0) const override;
  vString& replace(unsigned int pos, unsigned int n, vString const& text, unsigned int tpos, unsigned int tn) override;
  vLCString& append(vString const& text) override;
  void printf(char const* format, ...) override __attribute__((format(printf, 2, 3)));

  // The lower-case form of c (locale fold).
  static char fold(char c);

 protected:
  void myFold() override;

 private:
  // Folds what an append added; the rest is folded already.
  void myFoldFrom(unsigned int from);
};

std::istream& operator>>(std::istream& in, vLCString& s);

#endif
