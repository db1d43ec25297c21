#ifndef TOOLS_VALUEFORMAT_H
#define TOOLS_VALUEFORMAT_H

// ValueFormat: the text of attribute values as the tool prints them:
// floating values with %.9g (enough to give back every float32 exactly),
// integers in decimal, strings as they are. Values of one instance are
// separated by single spaces.

#include <string>

#include "attribute/Attribute.h"

class ValueFormat {
 public:
  // Appends the values of one instance (1-based) of a read attribute.
  static void appendInstance(std::string& out, Attribute const& attribute, unsigned int instance);
  // One number; "nan", "inf" as the C library writes them.
  static void appendNumber(std::string& out, double value);
  // JSON forms: a quoted, escaped string; a number, or null for NaN and
  // infinity, which JSON has not.
  static std::string jsonString(char const* text);
  static std::string jsonNumber(double value);
  // Whether the type prints as a number.
  static bool isNumeric(DataType type);
};

#endif
