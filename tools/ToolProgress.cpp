#include "tools/ToolProgress.h"

#include <unistd.h>

#include <cstdio>

ToolProgress::ToolProgress(unsigned long long total)
    : m_enabled(::isatty(2) == 1 && total > 0),
      m_shown(false),
      m_lastPercent(-1),
      m_total(total),
      m_start(std::chrono::steady_clock::now()) {}

ToolProgress::~ToolProgress() {
  if (m_shown) std::fprintf(stderr, "\r%60s\r", "");
}

void ToolProgress::update(unsigned long long done) {
  if (!m_enabled) return;
  if (!m_shown && std::chrono::steady_clock::now() - m_start < std::chrono::seconds(1)) return;
  int const percent = static_cast<int>(done * 100 / m_total);
  if (percent == m_lastPercent) return;
  m_shown = true;
  m_lastPercent = percent;
  char bar[41];
  int const filled = percent * 40 / 100;
  for (int i = 0; i < 40; ++i) bar[i] = i < filled ? '#' : '.';
  bar[40] = 0;
  std::fprintf(stderr, "\r[%s] %3d%%", bar, percent);
  std::fflush(stderr);
}
