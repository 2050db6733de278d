// The programs of a desktop that holds only what the test puts there.

#include <QGuiApplication>
#include <algorithm>

#include <gmock/gmock.h>

#include "Kit/Desktop/InstalledPrograms.h"
#include "Tests/Support/Scratch.h"

namespace {

using testing::ElementsAre;

// The library of the desktop reads the environment once in a process.
const Scratch& desktop() {
  static const Scratch scratch;
  return scratch;
}

void install(const char* file, const std::string& entry) {
  const auto folder = desktop().folder() / "applications";
  std::filesystem::create_directories(folder);
  writeText(folder / file, "[Desktop Entry]\nType=Application\nExec=true\n" + entry);
}

TEST(InstalledPrograms, AreThoseOfTheMenusInTheUsersLanguage) {
  const auto programs = installedprograms::list();
  std::vector<std::string> names;
  std::transform(programs.begin(), programs.end(), std::back_inserter(names),
                 [](const auto& program) { return program.name; });
  EXPECT_THAT(names, ElementsAre("Blender", "Schach"));
  EXPECT_EQ(programs[0].path, desktop().folder() / "applications" / "org.blender.Blender.desktop");
}

TEST(InstalledPrograms, HaveANameByTheirPath) {
  const auto folder = desktop().folder() / "applications";
  EXPECT_EQ(installedprograms::nameOf((folder / "org.blender.Blender.desktop").string()),
            "Blender");
  EXPECT_EQ(installedprograms::nameOf("/usr/bin/mygame.sh"), "mygame");
  EXPECT_EQ(installedprograms::nameOf((folder / "gone.desktop").string()), "gone");
  EXPECT_EQ(installedprograms::nameOf(""), "");
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("XDG_DATA_HOME", desktop().folder().c_str());
  qputenv("XDG_DATA_DIRS", (desktop().folder() / "none").c_str());
  qputenv("LANGUAGE", "de");
  qputenv("LC_ALL", "C.UTF-8");
  install("org.blender.Blender.desktop", "Name=Blender\n");
  install("chess.desktop", "Name=Chess\nName[de]=Schach\n");
  install("hidden.desktop", "Name=Hidden\nNoDisplay=true\n");
  install("other.desktop", "Name=Other\nHidden=true\n");
  writeText(desktop().folder() / "applications" / "broken.desktop", "no entry");
  testing::InitGoogleTest(&argc, argv);
  const QGuiApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
