#ifndef FOUNDATION_RAISEERROR_H
#define FOUNDATION_RAISEERROR_H

// RaiseError: the process-wide dispatcher behind Message. Messages go to the
// most recently installed handler; with none installed the default pair
// PrintErrorHandler -> ExceptionErrorHandler is installed on first use.
//
// A fatal message never returns: either a UtlExcept leaves fatal(), or the
// process aborts after printing the stack. A fatal message raised while
// another is being handled aborts at once ("RECURSIVE "). One thread at a
// time.

#include <list>
#include <map>

#include "foundation/ErrorInterface.h"

class ErrorHandler;
class TracebackErrorHandler;

class RaiseError : public ErrorInterface {
 public:
  static RaiseError* getInstance();

  // Puts the handler in front. When SP_UTL_TRACEBACK was set at start-up the
  // handler is wrapped in a TracebackErrorHandler first. The caller keeps
  // ownership of the handler.
  void install(ErrorHandler* handler);
  // Takes the handler (and its wrapper) out again; does not delete it.
  void uninstall(ErrorHandler* handler);

  [[noreturn]] void fatal(char const* label, int code, char const* text) override;
  void error(char const* label, int code, char const* text) override;
  void info(char const* label, int code, char const* text) override;

  // The handler that receives the next message, or null before the first.
  ErrorHandler* getCurrentHandler() const;
  bool isTracebackEnabled() const { return m_traceback; }

 private:
  RaiseError();
  ~RaiseError() override;
  RaiseError(RaiseError const&) = delete;
  RaiseError& operator=(RaiseError const&) = delete;

  ErrorHandler* myFirstHandler();
  void myDefaultHandler();

  std::list<ErrorHandler*> m_handlers;
  bool m_traceback;
  std::map<ErrorHandler*, TracebackErrorHandler*> m_wrappers;
  bool m_inFatal;
};

#endif
