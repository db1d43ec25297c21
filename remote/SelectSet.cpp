#include "remote/SelectSet.h"

#include <errno.h>
#include <sys/time.h>

#include <cmath>

#include "foundation/Message.h"

SelectSet::SelectSet(CommChan::WaitType type) : m_highest(-1) {
  if (type == CommChan::READ) {
    m_read.reset(new fd_set);
    FD_ZERO(m_read.get());
  } else {
    m_write.reset(new fd_set);
    FD_ZERO(m_write.get());
  }
}

SelectSet::~SelectSet() = default;

void SelectSet::add(int descriptor) {
  if (descriptor < 0 || descriptor >= FD_SETSIZE)
    Message::fatal("SelectSet::add", 0, "Descriptor %d cannot be waited on.", descriptor);
  if (m_read) FD_SET(descriptor, m_read.get());
  if (m_write) FD_SET(descriptor, m_write.get());
  if (descriptor > m_highest) m_highest = descriptor;
}

bool SelectSet::isSet(int descriptor) const {
  if (descriptor < 0 || descriptor >= FD_SETSIZE) return false;
  if (m_read && FD_ISSET(descriptor, m_read.get())) return true;
  return m_write && FD_ISSET(descriptor, m_write.get());
}

bool SelectSet::waitOn(float timeout) {
  if (m_highest < 0) Message::fatal("SelectSet::waitOn", 0, "No channels have been added to the SelectSet.");
  fd_set readSaved;
  fd_set writeSaved;
  if (m_read) readSaved = *m_read;
  if (m_write) writeSaved = *m_write;
  for (;;) {
    timeval tv;
    timeval* limit = nullptr;
    if (timeout >= 0.0f) {
      double const whole = std::floor(static_cast<double>(timeout));
      tv.tv_sec = static_cast<time_t>(whole);
      tv.tv_usec = static_cast<suseconds_t>((static_cast<double>(timeout) - whole) * 1e6);
      limit = &tv;
    }
    int const n = ::select(m_highest + 1, m_read.get(), m_write.get(), nullptr, limit);
    if (n >= 0) return n > 0;
    if (errno != EINTR) {
      perror("SelectSet::waitOn");
      return false;
    }
    // The sets are undefined after a failed select: start again from what
    // was added.
    if (m_read) *m_read = readSaved;
    if (m_write) *m_write = writeSaved;
  }
}
