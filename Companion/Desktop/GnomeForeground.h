#pragma once

#include <memory>

#include "Companion/Desktop/Foreground.h"
#include "Kit/Bus/BusConnection.h"

// The window in front on GNOME, which tells it only through an extension that a person installed:
// "Focused Window D-Bus". The shell tells that something changed, the extension what.
class GnomeForeground final : public Foreground {
 public:
  // Null without a session bus.
  static std::unique_ptr<GnomeForeground> open(EventLoop& loop, Changed changed, Lost lost);
  ~GnomeForeground() override;
  GnomeForeground(const GnomeForeground&) = delete;
  GnomeForeground& operator=(const GnomeForeground&) = delete;

  std::string name() const override { return "GNOME with a focus extension"; }

 private:
  GnomeForeground(Changed changed, Lost lost);
  bool connect(EventLoop& loop);
  void ask();
  void take(sd_bus_message* answer);
  void end();

  Changed m_changed;
  Lost m_lost;
  bool m_isAsking = false;
  bool m_isAskedAgain = false;
  // Goes first: nobody is called after it.
  std::unique_ptr<BusConnection> m_bus;
};
