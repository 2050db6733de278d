#include "Kit/Bus/BusConnection.h"

#include <chrono>
#include <cstdint>
#include <limits>
#include <list>
#include <variant>

#include <systemd/sd-bus.h>

#include "Kit/Bus/BusNotification.h"
#include "Kit/Bus/NotificationAddress.h"
#include "Kit/Bus/SessionBus.h"
#include "Kit/Core/LXLogger.h"

namespace {

constexpr std::uint64_t flushMicroseconds = 200'000;

struct Unref {
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
  void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};
using Message = std::unique_ptr<sd_bus_message, Unref>;
using Slot = std::unique_ptr<sd_bus_slot, Unref>;

void append(sd_bus_message* message, const LXUserInfo& userInfo) {
  sd_bus_message_open_container(message, 'a', "{sv}");
  for (const auto& [key, value] : userInfo) {
    if (const bool* flag = std::get_if<bool>(&value)) {
      sd_bus_message_append(message, "{sv}", key.c_str(), "b", *flag ? 1 : 0);
    } else {
      sd_bus_message_append(message, "{sv}", key.c_str(), "i", std::get<std::int32_t>(value));
    }
  }
  sd_bus_message_close_container(message);
}

}  // namespace

struct BusConnection::State {
  // What waits for an answer or a signal. The list keeps the addresses, which the bus library has.
  struct Waiting {
    State* state = nullptr;
    Answer act;
    bool isOnce = false;
    Slot slot;
  };

  struct Served {
    std::string interface;
    std::string member;
    std::function<void(sd_bus_message* call)> act;
    Slot slot;
  };

  std::unique_ptr<sd_bus, Unref> bus;
  std::function<void()> lost;
  std::list<Served> served;
  std::map<std::string, Observer> observers;
  bool isListening = false;
  std::list<Waiting> waiting;
  std::string path;
  std::string interface;
  std::vector<Property> properties;
  std::vector<sd_bus_vtable> table;
  Slot object;

  Waiting& wait(Answer act, bool isOnce) {
    waiting.push_back({.state = this, .act = std::move(act), .isOnce = isOnce, .slot = nullptr});
    return waiting.back();
  }
  void forget(const Waiting& done) {
    waiting.remove_if([&](const Waiting& one) { return &one == &done; });
  }
  void addMatch(const std::string& rule, Answer seen);
  void hear(sd_bus_message* signal);

  static int called(sd_bus_message* message, void* data, sd_bus_error* error);
  static int arrived(sd_bus_message* message, void* data, sd_bus_error* error);
  static int readProperty(sd_bus* bus, const char* path, const char* interface,
                          const char* property, sd_bus_message* reply, void* data,
                          sd_bus_error* error);
};

int BusConnection::State::arrived(sd_bus_message* message, void* data, sd_bus_error* /*error*/) {
  auto& waiting = *static_cast<Waiting*>(data);
  const Answer act = waiting.act;
  if (waiting.isOnce) {
    // The bus library holds the slot while it calls.
    waiting.state->forget(waiting);
  }
  if (act) {
    act(sd_bus_message_is_method_error(message, nullptr) > 0 ? nullptr : message);
  }
  return 0;
}

int BusConnection::State::called(sd_bus_message* message, void* data, sd_bus_error* /*error*/) {
  const auto& one = *static_cast<Served*>(data);
  if (sd_bus_message_is_method_call(message, one.interface.c_str(), one.member.c_str()) <= 0) {
    return 0;
  }
  const auto act = one.act;
  sd_bus_reply_method_return(message, "");
  act(message);
  return 1;
}

int BusConnection::State::readProperty(sd_bus* /*bus*/, const char* /*path*/,
                                       const char* /*interface*/, const char* property,
                                       sd_bus_message* reply, void* data, sd_bus_error* /*error*/) {
  for (const auto& [name, text] : static_cast<State*>(data)->properties) {
    if (name == property) {
      return sd_bus_message_append(reply, "s", text().c_str());
    }
  }
  return -ENOENT;
}

void BusConnection::State::addMatch(const std::string& rule, Answer seen) {
  Waiting& entry = wait(std::move(seen), false);
  sd_bus_slot* slot = nullptr;
  if (sd_bus_add_match_async(bus.get(), &slot, rule.c_str(), arrived, nullptr, &entry) >= 0) {
    entry.slot.reset(slot);
  }
}

void BusConnection::State::hear(sd_bus_message* signal) {
  const char* member = sd_bus_message_get_member(signal);
  const auto found = observers.find(member != nullptr ? member : "");
  if (found == observers.end()) {
    return;
  }
  const auto notification = busnotification::read(signal);
  if (!notification) {
    return;
  }
  const Observer observer = found->second;
  observer(notification->object, notification->userInfo);
}

BusConnection::BusConnection(std::unique_ptr<State> state) : m_state(std::move(state)) {}

std::unique_ptr<BusConnection> BusConnection::open(sd_event* loop, Kind kind,
                                                   std::function<void()> lost, int* failure) {
  sd_bus* opened = nullptr;
  const int result = kind == Kind::Session ? sessionbus::open(opened) : sd_bus_open_system(&opened);
  if (result < 0) {
    if (failure != nullptr) {
      *failure = -result;
    }
    return nullptr;
  }
  auto state = std::make_unique<State>();
  state->bus.reset(opened);
  state->lost = std::move(lost);
  // At the end of the loop the library would wait for a bus that has not answered yet.
  sd_bus_set_close_on_exit(opened, 0);
  if (sd_bus_attach_event(opened, loop, 0) < 0) {
    return nullptr;
  }
  // The library tells of a lost connection by a signal of its own making.
  State* raw = state.get();
  state->addMatch(
      "type='signal',sender='org.freedesktop.DBus.Local',"
      "interface='org.freedesktop.DBus.Local',member='Disconnected'",
      [raw](sd_bus_message*) {
        if (raw->lost) {
          std::exchange(raw->lost, {})();
        }
      });
  return std::unique_ptr<BusConnection>(new BusConnection(std::move(state)));
}

BusConnection::~BusConnection() {
  forgetEverybody();
  flush();
}

void BusConnection::forgetEverybody() {
  m_state->lost = nullptr;
  m_state->observers.clear();
  m_state->waiting.clear();
  m_state->object.reset();
  m_state->served.clear();
}

void BusConnection::requestName(const std::string& name,
                                std::function<void(std::optional<bool> isOurs)> answered) {
  constexpr std::uint32_t doNotQueue = 4;
  constexpr std::uint32_t isOwner = 1;
  constexpr std::uint32_t isOwnerAlready = 4;
  call(
      {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName"},
      [name](sd_bus_message* message) {
        sd_bus_message_append(message, "su", name.c_str(), doNotQueue);
      },
      [answered = std::move(answered)](sd_bus_message* answer) {
        std::uint32_t result = 0;
        if (answer == nullptr || sd_bus_message_read(answer, "u", &result) <= 0) {
          answered(std::nullopt);
        } else {
          answered(result == isOwner || result == isOwnerAlready);
        }
      });
}

void BusConnection::postNotificationName(const std::string& name, const std::string& object,
                                         const std::optional<LXUserInfo>& userInfo) {
  sd_bus_message* raw = nullptr;
  // The library would let a digit begin the name, for which the bus ends the connection.
  const bool beginsWithDigit = !name.empty() && name.front() >= '0' && name.front() <= '9';
  if (beginsWithDigit ||
      sd_bus_message_new_signal(m_state->bus.get(), &raw, notificationaddress::path,
                                notificationaddress::interface, name.c_str()) < 0) {
    LXLogger::warning("not a valid name of a notification: \"" + name + "\"");
    return;
  }
  const Message message(raw);
  if (sd_bus_message_append(raw, "s", object.c_str()) < 0) {
    return;
  }
  if (userInfo) {
    append(raw, *userInfo);
  }
  sd_bus_send(m_state->bus.get(), raw, nullptr);
}

void BusConnection::addObserver(const std::string& name, Observer observer) {
  m_state->observers[name] = std::move(observer);
  if (!std::exchange(m_state->isListening, true)) {
    m_state->addMatch(std::string("type='signal',path='") + notificationaddress::path +
                          "',interface='" + notificationaddress::interface + "'",
                      [state = m_state.get()](sd_bus_message* signal) {
                        if (signal != nullptr) {
                          state->hear(signal);
                        }
                      });
  }
}

void BusConnection::removeObserver(const std::string& name) {
  m_state->observers.erase(name);
}

void BusConnection::call(const Target& target, const Fill& fill, Answer answered, bool starts) {
  sd_bus_message* raw = nullptr;
  if (sd_bus_message_new_method_call(m_state->bus.get(), &raw, target.service, target.path,
                                     target.interface, target.member) < 0) {
    if (answered) {
      answered(nullptr);
    }
    return;
  }
  const Message message(raw);
  sd_bus_message_set_auto_start(raw, starts ? 1 : 0);
  if (fill) {
    fill(raw);
  }
  State::Waiting& entry = m_state->wait(std::move(answered), true);
  sd_bus_slot* slot = nullptr;
  if (sd_bus_call_async(m_state->bus.get(), &slot, raw, State::arrived, &entry, 0) >= 0) {
    entry.slot.reset(slot);
    return;
  }
  const Answer act = entry.act;
  m_state->forget(entry);
  if (act) {
    act(nullptr);
  }
}

void BusConnection::watch(const std::string& rule,
                          std::function<void(sd_bus_message* signal)> seen) {
  m_state->addMatch(rule, [seen = std::move(seen)](sd_bus_message* signal) {
    if (signal != nullptr) {
      seen(signal);
    }
  });
}

void BusConnection::publish(const std::string& path, const std::string& interface,
                            std::vector<Property> properties) {
  m_state->path = path;
  m_state->interface = interface;
  m_state->properties = std::move(properties);
  auto& table = m_state->table;
  table.clear();
  table.reserve(m_state->properties.size() + 2);
  table.push_back(SD_BUS_VTABLE_START(0));
  for (const auto& [name, text] : m_state->properties) {
    table.push_back(SD_BUS_PROPERTY(name.c_str(), "s", State::readProperty, 0,
                                    SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE));
  }
  table.push_back(SD_BUS_VTABLE_END);
  sd_bus_slot* slot = nullptr;
  if (sd_bus_add_object_vtable(m_state->bus.get(), &slot, path.c_str(), interface.c_str(),
                               table.data(), m_state.get()) >= 0) {
    m_state->object.reset(slot);
  }
}

void BusConnection::serve(const std::string& path, const std::string& interface,
                          const std::string& member,
                          std::function<void(sd_bus_message* call)> called) {
  State::Served& one = m_state->served.emplace_back();
  one.interface = interface;
  one.member = member;
  one.act = std::move(called);
  sd_bus_slot* slot = nullptr;
  if (sd_bus_add_object(m_state->bus.get(), &slot, path.c_str(), State::called, &one) >= 0) {
    one.slot.reset(slot);
  }
}

std::string BusConnection::uniqueName() const {
  const char* name = nullptr;
  // The library would wait for the bus.
  if (sd_bus_is_ready(m_state->bus.get()) <= 0 ||
      sd_bus_get_unique_name(m_state->bus.get(), &name) < 0) {
    return {};
  }
  return name;
}

void BusConnection::tellChanged(const std::string& property) {
  sd_bus_emit_properties_changed(m_state->bus.get(), m_state->path.c_str(),
                                 m_state->interface.c_str(), property.c_str(), nullptr);
}

void BusConnection::flush() {
  // Writes what the socket takes; a bus that stopped reading must not keep the program.
  using Clock = std::chrono::steady_clock;
  sd_bus* bus = m_state->bus.get();
  const auto end = Clock::now() + std::chrono::microseconds(flushMicroseconds);
  std::uint64_t waiting = 0;
  while (sd_bus_is_ready(bus) > 0 && sd_bus_get_n_queued_write(bus, &waiting) >= 0 && waiting > 0 &&
         Clock::now() < end) {
    if (sd_bus_process(bus, nullptr) < 0 || sd_bus_wait(bus, flushMicroseconds / 20) < 0) {
      break;
    }
  }
}
