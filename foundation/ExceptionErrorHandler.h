#ifndef FOUNDATION_EXCEPTIONERRORHANDLER_H
#define FOUNDATION_EXCEPTIONERRORHANDLER_H

// ExceptionErrorHandler: turns a fatal message into UtlExcept (reason the
// text, method the label, no line, no file, no stack). Errors and infos pass.

#include "foundation/ErrorHandler.h"

class ExceptionErrorHandler : public ErrorHandler {
 public:
  explicit ExceptionErrorHandler(ErrorHandler* next = nullptr);
  ~ExceptionErrorHandler() override;

 protected:
  void doFatal(char const* label, int code, char const* text) override;
  void doError(char const* label, int code, char const* text) override;
  void doInfo(char const* label, int code, char const* text) override;
};

#endif
