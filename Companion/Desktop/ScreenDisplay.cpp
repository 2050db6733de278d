#include "Companion/Desktop/ScreenDisplay.h"

#include <string>
#include <utility>

#include <systemd/sd-bus.h>

namespace {

constexpr const char* icon = "input-mouse";
constexpr std::int32_t showMilliseconds = 2000;
// Lower than that shows no banner on some desktops.
constexpr std::uint8_t normalUrgency = 1;

}  // namespace

void ScreenDisplay::show(const DisplayText& text) {
  if (m_hasOwn) {
    showOwn(text);
  } else {
    notify(text);
  }
}

void ScreenDisplay::showOwn(const DisplayText& text) {
  m_bus.call(
      {"org.kde.plasmashell", "/org/kde/osdService", "org.kde.osdService", "showText"},
      [&](sd_bus_message* call) { sd_bus_message_append(call, "ss", icon, text.summary.c_str()); },
      [this, text](sd_bus_message* answer) {
        if (answer == nullptr) {
          m_hasOwn = false;
          notify(text);
        }
      },
      false);
}

void ScreenDisplay::notify(const DisplayText& text) {
  // Without the number of the first one, a second one would stand beside it.
  if (m_isWaiting) {
    m_next = text;
    return;
  }
  m_isWaiting = true;
  m_bus.call(
      {"org.freedesktop.Notifications", "/org/freedesktop/Notifications",
       "org.freedesktop.Notifications", "Notify"},
      [&](sd_bus_message* call) {
        sd_bus_message_append(call, "susssasa{sv}i", "NerinOption", m_id, icon,
                              text.summary.c_str(), text.body.c_str(), 0, 2, "transient", "b", 1,
                              "urgency", "y", normalUrgency, showMilliseconds);
      },
      [this](sd_bus_message* answer) {
        m_isWaiting = false;
        std::uint32_t id = 0;
        m_id = answer != nullptr && sd_bus_message_read(answer, "u", &id) > 0 ? id : 0;
        if (const auto next = std::exchange(m_next, std::nullopt)) {
          notify(*next);
        }
      });
}

bool hasDisplayOfItsOwn(const char* desktop) {
  return desktop != nullptr &&
         (":" + std::string(desktop) + ":").find(":KDE:") != std::string::npos;
}
