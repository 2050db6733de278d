#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Companion/Desktop/Foreground.h"
#include "Companion/Desktop/Launcher.h"
#include "Companion/Desktop/SessionState.h"
#include "Companion/Loop/EventLoop.h"
#include "Companion/Policy/LaunchButtons.h"
#include "Companion/Policy/SwitchPolicy.h"
#include "Companion/Policy/WindowMessage.h"
#include "Companion/Service/Links.h"
#include "Companion/Service/MouseDisplay.h"
#include "Companion/Service/MouseWatch.h"
#include "Kit/Bus/BusConnection.h"

// The background program: it tells the others what the mouse does, and gives the mouse the slot of
// the program in front. Made of policies that decide and parts that act; this joins them.
class Companion {
 public:
  struct Settings {
    std::filesystem::path udevControl = "/run/udev/control";
    // The window's program, to be opened again; empty if it is unknown.
    std::filesystem::path windowProgram;
    // Whether the desktop has a display of its own kind.
    bool hasOwnDisplay = false;
    // A folder of this user for the time of the session; empty if there is none.
    std::filesystem::path runtimeFolder;
    // A file whose writing is a change of the mouse: the memory of a virtual one.
    std::filesystem::path mouseFile;
  };

  // Uses the installed platform, whose notification center must be `bus`. Both must outlive it.
  Companion(EventLoop& loop, BusConnection& bus, Settings settings);
  ~Companion();
  Companion(const Companion&) = delete;
  Companion& operator=(const Companion&) = delete;

  // Looks for the mouse and begins to work.
  void begin();

  // Why the mouse has its slot, as other programs read it.
  const std::string& explanation() const { return m_explanation; }

 private:
  void obey(const WindowMessage& message);
  void report(const DeviceReport& report);
  void watchFiles();
  void watchWindow();
  void setHasWindow(bool hasWindow);
  void reloadLinks();
  void openForeground();
  void loseForeground();
  void searchForegroundLater();
  void takeForeground(const std::optional<AppIdentity>& identity);
  SwitchPolicy::Program programOf(const AppIdentity& identity) const;
  bool launch(const HidInputReport& report);
  void decide();
  void explain();
  void tellReason();
  bool isForegroundNeeded() const { return m_isOn && !m_links.isEmpty(); }
  void reopenWindow();

  EventLoop& m_loop;
  BusConnection& m_bus;
  Settings m_settings;
  Launcher m_launcher;
  std::unique_ptr<SessionState> m_session;
  LaunchButtons m_buttons;
  MouseWatch m_mouse;
  SwitchPolicy m_policy;
  Links m_links;
  std::unique_ptr<Foreground> m_foreground;
  std::optional<AppIdentity> m_front;
  bool m_isForegroundLost = false;
  std::chrono::seconds m_foregroundPause{1};
  EventLoop::Timer m_foregroundTimer;
  EventLoop::Timer m_decideTimer;
  MouseDisplay m_display;
  bool m_isOn = true;
  std::optional<SlotReason> m_reason;  // nothing before the first one
  std::string m_explanation;
  bool m_hasWindow = false;
  std::optional<EventLoop::Time> m_reopenUntil;
  EventLoop::Timer m_reopenTimer;
  EventLoop::Timer m_resumeTimer;
  std::unique_ptr<EventLoop::Watch> m_draftWatch;
  std::unique_ptr<EventLoop::Watch> m_preferenceWatch;
  std::unique_ptr<EventLoop::Watch> m_mouseFileWatch;
};
