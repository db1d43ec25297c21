#include "tools/ToolOutput.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "foundation/Message.h"

ToolOutput::ToolOutput(int fd) : m_fd(fd) { m_buffer.reserve(2 * kBlock); }

ToolOutput::~ToolOutput() {
  // What is still buffered at an exception is dropped: the error line
  // must not be followed by half a record.
}

void ToolOutput::flush() {
  std::size_t done = 0;
  while (done < m_buffer.size()) {
    ssize_t const n = ::write(m_fd, m_buffer.data() + done, m_buffer.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0 && errno == EPIPE) throw ToolPipeClosed();
    if (n <= 0) Message::fatal("ToolOutput::flush", 0, "Cannot write the output: %s", std::strerror(errno));
    done += static_cast<std::size_t>(n);
  }
  m_buffer.clear();
}
