#ifndef RONDO_TESTS_FUZZ_FUZZTESTING_H
#define RONDO_TESTS_FUZZ_FUZZTESTING_H

// What every fuzz target needs before its first input.

#include "foundation/ExceptionErrorHandler.h"
#include "foundation/RaiseError.h"

namespace fuzz_testing {

// Fatal messages raise the system's error without their printed reports,
// which would drown the fuzzer's own output. Installed once a process; the
// handler lives as long as the process.
inline void raiseWithoutReports() {
  static bool const installed = [] {
    RaiseError::getInstance()->install(new ExceptionErrorHandler());
    return true;
  }();
  (void)installed;
}

}  // namespace fuzz_testing

#endif
