#ifndef FOUNDATION_VTOKENIZER_H
#define FOUNDATION_VTOKENIZER_H

// vTokenizer splits its own string at any of a set of delimiter bytes.
// Runs of delimiters separate, they never yield empty tokens.

#include <list>

#include "foundation/vString.h"

class vTokenizer : public vString {
 public:
  // Splits at blanks, tabs and line ends until told otherwise.
  vTokenizer();
  vTokenizer(vString const& text, vString const& delimiters);

  // Replaces the text and goes back to its start.
  void setString(vString const& text);
  void setDelimiters(vString const& delimiters);
  void setCurrentPosition(int position);
  int getCurrentPosition() const { return m_position; }

  // The next token, or false (and an empty token) at the end. The position
  // stays on the delimiter after the token.
  bool next(vString& token);
  // The rest from the first non-delimiter at or after the position.
  vString tail() const;
  // Appends every remaining token.
  void getAllTokens(std::list<vString>& tokens);

  bool isDelimiter(char c) const;

 private:
  static int myBit(char c) { return static_cast<signed char>(c) + 128; }

  uint32_t m_delimiters[8];
  int m_position;
};

#endif
