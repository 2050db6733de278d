#include "Companion/Desktop/Foreground.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>
#include <vector>

#include "Companion/Desktop/ForegroundSearch.h"
#include "Companion/Desktop/GnomeForeground.h"
#include "Companion/Desktop/KWinForeground.h"
#include "Companion/Desktop/RunningPrograms.h"
#ifdef NERIN_WAYLAND
#include "Companion/Desktop/WlrForeground.h"
#endif
#ifdef NERIN_X11
#include "Companion/Desktop/X11Foreground.h"
#endif

namespace fs = std::filesystem;

namespace {

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

}  // namespace

std::unique_ptr<Foreground> foreground::open(EventLoop& loop, const Surroundings& surroundings,
                                             const Foreground::Changed& changed,
                                             const Foreground::Lost& lost) {
  using Changed = Foreground::Changed;
  using Lost = Foreground::Lost;
  std::vector<ForegroundSearch::Way> ways;
  if (isSet("WAYLAND_DISPLAY")) {
    // The X server of such a session knows only the programs that need it, and is not asked.
#ifdef NERIN_WAYLAND
    ways.emplace_back([&loop](Changed tell, Lost end) {
      return WlrForeground::open(loop, std::move(tell), std::move(end));
    });
#endif
    ways.emplace_back([&loop, folder = surroundings.runtimeFolder](Changed tell, Lost end) {
      return KWinForeground::open(loop, folder, std::move(tell), std::move(end));
    });
    ways.emplace_back([&loop](Changed tell, Lost end) {
      return GnomeForeground::open(loop, std::move(tell), std::move(end));
    });
  } else if (isSet("DISPLAY")) {
#ifdef NERIN_X11
    ways.emplace_back([&loop](Changed tell, Lost end) {
      return X11Foreground::open(loop, std::move(tell), std::move(end));
    });
#endif
  } else {
    return nullptr;
  }
  ways.emplace_back([&loop, isLinked = surroundings.isLinked](Changed tell, Lost end) {
    return RunningPrograms::open(loop, isLinked, std::move(tell), std::move(end));
  });
  return std::make_unique<ForegroundSearch>(loop, std::move(ways), changed, lost);
}

void foreground::describeProcess(AppIdentity& identity) {
  if (identity.pid <= 0) {
    return;
  }
  const fs::path process = fs::path("/proc") / std::to_string(identity.pid);
  std::error_code unreadable;
  identity.executable = fs::read_symlink(process / "exe", unreadable);
  std::ifstream file(process / "cgroup");
  const std::string cgroup{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  identity.unit = unitOfCgroup(cgroup);
}
