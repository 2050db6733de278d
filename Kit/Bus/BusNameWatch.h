#pragma once

#include <functional>
#include <memory>
#include <string>

// Tells when a name on the session bus gets an owner and when it loses it, also when the owner is
// killed. It has a connection of its own and no thread: it belongs to a program whose event loop
// can wait for a descriptor.
class BusNameWatch {
 public:
  // `changed` gets whether the name has an owner, for every change from now on. The end of the bus
  // is told as the end of the owner. Only work() calls it, and it must not destroy the watch.
  BusNameWatch(const std::string& name, std::function<void(bool hasOwner)> changed);
  ~BusNameWatch();
  BusNameWatch(const BusNameWatch&) = delete;
  BusNameWatch& operator=(const BusNameWatch&) = delete;

  // Readable when work() has something to do; -1 without a session bus.
  int descriptor() const;
  // Handles what has arrived, without waiting. To be called once at the start, too.
  void work();

 private:
  struct State;
  std::unique_ptr<State> m_state;
};
