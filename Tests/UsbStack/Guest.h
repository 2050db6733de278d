#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Kit/Device/HidDeviceRequester.h"
#include "Tests/UsbStack/UsbMouse.h"

// What the tests ask the machine that they run on, and how they talk to the mouse there.

using Bytes = std::vector<std::uint8_t>;

// Asks again and again until the condition holds; false after `limit`.
bool eventually(const std::function<bool()>& condition,
                std::chrono::milliseconds limit = std::chrono::seconds(8));

// The mouse at a port of the virtual host controller, as the kernel shows it in sysfs.
class PluggedMouse {
 public:
  explicit PluggedMouse(unsigned port);

  const std::filesystem::path& folder() const { return m_folder; }
  std::filesystem::path interface(int number) const;
  // The driver of an interface; empty without one.
  std::string driver(int interface) const;
  // The node of an interface; empty without one.
  std::filesystem::path hidraw(int interface) const;
  // The node on which interface 0 reports its motions; empty without one.
  std::filesystem::path events() const;
  // A file of the device's power management, and how to set it.
  std::string power(const std::string& file) const;
  void setPower(const std::string& file, const std::string& text) const;

  // Whether all nodes are there.
  bool isReady() const;
  bool isGone() const;

 private:
  std::filesystem::path m_folder;
};

// A line of a file of the kernel; empty if it cannot be read.
std::string lineOf(const std::filesystem::path& file);
// Returns the errno of the failure, or 0.
int writeLine(const std::filesystem::path& file, const std::string& text);

// A requester as the program has it, with the four kinds of transfers.
class Host {
 public:
  Host();

  HidDeviceRequester& requester() { return m_requester; }
  bool isOn() { return m_requester.isDevOn(); }
  bool set(std::uint16_t value, std::uint16_t interface, Bytes data);
  // The bytes that came; empty if the transfer failed.
  Bytes get(std::uint16_t value, std::uint16_t interface, std::size_t size);
  bool command(Bytes bytes);
  bool writeReport(const Bytes& report);
  // Announces the macro slot and writes the report.
  bool writeMacro(const Bytes& report);
  // Why the last transfer failed.
  const std::error_code& error() const { return m_error; }

 private:
  HidDeviceRequester m_requester;
  std::error_code m_error;
};

// A mouse at port 0 that is plugged in and ready.
class UsbStackTest : public testing::Test {
 protected:
  UsbStackTest();
  ~UsbStackTest() override;

  void plug();
  void unplug();

  UsbMouse m_mouse{0};
  PluggedMouse m_plugged{0};
};
