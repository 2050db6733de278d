#include <QApplication>
#include <QEnterEvent>
#include <QKeyEvent>
#include <QTimer>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXImageView.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "Kit/Widgets/LXSetpPanelObj.h"
#include "Tests/View/ViewTest.h"
#include "View/ControlFactory.h"
#include "View/MainSubView1.h"
#include "View/PopDialogView.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Kit : public ViewTest {
 protected:
  static void hover(LXButton& button) {
    QEnterEvent enter({1, 1}, {1, 1}, {1, 1});
    QApplication::sendEvent(&button, &enter);
  }
  static void leave(LXButton& button) {
    QEvent event(QEvent::Leave);
    QApplication::sendEvent(&button, &event);
  }
  // Presses a key in the dialog that comes up.
  static void answerWithKey(int key) {
    QTimer::singleShot(0, [key] {
      for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* dialog = widget->findChild<PopDialogView*>(); dialog && widget->isVisible()) {
          QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
          QApplication::sendEvent(dialog, &press);
        }
      }
    });
  }
};

class Delegate : public LXSetpPanelDelegate {
 public:
  bool shouldSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj&) override {
    calls.push_back("should " + std::to_string(newIndex) + " " + std::to_string(oldIndex));
    return allows;
  }
  void onSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj&) override {
    calls.push_back("on " + std::to_string(newIndex) + " " + std::to_string(oldIndex));
  }
  bool allows = true;
  std::vector<std::string> calls;
};

}  // namespace

TEST_F(Kit, AStepPanelAsksAndTells) {
  LXButton first;
  LXButton second;
  QWidget box;
  LXSetpPanelObj panel;
  Delegate delegate;
  panel.addItem(&first);
  panel.addItem(&second, &box);
  panel.setSetpDelegate(&delegate);
  panel.selectindex(2);
  EXPECT_EQ(panel.currentSetp(), 2);
  EXPECT_TRUE(second.isChecked());
  EXPECT_TRUE(box.isVisible());
  panel.selectindex(2);
  panel.selectindex(3);
  panel.selectindex(0);
  EXPECT_THAT(delegate.calls, ElementsAre("should 2 0", "on 2 0"));
  delegate.allows = false;
  first.click();
  EXPECT_EQ(panel.currentSetp(), 2);
  EXPECT_FALSE(first.isChecked());
  EXPECT_TRUE(second.isChecked());
  delegate.calls.clear();
  panel.resetSetp();
  EXPECT_EQ(panel.currentSetp(), 0);
  EXPECT_FALSE(second.isChecked());
  EXPECT_THAT(delegate.calls, IsEmpty());
}

TEST_F(Kit, APictureNameFindsItsStates) {
  beginProgram();
  TavImageView view({736, 456});
  view.setImageByName(QStringLiteral("MainViewSub1_Normal.png"));
  EXPECT_FALSE(view.bgImage().isNull());
  EXPECT_FALSE(view.overImage().isNull());
  EXPECT_FALSE(view.activeImage().isNull());
  EXPECT_FALSE(view.overImage().isLoaded());
  EXPECT_EQ(view.bgImage().size(), QSize(736, 456));
  view.setImageByName(QString());
  EXPECT_FALSE(view.bgImage().isNull());
  TavImageView other({10, 10});
  other.setImageByName(QStringLiteral("MainViewSub1.png"));
  EXPECT_TRUE(other.bgImage().isNull());
  EXPECT_FALSE(other.overImage().isNull());
  EXPECT_EQ(other.frmHeight(), 10);
}

TEST_F(Kit, AButtonMadeBeforeItsParentsPicturesHasNone) {
  beginProgram();
  TavImageView view({736, 456});
  LXButton* early = NerinAction::AddButton({10, 20, 30, 40}, {}, {}, view);
  view.setImageByName(QStringLiteral("MainViewSub1_Normal.png"));
  LXButton* late = NerinAction::AddButton({10, 20, 30, 40}, {}, {}, view);
  EXPECT_TRUE(early->currentImage().isNull());
  EXPECT_EQ(late->currentImage().size(), QSize(30, 40));
  EXPECT_EQ(late->currentImage().pixmap().toImage(),
            view.bgImage().pixmap().copy(10, 20, 30, 40).toImage());
  hover(*late);
  EXPECT_EQ(late->currentImage().pixmap().toImage(),
            view.overImage().pixmap().copy(10, 20, 30, 40).toImage());
}

TEST_F(Kit, NumbersStayWithinTheirLimits) {
  LXNumberTextField field;
  int commits = 0;
  field.setAction([&](LXTextField&) { ++commits; });
  field.setMaxNum(8200);
  field.setMinNum(100);
  field.setValue(400);
  EXPECT_EQ(commits, 0);
  for (const auto& [typed, value] :
       {std::pair{"9000", 8200}, {"5", 100}, {"", 100}, {"99999999999999999999", 8200}}) {
    field.setText(QString::fromLatin1(typed));
    field.setModified(true);
    field.commit();
    EXPECT_EQ(field.text().toInt(), value) << typed;
  }
  EXPECT_EQ(commits, 4);
  field.commit();
  EXPECT_EQ(commits, 4);
}

TEST_F(Kit, OnlyTheUserMovesASliderWithNotice) {
  LXProgressBar bar;
  bar.resize(120, 20);
  int changes = 0;
  bar.setChangeAction([&](LXProgressBar&) { ++changes; });
  bar.setMaxValue(10);
  bar.setValue(4);
  EXPECT_EQ(changes, 0);
  QKeyEvent right(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier);
  QApplication::sendEvent(&bar, &right);
  EXPECT_EQ(bar.value(), 5);
  EXPECT_EQ(changes, 1);
}

TEST_F(Kit, AMessageWithoutAChoiceIsAlwaysOk) {
  beginProgram();
  NerinAction::setPopViewAnswerer({});
  answerWithKey(Qt::Key_Escape);
  EXPECT_TRUE(NerinAction::showPopView("WarningNoItem", false));
}

TEST_F(Kit, AQuestionIsAnsweredByReturnAndEscape) {
  beginProgram();
  NerinAction::setPopViewAnswerer({});
  answerWithKey(Qt::Key_Return);
  EXPECT_TRUE(NerinAction::showPopView("WarningReset", true));
  answerWithKey(Qt::Key_Escape);
  EXPECT_FALSE(NerinAction::showPopView("WarningReset", true));
}

TEST_F(Kit, OnlyAQuestionHasACancelButton) {
  beginProgram();
  PopDialogView question({545, 155}, "WarningReset", std::nullopt, true);
  question.construct();
  PopDialogView notice({545, 155}, "WarningNoItem", "text", false);
  notice.construct();
  ASSERT_NE(question.cancelBtn(), nullptr);
  EXPECT_EQ(question.cancelBtn()->tag(), 6001);
  EXPECT_EQ(question.okBtn()->tag(), 6000);
  EXPECT_EQ(notice.cancelBtn(), nullptr);
  EXPECT_EQ(notice.accessibleName(), QStringLiteral("No profile is selected"));
  EXPECT_EQ(notice.accessibleDescription(), QStringLiteral("Select a profile first"));
}

TEST_F(Kit, TheWheelsMarkerLightsItsThreeCaptions) {
  start();
  auto* map = view().findChild<MainSubView1*>();
  LXButton& marker = button("WhellTagBtn");
  hover(marker);
  EXPECT_EQ(map->currSelectedBtn(), 11);
  EXPECT_FALSE(map->lineImgView()->image().isNull());
  for (const char* name : {"WhellBtn", "WhellUpBtn", "WhellDownBtn"}) {
    EXPECT_TRUE(button(name).isShownOver()) << name;
  }
  EXPECT_FALSE(button("leftClickBtn").isShownOver());
  leave(marker);
  EXPECT_EQ(map->currSelectedBtn(), 0);
  EXPECT_TRUE(map->lineImgView()->image().isNull());
  EXPECT_FALSE(button("WhellBtn").isShownOver());
}

TEST_F(Kit, ACaptionDrawsItsLineAndLightsNoMarker) {
  start();
  auto* map = view().findChild<MainSubView1*>();
  hover(button("rightBtn"));
  EXPECT_EQ(map->currSelectedBtn(), 5);
  EXPECT_FALSE(map->lineImgView()->image().isNull());
  EXPECT_FALSE(button("rightTagBtn").isShownOver());
  leave(button("rightBtn"));
  hover(button("rightTagBtn"));
  EXPECT_TRUE(button("rightBtn").isShownOver());
  click("rightTagBtn");
  EXPECT_EQ(child(), nullptr);
}
