#ifndef TOOLS_TOOLMESSAGES_H
#define TOOLS_TOOLMESSAGES_H

// ToolMessages: the tool's message handler. A fatal message goes on to
// the exception handler and becomes the one error line the tool prints
// when it catches it; an error (a truncated file, a skipped record) is a
// warning line "rondo: <subject>: <text>" on standard error at once, on
// one line; infos are dropped. The subject is what the running command
// works on.

#include <string>

#include "foundation/ErrorHandler.h"

class ToolMessages : public ErrorHandler {
 public:
  ToolMessages();
  ~ToolMessages() override;

  static void setSubject(std::string const& subject);
  // The line the tool prints for a message about the subject.
  static std::string line(std::string const& text);
  // Errors reported so far by the process that say a file is cut inside
  // its last instance.
  static unsigned int getNCutWarnings();

 protected:
  void doFatal(char const* label, int code, char const* text) override;
  void doError(char const* label, int code, char const* text) override;
  void doInfo(char const* label, int code, char const* text) override;
};

#endif
