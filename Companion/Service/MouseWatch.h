#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Companion/Loop/EventLoop.h"
#include "Companion/Policy/Doorbell.h"
#include "Companion/Policy/MouseNews.h"
#include "Kit/Device/HidInputReports.h"
#include "Kit/Device/HidPresenceMonitor.h"

// Knows whether the mouse is there and what it is set to, without asking it while nothing happens:
// udev tells when it comes and goes, its own reports tell that something changed. Uses the
// installed platform's mouse, and never waits for a program that has it: it tries again.
class MouseWatch {
 public:
  struct Listener {
    // The mouse came or went, or changed by itself. What it is set to stands in reading().
    std::function<void(const DeviceReport&)> reported;
    // It was read for the first time since it came.
    std::function<void(const MouseReading&)> came;
    // A report of its own kind arrived. True if that was a button that somebody knows, so that it
    // does not ring.
    std::function<bool(const HidInputReport&)> heard;
  };
  enum class Written { Done, Unchanged, Busy, Failed };

  // `udevControl` is a file that exists while udevd runs; empty for a virtual mouse, which udev
  // does not know and which stays.
  MouseWatch(EventLoop& loop, const std::filesystem::path& udevControl, Listener listener);
  ~MouseWatch();
  MouseWatch(const MouseWatch&) = delete;
  MouseWatch& operator=(const MouseWatch&) = delete;

  // Looks whether the mouse is there.
  void look();
  // Looks anew, as if the mouse had been plugged in again.
  void lookAnew();
  // Something may have happened that no report told: the mouse is read soon.
  void ring();
  // The file of a virtual mouse was written. What this program did there is no news.
  void ringByFile();
  // What is read next tells nothing to anybody: this was tried in the window.
  void setIsTrial(bool isTrial) { m_isTrial = isTrial; }
  // Another program set the slot.
  void note(int slot);
  // This program has just used the mouse.
  void noteTransfer() { m_doorbell.transferred(std::chrono::steady_clock::now()); }

  bool isThere() const { return m_presence.isThere; }
  const std::optional<MouseReading>& reading() const { return m_reading; }

  // Reads the slot, tells `found`, and writes what that returns, if anything. The mouse is held
  // from the read to the end.
  Written writeSlot(const std::function<std::optional<int>(int slot)>& found);

 private:
  void listen();
  void hear();
  void read();

  EventLoop& m_loop;
  Listener m_listener;
  HidPresenceMonitor m_monitor;
  std::unique_ptr<EventLoop::Watch> m_presenceWatch;
  std::unique_ptr<EventLoop::Timer> m_lookTimer;
  MousePresence m_presence;
  std::optional<MouseReading> m_reading;
  bool m_isTrial = false;
  int m_failures = 0;  // in a row, before the first reading

  std::unique_ptr<HidInputReports> m_reports;
  std::vector<std::unique_ptr<EventLoop::Watch>> m_reportWatches;
  Doorbell m_doorbell;
  EventLoop::Timer m_readTimer;
};
