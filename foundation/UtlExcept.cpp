#include "foundation/UtlExcept.h"

#include <iostream>

UtlExcept::UtlExcept(char const* stack, char const* reason, char const* method, int line, char const* file)
    : m_reason(reason), m_method(method), m_line(line) {
  myConstructor(file, stack);
}

UtlExcept::UtlExcept(char const* reason, char const* method, int line, char const* file)
    : m_reason(reason), m_method(method), m_line(line) {
  myConstructor(file, nullptr);
}

UtlExcept::UtlExcept(vString const& reason, vString const& method, int line, char const* file)
    : m_reason(reason), m_method(method), m_line(line) {
  myConstructor(file, nullptr);
}

UtlExcept::UtlExcept(UtlExcept const& other) : std::exception(other), m_line(-1) { *this = other; }

UtlExcept::~UtlExcept() {}

void UtlExcept::myConstructor(char const* file, char const* stack) {
  if (stack) m_stack = stack;
  m_file = file;
  bool const noFile = !file || !*file;
  if (m_method.isEmpty() && noFile && m_line == -1) {
    m_traceBack = toString("%R\n");
    return;
  }
  vString format("%R\n   (");
  if (!m_method.isEmpty()) format += "Method=%M   ";
  if (!noFile) format += "File=%F   ";
  if (m_line != -1) format += "Line=%L";
  format.strip();
  format += ")\n";
  m_traceBack = toString(format);
}

UtlExcept& UtlExcept::operator=(UtlExcept const& other) {
  if (this == &other) return *this;
  setReason(other.getReason());
  setMethod(other.getMethod());
  setLineNumber(other.getLineNumber());
  setFileName(other.getFileName());
  setTraceBack(other.getTraceBack());
  setStack(other.getStack());
  return *this;
}

UtlExcept& UtlExcept::operator+=(UtlExcept const& other) {
  m_traceBack += other.m_traceBack;
  return *this;
}

UtlExcept UtlExcept::operator+(UtlExcept const& other) const {
  UtlExcept sum(*this);
  sum += other;
  return sum;
}

char const* UtlExcept::what() const noexcept { return m_traceBack.c_str(); }

void UtlExcept::tokenize(vString format, std::list<vString>& tokens) const {
  tokens.clear();
  vString literal;
  unsigned int const n = format.length();
  char const* p = format.c_str();
  for (unsigned int i = 0; i < n; ++i) {
    if (p[i] == '%') {
      // White space alone between two specifiers is neither emitted nor lost:
      // it stays in the literal and leads the next one.
      if (!literal.isBlank()) {
        tokens.push_back(literal);
        literal.erase();
      }
      tokens.push_back(vString("%"));
      if (i + 1 < n) {
        ++i;
        tokens.push_back(vString(p[i] ? p[i] : ' '));
      }
    } else {
      literal += p[i];
    }
  }
  if (!literal.isBlank()) tokens.push_back(literal);
}

vString UtlExcept::toString(vString format) const {
  std::list<vString> tokens;
  tokenize(format, tokens);
  vString out;
  bool pending = false;
  for (std::list<vString>::const_iterator t = tokens.begin(); t != tokens.end(); ++t) {
    if (*t == "%") {
      pending = true;
      continue;
    }
    if (!pending) {
      out += *t;
      continue;
    }
    pending = false;
    switch ((*t)[0]) {
      case 'R':
        out += m_reason;
        break;
      case 'M':
        out += m_method;
        break;
      case 'F':
        out += m_file;
        break;
      case 'L':
        out << m_line;
        break;
      case 'T':
        out += m_traceBack;
        break;
      case 'K':
        out += m_stack;
        break;
      default:
        // An unknown specifier stands for itself, without its '%'.
        out += *t;
        break;
    }
  }
  return out;
}

std::ostream& operator<<(std::ostream& out, UtlExcept const& e) {
  out << "\n\n";
  out << "====================== EXCEPTION TRACEBACK =======================\n";
  vString trace = e.toString("%T");
  if (trace.length() != 0) out << trace;
  out << "==================================================================\n";
  return out;
}
