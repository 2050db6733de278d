// nerin-companion: what NerinOption does while its window is closed.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>

#include "Action/Edit/Drafts.h"
#include "Action/NerinAction.h"
#include "Companion/Service/Companion.h"
#include "Kit/Bus/CompanionAddress.h"
#include "Kit/Core/HostEnvironment.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Device/HidDeviceRequester.h"
#include "VirtualMouse/VirtualDeviceRequester.h"

namespace {

enum ExitCode { Done = 0, Failed = 1, Usage = 2 };

constexpr const char* help =
    "nerin-companion [--virtual FILE]\n"
    "Gives the mouse the slot of the program in front, and tells the window and nerinctl what the\n"
    "mouse does. Runs in the background, once in a session, and is started by the desktop.\n"
    "  --virtual FILE  use a virtual mouse whose memory is this file\n"
    "  --version, --help\n";

struct Options {
  std::string virtualFile;
};

void complain(const std::string& message) {
  std::fprintf(stderr, "nerin-companion: %s\n", message.c_str());
}

// The journal keeps what is written to standard error, with the time.
void logToJournal() {
  LXLogger::setObserver([](LXLogger::Level level, std::string_view line) {
    if (level != LXLogger::Level::Debug) {
      complain(std::string(line));
    }
  });
}

LXPlatform realPlatform(const Options& options, std::shared_ptr<BusConnection> bus) {
  LXPlatform platform;
  platform.homeFolder = hostenvironment::homeFolder();
  platform.userFolders = hostenvironment::userFolders(platform.bundleIdentifier);
  platform.resourceFolder = hostenvironment::resourceFolder();
  platform.preferredLanguage = hostenvironment::preferredLanguage();
  platform.notificationCenter = std::move(bus);
  if (options.virtualFile.empty()) {
    platform.runtimeFolder = hostenvironment::runtimeFolder();
    platform.deviceRequester = std::make_shared<HidDeviceRequester>();
  } else {
    platform.deviceRequester = std::make_shared<VirtualDeviceRequester>(
        std::make_shared<VirtualMouse>(std::filesystem::path(options.virtualFile)));
  }
  // Others never wait long for this program, and it waits for nobody.
  platform.mouseWait = std::chrono::milliseconds(0);
  platform.sleep = [](std::chrono::microseconds time) { std::this_thread::sleep_for(time); };
  return platform;
}

int work(const Options& options) {
  EventLoop loop;
  loop.exitOnSignals();
  std::shared_ptr<BusConnection> bus =
      BusConnection::open(loop.handle(), BusConnection::Kind::Session, [&] {
        complain("the session bus is gone");
        loop.exit(Failed);
      });
  if (!bus) {
    complain("there is no session bus");
    return Failed;
  }
  LXPlatform::install(realPlatform(options, bus));
  NerinAction::leaveDraftsAlone();
  Companion::Settings settings;
  settings.mouseFile = options.virtualFile;
  settings.runtimeFolder = hostenvironment::runtimeFolder();
  settings.hasOwnDisplay = hasDisplayOfItsOwn(std::getenv("XDG_CURRENT_DESKTOP"));
  if (!options.virtualFile.empty()) {
    settings.udevControl.clear();
  } else {
    std::error_code error;
    settings.windowProgram =
        std::filesystem::read_symlink("/proc/self/exe", error).replace_filename("NerinOption");
  }
  int code = Done;
  {
    Companion companion(loop, *bus, std::move(settings));
    bus->requestName(companionaddress::service, [&](std::optional<bool> isOurs) {
      if (isOurs.value_or(false)) {
        companion.begin();
      } else {
        // Another one works already.
        loop.exit(Done);
      }
    });
    code = loop.run();
  }
  NerinAction::sysDeviceReq->reset();
  LXPlatform::install({});
  return code;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  for (int index = 1; index < argc; ++index) {
    const std::string word = argv[index];
    if (word == "--help" || word == "--version") {
      std::fputs(word == "--help" ? help : NERIN_VERSION "\n", stdout);
      return Done;
    }
    if (word == "--virtual" && index + 1 < argc) {
      options.virtualFile = std::filesystem::absolute(argv[++index]).string();
    } else {
      std::fputs(help, stderr);
      return Usage;
    }
  }
  logToJournal();
  try {
    return work(options);
  } catch (const std::exception& error) {
    complain(error.what());
    return Failed;
  }
}
