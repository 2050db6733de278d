// The way of the Tab key through the main window, and where the keyboard is after a deed.

#include <QApplication>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>

#include "Action/Library/ProfieController.h"
#include "Tests/Support/ViewTest.h"

using testing::ElementsAreArray;

namespace {

class Focus : public ViewTest {
 protected:
  void begin() {
    start();
    QApplication::setActiveWindow(&window());
  }
  static std::string focused() {
    const QWidget* widget = QApplication::focusWidget();
    return widget == nullptr ? "" : widget->objectName().toStdString();
  }
  // The controls from `first` until the way comes back to it.
  std::vector<std::string> way(const char* first) {
    std::vector<std::string> names;
    button(first).setFocus(Qt::TabFocusReason);
    do {
      names.push_back(focused());
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    } while (focused() != first && names.size() < 100);
    return names;
  }
};

}  // namespace

TEST_F(Focus, TabGoesThroughTheWindowInTheOrderOfTheWork) {
  begin();
  click("profileNewBtn");
  click("linkProChk");
  EXPECT_THAT(way("profile1Btn"), ElementsAreArray({"profile1Btn",
                                                    "goLeftBtn",
                                                    "leftClickBtn",
                                                    "WhellUpBtn",
                                                    "WhellBtn",
                                                    "WhellDownBtn",
                                                    "rightBtn",
                                                    "rightBtn1",
                                                    "rightBtn2",
                                                    "rightBtn3",
                                                    "midleBtn1",
                                                    "midleBtn2",
                                                    "currProfileBtn",
                                                    "profileNewBtn",
                                                    "profileSaveBtn",
                                                    "profileDelBtn",
                                                    "profileImportBtn",
                                                    "profileExportBtn",
                                                    "profileNameTxt",
                                                    "normalModeBtn",
                                                    "MacroSettingBtn",
                                                    "preformanceBtn",
                                                    "lightOptionBtn",
                                                    "linkProChk",
                                                    "linkProBtn",
                                                    "reDefBtn",
                                                    "applyBtn",
                                                    "changesBtn",
                                                    "okBtn",
                                                    "cancelBtn",
                                                    "menuBtn",
                                                    "homeBtn",
                                                    "helpBtn",
                                                    "closeBtn"}));
}

TEST_F(Focus, TheCaptionsOfTheOtherPictureTakeTheirPlace) {
  begin();
  click("goRightBtn");
  const auto names = way("goRightBtn");
  ASSERT_GT(names.size(), 8U);
  EXPECT_THAT(std::vector<std::string>(names.begin() + 1, names.begin() + 8),
              ElementsAreArray({"leftBtn1", "leftBtn2", "leftBtn3", "leftBtn4", "bomBtn1",
                                "bomBtn2", "currProfileBtn"}));
}

TEST_F(Focus, ANewProfileIsNamedNext) {
  begin();
  for (const char* name : {"profileNewBtn", "profileSaveBtn"}) {
    button("closeBtn").setFocus(Qt::TabFocusReason);
    click(name);
    EXPECT_EQ(focused(), "profileNameTxt");
    const auto* field = view().findChild<QLineEdit*>(QStringLiteral("profileNameTxt"));
    EXPECT_EQ(field->selectedText(), field->text());
    click("applyBtn");
  }
}

TEST_F(Focus, AfterDeletingTheNextProfileIsSelected) {
  begin();
  click("profileNewBtn");
  click("applyBtn");
  button("profileDelBtn").setFocus(Qt::TabFocusReason);
  click("profileDelBtn");
  EXPECT_EQ(focused(), "currProfileBtn");
  // The way back leads to the undo in the footer too.
  auto* undo = view().findChild<QPushButton*>(QStringLiteral("statusOffer"));
  ASSERT_TRUE(undo->isVisible());
  const auto names = way("profile1Btn");
  EXPECT_THAT(names, testing::Contains("statusOffer"));
}
