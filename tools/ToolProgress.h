#ifndef TOOLS_TOOLPROGRESS_H
#define TOOLS_TOOLPROGRESS_H

// ToolProgress: a bar on standard error for work that takes more than a
// second, shown only when standard error is a terminal; scripts and logs
// get nothing. The bar is wiped when the work ends.

#include <chrono>

class ToolProgress {
 public:
  explicit ToolProgress(unsigned long long total);
  ~ToolProgress();
  ToolProgress(ToolProgress const&) = delete;
  ToolProgress& operator=(ToolProgress const&) = delete;

  void update(unsigned long long done);

 private:
  bool m_enabled;
  bool m_shown;
  int m_lastPercent;
  unsigned long long m_total;
  std::chrono::steady_clock::time_point m_start;
};

#endif
