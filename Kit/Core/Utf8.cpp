#include "Kit/Core/Utf8.h"

#include <algorithm>
#include <cstdint>

namespace {

bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// The length of the sequence that this byte starts; 0 if it starts none.
std::size_t sequenceLength(unsigned char lead) {
  if (lead < 0x80U) {
    return 1;
  }
  if (lead >= 0xC2U && lead <= 0xDFU) {
    return 2;
  }
  if (lead >= 0xE0U && lead <= 0xEFU) {
    return 3;
  }
  if (lead >= 0xF0U && lead <= 0xF4U) {
    return 4;
  }
  return 0;
}

// Overlong forms, surrogates and values past 10FFFF all show in the second byte.
bool isSecondByteAllowed(unsigned char lead, unsigned char second) {
  switch (lead) {
    case 0xE0:
      return second >= 0xA0U;
    case 0xED:
      return second <= 0x9FU;
    case 0xF0:
      return second >= 0x90U;
    case 0xF4:
      return second <= 0x8FU;
    default:
      return true;
  }
}

// The length of the character at the start of the text; 0 if there is none.
std::size_t characterLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = sequenceLength(lead);
  if (length == 0 || length > text.size() ||
      (length > 1 && !isSecondByteAllowed(lead, static_cast<unsigned char>(text[1])))) {
    return 0;
  }
  const std::string_view rest = text.substr(1, length - 1);
  return std::all_of(rest.begin(), rest.end(), isContinuation) ? length : 0;
}

}  // namespace

bool utf8::isValid(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = characterLength(text);
    if (length == 0) {
      return false;
    }
    text.remove_prefix(length);
  }
  return true;
}

std::string utf8::repaired(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = characterLength(text);
    result += length != 0 ? text.substr(0, length) : "\uFFFD";
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return result;
}

bool utf8::isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char byte) { return static_cast<unsigned char>(byte) < 0x80U; });
}

std::string_view utf8::prefixOfBytes(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) {
    return text;
  }
  std::size_t end = limit;
  // A character has up to three continuation bytes. More are not text and may be cut anywhere.
  while (end > 0 && limit - end < 4 && isContinuation(text[end])) {
    --end;
  }
  return text.substr(0, isContinuation(text[end]) ? limit : end);
}

std::size_t utf8::lengthInUtf16(std::string_view text) {
  std::size_t units = 0;
  for (const char byte : text) {
    if (!isContinuation(byte)) {
      units += static_cast<unsigned char>(byte) >= 0xF0U ? 2 : 1;
    }
  }
  return units;
}

std::string utf8::lowercased(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), [](char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
  });
  return result;
}
