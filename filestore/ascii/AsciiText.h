#ifndef FILESTORE_ASCII_ASCIITEXT_H
#define FILESTORE_ASCII_ASCIITEXT_H

// Small text helpers of the text table store: lines, words and items of a
// text, and whether an item is a number.

#include <string>
#include <vector>

namespace ascii_text {

// The whole file, empty when it does not open.
std::string readFile(char const* path);
std::string strip(std::string const& text);
std::string lower(std::string text);
std::string upper(std::string text);
// Lines without their ends ("\n" or "\r\n").
std::vector<std::string> lines(char const* text);
// Words separated by white space.
std::vector<std::string> words(std::string const& text);
// Items of a data line: separated by white space or commas, with the
// double quotes of quoted items taken off.
// With the separator ',' only commas separate, so that an item may hold
// blanks (a CSV table's text).
std::vector<std::string> items(std::string const& line, char separator = ' ');
// Stripped, not blank, an optional sign, then digits with '.' anywhere
// and blanks only between groups of digits: a digit after a blank that
// follows a digit is not a number. Any other character (an exponent
// too) makes it no number.
bool isNumber(char const* text);
// A line of one or more items that are all numbers.
bool isNumericLine(std::string const& line);

}  // namespace ascii_text

#endif
