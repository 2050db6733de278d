#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/Scratch.h"
// A message as it travelled, read from its bytes.
struct BusMessage {
  std::string path;
  std::string interface;
  std::string member;
  std::string signature;
  std::string body;  // as text: "s:111 {value1=i:2 value2=b:1}"
};

// A private session bus, set in the environment, with an independent listener that sees every
// message.
class PrivateBus {
 public:
  PrivateBus();
  ~PrivateBus();
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  // The next signal of our interface; no value after `limit`.
  std::optional<BusMessage> nextNotification(
      std::chrono::milliseconds limit = std::chrono::seconds(20));
  // Sends a signal from another process, with arguments in GVariant text.
  static void broadcast(const std::string& path, const std::string& interfaceAndMember,
                        const std::vector<std::string>& arguments);

  void freeze() const;
  void thaw() const;
  void end();

 private:
  Scratch m_folder;
  std::unique_ptr<ChildProcess> m_daemon;
  std::unique_ptr<ChildProcess> m_listener;
  std::string m_bytes;

  std::optional<BusMessage> next(std::chrono::steady_clock::time_point end);
};
