// Every control of the main window: its name, its text and its effect.

#include <QAccessible>
#include <QApplication>
#include <QMenu>
#include <algorithm>

#include <gmock/gmock.h>

#include "Kit/Core/LXPlatform.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Kit/Widgets/LXTextField.h"
#include "Tests/Support/ViewTest.h"
#include "View/Windows/Termination.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct Row {
  const char* name;
  int tag;
  QAccessible::Role role;
  const char* text;    // the tooltip
  const char* effect;  // of a click, on a slot with a profile and unapplied edits
  // The text for screen readers, if it is not the tooltip.
  const char* heard = nullptr;
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
  return out << row.name;
}

constexpr auto press = QAccessible::Button;
constexpr auto choice = QAccessible::RadioButton;
constexpr auto check = QAccessible::CheckBox;

const Row rows[] = {
    {"reDefBtn", 100, press, "Reset this profile to system default", "asks WarningReset"},
    {"homeBtn", 101, press, "Go to the Corvex NERIN register web site",
     "opens https://nerin.example/register"},
    {"helpBtn", 102, press, "Open the help document", "opens the help"},
    {"closeBtn", 103, press, "Close", "quits"},
    {"profile1Btn", 104, choice, "Switch to profile 1 page", ""},
    {"profile2Btn", 105, choice, "Switch to profile 2 page", "asks WarningNeedSave"},
    {"profile3Btn", 106, choice, "Switch to profile 3 page", "asks WarningNeedSave"},
    {"profile4Btn", 107, choice, "Switch to profile 4 page", "asks WarningNeedSave"},
    {"profile5Btn", 108, choice, "Switch to profile 5 page", "asks WarningNeedSave"},
    {"profile6Btn", 109, choice, "Switch to profile 6 page", "asks WarningNeedSave"},
    {"profile7Btn", 110, choice, "Switch to profile 7 page", "asks WarningNeedSave"},
    {"profile8Btn", 111, choice, "Switch to profile 8 page", "asks WarningNeedSave"},
    {"profile9Btn", 112, choice, "Switch to profile 9 page", "asks WarningNeedSave"},
    {"profile10Btn", 209, choice, "Switch to profile 10 page", "asks WarningNeedSave"},
    {"normalModeBtn", 114, choice, "Switch to Normal LED Control Mode", ""},
    {"battleModeBtn", 115, choice, "Switch to Battle LED Mode", "tells WarningBattle, mode 1"},
    {"MacroSettingBtn", 117, press, "Open Macro editor", "window 1048x633"},
    {"currProfileBtn", 118, press, "Select one profile", "list", "Select one profile: NewPF_1"},
    {"profileNewBtn", 119, press, "Create a new profile", "name NewPF_2"},
    {"profileDelBtn", 120, press, "Delete a profile", "0 profiles"},
    {"profileSaveBtn", 121, press, "Save as file", "name NewPF_1_1"},
    {"profileImportBtn", 122, press, "Import profile", "open panel"},
    {"profileExportBtn", 123, press, "Export profile", "save panel"},
    {"preformanceBtn", 124, press, "Advanced mouse configuration", "window 545x493"},
    {"lightOptionBtn", 125, press, "LED configuration", "window 678x493"},
    {"linkProChk", 126, check, "Enable link to program", "link on"},
    {"linkProBtn", 127, press, "Link this profile to the program you selected", "open panel"},
    {"applyBtn", 128, press, "Apply", "message 101"},
    {"okBtn", 129, press, "Close", "message 101, quits", "OK"},
    {"cancelBtn", 130, press, "Cancel", "quits"},
    {"goLeftBtn", 131, choice, "Top View", ""},
    {"goRightBtn", 132, choice, "Side View", "side view"},
};

struct Caption {
  const char* name;
  int tag;
  int markerTag;
  const char* marker;
  const char* view;
};

// In the order of the record's buttons.
constexpr Caption captions[] = {
    {"leftClickBtn", 140, 170, "leftClickTagBtn", "subView1"},
    {"rightBtn", 144, 174, "rightTagBtn", "subView1"},
    {"WhellBtn", 142, 180, "WhellTagBtn", "subView1"},
    {"bomBtn2", 155, 162, "bomBtnTag2", "subView2"},
    {"bomBtn1", 154, 161, "bomBtnTag1", "subView2"},
    {"midleBtn1", 148, 178, "midleBtnTag1", "subView1"},
    {"midleBtn2", 149, 179, "midleBtnTag2", "subView1"},
    {"rightBtn1", 145, 175, "rightBtnTag1", "subView1"},
    {"rightBtn2", 146, 176, "rightBtnTag2", "subView1"},
    {"rightBtn3", 147, 177, "rightBtnTag3", "subView1"},
    {"leftBtn2", 151, 158, "leftBtnTag2", "subView2"},
    {"leftBtn4", 153, 160, "leftBtnTag4", "subView2"},
    {"leftBtn3", 152, 159, "leftBtnTag3", "subView2"},
    {"leftBtn1", 150, 157, "leftBtnTag1", "subView2"},
    {"WhellUpBtn", 141, 180, "WhellTagBtn", "subView1"},
    {"WhellDownBtn", 143, 180, "WhellTagBtn", "subView1"},
};

class MainViewControls : public ViewTest, public testing::WithParamInterface<Row> {
 protected:
  // The slot holds a profile of the library with an edit that is not applied.
  void startEdited() {
    start();
    click("profileNewBtn");
    click("applyBtn");
    editState->raiseNeedSave();
    view().refreshApplyBtn();
    m_answer = false;
    m_messagesBefore = messages().size();
    m_profilesBefore = library().getProfileCount();
    m_nameBefore = shownName();
  }

  // The effect of the click in words.
  std::string effect() {
    std::vector<std::string> parts;
    for (const auto& [key, isChoose] : m_asked) {
      parts.push_back((isChoose ? "asks " : "tells ") + key);
    }
    for (const std::string& address : m_opened) {
      const bool isHelp =
          address == std::string(NERIN_RESOURCES) + "/Help/UserInterfaceSetupGuide_en.html";
      parts.push_back(isHelp ? "opens the help" : "opens " + address);
    }
    for (const auto& panel : m_panels) {
      parts.emplace_back(panel.isSave ? "save panel" : "open panel");
    }
    if (const LXNoTitleWindow* window = child()) {
      parts.push_back("window " + std::to_string(window->width()) + "x" +
                      std::to_string(window->height()));
    }
    if (openList() != nullptr) {
      parts.emplace_back("list");
    }
    if (editState->selProfile().modeType != 0) {
      parts.push_back("mode " + std::to_string(editState->selProfile().modeType));
    }
    if (library().getProfileCount() != m_profilesBefore) {
      parts.push_back(std::to_string(library().getProfileCount()) + " profiles");
    }
    if (shownName() != m_nameBefore) {
      parts.push_back("name " + shownName());
    }
    if (library().currIsActive()) {
      parts.emplace_back("link on");
    }
    for (std::size_t i = m_messagesBefore; i < messages().size(); ++i) {
      parts.push_back("message " + messages()[i]);
    }
    if (button("goRightBtn").isChecked()) {
      parts.emplace_back("side view");
    }
    if (termination::isTerminating()) {
      parts.emplace_back("quits");
    }
    std::string text;
    for (const std::string& part : parts) {
      text += (text.empty() ? "" : ", ") + part;
    }
    return text;
  }

 private:
  std::size_t m_messagesBefore = 0;
  std::size_t m_profilesBefore = 0;
  std::string m_nameBefore;
};

std::string nameOf(const QObject& object) {
  return object.objectName().toStdString();
}

}  // namespace

TEST_P(MainViewControls, IsCalledAndDoesWhatItSays) {
  startEdited();
  const Row& row = GetParam();
  LXButton& one = button(row.name);
  EXPECT_EQ(one.tag(), row.tag);
  EXPECT_EQ(one.toolTip().toStdString(), row.text);
  auto* accessible = QAccessible::queryAccessibleInterface(&one);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->text(QAccessible::Name).toStdString(),
            row.heard != nullptr ? row.heard : row.text);
  EXPECT_EQ(accessible->role(), row.role);
  EXPECT_EQ(one.isCheckBox(), row.role == check);
  EXPECT_EQ(one.parent(), &view());
  one.click();
  process();
  EXPECT_EQ(effect(), row.effect);
}

INSTANTIATE_TEST_SUITE_P(Every, MainViewControls, testing::ValuesIn(rows),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(MainViewControls, ThereIsNoOtherControl) {
  start();
  std::vector<std::string> expected{"menuBtn"};
  for (const Row& row : rows) {
    expected.emplace_back(row.name);
  }
  for (const Caption& caption : captions) {
    expected.emplace_back(caption.name);
    expected.emplace_back(caption.marker);
  }
  std::sort(expected.begin(), expected.end());
  // The wheel's three captions share a marker.
  expected.erase(std::unique(expected.begin(), expected.end()), expected.end());
  std::vector<std::string> found;
  for (const auto* one : view().findChildren<LXButton*>()) {
    found.push_back(nameOf(*one));
  }
  std::sort(found.begin(), found.end());
  EXPECT_EQ(found, expected);
}

TEST_F(MainViewControls, TheyAreCalledInTheUsersLanguage) {
  LXPlatform platform = LXPlatform::current();
  platform.preferredLanguage = "de_DE.UTF-8";
  LXPlatform::install(platform);
  start();
  EXPECT_EQ(button("helpBtn").toolTip(), QStringLiteral("Hilfedokument öffnen"));
  EXPECT_EQ(button("closeBtn").accessibleName(), QStringLiteral("Schließen"));
  EXPECT_EQ(menuItem("webMenu").text(), QStringLiteral("Webseite"));
}

TEST_F(MainViewControls, TheMenuButtonOpensTheApplicationsMenu) {
  start();
  EXPECT_EQ(button("menuBtn").accessibleName(), QStringLiteral("Menu"));
  click("menuBtn");
  EXPECT_TRUE(view().applicationMenu().isVisible());
  std::vector<std::string> names;
  for (const QAction* action : view().applicationMenu().actions()) {
    if (!action->isSeparator()) {
      names.push_back(nameOf(*action));
    }
  }
  EXPECT_THAT(names, ElementsAre("aboutMenu", "osdMenu", "switchMenu", "languages", "webMenu",
                                 "helpMenu", "quitMenu"));
  view().applicationMenu().close();
}

TEST_F(MainViewControls, TheCaptionsStandInTheOrderOfTheRecord) {
  start();
  for (int i = 0; i < 16; ++i) {
    const Caption& caption = captions[i];
    LXButton& one = button(caption.name);
    EXPECT_EQ(one.tag(), caption.tag) << caption.name;
    EXPECT_EQ(nameOf(*one.parent()), caption.view) << caption.name;
    EXPECT_EQ(one.btnColor(), QColor(Qt::white)) << caption.name;
    EXPECT_EQ(button(caption.marker).tag(), caption.markerTag) << caption.marker;
    EXPECT_EQ(nameOf(*button(caption.marker).parent()), caption.view) << caption.marker;
    one.click();
    EXPECT_EQ(view().selBtnIndex(), i) << caption.name;
    if (LXNoTitleWindow* open = child()) {
      open->close();
    }
    process();
  }
}

TEST_F(MainViewControls, ACaptionIsTitleAndTooltipOfItsButtonOnly) {
  start();
  const QString middle = button("WhellBtn").title();
  const QString right = button("rightBtn").title();
  ASSERT_NE(middle, right);
  editState->edit().btnInfo[3] = editState->selProfile().btnInfo[2];
  view().fillBtnCaption(3);
  EXPECT_EQ(button("bomBtn2").title(), middle);
  EXPECT_EQ(button("bomBtn2").toolTip(), middle);
  EXPECT_EQ(button("rightBtn").title(), right);
  EXPECT_EQ(button("rightBtn").accessibleName(), QStringLiteral("Right button: ") + right);
  editState->edit().btnInfo[1] = editState->selProfile().btnInfo[2];
  view().fillBtnCaption(-1);
  view().fillBtnCaption(16);
  EXPECT_EQ(button("rightBtn").title(), right);
}

TEST_F(MainViewControls, TagsWithoutAnActionDoNothing) {
  startEdited();
  clearTrace();
  LXButton stranger;
  for (int tag = -1; tag <= 400; ++tag) {
    const bool hasAction = (tag >= 100 && tag <= 103) || (tag >= 117 && tag <= 130) || tag == 133;
    if (!hasAction) {
      stranger.setTag(tag);
      view().buttonAction(stranger);
    }
  }
  process();
  EXPECT_EQ(effect(), "");
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_EQ(view().selBtnIndex(), -1);
}

TEST_F(MainViewControls, MarkersOpenNothing) {
  start();
  for (const Caption& caption : captions) {
    click(caption.marker);
    EXPECT_EQ(child(), nullptr) << caption.marker;
  }
  EXPECT_EQ(view().selBtnIndex(), -1);
  EXPECT_THAT(m_asked, IsEmpty());
}

TEST_F(MainViewControls, TheRightButtonPressesNothing) {
  startEdited();
  clearTrace();
  for (auto* one : view().findChildren<LXButton*>()) {
    if (one->isVisible()) {
      clickThroughWindow(*one, Qt::RightButton);
    }
  }
  EXPECT_EQ(effect(), "");
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_FALSE(view().applicationMenu().isVisible());
}

TEST_F(MainViewControls, TheNameFieldIsBlackOnAWritableLine) {
  start();
  EXPECT_EQ(nameField().palette().color(QPalette::Text), QColor(Qt::black));
  EXPECT_EQ(nameField().font().family(), QStringLiteral("Arial"));
  EXPECT_EQ(nameField().font().pixelSize(), 15);
  EXPECT_FALSE(nameField().isReadOnly());
  EXPECT_EQ(nameField().accessibleName(), QStringLiteral("Profile name"));
}

TEST_F(MainViewControls, AScreenReaderHearsWhichItemIsSelected) {
  start();
  const auto state = [this](const char* name) {
    return QAccessible::queryAccessibleInterface(&button(name))->state();
  };
  EXPECT_TRUE(state("profile1Btn").checked);
  EXPECT_FALSE(state("profile2Btn").checked);
  EXPECT_TRUE(state("profile2Btn").checkable);
  EXPECT_FALSE(state("helpBtn").checkable);
  EXPECT_TRUE(state("applyBtn").disabled);
  click("linkProChk");
  EXPECT_TRUE(state("linkProChk").checked);
  EXPECT_FALSE(state("applyBtn").disabled);
}

TEST_F(MainViewControls, TheTabsShowOneOfTheTwoPictures) {
  start();
  auto* top = view().findChild<QWidget*>(QStringLiteral("subView1"));
  auto* side = view().findChild<QWidget*>(QStringLiteral("subView2"));
  EXPECT_TRUE(button("goLeftBtn").isChecked());
  EXPECT_TRUE(top->isVisible());
  EXPECT_FALSE(side->isVisible());
  clearTrace();
  click("goRightBtn");
  EXPECT_FALSE(top->isVisible());
  EXPECT_TRUE(side->isVisible());
  click("goLeftBtn");
  EXPECT_TRUE(top->isVisible());
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_FALSE(editState->isNeedSave());
}

TEST_F(MainViewControls, TabReachesEveryControlThatCanBeUsed) {
  startEdited();
  QApplication::setActiveWindow(&window());
  button("menuBtn").setFocus(Qt::TabFocusReason);
  std::vector<std::string> order;
  for (int i = 0; i < 80; ++i) {
    QWidget* focus = QApplication::focusWidget();
    ASSERT_NE(focus, nullptr);
    order.push_back(nameOf(*focus));
    QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
    QApplication::sendEvent(focus, &tab);
    if (QApplication::focusWidget() == &button("menuBtn")) {
      break;
    }
  }
  const std::vector<std::string> reached(order);
  for (const auto* one : view().findChildren<LXButton*>()) {
    const bool isUnselectedItem = one->isStepItem() && !one->isChecked();
    const bool isMarker = one->tag() >= 157 && one->tag() <= 180;
    if (one->isVisible() && !isUnselectedItem && !isMarker) {
      EXPECT_THAT(reached, testing::Contains(nameOf(*one)));
    }
  }
  EXPECT_THAT(reached, testing::Contains("profileNameTxt"));
}
