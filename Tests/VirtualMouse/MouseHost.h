#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "VirtualMouse/VirtualMouse.h"

// The host's side of the transfers, as short as tests need it.
namespace MouseHost {

using Bytes = std::vector<std::uint8_t>;

inline TransferResult set(VirtualMouse& mouse, std::uint16_t value, std::uint16_t index,
                          Bytes data) {
  return mouse.controlTransfer({0x21, 0x09, value, index, static_cast<std::uint16_t>(data.size())},
                               data);
}

inline TransferResult get(VirtualMouse& mouse, std::uint16_t value, std::uint16_t index,
                          Bytes& data) {
  return mouse.controlTransfer({0xA1, 0x01, value, index, static_cast<std::uint16_t>(data.size())},
                               data);
}

inline TransferStatus command(VirtualMouse& mouse, Bytes bytes) {
  bytes.resize(8);
  return set(mouse, 0x0300, 0, bytes).status;
}

inline Bytes answer(VirtualMouse& mouse) {
  Bytes data(8, 0xEE);
  get(mouse, 0x0300, 0, data);
  return data;
}

inline void writeMemory(VirtualMouse& mouse, int address, std::uint8_t value) {
  command(mouse, {0xDE, static_cast<std::uint8_t>(address & 0xFF), value,
                  static_cast<std::uint8_t>(address >> 8)});
}

inline std::uint8_t readMemory(VirtualMouse& mouse, int address) {
  command(mouse, {0xDF, static_cast<std::uint8_t>(address & 0xFF),
                  static_cast<std::uint8_t>(address >> 8)});
  return answer(mouse)[4];
}

inline std::size_t sizeOf(int id) {
  return id == 4 ? 2053 : id == 5 ? 154 : 70;
}

inline TransferStatus write(VirtualMouse& mouse, const Bytes& report) {
  return set(mouse, static_cast<std::uint16_t>(0x0300 + report[0]), 1, report).status;
}

// Empty if the mouse refuses.
inline Bytes read(VirtualMouse& mouse, int id) {
  Bytes data(sizeOf(id), 0xEE);
  const auto value = static_cast<std::uint16_t>(0x0300 + id);
  return get(mouse, value, 1, data).status == TransferStatus::Done ? data : Bytes{};
}

inline Bytes readAfterReady(VirtualMouse& mouse, int id, int slot) {
  command(mouse, {0xC4, static_cast<std::uint8_t>(id == 4 ? 0x0B : 0x0C),
                  static_cast<std::uint8_t>(slot), 0});
  return read(mouse, id);
}

inline void announceMacro(VirtualMouse& mouse, int macroSlot) {
  command(mouse, {0xC4, 0x0B, static_cast<std::uint8_t>(macroSlot), 1});
}

// The checksum does not cover the last byte of a report.
inline Bytes sealed(Bytes report) {
  unsigned sum = 0;
  for (std::size_t index = 4; index + 1 < report.size(); ++index) {
    sum += report[index];
  }
  report[3] = static_cast<std::uint8_t>(256 - sum % 256);
  return report;
}

inline Bytes nameReport(int slot, const std::string& name) {
  Bytes report(70);
  report[0] = 6;
  report[2] = static_cast<std::uint8_t>(slot);
  report[4] = static_cast<std::uint8_t>(name.size());
  std::copy(name.begin(), name.end(), report.begin() + 5);
  return sealed(report);
}

// A report whose every byte depends on its position, shifted by `seed`.
inline Bytes numberedReport(int id, int slot, int seed = 1) {
  Bytes report(sizeOf(id));
  for (std::size_t index = 4; index < report.size(); ++index) {
    report[index] = static_cast<std::uint8_t>(index * 7 + static_cast<std::size_t>(seed));
  }
  report[0] = static_cast<std::uint8_t>(id);
  report[2] = static_cast<std::uint8_t>(slot);
  return sealed(report);
}

template <typename Range>
Bytes copyOf(const Range& range) {
  return Bytes(range.begin(), range.end());
}

}  // namespace MouseHost
