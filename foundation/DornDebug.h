#ifndef FOUNDATION_DORNDEBUG_H
#define FOUNDATION_DORNDEBUG_H

// DornDebug: the process-wide trace stream, off unless configured.
//
// initialize() reads the environment:
//   DORNDEBUGOUTPUT  file to write to (standard error when unset or "-")
//   DORNDEBUGLEVEL   trace level; 0 or unset switches tracing off
//   DORNDEBUGFLAGS   sum of DornDebug::Flags values
// Every line carries the current indentation; entry() raises it after its
// line and exit() lowers it after its line, so an exit stands level with the
// lines of the call it closes. All operations are static; an
// object exists only for the ++/-- shorthand of indentUp()/indentDown().

#include <cstddef>

class UtlExcept;

class DornDebug {
 public:
  enum Flags {
    TimeStamp = 1,     // each line starts with "%H:%M:%S "
    FlushLines = 2,    // flush after every line
    Append = 4,        // append to DORNDEBUGOUTPUT instead of truncating it
    IndentAfter = 8,   // raise the indentation after the line
    UnindentAfter = 16 // lower the indentation after the line
  };

  // From the environment; a second call first terminates the first.
  static void initialize(char const* programName = nullptr);
  // Without the environment: on/off, file (null or "-" for standard error),
  // level and flags.
  static void initializeDirect(bool enable, char const* filename, unsigned level, unsigned flags = 0);
  static void terminate();
  static bool isEnabled();

  static void entry(char const* format, ...) __attribute__((format(printf, 1, 2)));
  // Writes "(exit)".
  static void exit();
  static void exit(char const* format, ...) __attribute__((format(printf, 1, 2)));
  static void printf(char const* format, ...) __attribute__((format(printf, 1, 2)));
  // A line labelled with its source position, "text  [file:line]".
  static void where(char const* text, char const* file, long line);
  static void dump(void const* bytes, size_t length);
  static void dump(void const* bytes, size_t length, char const* title);
  // "*label EXCEPTION* method - reason"
  static void exception(char const* label, UtlExcept const& e);
  static void exception(char const* label, char const* method, char const* reason);
  static void indentUp();
  static void indentDown();
  static void setIndent(int indent);
  static int getIndent();
  static void setLevel(unsigned level);
  static unsigned getLevel();
  // The output file, empty for standard error.
  static char const* getFilename();
  static unsigned getFlags();

  DornDebug operator++(int) {
    indentUp();
    return *this;
  }
  DornDebug operator--(int) {
    indentDown();
    return *this;
  }
};

#endif
