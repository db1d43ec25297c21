#ifndef FOUNDATION_TRACEBACKERRORHANDLER_H
#define FOUNDATION_TRACEBACKERRORHANDLER_H

// TracebackErrorHandler: prints the call stack for a fatal message before
// passing it on. RaiseError wraps installed handlers in one when
// SP_UTL_TRACEBACK is set.

#include "foundation/ErrorHandler.h"

class TracebackErrorHandler : public ErrorHandler {
 public:
  explicit TracebackErrorHandler(ErrorHandler* next = nullptr);
  ~TracebackErrorHandler() override;

 protected:
  void doFatal(char const* label, int code, char const* text) override;
  void doError(char const* label, int code, char const* text) override;
  void doInfo(char const* label, int code, char const* text) override;
};

#endif
