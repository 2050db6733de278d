#pragma once

#include <cstdint>
#include <map>
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
  // From now on the session has a service manager, which notes what it shall start.
  void becomeServiceManager();

  struct Started {
    std::string unit;
    std::string mode;
    std::map<std::string, std::string> texts;  // the properties of a unit that are texts
    std::vector<std::string> command;
  };
  std::vector<Started> started;

  std::vector<Shown> shown;
  bool isLocked = false;

 private:
  sd_bus* m_bus = nullptr;
};
