// A place in a web page, opened by the browser of a desktop that holds only what the test puts
// there.

#include <QGuiApplication>
#include <chrono>
#include <fstream>
#include <sstream>
#include <thread>

#include <gmock/gmock.h>

#include "Kit/Desktop/DesktopServices.h"
#include "Tests/Support/Scratch.h"

namespace {

namespace fs = std::filesystem;

// The library of the desktop reads the environment once in a process.
const Scratch& desktop() {
  static const Scratch scratch;
  return scratch;
}

fs::path heard() {
  return desktop().folder() / "heard";
}

// A browser that notes what it is to open.
void installBrowser() {
  const fs::path folder = desktop().folder();
  const fs::path browser = folder / "browser";
  writeText(browser, "#!/bin/sh\nprintf '%s' \"$1\" > '" + heard().string() + ".new'\nmv '" +
                         heard().string() + ".new' '" + heard().string() + "'\n");
  fs::permissions(browser, fs::perms::owner_all);
  fs::create_directories(folder / "applications");
  writeText(folder / "applications" / "browser.desktop",
            "[Desktop Entry]\nType=Application\nName=Browser\nMimeType=text/html;\nExec=" +
                browser.string() + " %u\n");
  writeText(folder / "applications" / "mimeapps.list",
            "[Default Applications]\ntext/html=browser.desktop\n");
}

// What the browser has got; empty if it gets nothing for ten seconds.
std::string waitForBrowser() {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!fs::exists(heard()) && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  std::stringstream words;
  words << std::ifstream(heard()).rdbuf();
  return words.str();
}

TEST(DesktopServices, APlaceInAPageReachesTheBrowser) {
  const fs::path page = desktop().folder() / "help \xC3\xA4.html";
  writeText(page, "<h2 id=\"keys\">Keys</h2>");
  const std::string address = "file://" + desktop().folder().string() + "/help%20%C3%A4.html#keys";
  EXPECT_TRUE(desktopservices::open(address));
  EXPECT_EQ(waitForBrowser(), address);
}

TEST(DesktopServices, APlaceInAMissingPageIsNotOpened) {
  EXPECT_FALSE(desktopservices::open("file://" + desktop().folder().string() + "/gone.html#keys"));
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("XDG_DATA_HOME", desktop().folder().c_str());
  qputenv("XDG_CONFIG_HOME", (desktop().folder() / "none").c_str());
  qputenv("XDG_DATA_DIRS", (desktop().folder() / "none").c_str());
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  installBrowser();
  testing::InitGoogleTest(&argc, argv);
  const QGuiApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
