// Each edit from the click in the main window to the mouse, and back after a restart.

#include <QTest>
#include <cstring>

#include <gmock/gmock.h>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "Tests/Support/EditorTest.h"
#include "View/Assign/SubSingleKeyView.h"
#include "View/Dpi/LevelSettingView.h"
#include "View/Dpi/PerformanceView.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// The mouse's memory: images and macros of all slots.
struct Memory {
  std::vector<Bytes> images;
  std::vector<Bytes> macros;
};

class AssignRoads : public EditorTest {
 protected:
  void SetUp() override {
    endProgram();
    start();
    click("profileNewBtn");
    click("applyBtn");
    ASSERT_FALSE(button("applyBtn").isEnabled());
  }
  using ViewTest::button;

  template <typename Control = LXButton>
  Control& inChild(const char* name) {
    return partOf<Control>(*child()->contentView(), name);
  }
  void pressInChild(const char* name) { clickThroughWindow(inChild(name)); }
  // Disables a button in the program and on the mouse.
  void disable(int index) {
    editState->edit().btnInfo[index] = ActionTest::button(255, {}, ButtonTypeDisabled);
    editState->raiseNeedSave();
    view().fillSettingData();
    view().refreshApplyBtn();
    click("applyBtn");
  }
  void openPanelOf(const char* hotSpot, bool isSide) {
    clickThroughWindow(button(isSide ? "goRightBtn" : "goLeftBtn"));
    clickThroughWindow(button(hotSpot));
    ASSERT_NE(child(), nullptr);
    ASSERT_NE(qobject_cast<KeyAssignView*>(child()->contentView()), nullptr);
  }
  void openPerformance() {
    clickThroughWindow(button("preformanceBtn"));
    ASSERT_NE(child(), nullptr);
    ASSERT_NE(qobject_cast<PerformanceView*>(child()->contentView()), nullptr);
  }
  void chooseKind(const char* title) { chooseIn(inChild("comSelBtn"), title); }
  LXButton& inPart(const char* part, const char* name) {
    return partOf<LXButton>(inChild<QWidget>(part), name);
  }
  std::string caption(const char* hotSpot) { return button(hotSpot).title().toStdString(); }
  Bytes image() {
    const auto report = mouse().imageReport(0);
    return {report.begin(), report.end()};
  }
  Memory memory() {
    Memory all;
    for (int slot = 0; slot < VirtualMouse::slotCount; ++slot) {
      const auto report = mouse().imageReport(slot);
      all.images.emplace_back(report.begin(), report.end());
    }
    for (int slot = 0; slot < VirtualMouse::macroSlotCount; ++slot) {
      const auto report = mouse().macroReport(slot);
      all.macros.emplace_back(report.begin(), report.end());
    }
    return all;
  }
  static void putEntry(Memory& memory, int position, const char* entry) {
    Bytes& image = memory.images[0];
    const Bytes bytes = bytesOfHex(entry);
    std::copy(bytes.begin(), bytes.end(), image.begin() + 58 + 5 * position);
    image[3] = checksumOf(image);
  }
  void expectMemory(const Memory& expected) {
    const Memory now = memory();
    for (std::size_t slot = 0; slot < now.images.size(); ++slot) {
      EXPECT_EQ(hexOf(now.images[slot]), hexOf(expected.images[slot])) << "slot " << slot;
    }
    for (std::size_t slot = 0; slot < now.macros.size(); ++slot) {
      EXPECT_EQ(now.macros[slot], expected.macros[slot]) << "macro slot " << slot;
    }
    EXPECT_THAT(mouse().faults(), IsEmpty());
  }
  // The common end: apply, keep, apply all and restart.
  void finish(const char* hotSpot, int position, const char* entry, const std::string& shown,
              Memory expected) {
    putEntry(expected, position, entry);
    clearTrace();
    pressInChild("applyBtn");
    EXPECT_EQ(sent().back(),
              "SET 0300 0 c40e" + hexOf(Bytes{static_cast<std::uint8_t>(position)}) + entry);
    pressInChild("okBtn");
    process();
    EXPECT_EQ(child(), nullptr);
    EXPECT_EQ(caption(hotSpot), shown);
    EXPECT_EQ(button(hotSpot).toolTip().toStdString(), shown);
    EXPECT_TRUE(editState->isNeedSave());
    clickThroughWindow(button("applyBtn"));
    EXPECT_FALSE(editState->isNeedSave());
    expectMemory(expected);
    startAgain();
    EXPECT_EQ(caption(hotSpot), shown);
    // A start sends the LED mode, which has its own value for the third light.
    expected.images[0][50] = 2;
    expected.images[0][3] = checksumOf(expected.images[0]);
    expectMemory(expected);
  }
};

}  // namespace

TEST_F(AssignRoads, Default) {
  disable(5);
  const Memory before = memory();
  openPanelOf("midleBtn1", false);
  chooseKind("Default");
  finish("midleBtn1", 5, "0940400000", "DPI Level Up", before);
}

TEST_F(AssignRoads, Macro) {
  addMacro(1, "Five", {{0, 0, 10}, {0, 1, 0}});
  EXPECT_TRUE(NerinAction::saveMenuList());
  disable(14);
  Memory before = memory();
  Bytes& macro = before.macros[17];
  const Bytes start = bytesOfHex("b000110004ff01050008460069007600650000");
  std::fill(macro.begin(), macro.end(), 0);
  std::copy(start.begin(), start.end(), macro.begin());
  const Bytes events = bytesOfHex("04010a0084");
  std::copy(events.begin(), events.end(), macro.begin() + 52);
  macro[3] = checksumOf(macro);
  openPanelOf("WhellUpBtn", false);
  chooseKind("Macro Key");
  chooseIn(inPart("tkeyView", "tkeySelBtn"), "Five");
  chooseIn(inPart("tkeyView", "repeatSelBtn"), "Repeat Until Stopped");
  finish("WhellUpBtn", 17, "0604000000", "Five", before);
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.size(), 1U);
}

TEST_F(AssignRoads, MouseFunction) {
  disable(1);
  const Memory before = memory();
  openPanelOf("rightBtn", false);
  chooseKind("Mouse or Key Function");
  chooseIn(inPart("singleKeyView", "selBtn"), "Button 4");
  finish("rightBtn", 1, "0104000000", "Button 4", before);
}

TEST_F(AssignRoads, Key) {
  disable(12);
  const Memory before = memory();
  openPanelOf("leftBtn3", true);
  chooseKind("Mouse or Key Function");
  clickThroughWindow(inPart("singleKeyView", "keybordChk"));
  constexpr std::uint32_t keyK = 37 + 8;
  for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
    QKeyEvent event(type, Qt::Key_K, {}, keyK, 0, 0);
    QApplication::sendEvent(QApplication::focusWidget(), &event);
  }
  finish("leftBtn3", 12, "02000e0000", "K", before);
}

TEST_F(AssignRoads, DpiFunction) {
  disable(7);
  const Memory before = memory();
  openPanelOf("rightBtn1", false);
  chooseKind("DPI Function");
  chooseIn(inPart("sensitivityView", "selBtn"), "Set DPI");
  hitKey(partOf<LXProgressBar>(inChild<QWidget>("subView"), "dpiPro"), Qt::Key_Right);
  finish("rightBtn1", 7, "1041410000", "Set DPI", before);
}

TEST_F(AssignRoads, Launch) {
  disable(15);
  const Memory before = memory();
  m_chosen = "/opt/tool.app";
  openPanelOf("WhellDownBtn", false);
  chooseKind("Launch Program");
  clickThroughWindow(inPart("launchProView", "launchProBtn"));
  finish("WhellDownBtn", 18, "0f00000000", "tool", before);
  EXPECT_EQ(library().getLaunchPath(0, 15), "/opt/tool.app");
}

TEST_F(AssignRoads, Disable) {
  const Memory before = memory();
  openPanelOf("bomBtn2", true);
  chooseKind("Disable");
  finish("bomBtn2", 3, "ff774d0000", "Disable", before);
}

TEST_F(AssignRoads, AButtonThatHoldsAKeyOpensWithTheKeyboardOnTheCapture) {
  openPanelOf("bomBtn2", true);
  EXPECT_TRUE(inChild<SubSingleKeyView>("singleKeyView").hasFocus());
}

TEST_F(AssignRoads, ADpiEditAloneCanBeAppliedAndSurvivesANewStart) {
  openPerformance();
  chooseIn(inChild("levelSelBtn"), "2");
  auto& field = partOf<LXNumberTextField>(inChild<LevelView>("levelView2"), "dpiEdt");
  type(field, "1234");
  pressInChild("okBtn");
  process();
  EXPECT_EQ(child(), nullptr);
  ASSERT_TRUE(button("applyBtn").isEnabled());
  clickThroughWindow(button("applyBtn"));
  EXPECT_EQ(image()[6], 0x21);
  EXPECT_EQ(image()[12], 24);
  EXPECT_EQ(image()[13], 24);
  startAgain();
  EXPECT_EQ(editState->selProfile().dpiLevel, 2U);
  EXPECT_EQ(editState->selProfile().currSelectDPI, 1U);
  EXPECT_EQ(editState->selProfile().xSensArr[1], 24U);
  openPerformance();
  EXPECT_EQ(inChild("levelSelBtn").title(), "2");
  EXPECT_EQ(textOf(partOf<LXNumberTextField>(inChild<LevelView>("levelView2"), "dpiEdt")), "1200");
}

TEST_F(AssignRoads, ARateAndALiftHeightCanBeAppliedAndSurviveANewStart) {
  openPerformance();
  pressInChild("rate125Btn");
  hitKey(inChild<LXProgressBar>("liftPro"), Qt::Key_Home);
  pressInChild("okBtn");
  process();
  clickThroughWindow(button("applyBtn"));
  EXPECT_EQ(image()[4], 8);
  EXPECT_EQ(image()[5], 0x20);
  startAgain();
  EXPECT_EQ(editState->selProfile().poRate, 0U);
  EXPECT_EQ(editState->selProfile().liftHeight, 0U);
}

TEST_F(AssignRoads, NothingThatWasCancelledCanBeApplied) {
  const _Nerin_PROFILE before = editState->selProfile();
  const std::function<void()> ends[] = {[this] { pressInChild("cancelBtn"); },
                                        [this] { QTest::keyClick(child(), Qt::Key_Escape); },
                                        [this] { child()->close(); }};
  const std::string shown = caption("rightBtn");
  for (const auto& end : ends) {
    openPanelOf("rightBtn", false);
    chooseKind("Disable");
    pressInChild("applyBtn");
    EXPECT_EQ(image()[58 + 5], 255);
    end();
    process();
    EXPECT_EQ(child(), nullptr);
    EXPECT_EQ(image()[58 + 5], 1);
    EXPECT_EQ(std::memcmp(&editState->selProfile(), &before, sizeof before), 0);
    EXPECT_EQ(caption("rightBtn"), shown);
    EXPECT_FALSE(button("applyBtn").isEnabled());

    openPerformance();
    pressInChild("rate125Btn");
    EXPECT_EQ(image()[4], 8);
    pressInChild("applyBtn");
    const std::size_t told = posts().size();
    end();
    process();
    EXPECT_EQ(child(), nullptr);
    EXPECT_EQ(image()[4], 8U >> before.poRate);
    EXPECT_EQ(this->told().size(), told + 1);
    EXPECT_EQ(this->told().back(), "122 false");
    EXPECT_EQ(std::memcmp(&editState->selProfile(), &before, sizeof before), 0);
    EXPECT_FALSE(button("applyBtn").isEnabled());
  }
}

TEST_F(AssignRoads, LevelsThatWereKeptUnderACancelledPanelCanBeApplied) {
  openPanelOf("midleBtn1", false);
  onModal<LevelSettingView>([](LXNoTitleWindow&, LevelSettingView& levels) {
    hitKey(partOf<LXProgressBar>(levels, "dpiPro"), Qt::Key_End);
    clickThroughWindow(partOf<LXButton>(levels, "okBtn"));
  });
  clickThroughWindow(inChild("levelSettingBtn"));
  EXPECT_EQ(modals(), 1);
  pressInChild("cancelBtn");
  process();
  ASSERT_TRUE(button("applyBtn").isEnabled());
  clickThroughWindow(button("applyBtn"));
  const std::uint32_t active = editState->selProfile().currSelectDPI;
  EXPECT_EQ(image()[7 + 5 * active], 164);
  EXPECT_EQ(image()[8 + 5 * active], 164);
}

TEST_F(AssignRoads, TheLastPrimaryClickCannotBeLostThroughThePanel) {
  clickThroughWindow(button("goLeftBtn"));
  clickThroughWindow(button("leftClickBtn"));
  EXPECT_EQ(child(), nullptr);
  EXPECT_THAT(m_asked, ElementsAre(testing::Pair("WarningNeedLeft", true)));
}
