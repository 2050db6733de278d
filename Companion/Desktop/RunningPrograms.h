#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Companion/Desktop/Foreground.h"
#include "Kit/Bus/BusConnection.h"

// Where a desktop does not tell which window is in front: the linked program that runs, of several
// the one that was started last. Known from the units in which desktops start programs; a program
// that was started from a terminal has none.
class RunningPrograms final : public Foreground {
 public:
  using IsLinked = std::function<bool(const AppIdentity&)>;

  // Null without a session bus. Lost a moment later without a service manager.
  static std::unique_ptr<RunningPrograms> open(EventLoop& loop, IsLinked isLinked, Changed changed,
                                               Lost lost);
  ~RunningPrograms() override;
  RunningPrograms(const RunningPrograms&) = delete;
  RunningPrograms& operator=(const RunningPrograms&) = delete;

  std::string name() const override { return "programs that run"; }
  bool tellsRunning() const override { return true; }
  void linksChanged() override;

 private:
  RunningPrograms(EventLoop& loop, IsLinked isLinked, Changed changed, Lost lost);
  bool connect(EventLoop& loop);
  void ask();
  void take(sd_bus_message* answer);
  void end();

  IsLinked m_isLinked;
  Changed m_changed;
  Lost m_lost;
  // In the order in which they were seen first.
  std::vector<std::string> m_units;
  bool m_isKnown = false;
  // Units come and go in swarms.
  EventLoop::Timer m_askTimer;
  // Goes first: nobody is called after it.
  std::unique_ptr<BusConnection> m_bus;
};
