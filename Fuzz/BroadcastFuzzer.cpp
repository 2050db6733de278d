#include <array>
#include <memory>
#include <string>

#include <sys/socket.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include "Companion/Policy/DisplayText.h"
#include "Companion/Policy/WindowMessage.h"
#include "Fuzz/FuzzInput.h"
#include "Kit/Bus/BusNotification.h"

namespace {

struct Unref {
  void operator()(sd_bus* bus) const { sd_bus_unref(bus); }
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};

// A message needs a connection, which is never used: the other end stays silent.
sd_bus* silentBus() {
  static const std::unique_ptr<sd_bus, Unref> bus = [] {
    std::array<int, 2> ends{};
    fuzz::require(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends.data()) == 0);
    sd_bus* made = nullptr;
    fuzz::require(sd_bus_new(&made) >= 0 && sd_bus_set_fd(made, ends[0], ends[0]) >= 0 &&
                  sd_bus_start(made) >= 0);
    return std::unique_ptr<sd_bus, Unref>(made);
  }();
  return bus.get();
}

class Input {
 public:
  explicit Input(std::string_view bytes) : m_rest(bytes) {}

  std::uint8_t byte() {
    const auto value = m_rest.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(m_rest.front());
    m_rest.remove_prefix(m_rest.empty() ? 0 : 1);
    return value;
  }
  std::uint64_t number() {
    std::uint64_t value = 0;
    for (int i = 0; i < 8; ++i) {
      value = value << 8U | byte();
    }
    return value;
  }
  // Only ASCII without NUL, since the bus refuses everything else before a program sees it.
  std::string text() {
    std::string made;
    for (std::size_t left = byte() % 32U; left > 0 && !m_rest.empty(); --left) {
      made += static_cast<char>(1 + byte() % 127U);
    }
    return made;
  }
  bool isEmpty() const { return m_rest.empty(); }

 private:
  std::string_view m_rest;
};

void appendBasic(sd_bus_message* message, char type, Input& input) {
  if (type == 's') {
    sd_bus_message_append_basic(message, type, input.text().c_str());
  } else if (type == 'b') {
    const int flag = input.byte() % 2;
    sd_bus_message_append_basic(message, type, &flag);
  } else {
    const std::uint64_t number = input.number();
    sd_bus_message_append_basic(message, type, &number);
  }
}

// A value of one of the types that a program may send, right and wrong ones.
void appendVariant(sd_bus_message* message, Input& input) {
  constexpr std::string_view types = "ynqiuxtdbsA(v";
  const char type = types[input.byte() % types.size()];
  const std::string contents = type == 'A' ? "ay" : type == '(' ? "(is)" : std::string(1, type);
  sd_bus_message_open_container(message, 'v', contents.c_str());
  if (type == 'A') {
    const std::string bytes = input.text();
    sd_bus_message_append_array(message, 'y', bytes.data(), bytes.size());
  } else if (type == '(') {
    sd_bus_message_append(message, "(is)", 1, input.text().c_str());
  } else if (type == 'v') {
    sd_bus_message_append(message, "v", "i", 1);
  } else {
    appendBasic(message, type, input);
  }
  sd_bus_message_close_container(message);
}

}  // namespace

// Any broadcast that the bus lets through: read, and taken as what the window says.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(fuzz::textOf(data, size));
  sd_bus_message* raw = nullptr;
  fuzz::require(sd_bus_message_new_signal(silentBus(), &raw, "/a", "b.c", "d") >= 0);
  const std::unique_ptr<sd_bus_message, Unref> message(raw);
  const std::uint8_t shape = input.byte();
  appendBasic(raw, shape % 16 == 15 ? 'i' : 's', input);
  if (shape % 4 != 0) {
    sd_bus_message_open_container(raw, 'a', "{sv}");
    while (!input.isEmpty()) {
      sd_bus_message_open_container(raw, 'e', "sv");
      appendBasic(raw, 's', input);
      appendVariant(raw, input);
      sd_bus_message_close_container(raw);
    }
    sd_bus_message_close_container(raw);
  }
  fuzz::require(sd_bus_message_seal(raw, 1, 0) >= 0 && sd_bus_message_rewind(raw, 1) >= 0);
  const auto notification = busnotification::read(raw);
  fuzz::require(notification.has_value() == (shape % 16 != 15));
  if (!notification) {
    return 0;
  }
  if (const auto told = windowMessageOf(notification->object, notification->userInfo)) {
    const auto slot = told->chosenSlot();
    fuzz::require(!slot || (*slot >= 0 && *slot < 10));
    static_cast<void>(displayOf(*told, [](const std::string& name) { return name; }));
  }
  return 0;
}
