#ifndef DECORATOR_TIMER_H
#define DECORATOR_TIMER_H

// Timer: a named stopwatch that sums what it measures over many start/stop
// pairs: elapsed (wall) time and processor time of the process, and the
// number of pairs. Used by the profiling and caching views to tell where a
// run spends its time. One thread at a time.

#include <chrono>
#include <ctime>

#include "foundation/vString.h"

class Timer {
 public:
  explicit Timer(vString const& name = "Timer");

  // A start while running restarts the current measurement.
  void start();
  // Adds the time since start(); a stop without a start does nothing.
  void stop();
  void reset();

  vString const& getName() const { return m_name; }
  bool isRunning() const { return m_running; }
  unsigned long long getNCalls() const { return m_nCalls; }
  double getElapsedSeconds() const { return m_elapsed; }
  double getCpuSeconds() const { return m_cpu; }
  // "<calls> call(s), elapsed <s> s, cpu <s> s", seconds with six decimals.
  vString getTotalTimes() const;

 private:
  vString m_name;
  bool m_running;
  unsigned long long m_nCalls;
  double m_elapsed;
  double m_cpu;
  std::chrono::steady_clock::time_point m_startWall;
  std::clock_t m_startCpu;
};

#endif
