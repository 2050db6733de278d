#include "Kit/Bus/BusQuestion.h"

#include <memory>

#include <systemd/sd-bus.h>

namespace {

struct Unref {
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};

struct Answer {
  bool isThere = false;
  std::optional<std::string> text;
};

int arrived(sd_bus_message* message, void* data, sd_bus_error* /*error*/) {
  auto& answer = *static_cast<Answer*>(data);
  answer.isThere = true;
  const char* text = nullptr;
  if (sd_bus_message_is_method_error(message, nullptr) == 0 &&
      sd_bus_message_read(message, "v", "s", &text) > 0) {
    answer.text = text;
  }
  return 0;
}

}  // namespace

std::optional<std::string> askSessionBus(const BusQuestion& question,
                                         std::chrono::milliseconds limit) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + limit;
  sd_bus* opened = nullptr;
  if (sd_bus_open_user(&opened) < 0) {
    return std::nullopt;
  }
  const std::unique_ptr<sd_bus, Unref> bus(opened);
  sd_bus_message* raw = nullptr;
  if (sd_bus_message_new_method_call(opened, &raw, question.service.c_str(), question.path.c_str(),
                                     "org.freedesktop.DBus.Properties", "Get") < 0) {
    return std::nullopt;
  }
  const std::unique_ptr<sd_bus_message, Unref> message(raw);
  sd_bus_message_set_auto_start(raw, 0);
  sd_bus_message_append(raw, "ss", question.interface.c_str(), question.property.c_str());
  Answer answer;
  if (sd_bus_call_async(opened, nullptr, raw, arrived, &answer, 0) < 0) {
    return std::nullopt;
  }
  // The library's own way to wait for a call has no limit while the bus greets.
  while (!answer.isThere) {
    const int done = sd_bus_process(opened, nullptr);
    if (done < 0) {
      break;
    }
    if (done > 0) {
      continue;
    }
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(end - Clock::now());
    if (left.count() <= 0 || sd_bus_wait(opened, static_cast<std::uint64_t>(left.count())) < 0) {
      break;
    }
  }
  return answer.text;
}
