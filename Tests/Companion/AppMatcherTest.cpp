#include <gtest/gtest.h>

#include "Companion/Policy/AppMatcher.h"

namespace {

AppIdentity windowOf(const std::string& appId, const std::string& instance = {}) {
  AppIdentity identity;
  identity.appId = appId;
  identity.instance = instance;
  return identity;
}

AppIdentity processOf(const std::string& executable, const std::string& unit = {}) {
  AppIdentity identity;
  identity.executable = executable;
  identity.unit = unit;
  return identity;
}

TEST(DesktopEntry, SaysWhatTheProgramIsCalledAndStarts) {
  const LinkedProgram program = linkedProgramOf("/usr/share/applications/org.gimp.GIMP.desktop",
                                                "# comment\n"
                                                "[Desktop Entry]\n"
                                                "Name=GIMP\n"
                                                "Name[de]=Bildbearbeitung\n"
                                                "Exec=\"/usr/bin/gimp-2.10\" %U\n"
                                                "StartupWMClass = Gimp-2.10\r\n"
                                                "[Desktop Action new]\n"
                                                "Name=New picture\n"
                                                "Exec=other\n");
  EXPECT_EQ(program.name, "GIMP");
  EXPECT_EQ(program.desktopId, "org.gimp.GIMP");
  EXPECT_EQ(program.windowClass, "Gimp-2.10");
  EXPECT_EQ(program.executable, "/usr/bin/gimp-2.10");
}

TEST(DesktopEntry, HasItsFileNameWithoutAName) {
  EXPECT_EQ(linkedProgramOf("/x/tool.desktop", "").name, "tool");
  EXPECT_EQ(linkedProgramOf("/x/tool.desktop", "[Desktop Entry]\nName=\nbroken\n=\n").name, "tool");
}

TEST(DesktopEntry, LeavesOutWhatOnlyRunsOthers) {
  const auto executableOf = [](const std::string& command) {
    return linkedProgramOf("/x/a.desktop", "[Desktop Entry]\nExec=" + command).executable;
  };
  EXPECT_EQ(executableOf("env LANG=C VERBOSE=1 /opt/tool --x"), "/opt/tool");
  EXPECT_EQ(executableOf("tool %f"), "tool");
  for (const char* command : {"python3 /opt/tool.py", "/usr/bin/python3.11 x", "bash -c tool",
                              "/usr/bin/flatpak run org.x.Y", "env", "wine game.exe", ""}) {
    EXPECT_EQ(executableOf(command), "") << command;
  }
}

TEST(AppMatcher, KnowsAProgramByTheNamesOfItsWindows) {
  LinkedProgram program;
  program.desktopId = "org.gnome.Nautilus";
  program.windowClass = "Org.gnome.Files";
  program.flatpakId = "org.flat.Id";
  program.steamGame = "440";
  for (const char* appId : {"org.gnome.Nautilus", "ORG.GNOME.NAUTILUS", "nautilus",
                            "org.gnome.files", "org.flat.Id", "steam_app_440"}) {
    EXPECT_TRUE(isSameProgram(program, windowOf(appId))) << appId;
    EXPECT_TRUE(isSameProgram(program, windowOf("Other", appId))) << appId;
  }
  for (const char* appId : {"", "gnome", "Nautilus2", "steam_app_44", "steam_app_4401"}) {
    EXPECT_FALSE(isSameProgram(program, windowOf(appId))) << appId;
  }
}

TEST(AppMatcher, NeverTakesUnknownForTheSame) {
  EXPECT_FALSE(isSameProgram({}, {}));
  EXPECT_FALSE(isSameProgram(linkedProgramOf("/x/a.desktop", "[Desktop Entry]"), {}));
}

TEST(AppMatcher, KnowsAProgramByTheUnitThatTheDesktopStartedItIn) {
  const LinkedProgram program = linkedProgramOf("/x/org.gimp.GIMP.desktop", "[Desktop Entry]");
  EXPECT_TRUE(isSameProgram(program, processOf("", "app-gnome-org.gimp.GIMP-714.scope")));
  EXPECT_TRUE(isSameProgram(program, processOf("", "app-org.gimp.GIMP@a1.service")));
  EXPECT_FALSE(isSameProgram(program, processOf("", "app-gnome-org.gimp.GIMP2-714.scope")));
}

TEST(AppMatcher, KnowsAProgramByItsExecutable) {
  const LinkedProgram byEntry =
      linkedProgramOf("/x/a.desktop", "[Desktop Entry]\nExec=blender %f\n");
  EXPECT_TRUE(isSameProgram(byEntry, processOf("/usr/bin/blender")));
  EXPECT_FALSE(isSameProgram(byEntry, processOf("/usr/bin/blender-thumbnailer")));
  const LinkedProgram byPath = linkedProgramOf("/opt/tool/run");
  EXPECT_TRUE(isSameProgram(byPath, processOf("/opt/tool/run")));
  EXPECT_FALSE(isSameProgram(byPath, processOf("/usr/bin/run")));
}

TEST(AppMatcher, KnowsASteamGameByItsNumber) {
  const LinkedProgram game = linkedProgramOf("/home/a/Game.desktop",
                                             "[Desktop Entry]\nExec=steam steam://rungameid/440\n");
  EXPECT_EQ(game.steamGame, "440");
  EXPECT_TRUE(isSameProgram(game, windowOf("steam_app_440")));
}

TEST(AppMatcher, ReadsTheDesktopIdOfAUnit) {
  struct Row {
    const char* unit;
    const char* desktopId;
  };
  const Row rows[] = {
      {"app-gnome-org.gnome.Nautilus-1234.scope", "org.gnome.Nautilus"},
      {"app-org.kde.dolphin-5.scope", "org.kde.dolphin"},
      {"app-flatpak-org.x.Y-77.scope", "org.x.Y"},
      {"app-org.kde.kate@0a1b.service", "org.kde.kate"},
      {"app-nerin-tool@1-1.service", "tool"},
      {"app-gnome-gnome\\x2dterminal-9.scope", "gnome-terminal"},
      {"app-x.scope", ""},
      {"session-2.scope", ""},
      {"app-", ""},
      {"", ""},
      {"app-broken\\x2-9.scope", "broken\\x2"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(desktopIdOfUnit(row.unit), row.desktopId) << row.unit;
  }
}

TEST(AppMatcher, FindsTheInnermostUnit) {
  EXPECT_EQ(unitOfCgroup("12:cpu:/x\n0::/user.slice/user-1000.slice/user@1000.service/app.slice/"
                         "app-gnome-gimp-7.scope\n"),
            "app-gnome-gimp-7.scope");
  EXPECT_EQ(unitOfCgroup("0::/user.slice/app-a-1.scope/inner"), "app-a-1.scope");
  EXPECT_EQ(unitOfCgroup("0::/\n"), "");
  EXPECT_EQ(unitOfCgroup("1:name=systemd:/a.scope\n"), "");
  EXPECT_EQ(unitOfCgroup(""), "");
}

TEST(AppMatcher, TellsProgramsApart) {
  AppIdentity identity = windowOf("Gimp");
  identity.pid = 5;
  EXPECT_EQ(keyOf(identity), "gimp");
  identity.appId.clear();
  EXPECT_EQ(keyOf(identity), "pid 5");
  identity.executable = "/usr/bin/gimp";
  EXPECT_EQ(keyOf(identity), "/usr/bin/gimp");
}

}  // namespace
