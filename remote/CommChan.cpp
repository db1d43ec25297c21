#include "remote/CommChan.h"

char const* CommChan::status(int value) {
  switch (value) {
    case OK:
      return "CommChan::OK";
    case INUSE:
      return "CommChan::INUSE";
    case BROKEN:
      return "CommChan::BROKEN";
    case CLOSED:
      return "CommChan::CLOSED";
    case INCOMPLETE:
      return "CommChan::INCOMPLETE";
    case NOTFOUND:
      return "CommChan::NOTFOUND";
    case TIMEOUT:
      return "CommChan::TIMEOUT";
    default:
      return "CommChan::Unknown status";
  }
}

CommChan::CommChan() : m_receiveTimeout(10.0f), m_sendTimeout(10.0f), m_miscTimeout(10.0f) {}

CommChan::~CommChan() = default;

void CommChan::setReceiveTimeout(float seconds) { m_receiveTimeout = seconds; }
void CommChan::setSendTimeout(float seconds) { m_sendTimeout = seconds; }
void CommChan::setMiscTimeout(float seconds) { m_miscTimeout = seconds; }
