#include "foundation/ExceptionErrorHandler.h"

#include "foundation/UtlExcept.h"

ExceptionErrorHandler::ExceptionErrorHandler(ErrorHandler* next) : ErrorHandler(next) {}
ExceptionErrorHandler::~ExceptionErrorHandler() {}

void ExceptionErrorHandler::doFatal(char const* label, int /*code*/, char const* text) {
  throw UtlExcept("", text, label, -1, nullptr);
}

void ExceptionErrorHandler::doError(char const*, int, char const*) {}
void ExceptionErrorHandler::doInfo(char const*, int, char const*) {}
