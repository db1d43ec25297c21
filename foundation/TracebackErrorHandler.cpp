#include "foundation/TracebackErrorHandler.h"

#include "foundation/vUtl.h"

TracebackErrorHandler::TracebackErrorHandler(ErrorHandler* next) : ErrorHandler(next) {}
TracebackErrorHandler::~TracebackErrorHandler() {}

void TracebackErrorHandler::doFatal(char const*, int, char const*) { vUtl::printStack(); }
void TracebackErrorHandler::doError(char const*, int, char const*) {}
void TracebackErrorHandler::doInfo(char const*, int, char const*) {}
