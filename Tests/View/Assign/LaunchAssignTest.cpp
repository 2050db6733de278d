// Assigning a program to a button.

#include <QLabel>
#include <fstream>

#include <gmock/gmock.h>

#include "Action/Service/DaemonMessages.h"
#include "Kit/Widgets/LXTextField.h"
#include "Tests/Support/EditorTest.h"
#include "View/Assign/SubLaunchProgramView.h"

using testing::ElementsAre;
using testing::Eq;
using testing::IsEmpty;
using testing::Optional;

namespace {

class LaunchAssign : public AssignTest {
 protected:
  LaunchAssign() { library().setCurrFWProfileIndex(2); }
  // The button's previous assignment.
  static _BTN_INFO other(std::uint32_t type = 3) {
    _BTN_INFO info = button(1, {11, 12, 13, 14}, type);
    setText(info.app_path, "/opt/old.app");
    info.MacroID = 99;
    return info;
  }
  static _BTN_INFO launch(const std::string& path) {
    _BTN_INFO info = other(5);
    info.FuncID = info.FuncTableId = 15;
    setText(info.app_path, path);
    return info;
  }
  SubLaunchProgramView& sub() { return part<SubLaunchProgramView>("launchProView"); }
  LXButton& chooser() { return partOf<LXButton>(sub(), "launchProBtn"); }
  std::string shownPath() { return textOf(partOf<LXTextField>(sub(), "pathTxt")); }
  void chooseProgram(const std::string& path) {
    m_chosen = path;
    clickThroughWindow(chooser());
  }
  LXTextField& note() { return partOf<LXTextField>(sub(), "noteTxt"); }
  // A desktop entry in the home folder.
  std::string install(const char* file, const char* name) {
    const auto path = home() / file;
    std::ofstream(path) << "[Desktop Entry]\nType=Application\nName=" << name
                        << "\nExec=/bin/true\n";
    return path.string();
  }
  // The program that the background service would launch.
  std::optional<std::string> recorded(int bIndex, int slot = 2) {
    return library().getLaunchPath(slot, bIndex);
  }
};

}  // namespace

TEST_F(LaunchAssign, ItsControlsHaveTheirTagsAndTexts) {
  openPanel(3, other(5));
  EXPECT_EQ(chooser().tag(), 310);
  EXPECT_FALSE(chooser().accessibleName().isEmpty());
  EXPECT_TRUE(partOf<LXTextField>(sub(), "pathTxt").isReadOnly());
}

TEST_F(LaunchAssign, OneProgramIsChosenFromTheSystemsFolder) {
  openPanel(3, other(5));
  chooseProgram("/opt/new.app");
  ASSERT_EQ(m_panels.size(), 1U);
  EXPECT_FALSE(m_panels[0].isSave);
  EXPECT_EQ(m_panels[0].kind, filepanel::Kind::Program);
  EXPECT_EQ(sub().currLaunchPath(), "/opt/new.app");
  EXPECT_EQ(shownPath(), "new (not installed any more)");
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_EQ(recorded(3), std::nullopt);
}

TEST_F(LaunchAssign, TheProgramIsStoredAndRecordedForItsSlotAndButton) {
  openPanel(15, other());
  chooseType("Launch Program");
  chooseProgram("/opt/new.app");
  press("okBtn");
  EXPECT_TRUE(isSame(stored(), launch("/opt/new.app")));
  EXPECT_THAT(recorded(15), Optional(Eq("/opt/new.app")));
  EXPECT_EQ(recorded(14), std::nullopt);
  EXPECT_EQ(recorded(15, 1), std::nullopt);
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(LaunchAssign, ApplyTriesItAndRecordsIt) {
  openPanel(15, other());
  chooseType("Launch Program");
  chooseProgram("/opt/new.app");
  press("applyBtn");
  EXPECT_THAT(sent(), ElementsAre(buttonCommand(15, "0f0b0c0d0e")));
  EXPECT_THAT(recorded(15), Optional(Eq("/opt/new.app")));
  EXPECT_TRUE(isSame(stored(), other()));
}

TEST_F(LaunchAssign, WithoutAChosenFileOnlyTheKindChanges) {
  openPanel(3, other());
  chooseType("Launch Program");
  press("applyBtn");
  EXPECT_THAT(sent(), ElementsAre(buttonCommand(3, "010b0c0d0e")));
  press("okBtn");
  EXPECT_TRUE(isSame(stored(), other(5)));
  EXPECT_EQ(recorded(3), std::nullopt);
}

TEST_F(LaunchAssign, ACancelledChooserChoosesNothing) {
  openPanel(3, launch("/opt/old.app"));
  m_chosen = std::nullopt;
  clickThroughWindow(chooser());
  EXPECT_EQ(m_panels.size(), 1U);
  EXPECT_EQ(sub().currLaunchPath(), "");
  press("okBtn");
  EXPECT_TRUE(isSame(stored(), launch("/opt/old.app")));
}

TEST_F(LaunchAssign, ACancelledChooserKeepsAnEarlierChoice) {
  openPanel(3, other(5));
  chooseProgram("/opt/new.app");
  m_chosen = std::nullopt;
  clickThroughWindow(chooser());
  EXPECT_EQ(sub().currLaunchPath(), "/opt/new.app");
  EXPECT_EQ(shownPath(), "new (not installed any more)");
}

TEST_F(LaunchAssign, OpensWithWhatTheButtonLaunchesAndNothingChosen) {
  openPanel(3, launch("/opt/old.app"));
  EXPECT_EQ(shownPath(), "old (not installed any more)");
  EXPECT_EQ(sub().currLaunchPath(), "");
  openPanel(3, other(5));
  EXPECT_EQ(shownPath(), "");
}

TEST_F(LaunchAssign, AnUnsavedChoiceIsDroppedWhenThePartIsShownAgain) {
  openPanel(3, other(5));
  chooseProgram("/opt/new.app");
  chooseType("Disable");
  chooseType("Launch Program");
  EXPECT_EQ(sub().currLaunchPath(), "");
  press("okBtn");
  EXPECT_TRUE(isSame(stored(), other(5)));
}

TEST_F(LaunchAssign, APathBeyondItsFieldIsCutAtACharacterAndRecordedWhole) {
  const std::string start = "/opt/" + std::string(249, 'a');
  const std::string path = start + "\xC3\xA9/tool.app";
  openPanel(3, other(5));
  chooseProgram(path);
  press("okBtn");
  EXPECT_EQ(std::string(stored().app_path), start);
  EXPECT_THAT(recorded(3), Optional(Eq(path)));
  EXPECT_EQ(shownPath(), "tool (not installed any more)");
}

TEST_F(LaunchAssign, APathMayBeInAnyScript) {
  const std::string path = "/opt/Übung/マウス.desktop";
  openPanel(3, other(5));
  chooseProgram(path);
  EXPECT_EQ(shownPath(), "マウス (not installed any more)");
  press("okBtn");
  EXPECT_EQ(std::string(stored().app_path), path);
}

TEST_F(LaunchAssign, AProgramIsShownByItsNameUntilItIsRemoved) {
  const std::string path = install("org.draw.desktop", "Draw");
  openPanel(3, other(5));
  chooseProgram(path);
  EXPECT_EQ(shownPath(), "Draw");
  EXPECT_TRUE(partOf<LXTextField>(sub(), "pathTxt").toolTip().contains("org.draw.desktop"));
  press("okBtn");
  EXPECT_EQ(std::string(stored().app_path), path);
  openPanel(3, stored());
  EXPECT_EQ(shownPath(), "Draw");
  std::filesystem::remove(path);
  openPanel(3, stored());
  EXPECT_EQ(shownPath(), "org.draw (not installed any more)");
}

TEST_F(LaunchAssign, SaysThatNoProgramIsChosenAndWhatApplyThenDid) {
  openPanel(3, other(5));
  ASSERT_TRUE(note().isVisible());
  EXPECT_EQ(textOf(note()), "No program chosen");
  EXPECT_EQ(note().accessibleName(), "No program chosen");
  press("applyBtn");
  EXPECT_EQ(part<QLabel>("statusText").text(), "No program chosen: nothing changes");
  EXPECT_THAT(sent(), ElementsAre(buttonCommand(3, "010b0c0d0e")));
  chooseProgram("/opt/new.app");
  EXPECT_FALSE(note().isVisible());
  press("applyBtn");
  EXPECT_EQ(part<QLabel>("statusText").text(), "");
  openPanel(3, launch("/opt/old.app"));
  EXPECT_FALSE(note().isVisible());
}
