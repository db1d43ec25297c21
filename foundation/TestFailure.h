#ifndef FOUNDATION_TESTFAILURE_H
#define FOUNDATION_TESTFAILURE_H

// Test helpers (tests only): expectFailure runs f, which must fail with
// UtlExcept (through Message::fatal or thrown directly) with this method and
// reason, its reports kept quiet; fatalText gives what f raised.

#include <string>

#include <gtest/gtest.h>

#include "foundation/MessageHandling.h"
#include "foundation/UtlExcept.h"

template <class F>
void expectFailure(F f, char const* method, std::string const& reason) {
  try {
    MessageHandling quiet;
    f();
    ADD_FAILURE() << "expected a failure: " << reason;
  } catch (UtlExcept const& e) {
    EXPECT_EQ(std::string(method), std::string(e.getMethod().c_str())) << "reason: " << e.getReason().c_str();
    EXPECT_EQ(reason, std::string(e.getReason().c_str()));
  }
}

// "method: reason" of the UtlExcept that f raises, with the handlers in
// force, or "(nothing raised)".
template <class F>
std::string fatalText(F f) {
  try {
    f();
  } catch (UtlExcept const& e) {
    return std::string(e.getMethod().c_str()) + ": " + e.getReason().c_str();
  }
  return "(nothing raised)";
}

// Whether text has the shape given: '9' stands for a digit, 'A' for an
// upper-case letter, any other character for itself. (std::regex warns
// under the sanitizer build.)
inline bool fitsShape(std::string const& text, std::string const& shape) {
  if (text.size() != shape.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char const c = text[i], s = shape[i];
    if (s == '9' ? (c < '0' || c > '9') : s == 'A' ? (c < 'A' || c > 'Z') : c != s) return false;
  }
  return true;
}

#endif
