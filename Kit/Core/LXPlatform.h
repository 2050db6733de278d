#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Kit/Core/LXDeviceRequester.h"
#include "Kit/Core/LXNotificationCenter.h"
#include "Kit/Core/UserFolders.h"

// Everything that the program needs from outside. `main` installs the real platform, a test a fake
// one; nothing else accesses the environment.
struct LXPlatform {
  // What "~" stands for.
  std::filesystem::path homeFolder;
  // The folder of the files that came with the program.
  std::filesystem::path resourceFolder;
  // The folder of this user for what lasts as long as the session, private to the user; empty if
  // there is none.
  std::filesystem::path runtimeFolder;
  // Names the support folder and the preference file.
  std::string bundleIdentifier = "com.corvex.NerinOption";
  // Where the files of this user lie. While it has no support folder: below "Library" in the home
  // folder.
  UserFolders userFolders;
  // The user's first preferred language as the system names it ("de_AT.UTF-8", "pt-BR"), or none.
  std::optional<std::string> preferredLanguage;
  std::shared_ptr<LXDeviceRequester> deviceRequester;
  std::shared_ptr<LXNotificationCenter> notificationCenter;
  // Calls back on the main thread whenever the mouse may have come or gone, as long as the result
  // lives. A null result: nobody watches, and only the background service can tell.
  std::function<std::shared_ptr<void>(std::function<void()>)> watchPresence;
  // Whether the background service runs, which starts the program anew when asked.
  std::function<bool()> hasService;
  // Calls back on the main thread whenever the background service came (true) or went, however it
  // went, as long as the result lives. A null result: nobody watches.
  std::function<std::shared_ptr<void>(std::function<void(bool)>)> watchService;
  // Starts the program anew, with the same arguments, as soon as this one has ended.
  std::function<void()> relaunch;
  // How long to wait for another program that uses the mouse. A window must not stand still longer.
  std::chrono::milliseconds mouseWait{200};
  // A clock that only goes forward.
  std::function<std::chrono::steady_clock::time_point()> now;
  // Waits between two reports.
  std::function<void(std::chrono::microseconds)> sleep;
  // The folder where the user keeps documents, asked anew for each panel, because it can be moved.
  std::function<std::filesystem::path()> documentsFolder;
  // The name of a program by its path, as the desktop's menus show it.
  std::function<std::string(const std::string&)> programName;
  // Says that the program stands still from now on, because it works with the mouse or its files,
  // and that it answers again. Calls may be nested; each true is followed by a false.
  std::function<void(bool)> showBusy;
  // Opens a file or a web address with its default application.
  std::function<bool(const std::string&)> open;
  // Shows a text and waits until the user has read it.
  std::function<void(const std::string&)> showInfoMessage;
  // Shows a question and waits for yes or no.
  std::function<bool(const std::string&)> chooseInfoMessage;

  // The installed platform. Before the first install: no mouse, no notifications, no waiting, empty
  // folders, messages that are not shown and questions answered with no.
  static const LXPlatform& current();
  // Replaces the platform. Empty members get the harmless defaults described above.
  static void install(LXPlatform platform);
};
