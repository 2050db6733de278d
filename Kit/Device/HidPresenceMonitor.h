#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

// Tells which hidraw nodes came, went or changed, without a thread and without blocking.
class HidPresenceMonitor {
 public:
  struct News {
    bool isAny = false;                     // something about a hidraw node is new
    std::vector<std::string> goneSysPaths;  // the nodes that went
  };

  // udevd listens on `udevControl` while it runs.
  explicit HidPresenceMonitor(std::filesystem::path udevControl);
  ~HidPresenceMonitor();
  HidPresenceMonitor(const HidPresenceMonitor&) = delete;
  HidPresenceMonitor& operator=(const HidPresenceMonitor&) = delete;

  // Whether news can be trusted to come. Without udevd, as in most containers, the monitor opens
  // but stays silent for ever.
  bool isReliable() const;

  // What happened since the last call.
  News takeNews();

 private:
  struct State;
  std::unique_ptr<State> m_state;
};
