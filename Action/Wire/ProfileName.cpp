#include "Action/Wire/ProfileName.h"

#include <algorithm>
#include <span>

#include "Action/Record/Limits.h"
#include "Kit/Core/Utf8.h"

namespace {

constexpr std::size_t atLength = 4;
constexpr std::size_t atText = 5;

}  // namespace

std::optional<NerinAction::NameReport> NerinAction::encodeNameReport(std::uint8_t slot,
                                                                     const std::string& name) {
  if (!utf8::isAscii(name)) {
    return std::nullopt;
  }
  const std::size_t length = std::min(name.size(), limits::nameCharacters);
  NameReport bytes{reportlayout::name, 0, slot};
  bytes[atLength] = static_cast<std::uint8_t>(length);
  std::copy_n(name.begin(), length, bytes.begin() + atText);
  bytes[reportlayout::atChecksum] = checksumOfReport(bytes);
  return bytes;
}

std::optional<std::string> NerinAction::decodeNameReport(const NameReport& bytes) {
  // A name of 65 characters has no NUL at its end.
  const auto* begin = bytes.data() + atText;
  const auto* end = std::find(begin, begin + limits::nameCharacters, 0);
  std::string name(begin, end);
  return utf8::isAscii(name) ? std::optional(std::move(name)) : std::nullopt;
}
