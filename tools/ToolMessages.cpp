#include "tools/ToolMessages.h"

#include <cstdio>
#include <cstring>

#include "foundation/ExceptionErrorHandler.h"

namespace {
unsigned int s_nCutWarnings = 0;

std::string& subject() {
  static std::string s;
  return s;
}
}  // namespace

ToolMessages::ToolMessages() : ErrorHandler(new ExceptionErrorHandler()) {}

ToolMessages::~ToolMessages() {}

void ToolMessages::setSubject(std::string const& s) { subject() = s; }

std::string ToolMessages::line(std::string const& text) {
  std::string flat;
  for (char c : text) {
    if (c == '\n' || c == '\r' || c == '\t') {
      if (!flat.empty() && flat.back() != ' ') flat.push_back(' ');
    } else if ((c >= 0 && c < ' ') || c == 0x7f) {
      // Bytes of a binary file quoted in a message would drive the terminal.
      flat.push_back('?');
    } else {
      flat.push_back(c);
    }
  }
  while (!flat.empty() && flat.back() == ' ') flat.pop_back();
  return "rondo: " + (subject().empty() ? std::string() : subject() + ": ") + flat + "\n";
}

void ToolMessages::doFatal(char const*, int, char const*) {}

unsigned int ToolMessages::getNCutWarnings() { return s_nCutWarnings; }

void ToolMessages::doError(char const*, int, char const* text) {
  // The SEG-Y and SEG-D stores' word for a part trace at the end, also when
  // a data server passes it on.
  if (text && std::strstr(text, "is either incomplete or corrupt")) ++s_nCutWarnings;
  std::string const l = line(text ? text : "");
  std::fputs(l.c_str(), stderr);
}

void ToolMessages::doInfo(char const*, int, char const*) {}
