#ifndef FOUNDATION_PRINTERRORHANDLER_H
#define FOUNDATION_PRINTERRORHANDLER_H

// PrintErrorHandler: prints a framed report on standard error, naming the
// program, the host and the time: "*" frames for FATAL, "+" for ERROR, "."
// for INFO.

#include "foundation/ErrorHandler.h"

class PrintErrorHandler : public ErrorHandler {
 public:
  explicit PrintErrorHandler(ErrorHandler* next = nullptr);
  ~PrintErrorHandler() override;

 protected:
  void doFatal(char const* label, int code, char const* text) override;
  void doError(char const* label, int code, char const* text) override;
  void doInfo(char const* label, int code, char const* text) override;

 private:
  void myPrint(char const* word, char fill, char const* label, int code, char const* text);
};

#endif
