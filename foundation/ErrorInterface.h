#ifndef FOUNDATION_ERRORINTERFACE_H
#define FOUNDATION_ERRORINTERFACE_H

// ErrorInterface: what receives the three kinds of message. The text is
// already formatted; the label names the class and operation that reports.

class ErrorInterface {
 public:
  virtual ~ErrorInterface();
  virtual void fatal(char const* label, int code, char const* text) = 0;
  virtual void error(char const* label, int code, char const* text) = 0;
  virtual void info(char const* label, int code, char const* text) = 0;
};

#endif
