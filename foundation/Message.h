#ifndef FOUNDATION_MESSAGE_H
#define FOUNDATION_MESSAGE_H

// Message: the one way of reporting. fatal() never returns: with the default
// handlers it prints a report on standard error and throws UtlExcept whose
// reason is the formatted text and whose method is the label. Formats follow
// printf; instance numbers are printed with %lld. One thread at a time.

class Message {
 public:
  [[noreturn]] static void fatal(char const* label, int code, char const* format, ...)
      __attribute__((format(printf, 3, 4)));
  static void error(char const* label, int code, char const* format, ...)
      __attribute__((format(printf, 3, 4)));
  static void info(char const* label, int code, char const* format, ...)
      __attribute__((format(printf, 3, 4)));

  static int getNErrors();
  static int getNFatals();
  static void clearNErrors();
  static void clearNFatals();
};

#endif
