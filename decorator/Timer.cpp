#include "decorator/Timer.h"

#include <cstdio>

Timer::Timer(vString const& name)
    : m_name(name), m_running(false), m_nCalls(0), m_elapsed(0.0), m_cpu(0.0), m_startCpu(0) {}

void Timer::start() {
  m_running = true;
  m_startWall = std::chrono::steady_clock::now();
  m_startCpu = std::clock();
}

void Timer::stop() {
  if (!m_running) return;
  std::clock_t cpu = std::clock();
  std::chrono::duration<double> wall = std::chrono::steady_clock::now() - m_startWall;
  m_elapsed += wall.count();
  // clock() is (clock_t)-1 where the processor time is not available.
  if (cpu != static_cast<std::clock_t>(-1) && m_startCpu != static_cast<std::clock_t>(-1))
    m_cpu += static_cast<double>(cpu - m_startCpu) / CLOCKS_PER_SEC;
  ++m_nCalls;
  m_running = false;
}

void Timer::reset() {
  m_running = false;
  m_nCalls = 0;
  m_elapsed = 0.0;
  m_cpu = 0.0;
}

vString Timer::getTotalTimes() const {
  char text[128];
  std::snprintf(text, sizeof text, "%llu call(s), elapsed %.6f s, cpu %.6f s", m_nCalls, m_elapsed, m_cpu);
  return vString(text);
}
