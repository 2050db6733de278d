#include "Kit/Bus/BusThread.h"

#include <cerrno>
#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <systemd/sd-event.h>
#include <time.h>
#include <unistd.h>

#include "Kit/Bus/BusConnection.h"

namespace {

// How soon to try again when too many programs wait for the bus already, as after a login.
constexpr std::uint64_t retryMicroseconds = 20'000;

}  // namespace

struct BusThread::State {
  explicit State(std::function<void()> whenLost)
      : bell(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)), lost(std::move(whenLost)) {}
  ~State() { close(bell); }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  const int bell;  // wakes the thread
  std::mutex mutex;
  std::vector<Work> given;
  bool isEnding = false;

  // The rest is the thread's own.
  std::function<void()> lost;
  sd_event* loop = nullptr;
  std::unique_ptr<BusConnection> bus;
  bool isLost = false;

  void ring() const {
    const std::uint64_t one = 1;
    // Fails only when it rings already.
    static_cast<void>(!write(bell, &one, sizeof(one)));
  }
  void run();
  void open();
  void lose();
  void workOff();

  static int rung(sd_event_source* source, int descriptor, std::uint32_t events, void* data);
  static int tryAgain(sd_event_source* source, std::uint64_t time, void* data);
};

void BusThread::State::lose() {
  isLost = true;
  lost();
}

void BusThread::State::open() {
  int failure = 0;
  bus = BusConnection::open(
      loop, BusConnection::Kind::Session, [this] { lose(); }, &failure);
  if (bus) {
    workOff();
  } else if (failure != EAGAIN ||
             sd_event_add_time_relative(loop, nullptr, CLOCK_MONOTONIC, retryMicroseconds, 0,
                                        tryAgain, this) < 0) {
    lose();
  }
}

void BusThread::State::workOff() {
  std::vector<Work> works;
  {
    const std::lock_guard lock(mutex);
    if (isEnding) {
      sd_event_exit(loop, 0);
      return;
    }
    if (!bus && !isLost) {
      return;
    }
    works = std::exchange(given, {});
  }
  for (const Work& work : works) {
    if (!isLost) {
      work(*bus);
    }
  }
}

int BusThread::State::rung(sd_event_source* /*source*/, int descriptor, std::uint32_t /*events*/,
                           void* data) {
  std::uint64_t count = 0;
  static_cast<void>(!read(descriptor, &count, sizeof(count)));
  static_cast<State*>(data)->workOff();
  return 0;
}

int BusThread::State::tryAgain(sd_event_source* /*source*/, std::uint64_t /*time*/, void* data) {
  static_cast<State*>(data)->open();
  return 0;
}

void BusThread::State::run() {
  if (sd_event_new(&loop) < 0 || sd_event_add_io(loop, nullptr, bell, EPOLLIN, rung, this) < 0) {
    lose();
  } else {
    open();
    sd_event_loop(loop);
  }
  bus.reset();
  sd_event_unref(loop);
}

BusThread::BusThread(std::function<void()> lost)
    : m_state(std::make_unique<State>(std::move(lost))) {
  m_thread = std::thread([state = m_state.get()] { state->run(); });
}

BusThread::~BusThread() {
  {
    const std::lock_guard lock(m_state->mutex);
    m_state->isEnding = true;
  }
  m_state->ring();
  m_thread.join();
}

void BusThread::give(Work work) {
  {
    const std::lock_guard lock(m_state->mutex);
    m_state->given.push_back(std::move(work));
  }
  m_state->ring();
}
