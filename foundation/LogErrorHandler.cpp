#include "foundation/LogErrorHandler.h"

#include <cstring>

LogErrorHandler::LogErrorHandler(char const* filename, ErrorHandler* next) : ErrorHandler(next) {
  if (filename) m_out.open(filename, std::ios::out | std::ios::app);
}

LogErrorHandler::~LogErrorHandler() {}

void LogErrorHandler::doFatal(char const* label, int code, char const* text) { myWrite("FATAL", label, code, text); }
void LogErrorHandler::doError(char const* label, int code, char const* text) { myWrite("ERROR", label, code, text); }
void LogErrorHandler::doInfo(char const* label, int code, char const* text) { myWrite("INFO ", label, code, text); }

void LogErrorHandler::myWrite(char const* word, char const* label, int code, char const* text) {
  if (!m_out.is_open()) return;
  if (!text) text = "";
  m_out << word << ':' << (label ? label : "") << ':' << code << ':' << text;
  size_t const n = std::strlen(text);
  if (n == 0 || text[n - 1] != '\n') m_out << '\n';
  m_out.flush();
}
