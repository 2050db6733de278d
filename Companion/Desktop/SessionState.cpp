#include "Companion/Desktop/SessionState.h"

#include <utility>

#include <systemd/sd-bus.h>

namespace {

constexpr const char* login = "org.freedesktop.login1";
// The session of the caller, or the one of its user that has a display.
constexpr const char* ownSession = "/org/freedesktop/login1/session/auto";

}  // namespace

SessionState::SessionState(sd_event* loop, std::function<void()> changed,
                           std::function<void()> resumed)
    : m_changed(std::move(changed)),
      m_bus(BusConnection::open(loop, BusConnection::Kind::System, [this] {
        m_isLocked = false;
        m_isActive = true;
      })) {
  if (!m_bus) {
    return;
  }
  // Signals carry the session's own path, which nobody has to know.
  m_bus->watch(
      "type='signal',sender='org.freedesktop.login1',interface='org.freedesktop.DBus.Properties',"
      "member='PropertiesChanged',path_namespace='/org/freedesktop/login1/session'",
      [this](sd_bus_message*) { ask(); });
  m_bus->watch(
      "type='signal',sender='org.freedesktop.login1',"
      "interface='org.freedesktop.login1.Manager',member='PrepareForSleep'",
      [resumed = std::move(resumed)](sd_bus_message* signal) {
        int isBefore = 1;
        if (sd_bus_message_read(signal, "b", &isBefore) > 0 && isBefore == 0) {
          resumed();
        }
      });
  ask();
}

SessionState::~SessionState() = default;

void SessionState::ask() {
  askFor("LockedHint", &SessionState::m_isLocked);
  askFor("Active", &SessionState::m_isActive);
}

void SessionState::askFor(const char* property, bool SessionState::*value) {
  m_bus->call(
      {login, ownSession, "org.freedesktop.DBus.Properties", "Get"},
      [property](sd_bus_message* call) {
        sd_bus_message_append(call, "ss", "org.freedesktop.login1.Session", property);
      },
      [this, value](sd_bus_message* answer) {
        int flag = 0;
        if (answer != nullptr && sd_bus_message_read(answer, "v", "b", &flag) > 0 &&
            this->*value != (flag != 0)) {
          this->*value = flag != 0;
          m_changed();
        }
      },
      false);
}
