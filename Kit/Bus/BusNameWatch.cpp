#include "Kit/Bus/BusNameWatch.h"

#include <utility>

#include <systemd/sd-bus.h>
#include <systemd/sd-event.h>

#include "Kit/Bus/BusConnection.h"

namespace {

struct Unref {
  void operator()(sd_event* loop) const { sd_event_unref(loop); }
};

}  // namespace

struct BusNameWatch::State {
  std::unique_ptr<sd_event, Unref> loop;
  std::unique_ptr<BusConnection> connection;
};

BusNameWatch::BusNameWatch(const std::string& name, std::function<void(bool hasOwner)> changed)
    : m_state(std::make_unique<State>()) {
  sd_event* loop = nullptr;
  if (sd_event_new(&loop) < 0) {
    return;
  }
  m_state->loop.reset(loop);
  m_state->connection =
      BusConnection::open(loop, BusConnection::Kind::Session, [changed] { changed(false); });
  if (!m_state->connection) {
    return;
  }
  m_state->connection->watch(
      "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',arg0='" + name + "'",
      [changed = std::move(changed)](sd_bus_message* signal) {
        const char* text = nullptr;
        const char* before = nullptr;
        const char* after = nullptr;
        if (sd_bus_message_read(signal, "sss", &text, &before, &after) > 0) {
          changed(*after != '\0');
        }
      });
}

BusNameWatch::~BusNameWatch() = default;

int BusNameWatch::descriptor() const {
  return m_state->connection ? sd_event_get_fd(m_state->loop.get()) : -1;
}

void BusNameWatch::work() {
  if (!m_state->connection) {
    return;
  }
  // The last call finds nothing, and leaves the descriptor ready to be waited for.
  while (sd_event_run(m_state->loop.get(), 0) > 0) {
  }
}
