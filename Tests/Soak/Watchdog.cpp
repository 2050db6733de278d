#include "Tests/Soak/Watchdog.h"

#include <chrono>
#include <csignal>
#include <fstream>
#include <string>

#include <pthread.h>
#include <sanitizer/common_interface_defs.h>
#include <unistd.h>

namespace {

constexpr auto sampleTime = std::chrono::milliseconds(50);
constexpr auto limit = std::chrono::seconds(3);

void showStack(int /*signal*/) {
  static constexpr char text[] = "FINDING: no answer for three seconds. The program stands here:\n";
  static_cast<void>(!::write(STDERR_FILENO, text, sizeof text - 1));
#ifdef __SANITIZE_ADDRESS__
  __sanitizer_print_stack_trace();
#endif
  ::_exit(Watchdog::exitCode);
}

// Whether the thread waits for a processor: it can run, but does not get on.
struct Progress {
  char state = 'R';
  std::uint64_t ticks = 0;
};

Progress progressOf(pid_t thread) {
  std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
  std::string line;
  std::getline(file, line);
  Progress progress;
  // The name, in parentheses, can hold anything.
  std::string rest = line.substr(line.rfind(')') + 1);
  std::uint64_t user = 0;
  std::uint64_t system = 0;
  if (std::sscanf(rest.c_str(), " %c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %lu %lu",
                  &progress.state, &user, &system) == 3) {
    progress.ticks = user + system;
  }
  return progress;
}

}  // namespace

Watchdog::Watchdog() : m_watchedId(::gettid()), m_watched(::pthread_self()) {
  std::signal(SIGUSR1, showStack);
  m_thread = std::thread([this] { watch(); });
}

Watchdog::~Watchdog() {
  m_isEnding = true;
  m_thread.join();
}

void Watchdog::watch() {
  auto silence = std::chrono::milliseconds(0);
  unsigned answers = m_answers;
  std::uint64_t ticks = 0;
  while (!m_isEnding) {
    std::this_thread::sleep_for(sampleTime);
    const Progress now = progressOf(m_watchedId);
    const bool isStarved = now.state == 'R' && now.ticks == ticks;
    ticks = now.ticks;
    if (m_answers != answers) {
      answers = m_answers;
      silence = {};
    } else if (!isStarved) {
      silence += sampleTime;
    }
    if (silence >= limit) {
      ::pthread_kill(m_watched, SIGUSR1);
      std::this_thread::sleep_for(limit);
    }
  }
}
