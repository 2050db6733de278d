#include <filesystem>

#include <gtest/gtest.h>

#include "Companion/Policy/LaunchPlan.h"
#include "Tests/Support/Scratch.h"

namespace {

using Command = std::vector<std::string>;

TEST(LaunchPlan, LeavesEntriesAndDocumentsToTheDesktopsLauncher) {
  EXPECT_EQ(launchPlanOf("/a/x.desktop", LaunchKind::DesktopEntry, "1").command,
            (Command{"gio", "launch", "/a/x.desktop"}));
  EXPECT_EQ(launchPlanOf("/a/notes.txt", LaunchKind::Document, "1").command,
            (Command{"gio", "open", "/a/notes.txt"}));
}

TEST(LaunchPlan, StartsAProgramWithoutArguments) {
  EXPECT_EQ(launchPlanOf("/a/two words", LaunchKind::Program, "1").command,
            (Command{"/a/two words"}));
}

TEST(LaunchPlan, NamesAUnitOfItsOwn) {
  EXPECT_EQ(launchPlanOf("/a/org.gimp.GIMP.desktop", LaunchKind::DesktopEntry, "71-2").unit,
            "app-nerin-org.gimp.GIMP@71-2.service");
  EXPECT_EQ(launchPlanOf("/a/my-tool", LaunchKind::Program, "1").unit,
            "app-nerin-my\\x2dtool@1.service");
}

TEST(LaunchPlan, EscapesEveryByteThatAUnitCannotHold) {
  EXPECT_EQ(escapedForUnit("a b/\xC3\xA4"), "a\\x20b\\x2f\\xc3\\xa4");
  EXPECT_EQ(escapedForUnit(".hidden.one"), "\\x2ehidden.one");
}

TEST(LaunchPlan, LooksWhatAPathIs) {
  const Scratch folder;
  writeText(folder / "tool", "#!/bin/sh\n");
  writeText(folder / "notes.txt", "notes");
  std::filesystem::permissions(folder / "tool", std::filesystem::perms::owner_all);
  EXPECT_EQ(launchKindOf(folder / "tool"), LaunchKind::Program);
  EXPECT_EQ(launchKindOf(folder / "notes.txt"), LaunchKind::Document);
  EXPECT_EQ(launchKindOf(folder / "missing.desktop"), LaunchKind::DesktopEntry);
  EXPECT_EQ(launchKindOf(folder.folder()), LaunchKind::Document);
}

}  // namespace
