#pragma once

#include <cstdint>
#include <memory>
#include <vector>

// An input report that the mouse sent by itself, of the vendor's own kind.
struct HidInputReport {
  int interfaceNumber = -1;
  std::uint8_t id = 0;              // 0 if the interface does not number its reports
  std::vector<std::uint8_t> bytes;  // whole, with the number if there is one

  bool operator==(const HidInputReport&) const = default;
};

// Hears the vendor's input reports of a mouse, beside whoever else has it open. Reports of pointer
// and keys stay unread where an interface has no others, and are dropped unseen where it has both.
class HidInputReports {
 public:
  // Opens the interfaces of the mouse with these ids that have such reports.
  HidInputReports(std::uint16_t vid, std::uint16_t pid);
  ~HidInputReports();
  HidInputReports(const HidInputReports&) = delete;
  HidInputReports& operator=(const HidInputReports&) = delete;

  // Whether the mouse has any vendor input report, open or not. Without, its buttons send nothing
  // that a program could learn.
  bool hasAny() const;
  // Each becomes readable when there may be reports, and is left out once its mouse has gone. They
  // belong to this object and stay open as long as it lives.
  std::vector<int> descriptors() const;
  // What arrived since the last call, without waiting.
  std::vector<HidInputReport> take();

 private:
  struct Ear;
  std::vector<std::unique_ptr<Ear>> m_ears;
  bool m_hasAny = false;
};
