#pragma once

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

  virtual ~Foreground() = default;

  // Its name for a person: "X11".
  virtual std::string name() const = 0;
};

namespace foreground {

// Opens the way that this session has. Null if it tells nobody. `lost` is called if the way ends,
// after which the result must be destroyed.
std::unique_ptr<Foreground> open(EventLoop& loop, Foreground::Changed changed,
                                 std::function<void()> lost);

// What the system says about a process: its executable and its unit. Unknown fields stay empty.
void describeProcess(AppIdentity& identity);

}  // namespace foreground
