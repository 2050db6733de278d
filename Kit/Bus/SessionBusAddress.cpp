#include "Kit/Bus/SessionBusAddress.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr int sliceMilliseconds = 20;

// Splits off everything up to the next `separator`.
std::string_view takeUntil(std::string_view& rest, char separator) {
  const std::size_t end = rest.find(separator);
  const std::string_view head = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return head;
}

// Decodes escapes such as "%2F" in an address; nothing if the text is malformed.
std::optional<std::string> unescaped(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    if (text.front() != '%') {
      result += text.front();
      text.remove_prefix(1);
      continue;
    }
    unsigned char byte = 0;
    const char* digits = text.data() + 1;
    if (text.size() < 3 || std::from_chars(digits, digits + 2, byte, 16).ptr != digits + 2) {
      return std::nullopt;
    }
    result += static_cast<char>(byte);
    text.remove_prefix(3);
  }
  return result;
}

std::string escaped(std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  constexpr std::string_view plain =
      "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz-_/.\\*";
  std::string result;
  for (const char character : text) {
    if (plain.find(character) != std::string_view::npos) {
      result += character;
    } else {
      const auto byte = static_cast<unsigned char>(character);
      result += '%';
      result += digits[byte >> 4];
      result += digits[byte & 0x0F];
    }
  }
  return result;
}

std::optional<SessionBusAddress> parseOne(std::string_view text) {
  std::string_view rest = text;
  if (takeUntil(rest, ':') != "unix") {
    return std::nullopt;
  }
  while (!rest.empty()) {
    std::string_view value = takeUntil(rest, ',');
    const std::string_view key = takeUntil(value, '=');
    const auto name = unescaped(value);
    const bool isAbstract = key == "abstract";
    if ((key != "path" && !isAbstract) || !name) {
      continue;
    }
    const std::string socketName = isAbstract ? '\0' + *name : *name;
    if (!name->empty() && socketName.size() < sizeof(sockaddr_un::sun_path)) {
      return SessionBusAddress{std::string(text), socketName};
    }
  }
  return std::nullopt;
}

class Socket {
 public:
  Socket() : m_descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {}
  ~Socket() {
    if (m_descriptor >= 0) {
      close(m_descriptor);
    }
  }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  // 0 or an error number. EAGAIN: too many connections are already waiting for the bus.
  int connectTo(const std::string& name) const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, name.data(), name.size());
    const bool isAbstract = name.front() == '\0';
    const std::size_t length = offsetof(sockaddr_un, sun_path) + name.size() + (isAbstract ? 0 : 1);
    const int result = connect(m_descriptor, reinterpret_cast<const sockaddr*>(&address),
                               static_cast<socklen_t>(length));
    return result == 0 ? 0 : errno;
  }

  bool write(std::string_view text) const {
    const ssize_t count = send(m_descriptor, text.data(), text.size(), MSG_NOSIGNAL);
    return count == static_cast<ssize_t>(text.size());
  }

  // Waits briefly for data. True if there is some or the other end has closed.
  bool waitToRead() const {
    pollfd entry{m_descriptor, POLLIN, 0};
    return poll(&entry, 1, sliceMilliseconds) > 0;
  }

  bool readAnything() const {
    std::array<char, 256> buffer{};
    return recv(m_descriptor, buffer.data(), buffer.size(), 0) > 0;
  }

 private:
  int m_descriptor;
};

// The first line of every conversation with a bus: a NUL, then the claimed identity, which is the
// hexadecimal form of the digits of the user id.
std::string greeting() {
  constexpr std::string_view hexadecimal = "0123456789abcdef";
  std::string text("\0AUTH EXTERNAL ", 15);
  for (const char digit : std::to_string(getuid())) {
    text += hexadecimal[static_cast<unsigned char>(digit) >> 4];
    text += hexadecimal[digit & 0x0F];
  }
  return text + "\r\n";
}

bool isAnswering(const SessionBusAddress& address, const std::function<bool()>& isStopping) {
  const Socket socket;
  int failure = socket.connectTo(address.socketName);
  while (failure == EAGAIN && !isStopping()) {
    poll(nullptr, 0, sliceMilliseconds);
    failure = socket.connectTo(address.socketName);
  }
  if (failure != 0 || !socket.write(greeting())) {
    return false;
  }
  while (!isStopping()) {
    if (socket.waitToRead()) {
      return socket.readAnything();
    }
  }
  return false;
}

}  // namespace

std::vector<SessionBusAddress> SessionBusAddress::parse(std::string_view list) {
  std::vector<SessionBusAddress> addresses;
  while (!list.empty()) {
    if (auto address = parseOne(takeUntil(list, ';'))) {
      addresses.push_back(*std::move(address));
    }
  }
  return addresses;
}

std::vector<SessionBusAddress> SessionBusAddress::ofThisSession() {
  const char* list = std::getenv("DBUS_SESSION_BUS_ADDRESS");
  if (list != nullptr && *list != '\0') {
    return parse(list);
  }
  const char* runtimeFolder = std::getenv("XDG_RUNTIME_DIR");
  if (runtimeFolder != nullptr && *runtimeFolder != '\0') {
    return parse("unix:path=" + escaped(std::string(runtimeFolder) + "/bus"));
  }
  return {};
}

std::optional<SessionBusAddress> findAnsweringBus(const std::vector<SessionBusAddress>& addresses,
                                                  const std::function<bool()>& isStopping) {
  for (const SessionBusAddress& address : addresses) {
    if (isAnswering(address, isStopping)) {
      return address;
    }
  }
  return std::nullopt;
}
