#include "foundation/RaiseError.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "foundation/ExceptionErrorHandler.h"
#include "foundation/PrintErrorHandler.h"
#include "foundation/TracebackErrorHandler.h"
#include "foundation/UtlExcept.h"
#include "foundation/vUtl.h"

RaiseError* RaiseError::getInstance() {
  // Never destroyed: messages may be raised by static destructors.
  static RaiseError* instance = new RaiseError();
  return instance;
}

RaiseError::RaiseError() : m_traceback(std::getenv("SP_UTL_TRACEBACK") != nullptr), m_inFatal(false) {}

RaiseError::~RaiseError() {}

void RaiseError::install(ErrorHandler* handler) {
  static int level = 0;
  if (level > 0 || handler == nullptr) return;
  ++level;
  if (m_traceback && dynamic_cast<TracebackErrorHandler*>(handler) == nullptr) {
    TracebackErrorHandler* wrapper = new TracebackErrorHandler(handler);
    m_wrappers[handler] = wrapper;
    m_handlers.push_front(wrapper);
  } else {
    m_handlers.push_front(handler);
  }
  --level;
}

void RaiseError::uninstall(ErrorHandler* handler) {
  std::map<ErrorHandler*, TracebackErrorHandler*>::iterator w = m_wrappers.find(handler);
  ErrorHandler* entry = handler;
  if (w != m_wrappers.end()) {
    TracebackErrorHandler* wrapper = w->second;
    m_wrappers.erase(w);
    wrapper->setNext(nullptr);
    delete wrapper;
    entry = wrapper;
  }
  std::list<ErrorHandler*>::iterator it = std::find(m_handlers.begin(), m_handlers.end(), entry);
  if (it != m_handlers.end()) m_handlers.erase(it);
}

ErrorHandler* RaiseError::getCurrentHandler() const { return m_handlers.empty() ? nullptr : m_handlers.front(); }

ErrorHandler* RaiseError::myFirstHandler() {
  if (m_handlers.empty()) myDefaultHandler();
  return m_handlers.front();
}

void RaiseError::myDefaultHandler() {
  ExceptionErrorHandler* thrower = new ExceptionErrorHandler(nullptr);
  install(new PrintErrorHandler(thrower));
}

void RaiseError::fatal(char const* label, int code, char const* text) {
  if (m_inFatal) {
    std::fflush(stdout);
    std::fprintf(stderr, "RECURSIVE fatal message in %s, code %d\nMessage=%s\n", label ? label : "", code,
                 text ? text : "");
    std::fflush(stderr);
    vUtl::printStack();
    std::abort();
  }
  m_inFatal = true;
  try {
    myFirstHandler()->fatal(label, code, text);
  } catch (UtlExcept const& e) {
    m_inFatal = false;
    throw UtlExcept(e);
  } catch (...) {
    m_inFatal = false;
    throw;
  }
  // A fatal message must not come back to its caller.
  std::fflush(stdout);
  std::fprintf(stderr, "Fatal message in %s was handled without an exception; aborting.\n", label ? label : "");
  std::fflush(stderr);
  vUtl::printStack();
  std::abort();
}

void RaiseError::error(char const* label, int code, char const* text) { myFirstHandler()->error(label, code, text); }

void RaiseError::info(char const* label, int code, char const* text) { myFirstHandler()->info(label, code, text); }
