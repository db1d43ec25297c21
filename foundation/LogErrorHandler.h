#ifndef FOUNDATION_LOGERRORHANDLER_H
#define FOUNDATION_LOGERRORHANDLER_H

// LogErrorHandler: appends one line per message to a log file,
// "WORD:label:code:text".

#include <fstream>

#include "foundation/ErrorHandler.h"

class LogErrorHandler : public ErrorHandler {
 public:
  // Opens the log for appending.
  explicit LogErrorHandler(char const* filename, ErrorHandler* next = nullptr);
  ~LogErrorHandler() override;

  bool isOpen() const { return m_out.is_open(); }

 protected:
  void doFatal(char const* label, int code, char const* text) override;
  void doError(char const* label, int code, char const* text) override;
  void doInfo(char const* label, int code, char const* text) override;

 private:
  void myWrite(char const* word, char const* label, int code, char const* text);

  std::ofstream m_out;
};

#endif
