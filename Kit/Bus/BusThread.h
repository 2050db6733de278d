#pragma once

#include <functional>
#include <memory>
#include <thread>

class BusConnection;

// A connection to the session bus on a thread of its own, for a program whose own thread waits for
// other things: a transfer, the user, the end of a command.
class BusThread {
 public:
  using Work = std::function<void(BusConnection& bus)>;

  // Begins to connect. `lost` is called on the thread, once, if there is no bus or it goes away.
  explicit BusThread(std::function<void()> lost);
  // Drops the work that has not begun, and closes the connection. Not for the thread itself.
  ~BusThread();
  BusThread(const BusThread&) = delete;
  BusThread& operator=(const BusThread&) = delete;

  // Does the work on the thread, in the order in which it is given, and drops it once the bus is
  // lost. The connection may still be waiting for the bus. For every thread.
  void give(Work work);

 private:
  struct State;
  std::unique_ptr<State> m_state;
  std::thread m_thread;
};
