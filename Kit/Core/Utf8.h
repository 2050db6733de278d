#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace utf8 {

// Whether the bytes are well-formed UTF-8 (no overlong forms, surrogates or values past 10FFFF).
bool isValid(std::string_view text);

// The text with every byte that belongs to no character replaced by U+FFFD.
std::string repaired(std::string_view text);

// Whether every byte is ASCII.
bool isAscii(std::string_view text);

// The longest prefix of at most `limit` bytes that does not end inside a character.
std::string_view prefixOfBytes(std::string_view text, std::size_t limit);

// The number of characters as Cocoa counts them: UTF-16 code units.
std::size_t lengthInUtf16(std::string_view text);

// The text with its ASCII letters in lower case.
std::string lowercased(std::string_view text);

}  // namespace utf8
