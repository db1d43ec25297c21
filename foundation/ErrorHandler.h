#ifndef FOUNDATION_ERRORHANDLER_H
#define FOUNDATION_ERRORHANDLER_H

// ErrorHandler: one link of a handler chain. Each message goes to this
// handler's do-operation and then, unless that throws, on to the next
// handler. A handler owns its next handler.

#include "foundation/ErrorInterface.h"

class ErrorHandler : public ErrorInterface {
 public:
  explicit ErrorHandler(ErrorHandler* next = nullptr);
  ~ErrorHandler() override;
  ErrorHandler(ErrorHandler const&) = delete;
  ErrorHandler& operator=(ErrorHandler const&) = delete;

  void fatal(char const* label, int code, char const* text) override;
  void error(char const* label, int code, char const* text) override;
  void info(char const* label, int code, char const* text) override;

  ErrorHandler* getNext() const { return m_next; }
  // Takes ownership of next; the previous next is neither deleted nor kept.
  void setNext(ErrorHandler* next) { m_next = next; }

 protected:
  virtual void doFatal(char const* label, int code, char const* text) = 0;
  virtual void doError(char const* label, int code, char const* text) = 0;
  virtual void doInfo(char const* label, int code, char const* text) = 0;

 private:
  ErrorHandler* m_next;
};

#endif
