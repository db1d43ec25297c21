#ifndef FOUNDATION_VSTRING_H
#define FOUNDATION_VSTRING_H

// vString: the system's string. A pointer to an exactly sized, zero-ended
// buffer and a 32-bit length that excludes the zero. The empty string shares
// one static buffer and never allocates. Not thread-safe.
//
// Allocation failures throw UtlExcept directly (not through Message), since
// the message path itself builds strings. When memory is so short that not
// even that exception's own strings can be had, std::bad_alloc goes instead.

#include <cstdarg>
#include <cstdint>
#include <iosfwd>

class vString {
 public:
  vString();
  vString(char const* text);
  vString(char c);
  // Exactly n bytes: copies s up to its first zero and zero-fills the rest.
  vString(int n, char const* s);
  vString(vString const& other);
  vString(vString&& other) noexcept;
  virtual ~vString();

  virtual void center(int n, char c);
  virtual void swapContents(vString& other);
  virtual void right(int n, char c);
  virtual void extendTo(int n, char c);
  virtual void fill(char c);
  virtual void fill(int n, char c);
  // Inclusive index range, clipped to the last character.
  virtual vString get(int startIndex, int endIndex) const;
  // Text between the first `open` and the following `close`.
  virtual vString get(vString const& open, vString const& close) const;
  virtual void get(char* out, int start, int outlen) const;
  virtual int getSize() const;
  virtual bool isBlank() const;
  virtual int search(char c) const;
  virtual int count(char c) const;
  virtual void replace(char from, char to);
  virtual void replace(vString const& from, vString const& to);
  virtual void replaceNonAscii();
  virtual void removeAll(char c);
  virtual int search(vString const& text, int start = 0) const;
  virtual int search(char const* text, int start = 0) const;
  virtual int searchInteger(vString const& text, int start = 0) const;
  // Returns 0 and the position when found, -1 when not (pos is set to 0).
  virtual int searchForLast(char c, int& pos) const;
  virtual int searchForLast(vString const& text, int& pos) const;
  virtual int setSize(int n);
  virtual int truncate(int n);
  virtual void strip();
  virtual void trimRight(vString const& text);
  virtual void trimRight();
  virtual void trimLeft(vString const& text);
  virtual void trimLeft();
  virtual void print() const;
  virtual unsigned int size() const;
  virtual unsigned int length() const;
  virtual char const* pointer() const;
  virtual char* spointer();
  virtual float readf() const;
  virtual double readd() const;
  virtual int readi() const;
  virtual long long readi64() const;
  virtual char const* string() const;
  virtual int write(float value, int first, int last, long flags, char fill, int width, int precision);
  virtual int write(int value, int first, int last, long flags, char fill, int width, int precision);
  virtual void toUpperCase();
  virtual void toLowerCase();
  virtual void capitalize();
  virtual void capitalizeEveryWord();
  virtual bool splitAtToken(vString& left, vString& right, char token) const;
  virtual bool splitAtToken(vString& left, vString& right, vString const& token) const;
  virtual bool splitAtLastToken(vString& left, vString& right, char token) const;
  virtual bool splitAtLastToken(vString& left, vString& right, vString const& token) const;
  virtual vString pop(vString const& delimiter);
  virtual bool isInteger() const;
  virtual bool match(vString const& pattern) const;
  virtual char& operator[](int i);
  virtual char const& operator[](int i) const;
  virtual vString& operator=(vString const& other);
  virtual vString& operator=(char const* text);
  virtual vString& operator=(char c);
  vString& operator=(vString&& other) noexcept;
  virtual vString& operator+=(vString const& other);
  virtual vString& operator+=(char const* text);
  virtual vString& operator+=(char c);
  virtual vString& operator<<(double v);
  virtual vString& operator<<(float v);
  virtual vString& operator<<(int v);
  virtual vString& operator<<(long long v);
  virtual vString& operator<<(char const* text);
  virtual vString& operator<<(char c);
  virtual vString& operator<<(vString const& text);
  virtual std::istream& getQuotedString(std::istream& in, bool ignoreQuotes);
  virtual bool operator<(vString const& o) const;
  virtual bool operator<(char const* o) const;
  virtual bool operator<=(vString const& o) const;
  virtual bool operator<=(char const* o) const;
  virtual bool operator>(vString const& o) const;
  virtual bool operator>(char const* o) const;
  virtual bool operator>=(vString const& o) const;
  virtual bool operator>=(char const* o) const;
  virtual bool operator==(vString const& o) const;
  virtual bool operator==(char const* o) const;
  virtual bool operator!=(vString const& o) const;
  virtual bool operator!=(char const* o) const;
  virtual vString operator+(vString const& o);
  virtual vString operator+(vString const& o) const;
  virtual bool isEmpty() const;
  virtual void erase();
  virtual vString substr(unsigned int pos, unsigned int n = 0xFFFFFFFFu) const;
  virtual char const* c_str() const;
  virtual int find_first_not_of(vString const& set, unsigned int pos = 0) const;
  virtual int find_first_of(vString const& set, unsigned int pos = 0) const;
  virtual vString& replace(unsigned int pos, unsigned int n, vString const& text, unsigned int tpos, unsigned int tn);
  virtual vString& append(vString const& text);
  virtual char& at(unsigned int i);
  virtual char const& at(unsigned int i) const;
  virtual void expandEnvironment();
  virtual void printf(char const* format, ...) __attribute__((format(printf, 2, 3)));
  virtual vString getLeft(int n) const;
  virtual vString getRight(int n) const;
  virtual vString getMid(int start, int n) const;
  virtual int stricmp(vString const& o) const;
  virtual int stricmp(char const* o) const;
  virtual void reverse();
  virtual bool readb() const;

  static int stricmp(char const* a, char const* b);
  static vString number(int v);
  static vString number(long long v);
  static vString number(double v);
  static vString number(float v);

  // True when this string shares the static empty buffer (allocates nothing).
  bool isSharedEmpty() const;

 protected:
  void myAllocate(unsigned int length);
  void myReallocate(unsigned int length);
  void myDeallocate();
  void myAssign(char const* text, unsigned int length);
  void myAppend(char const* text, unsigned int length);
  // Formats into a 10240-byte stack buffer and assigns; overflow, a C library
  // failure or an exception while formatting are fatal under the given
  // method names. The format passes vUtl::reformatInt64 first.
  void myVPrintf(char const* method, char const* errorMethod, char const* format, va_list args);
  // Restores the class invariant after a change made behind the virtual
  // operations (moves, swaps): nothing for a plain vString, case folding for
  // the folding strings.
  virtual void myFold();

  char* m_data;
  uint32_t m_length;
};

std::ostream& operator<<(std::ostream& out, vString const& s);
std::istream& operator>>(std::istream& in, vString& s);
bool operator==(char const* a, vString const& b);
bool operator!=(char const* a, vString const& b);
bool operator<(char const* a, vString const& b);

#endif
