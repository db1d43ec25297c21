#ifndef TOOLS_TOOLOUTPUT_H
#define TOOLS_TOOLOUTPUT_H

// ToolOutput: standard output in large blocks written straight to the
// descriptor. A reader that goes away (`rondo dump ... | head`) ends the
// command at the next block: the write fails with EPIPE (SIGPIPE is
// ignored by the tool), and ToolPipeClosed carries the tool out quietly.
// Any other write failure is a fatal message.

#include <string>

struct ToolPipeClosed {};

class ToolOutput {
 public:
  explicit ToolOutput(int fd = 1);
  ~ToolOutput();
  ToolOutput(ToolOutput const&) = delete;
  ToolOutput& operator=(ToolOutput const&) = delete;

  void put(char c) { m_buffer.push_back(c); }
  void put(char const* text) { m_buffer.append(text); }
  void put(std::string const& text) { m_buffer.append(text); }
  // Writes the block when it has grown large.
  void maybeFlush() {
    if (m_buffer.size() >= kBlock) flush();
  }
  void flush();

 private:
  static constexpr std::size_t kBlock = 1 << 16;
  int m_fd;
  std::string m_buffer;
};

#endif
