#include "VirtualMouse/ReplayedMouse.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <sstream>

namespace {

// No report of the mouse is longer.
constexpr std::size_t longestTransfer = 4096;

std::optional<std::vector<std::uint8_t>> bytesOf(const std::string& hex) {
  std::vector<std::uint8_t> bytes;
  if (hex.size() % 2 != 0 || hex.size() > 2 * longestTransfer) {
    return std::nullopt;
  }
  bytes.reserve(hex.size() / 2);
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    std::uint8_t byte = 0;
    const char* end = hex.data() + i + 2;
    if (std::from_chars(hex.data() + i, end, byte, 16).ptr != end) {
      return std::nullopt;
    }
    bytes.push_back(byte);
  }
  return bytes;
}

std::optional<std::uint16_t> numberOf(const std::string& text, int base) {
  std::uint16_t number = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number, base);
  return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

bool isToMouse(const LXDeviceRequest& request) {
  return (request.bmRequestType & 0x80U) == 0;
}

}  // namespace

bool ReplayedMouse::isReplayable(std::string_view text) {
  return text.starts_with(reportHeading) || text.starts_with("SET ") || text.starts_with("GET ") ||
         text.starts_with("SLEEP ");
}

ReplayedMouse::ReplayedMouse(std::string_view text) {
  if (text.starts_with(reportHeading)) {
    const auto begin = text.find(std::string("\n") + traceHeading + "\n");
    text.remove_prefix(std::min(begin, text.size()));
  }
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    add(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  m_written.clear();
}

void ReplayedMouse::add(std::string_view line) {
  std::istringstream words{std::string(line)};
  std::string way;
  std::string value;
  std::string index;
  std::string data;
  std::string failure;
  words >> way >> value >> index >> data >> failure;
  const auto bytes = bytesOf(data);
  const auto valueNumber = numberOf(value, 16);
  const auto indexNumber = numberOf(index, 10);
  if ((way != "SET" && way != "GET") || !bytes || !valueNumber || !indexNumber) {
    return;
  }
  const bool isWrite = way == "SET";
  if (isWrite) {
    m_written = *bytes;
  }
  m_answers[{isWrite, m_written, *valueNumber, *indexNumber}].all.push_back(
      {*bytes, failure.empty()});
}

bool ReplayedMouse::sendDeviceRequest(LXDeviceRequest& request) {
  request.wLenDone = 0;
  if (isToMouse(request)) {
    m_written.assign(request.data.begin(), request.data.end());
  }
  const auto found =
      m_answers.find({isToMouse(request), m_written, request.wValue, request.wIndex});
  if (found == m_answers.end()) {
    request.error = std::make_error_code(std::errc::no_message_available);
    return false;
  }
  const Answer& answer = found->second.take();
  if (!answer.isDone) {
    request.error = std::make_error_code(std::errc::io_error);
    return false;
  }
  if (!isToMouse(request)) {
    std::copy_n(answer.bytes.begin(), std::min(answer.bytes.size(), request.data.size()),
                request.data.begin());
  }
  request.wLenDone = static_cast<std::uint32_t>(std::min(answer.bytes.size(), request.data.size()));
  return true;
}
