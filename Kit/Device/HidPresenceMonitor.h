#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

// Reports which hidraw nodes came, went or changed, without a thread and without blocking. udevd
// tells it; where udevd does not run, as in many containers, the folder of the nodes does.
class HidPresenceMonitor {
 public:
  struct News {
    bool isAny = false;                     // something about a hidraw node changed
    std::vector<std::string> goneSysPaths;  // the nodes that are gone, where udevd runs
  };

  // udevd listens on `udevControl` while it runs. The nodes lie in `nodeFolder`.
  explicit HidPresenceMonitor(std::filesystem::path udevControl,
                              const std::filesystem::path& nodeFolder = "/dev");
  ~HidPresenceMonitor();
  HidPresenceMonitor(const HidPresenceMonitor&) = delete;
  HidPresenceMonitor& operator=(const HidPresenceMonitor&) = delete;

  // Whether news can be relied on: udevd runs, or the folder is watched.
  bool isReliable() const;

  // Becomes readable when there is news; -1 if there can be none. Belongs to the monitor.
  int descriptor() const;

  // What happened since the last call.
  News takeNews();

 private:
  struct State;
  std::unique_ptr<State> m_state;
};
