#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "Companion/Service/Companion.h"
#include "Kit/Core/LXDeviceRequester.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/Scratch.h"

// The whole companion on a bus of its own, on the loop of the test. A fixture of it says which
// mouse there is. There is no desktop at first. Each test needs its own process.
class RunningCompanion : public testing::Test {
 protected:
  struct Mouse {
    std::shared_ptr<LXDeviceRequester> requester;
    // As in Companion::Settings.
    std::filesystem::path udevControl;
    std::filesystem::path memoryFile;
    // Waits between two reports; empty: it does not.
    std::function<void(std::chrono::microseconds)> sleep;
  };

  RunningCompanion();
  // The companion ends before the members of the fixture do.
  void TearDown() override;

  // To be called once, before the preferences are used and start().
  void use(Mouse mouse);
  void start();

  void wait(std::chrono::milliseconds time);
  // Whether the companion's explanation is this one, or soon will be.
  bool says(const std::string& explanation);
  const std::filesystem::path& runtimeFolder() const { return m_runtime.folder(); }

  PrivateBus bus;
  EventLoop loop;

 private:
  Scratch m_home;
  Scratch m_runtime;
  Companion::Settings m_settings;
  std::shared_ptr<BusConnection> m_connection;
  std::unique_ptr<Companion> m_companion;
};
