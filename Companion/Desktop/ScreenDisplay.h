#pragma once

#include <cstdint>
#include <optional>

#include "Companion/Policy/DisplayText.h"
#include "Kit/Bus/BusConnection.h"

// Shows something on the screen for a moment: by the desktop's own display where it has one, else
// by a notification, always the same one, which no list keeps.
class ScreenDisplay {
 public:
  // `hasOwn`: the desktop has a display of its own kind for volume and brightness, for others too.
  ScreenDisplay(BusConnection& bus, bool hasOwn) : m_bus(bus), m_hasOwn(hasOwn) {}

  void show(const DisplayText& text);

 private:
  void showOwn(const DisplayText& text);
  void notify(const DisplayText& text);

  BusConnection& m_bus;
  bool m_hasOwn;
  std::uint32_t m_id = 0;  // of the notification; 0 before the first
  bool m_isWaiting = false;
  std::optional<DisplayText> m_next;  // what came while the first one was on its way
};

// Whether the desktop of that name ($XDG_CURRENT_DESKTOP) has such a display.
bool hasDisplayOfItsOwn(const char* desktop);
