#pragma once

#include <atomic>
#include <thread>

#include <sys/types.h>

// Ends the process if the thread that made it does not answer for three seconds, with the thread's
// stack on standard error. Time in which the machine had no processor for the thread does not
// count.
class Watchdog {
 public:
  static constexpr int exitCode = 67;

  Watchdog();
  ~Watchdog();
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;

  // The thread answers.
  void answer() { ++m_answers; }

 private:
  void watch();

  pid_t m_watchedId;
  pthread_t m_watched;
  std::atomic<unsigned> m_answers = 0;
  std::atomic<bool> m_isEnding = false;
  std::thread m_thread;
};
