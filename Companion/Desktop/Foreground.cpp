#include "Companion/Desktop/Foreground.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <system_error>

#ifdef NERIN_X11
#include "Companion/Desktop/X11Foreground.h"
#endif

namespace fs = std::filesystem;

#ifdef NERIN_X11
namespace {

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

}  // namespace

std::unique_ptr<Foreground> foreground::open(EventLoop& loop, Foreground::Changed changed,
                                             std::function<void()> lost) {
  // In a Wayland session, the X server knows only the programs that need it.
  if (isSet("WAYLAND_DISPLAY") || !isSet("DISPLAY")) {
    return nullptr;
  }
  return X11Foreground::open(loop, std::move(changed), std::move(lost));
}
#else
std::unique_ptr<Foreground> foreground::open(EventLoop& /*loop*/, Foreground::Changed /*changed*/,
                                             std::function<void()> /*lost*/) {
  return nullptr;
}
#endif

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
