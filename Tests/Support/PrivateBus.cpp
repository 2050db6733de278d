#include "Tests/Support/PrivateBus.h"

#include <cstdint>
#include <stdexcept>

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// Decodes little-endian D-Bus data.
class Reader {
 public:
  explicit Reader(std::string bytes) : m_bytes(std::move(bytes)) {}

  std::size_t position = 0;

  void align(std::size_t boundary) { position = (position + boundary - 1) / boundary * boundary; }
  std::uint8_t byte() { return static_cast<std::uint8_t>(m_bytes.at(position++)); }
  std::uint32_t word() {
    align(4);
    std::uint32_t value = 0;
    for (int shift = 0; shift < 32; shift += 8) {
      value |= std::uint32_t{byte()} << shift;
    }
    return value;
  }
  std::string text(std::size_t length) {
    std::string result = m_bytes.substr(position, length);
    position += length + 1;  // the NUL
    return result;
  }
  std::string string() { return text(word()); }
  std::string signature() { return text(byte()); }
  std::string value(const std::string& type) {
    if (type == "i") {
      return "i:" + std::to_string(static_cast<std::int32_t>(word()));
    }
    if (type == "b" || type == "u") {
      return type + ":" + std::to_string(word());
    }
    if (type == "s" || type == "o") {
      return type + ":" + string();
    }
    if (type == "g") {
      return "g:" + signature();
    }
    throw std::runtime_error("unexpected type " + type);
  }

 private:
  std::string m_bytes;
};

std::string bodyInWords(Reader& reader, const std::string& signature) {
  if (signature != "s" && signature != "sa{sv}") {
    return "?";
  }
  std::string words = reader.value("s");
  if (signature == "s") {
    return words;
  }
  const std::size_t length = reader.word();
  reader.align(8);
  const std::size_t end = reader.position + length;
  words += " {";
  for (const char* gap = ""; reader.position < end; gap = " ") {
    reader.align(8);
    const std::string key = reader.string();
    const std::string type = reader.signature();
    words += gap + key + "=" + reader.value(type);
  }
  return words + "}";
}

// Removes the first complete message from `bytes`; no value if it is incomplete.
std::optional<BusMessage> takeMessage(std::string& bytes) {
  constexpr std::size_t fixedSize = 16;
  if (bytes.size() < fixedSize) {
    return std::nullopt;
  }
  Reader reader(bytes);
  reader.position = 4;
  const std::size_t bodyLength = reader.word();
  reader.position = 12;
  const std::size_t fieldsEnd = fixedSize + reader.word();
  const std::size_t bodyStart = (fieldsEnd + 7) / 8 * 8;
  if (bytes.size() < bodyStart + bodyLength) {
    return std::nullopt;
  }
  BusMessage message;
  while (reader.position < fieldsEnd) {
    reader.align(8);
    const int field = reader.byte();
    const std::string type = reader.signature();
    const std::string value = reader.value(type).substr(2);
    (field == 1   ? message.path
     : field == 2 ? message.interface
     : field == 3 ? message.member
     : field == 8 ? message.signature
                  : message.body) = value;
  }
  reader.position = bodyStart;
  message.body = bodyInWords(reader, message.signature);
  bytes.erase(0, bodyStart + bodyLength);
  return message;
}

}  // namespace

PrivateBus::PrivateBus() {
  const std::string wanted = "unix:path=" + (m_folder.folder() / "bus").string();
  m_daemon = std::make_unique<ChildProcess>(
      std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--nosyslog",
                               "--print-address=1", "--address=" + wanted});
  std::string address;
  while (address.find("guid=") == std::string::npos) {
    const std::string part = m_daemon->read(std::chrono::seconds(20));
    if (part.empty()) {
      throw std::runtime_error("no bus: " + address);
    }
    address += part;
  }
  address.erase(0, address.find(wanted));
  setenv("DBUS_SESSION_BUS_ADDRESS", address.substr(0, address.find('\n')).c_str(), 1);

  m_listener = std::make_unique<ChildProcess>(std::vector<std::string>{"dbus-monitor", "--binary"});
  // The bus releases the listener's name when it becomes a monitor.
  const auto end = steady_clock::now() + std::chrono::seconds(20);
  for (auto message = next(end); !message || message->member != "NameLost"; message = next(end)) {
    if (!message) {
      throw std::runtime_error("no listener");
    }
  }
}

PrivateBus::~PrivateBus() {
  unsetenv("DBUS_SESSION_BUS_ADDRESS");
}

std::optional<BusMessage> PrivateBus::next(steady_clock::time_point end) {
  for (;;) {
    if (auto message = takeMessage(m_bytes)) {
      return message;
    }
    const auto left = std::chrono::duration_cast<milliseconds>(end - steady_clock::now());
    const std::string part = left.count() > 0 ? m_listener->read(left) : std::string();
    if (part.empty()) {
      return std::nullopt;
    }
    m_bytes += part;
  }
}

std::optional<BusMessage> PrivateBus::nextNotification(milliseconds limit) {
  const auto end = steady_clock::now() + limit;
  auto message = next(end);
  while (message && message->interface != "com.corvex.NerinOption.Notification") {
    message = next(end);
  }
  return message;
}

void PrivateBus::broadcast(const std::string& path, const std::string& interfaceAndMember,
                           const std::vector<std::string>& arguments) {
  std::vector<std::string> command{"gdbus", "emit",     "--session",       "--object-path",
                                   path,    "--signal", interfaceAndMember};
  command.insert(command.end(), arguments.begin(), arguments.end());
  ChildProcess sender(command);
  ASSERT_EQ(sender.exitCode(std::chrono::seconds(20)), 0) << sender.read(milliseconds(0));
}

void PrivateBus::freeze() const {
  m_daemon->send(SIGSTOP);
}

void PrivateBus::thaw() const {
  m_daemon->send(SIGCONT);
}

void PrivateBus::end() {
  m_daemon.reset();
}
