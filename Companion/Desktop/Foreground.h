#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Companion/Loop/EventLoop.h"
#include "Companion/Policy/AppMatcher.h"

// A way in which a desktop tells which program is in front.
class Foreground {
 public:
  // Called for the first state and for every change; nothing while no window is in front.
  using Changed = std::function<void(const std::optional<AppIdentity>&)>;
  // Called once if the way ends, or if it turns out that this desktop does not have it.
  using Lost = std::function<void()>;

  virtual ~Foreground() = default;

  // Its name for a person: "X11". Empty as long as nothing is known.
  virtual std::string name() const = 0;
  // It tells which linked program runs, in front or not, and an empty identity while none does.
  virtual bool tellsRunning() const { return false; }
  // Other programs are linked now.
  virtual void linksChanged() {}
};

namespace foreground {

struct Surroundings {
  // A folder of this user for the time of the session; empty if there is none.
  std::filesystem::path runtimeFolder;
  std::function<bool(const AppIdentity&)> isLinked;
};

// Looks for the way that this session has, from the loop. Null without a display. After `lost` the
// result must be destroyed, but not in that call.
std::unique_ptr<Foreground> open(EventLoop& loop, const Surroundings& surroundings,
                                 const Foreground::Changed& changed, const Foreground::Lost& lost);

// What the system says about a process: its executable and its unit. Unknown fields stay empty.
void describeProcess(AppIdentity& identity);

}  // namespace foreground
