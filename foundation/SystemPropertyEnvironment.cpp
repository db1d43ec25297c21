#include "foundation/SystemPropertyEnvironment.h"

#include <string>
#include <vector>

#include "foundation/Message.h"
#include "foundation/vUtl.h"

namespace {

bool isBlankChar(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// Blank-separated words; a double-quoted part (quotes removed) stays in one.
std::vector<vString> mySplitValues(vString const& text) {
  std::vector<vString> values;
  char const* p = text.c_str();
  while (*p) {
    while (*p && isBlankChar(*p)) ++p;
    if (!*p) break;
    std::string word;
    bool inQuote = false;
    while (*p && (inQuote || !isBlankChar(*p))) {
      if (*p == '"')
        inQuote = !inQuote;
      else
        word += *p;
      ++p;
    }
    values.push_back(vString(word.c_str()));
  }
  return values;
}

}  // namespace

void SystemPropertyEnvironment::myMakeEnvironmentName(vUCString const& section, vUCString const& name,
                                                      vString& out) {
  out = "SP_";
  out += section;
  out += "_";
  out += name;
  out.toUpperCase();
}

bool SystemPropertyEnvironment::hasSystemProperty(vUCString const& section, vUCString const& name) {
  vString variable, value;
  myMakeEnvironmentName(section, name, variable);
  return vUtl::getenv(variable.c_str(), value);
}

SystemProperty SystemPropertyEnvironment::getSystemProperty(vUCString const& section, vUCString const& name) {
  vString variable, value;
  myMakeEnvironmentName(section, name, variable);
  if (!vUtl::getenv(variable.c_str(), value))
    Message::fatal("SystemPropertyEnvironment::getSystemProperty", 0,
                   "The system property %s/%s is not set: environment variable %s is not defined.", section.c_str(),
                   name.c_str(), variable.c_str());
  return SystemProperty(section, name, variable, mySplitValues(value));
}
