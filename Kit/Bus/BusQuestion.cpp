#include "Kit/Bus/BusQuestion.h"

#include <cstdint>
#include <functional>
#include <memory>

#include <systemd/sd-bus.h>

#include "Kit/Bus/SessionBus.h"

namespace {

struct Unref {
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Message = std::unique_ptr<sd_bus_message, Unref>;

struct Call {
  std::string service;
  std::string path;
  std::string interface;
  const char* member = nullptr;
};

int arrived(sd_bus_message* message, void* data, sd_bus_error* /*error*/) {
  static_cast<Message*>(data)->reset(sd_bus_message_ref(message));
  return 0;
}

// The answer to a call, which must not outlive `bus`; null without one within `limit`.
Message answerTo(const Call& call, const std::function<void(sd_bus_message*)>& fill, sd_bus& bus,
                 std::chrono::milliseconds limit) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + limit;
  sd_bus_message* raw = nullptr;
  if (sd_bus_message_new_method_call(&bus, &raw, call.service.c_str(), call.path.c_str(),
                                     call.interface.c_str(), call.member) < 0) {
    return nullptr;
  }
  const Message message(raw);
  sd_bus_message_set_auto_start(raw, 0);
  fill(raw);
  Message answer;
  if (sd_bus_call_async(&bus, nullptr, raw, arrived, &answer, 0) < 0) {
    return nullptr;
  }
  // The library's own way to wait for a call has no limit while the bus greets.
  while (!answer) {
    const int done = sd_bus_process(&bus, nullptr);
    if (done < 0) {
      break;
    }
    if (done > 0) {
      continue;
    }
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(end - Clock::now());
    if (left.count() <= 0 || sd_bus_wait(&bus, static_cast<std::uint64_t>(left.count())) < 0) {
      break;
    }
  }
  if (answer && sd_bus_message_is_method_error(answer.get(), nullptr) != 0) {
    answer.reset();
  }
  return answer;
}

}  // namespace

std::optional<std::string> askSessionBus(const BusQuestion& question,
                                         std::chrono::milliseconds limit) {
  sd_bus* opened = nullptr;
  if (sessionbus::open(opened) < 0) {
    return std::nullopt;
  }
  const std::unique_ptr<sd_bus, Unref> bus(opened);
  const Call get{question.service, question.path, "org.freedesktop.DBus.Properties", "Get"};
  const Message answer = answerTo(
      get,
      [&](sd_bus_message* call) {
        sd_bus_message_append(call, "ss", question.interface.c_str(), question.property.c_str());
      },
      *bus, limit);
  const char* text = nullptr;
  if (!answer || sd_bus_message_read(answer.get(), "v", "s", &text) <= 0) {
    return std::nullopt;
  }
  return text;
}

bool isOnTheSessionBus(const std::string& name, std::chrono::milliseconds limit) {
  sd_bus* opened = nullptr;
  if (sessionbus::open(opened) < 0) {
    return false;
  }
  const std::unique_ptr<sd_bus, Unref> bus(opened);
  const Call hasOwner{"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                      "NameHasOwner"};
  const Message answer = answerTo(
      hasOwner, [&](sd_bus_message* call) { sd_bus_message_append(call, "s", name.c_str()); }, *bus,
      limit);
  int isOwned = 0;
  return answer && sd_bus_message_read(answer.get(), "b", &isOwned) > 0 && isOwned != 0;
}
