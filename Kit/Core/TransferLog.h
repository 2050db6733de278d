#pragma once

#include <cstdint>
#include <span>
#include <string>

// What the log may say of a transfer. Reports hold the keys of macros and of buttons, which are
// nobody's business: a user sends the log to others.
namespace transferlog {

// The bytes of a transfer as lower-case hex digits. Of what can hold keys, only the number of the
// report and of its slot (the first three bytes), and its size.
std::string textOf(std::span<const std::uint8_t> bytes);

}  // namespace transferlog
