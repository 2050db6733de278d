#pragma once

#include <cstdint>
#include <string>

// The name of a key by its HID usage of the keyboard page, as the keys of a US keyboard are named:
// "A", "Right Shift", "Num +". A usage without a name is its number, "0x9F".
std::string nameOfKey(std::uint8_t usage);
