#include "foundation/ErrorHandler.h"

ErrorInterface::~ErrorInterface() {}

ErrorHandler::ErrorHandler(ErrorHandler* next) : m_next(next) {}

ErrorHandler::~ErrorHandler() { delete m_next; }

void ErrorHandler::fatal(char const* label, int code, char const* text) {
  doFatal(label, code, text);
  if (m_next) m_next->fatal(label, code, text);
}

void ErrorHandler::error(char const* label, int code, char const* text) {
  doError(label, code, text);
  if (m_next) m_next->error(label, code, text);
}

void ErrorHandler::info(char const* label, int code, char const* text) {
  doInfo(label, code, text);
  if (m_next) m_next->info(label, code, text);
}
