#include "foundation/MessageHandling.h"

#include "foundation/ExceptionErrorHandler.h"
#include "foundation/RaiseError.h"

MessageHandling::MessageHandling() : m_handler(new ExceptionErrorHandler) {
  RaiseError::getInstance()->install(m_handler);
}

MessageHandling::~MessageHandling() {
  RaiseError::getInstance()->uninstall(m_handler);
  delete m_handler;
}
