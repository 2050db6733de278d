#include "Tests/UsbStack/UsbIpMessage.h"

#include <array>

#include <sys/socket.h>

namespace {

constexpr std::size_t headerSize = 48;
constexpr std::uint32_t submitRequest = 1;
constexpr std::uint32_t unlinkRequest = 2;
constexpr std::uint32_t submitAnswer = 3;
constexpr std::uint32_t unlinkAnswer = 4;
// Where the fields of the two requests and of the two answers begin.
constexpr std::size_t fields = 20;
constexpr std::size_t setupPlace = 40;
// More than any report; a longer one would be a mistake of ours in reading.
constexpr std::uint32_t longestData = 1U << 16U;

using Header = std::array<std::uint8_t, headerSize>;

std::uint32_t wordAt(const Header& header, std::size_t place) {
  std::uint32_t word = 0;
  for (std::size_t index = place; index < place + 4; ++index) {
    word = word << 8U | header[index];
  }
  return word;
}

void setWord(Header& header, std::size_t place, std::uint32_t word) {
  for (std::size_t index = place + 4; index-- > place; word >>= 8U) {
    header[index] = static_cast<std::uint8_t>(word & 0xFFU);
  }
}

SetupPacket setupOf(const Header& header) {
  const std::uint8_t* bytes = header.data() + setupPlace;
  const auto number = [&](std::size_t place) {
    return static_cast<std::uint16_t>(bytes[place] | bytes[place + 1] << 8U);
  };
  return {bytes[0], bytes[1], number(2), number(4), number(6)};
}

bool receiveAll(int socket, std::span<std::uint8_t> bytes) {
  return bytes.empty() || recv(socket, bytes.data(), bytes.size(), MSG_WAITALL) ==
                              static_cast<ssize_t>(bytes.size());
}

void sendAll(int socket, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count <= 0) {
      return;  // the kernel has closed the connection, which the next receive tells
    }
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

Header answerTo(const UsbIpRequest& request, std::uint32_t command, int status) {
  Header header{};
  setWord(header, 0, command);
  setWord(header, 4, request.number);
  setWord(header, fields, static_cast<std::uint32_t>(status));
  return header;
}

}  // namespace

std::optional<UsbIpRequest> receiveUsbIp(int socket) {
  Header header{};
  if (!receiveAll(socket, header)) {
    return std::nullopt;
  }
  UsbIpRequest request;
  const std::uint32_t command = wordAt(header, 0);
  request.number = wordAt(header, 4);
  request.isToHost = wordAt(header, 12) == 1;
  request.endpoint = wordAt(header, 16);
  if (command == unlinkRequest) {
    request.isUnlink = true;
    request.unlinked = wordAt(header, fields);
    return request;
  }
  request.length = wordAt(header, fields + 4);
  if (command != submitRequest || request.length > longestData) {
    return std::nullopt;
  }
  request.setup = setupOf(header);
  if (!request.isToHost) {
    request.data.resize(request.length);
  }
  return receiveAll(socket, request.data) ? std::optional(std::move(request)) : std::nullopt;
}

void answerUsbIp(int socket, const UsbIpRequest& request, int status,
                 std::span<const std::uint8_t> data, std::uint32_t taken) {
  Header header = answerTo(request, submitAnswer, status);
  const auto count = request.isToHost ? static_cast<std::uint32_t>(data.size()) : taken;
  setWord(header, fields + 4, count);
  sendAll(socket, header);
  if (request.isToHost) {
    sendAll(socket, data);
  }
}

void answerUnlink(int socket, const UsbIpRequest& unlink, int status) {
  sendAll(socket, answerTo(unlink, unlinkAnswer, status));
}
