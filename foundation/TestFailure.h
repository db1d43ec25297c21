#ifndef FOUNDATION_TESTFAILURE_H
#define FOUNDATION_TESTFAILURE_H

// Test helper (tests only): runs f, which must fail with UtlExcept (through
// Message::fatal or thrown directly) with this method and reason. Reports
// are kept quiet while it runs.

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

#endif
