#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <systemd/sd-bus.h>

#include "Companion/Loop/EventLoop.h"

// What a desktop and a login manager answer, on the private bus and the loop of the test.
class FakeDesktop {
 public:
  struct Shown {
    std::uint32_t replaced = 0;
    std::string summary;
    std::string body;
  };

  explicit FakeDesktop(EventLoop& loop);
  ~FakeDesktop();
  FakeDesktop(const FakeDesktop&) = delete;
  FakeDesktop& operator=(const FakeDesktop&) = delete;

  void setIsLocked(bool isLocked);
  void sleepAndResume();

  std::vector<Shown> shown;
  bool isLocked = false;

 private:
  sd_bus* m_bus = nullptr;
};
