#include "remote/CommChanAddress.h"

#include "foundation/Message.h"
#include "foundation/vUtl.h"

namespace {

// The field of text from position start up to the next ':' (or the end),
// and where the field after it begins (-1 when there is none).
vString fieldAt(vString const& text, int start, int& next) {
  int const length = static_cast<int>(text.length());
  if (start < 0 || start > length) {
    next = -1;
    return vString();
  }
  int const colon = text.search(":", start);
  if (colon < 0) {
    next = -1;
    return text.substr(static_cast<unsigned>(start));
  }
  next = colon + 1;
  return text.substr(static_cast<unsigned>(start), static_cast<unsigned>(colon - start));
}

}  // namespace

CommChanAddress::CommChanAddress(vString const& text) : m_port(0) {
  char const* const label = "CommChanAddress::CommChanAddress";
  int next = 0;
  vString const first = fieldAt(text, 0, next);
  if (first != "Address" || next < 0) {
    if (first == "Address") Message::fatal(label, 0, "Invalid local filename:%s.", text.c_str());
    m_filename = text;
    return;
  }
  vString const second = fieldAt(text, next, next);
  if (!second.isInteger()) {
    if (second.isBlank()) Message::fatal(label, 0, "Invalid local filename:%s.", text.c_str());
    m_filename = second;
    return;
  }
  m_port = second.readi();
  vString third = next < 0 ? vString() : fieldAt(text, next, next);
  vString const rest = next < 0 ? vString() : text.substr(static_cast<unsigned>(next));
  if (third.isBlank()) {
    m_host = rest;
  } else {
    int const other = third.find_first_not_of("0123456789");
    if (other >= 0 && third[other] == '.') {
      m_ip = third;
      m_host = rest;
    } else {
      m_host = third;
    }
  }
  if (m_ip.isBlank() && !m_host.isBlank()) m_ip = vUtl::getIPAddress(m_host);
  if (m_host.isBlank() && m_ip.isBlank()) Message::fatal(label, 0, "Invalid remote host:%s.", text.c_str());
}

CommChanAddress::CommChanAddress(int port, vString const* host) : m_port(port) {
  if (host == nullptr || host->isBlank()) {
    char name[129];
    if (!vUtl::gethostname(name, 128)) name[0] = '\0';
    name[128] = '\0';
    m_host = name;
  } else {
    m_host = *host;
  }
  m_ip = vUtl::getIPAddress(m_host);
}

CommChanAddress::CommChanAddress(CommChanAddress const& other) = default;
CommChanAddress& CommChanAddress::operator=(CommChanAddress const& other) = default;
CommChanAddress::~CommChanAddress() = default;

vString CommChanAddress::getAddress() const {
  vString text("Address:");
  if (!isRemote()) {
    text += m_filename;
    return text;
  }
  text << m_port;
  text += ":";
  text += m_ip;
  if (!m_host.isBlank()) {
    text += ":";
    text += m_host;
  }
  text.removeAll(' ');
  return text;
}

int CommChanAddress::getPort() const {
  if (!isRemote()) Message::fatal("CommChanAddress::getPort", 0, "Address is not a remote address.");
  return m_port;
}

vString CommChanAddress::getHost() const {
  if (!isRemote()) Message::fatal("CommChanAddress::getHost", 0, "Address is not a remote address.");
  return m_host.isBlank() ? m_ip : m_host;
}

vString const& CommChanAddress::getFilename() const {
  if (isRemote()) Message::fatal("CommChanAddress::getFilename", 0, "Address is not a local address.");
  return m_filename;
}
