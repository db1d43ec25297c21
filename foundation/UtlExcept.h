#ifndef FOUNDATION_UTLEXCEPT_H
#define FOUNDATION_UTLEXCEPT_H

// UtlExcept: the system's one exception. Reason, method, line (-1 for none),
// file, a trace back formatted at construction, and an optional stack dump.
// toString() expands %R %M %F %L %T %K; an unknown specifier emits its bare
// letter, and a literal percent cannot be written.

#include <exception>
#include <iosfwd>
#include <list>

#include "foundation/vString.h"

class UtlExcept : public std::exception {
 public:
  UtlExcept(char const* stack, char const* reason, char const* method, int line, char const* file);
  UtlExcept(char const* reason, char const* method, int line = -1, char const* file = nullptr);
  UtlExcept(vString const& reason, vString const& method, int line = -1, char const* file = nullptr);
  UtlExcept(UtlExcept const& other);
  ~UtlExcept() override;

  virtual vString toString(vString format) const;

  char const* what() const noexcept override;

  vString const& getReason() const { return m_reason; }
  void setReason(vString const& r) { m_reason = r; }
  vString const& getMethod() const { return m_method; }
  void setMethod(vString const& m) { m_method = m; }
  int getLineNumber() const { return m_line; }
  void setLineNumber(int l) { m_line = l; }
  vString const& getFileName() const { return m_file; }
  void setFileName(vString const& f) { m_file = f; }
  vString const& getTraceBack() const { return m_traceBack; }
  void setTraceBack(vString const& t) { m_traceBack = t; }
  vString const& getStack() const { return m_stack; }
  void setStack(vString const& s) { m_stack = s; }

  UtlExcept& operator=(UtlExcept const& other);
  // Appends the other's trace back; reason and method stay.
  UtlExcept& operator+=(UtlExcept const& other);
  UtlExcept operator+(UtlExcept const& other) const;

  // Splits a toString() format into literal, "%" and specifier tokens.
  void tokenize(vString format, std::list<vString>& tokens) const;

 private:
  void myConstructor(char const* file, char const* stack);

  vString m_reason;
  vString m_method;
  int m_line;
  vString m_file;
  vString m_traceBack;
  vString m_stack;
};

// Writes the banner, the trace back and the closing rule.
std::ostream& operator<<(std::ostream& out, UtlExcept const& e);

#endif
