#ifndef FOUNDATION_MESSAGEHANDLING_H
#define FOUNDATION_MESSAGEHANDLING_H

// MessageHandling: a scope in which messages are kept quiet. While it lives,
// a fatal message still raises its UtlExcept, but prints no report; errors
// and infos are dropped. For code that probes (does this file, this domain,
// this record exist?) and handles the failure itself. Scopes nest; the
// handlers in force before come back when the scope ends, also when it ends
// by an exception. One thread at a time.

class ExceptionErrorHandler;

class MessageHandling {
 public:
  MessageHandling();
  ~MessageHandling();

 private:
  MessageHandling(MessageHandling const&) = delete;
  MessageHandling& operator=(MessageHandling const&) = delete;

  ExceptionErrorHandler* m_handler;
};

#endif
