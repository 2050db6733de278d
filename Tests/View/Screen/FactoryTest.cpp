// The base of the screens, and the functions that create their controls.

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>

#include <gmock/gmock.h>

#include "Action/Texts/TooltipManager.h"
#include "Kit/Core/LXMenuData.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Tests/Support/ViewTest.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/TavImageView.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A screen that records its calls.
class Screen : public TavImageView {
 public:
  using TavImageView::setBgImage;
  using TavImageView::TavImageView;

  void onNumTextChange(LXNumberTextField& sender) override { numbers.push_back(sender.value()); }
  void refreshData() override { calls.emplace_back("refreshData"); }

  std::vector<std::string> calls;
  std::vector<int> numbers;

 protected:
  void initData() override { calls.emplace_back("initData"); }
  void initControls() override { calls.emplace_back("initControls"); }
  void initNotify() override { calls.emplace_back("initNotify"); }
  void deallocNotify() override { calls.emplace_back("deallocNotify"); }
};

class Factory : public ViewTest {
 protected:
  // Writes pictures, each in the color that is listed with its name.
  void putPictures(const std::vector<std::pair<const char*, QColor>>& pictures) {
    const auto folder = home() / "pictures";
    std::filesystem::create_directories(folder);
    for (const auto& [name, color] : pictures) {
      QImage image(40, 30, QImage::Format_ARGB32);
      image.fill(color);
      ASSERT_TRUE(image.save(QString::fromStdString((folder / name).string()), "PNG"));
    }
    setResourceFolder(folder);
  }
  static QColor colorOf(const LXImage& image) {
    return image.isNull() ? QColor() : image.pixmap().toImage().pixelColor(0, 0);
  }
  static std::shared_ptr<LXTreeNode> menuOf(const std::vector<std::string>& titles) {
    auto root = std::make_shared<LXTreeNode>();
    for (const std::string& title : titles) {
      auto entry = std::make_shared<LXMenuData>();
      entry->setTitleStr(title);
      root->addChild(entry);
    }
    return root;
  }
};

class MenuDelegate : public LXMenulistDelegate {
 public:
  void onMenulistSelected(LXMenulist& list, const std::shared_ptr<LXTreeNode>& selNode) override {
    wasOpen = list.isShowMenu();
    chosen.push_back(selNode->nodeData()->titleStr());
  }
  bool wasOpen = false;
  std::vector<std::string> chosen;
};

constexpr QColor red(255, 0, 0);
constexpr QColor green(0, 255, 0);
constexpr QColor blue(0, 0, 255);
constexpr QColor grey(128, 128, 128);
constexpr QColor white(255, 255, 255);

}  // namespace

TEST_F(Factory, AScreenIsBuiltInOrderAndObservesOnceItIsPlaced) {
  QWidget window;
  QWidget other;
  auto* screen = new Screen({40, 30});
  screen->construct();
  EXPECT_THAT(screen->calls, ElementsAre("initData", "initControls", "refreshData"));
  EXPECT_EQ(screen->frmHeight(), 30);
  EXPECT_EQ(screen->bgColor(), QColor(Qt::transparent));
  EXPECT_FALSE(screen->isAddNotify());
  screen->calls.clear();
  screen->setParent(&window);
  screen->setParent(&other);
  screen->setParent(&window);
  EXPECT_TRUE(screen->isAddNotify());
  EXPECT_THAT(screen->calls, ElementsAre("initNotify"));
  screen->setParent(nullptr);
  EXPECT_FALSE(screen->isAddNotify());
  screen->setParent(&other);
  EXPECT_THAT(screen->calls, ElementsAre("initNotify", "deallocNotify", "initNotify"));
}

TEST_F(Factory, AScreenBuiltInItsParentObservesAfterItsData) {
  QWidget window;
  auto* screen = new Screen({40, 30}, &window);
  screen->construct();
  EXPECT_THAT(screen->calls, ElementsAre("initData", "initControls", "refreshData", "initNotify"));
}

TEST_F(Factory, AScreenDrawsItsPictureOverItsColor) {
  Screen screen({40, 30});
  QPixmap half(20, 30);
  half.fill(red);
  screen.setBgImage(LXImage(half));
  screen.setBgColor(blue);
  const QImage drawn = screen.grab().toImage();
  EXPECT_EQ(drawn.pixelColor(5, 5), red);
  EXPECT_EQ(drawn.pixelColor(30, 5), blue);
}

TEST_F(Factory, APictureNameFindsItsStates) {
  putPictures({{"Screen_Normal.png", red},
               {"Screen_Over.png", green},
               {"Screen_Down.png", blue},
               {"Screen_Disable.png", grey},
               {"Screen_Active.png", white}});
  Screen screen({40, 30});
  screen.setImageByName(QStringLiteral("Screen_Normal.png"));
  EXPECT_EQ(colorOf(screen.bgImage()), red);
  EXPECT_EQ(colorOf(screen.overImage()), green);
  EXPECT_EQ(colorOf(screen.downImage()), blue);
  EXPECT_EQ(colorOf(screen.disableImage()), grey);
  EXPECT_EQ(colorOf(screen.activeImage()), white);
  screen.setImageByName(QString());
  EXPECT_EQ(colorOf(screen.bgImage()), red);
}

TEST_F(Factory, TheStemEndsAtTheFirstUnderscore) {
  putPictures({{"Screen_Big_Normal.png", red}, {"Screen_Over.png", green}});
  Screen screen({40, 30});
  screen.setImageByName(QStringLiteral("Screen_Big_Normal.png"));
  EXPECT_EQ(colorOf(screen.bgImage()), red);
  EXPECT_EQ(colorOf(screen.overImage()), green);
  EXPECT_TRUE(screen.downImage().isNull());
}

TEST_F(Factory, ANameWithoutAnUnderscoreIsItsOwnStem) {
  putPictures({{"Screen.png", red}, {"Screen_Down.png", blue}});
  Screen screen({40, 30});
  screen.setImageByName(QStringLiteral("Screen.png"));
  EXPECT_EQ(colorOf(screen.bgImage()), red);
  EXPECT_EQ(colorOf(screen.downImage()), blue);
  EXPECT_TRUE(screen.overImage().isNull());
}

TEST_F(Factory, AButtonShowsTheSlicesUnderIt) {
  beginProgram();
  TavImageView screen({736, 456});
  LXButton* early = NerinAction::AddButton({10, 20, 30, 40}, {}, {}, screen);
  screen.setImageByName(QStringLiteral("MainViewSub1_Normal.png"));
  LXButton* late = NerinAction::AddButton({10, 20, 30, 40}, {}, {}, screen);
  EXPECT_TRUE(early->currentImage().isNull());
  EXPECT_EQ(late->parent(), &screen);
  EXPECT_EQ(late->geometry(), QRect(10, 20, 30, 40));
  const auto slice = [](const LXImage& image) {
    return image.pixmap().copy(10, 20, 30, 40).toImage();
  };
  EXPECT_EQ(late->images().normal.pixmap().toImage(), slice(screen.bgImage()));
  EXPECT_EQ(late->images().over.pixmap().toImage(), slice(screen.overImage()));
  EXPECT_EQ(late->images().hight.pixmap().toImage(), slice(screen.downImage()));
  EXPECT_EQ(late->images().disable.pixmap().toImage(), slice(screen.disableImage()));
  EXPECT_FALSE(late->isCheckBox());
  EXPECT_TRUE(NerinAction::AddCheckBox({0, 0, 20, 20}, {}, {}, screen)->isCheckBox());
}

TEST_F(Factory, ASliceIsThatPartOfThePicture) {
  QPixmap picture(20, 20);
  picture.fill(red);
  QPainter(&picture).fillRect(10, 0, 10, 20, green);
  const LXImage part = NerinAction::GetImageFromRect(LXImage(picture), {8, 5, 4, 6});
  EXPECT_EQ(part.size(), QSize(4, 6));
  EXPECT_EQ(part.pixmap().toImage().pixelColor(1, 0), red);
  EXPECT_EQ(part.pixmap().toImage().pixelColor(2, 0), green);
  EXPECT_TRUE(NerinAction::GetImageFromRect(LXImage(), {8, 5, 4, 6}).isNull());
}

TEST_F(Factory, AButtonMayHavePicturesOfItsOwn) {
  putPictures({{"Own_Normal.png", red},
               {"Own_Over.png", green},
               {"Own_Down.png", blue},
               {"Own_Disable.png", grey}});
  Screen screen({40, 30});
  LXButton* button = NerinAction::AddButton({0, 0, 40, 30}, {}, {}, screen);
  NerinAction::setBtnNoanomaly(*button, QString(), screen);
  EXPECT_FALSE(button->isNoanomaly());
  EXPECT_TRUE(button->images().normal.isNull());
  NerinAction::setBtnNoanomaly(*button, QStringLiteral("Own"), screen);
  EXPECT_TRUE(button->isNoanomaly());
  EXPECT_EQ(colorOf(button->images().normal), red);
  EXPECT_EQ(colorOf(button->images().over), green);
  EXPECT_EQ(colorOf(button->images().hight), blue);
  EXPECT_EQ(colorOf(button->images().disable), grey);
}

TEST_F(Factory, TextFieldsAreWhiteArialAndLabelsCannotBeEdited) {
  QWidget parent;
  for (const LXTextField* field : {NerinAction::AddTextField({1, 2, 80, 20}, parent),
                                   NerinAction::AddLabTextField({1, 2, 80, 20}, parent)}) {
    EXPECT_EQ(field->geometry(), QRect(1, 2, 80, 20));
    EXPECT_EQ(field->palette().color(QPalette::Text), white);
    EXPECT_EQ(field->font().family(), QStringLiteral("Arial"));
    EXPECT_EQ(field->font().pixelSize(), 12);
    EXPECT_TRUE(field->alignment() & Qt::AlignLeft);
  }
  EXPECT_FALSE(NerinAction::AddTextField({0, 0, 80, 20}, parent)->isReadOnly());
  EXPECT_TRUE(NerinAction::AddLabTextField({0, 0, 80, 20}, parent)->isReadOnly());
}

TEST_F(Factory, ANumberFieldTellsItsScreenOfCommits) {
  Screen screen({200, 100});
  LXNumberTextField* field =
      NerinAction::AddNumTextField({0, 0, 80, 20}, screen, 5000, 10, 4, false);
  EXPECT_EQ(field->text(), QStringLiteral("10"));
  EXPECT_EQ(field->maxNum(), 5000);
  EXPECT_EQ(field->minNum(), 10);
  EXPECT_EQ(field->maxLength(), 4);
  EXPECT_THAT(screen.numbers, IsEmpty());
  field->clear();
  for (const int key : {Qt::Key_Minus, Qt::Key_7, Qt::Key_A, Qt::Key_0, Qt::Key_0, Qt::Key_0,
                        Qt::Key_1, Qt::Key_Return}) {
    const QString text = key == Qt::Key_Return ? QString() : QString(QChar(key));
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(field, &press);
  }
  EXPECT_EQ(field->text(), QStringLiteral("5000"));
  EXPECT_THAT(screen.numbers, ElementsAre(5000));
  LXNumberTextField* negative =
      NerinAction::AddNumTextField({0, 0, 80, 20}, screen, 50, -50, 3, true);
  negative->clear();
  for (const int key : {Qt::Key_Minus, Qt::Key_9, Qt::Key_Minus, Qt::Key_9, Qt::Key_9}) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, QString(QChar(key)));
    QApplication::sendEvent(negative, &press);
  }
  EXPECT_EQ(negative->text(), QStringLiteral("-99"));
  negative->commit();
  EXPECT_EQ(negative->text(), QStringLiteral("-50"));
}

TEST_F(Factory, ASliderShowsItsGroundAndTellsOfTheUsersChanges) {
  Screen screen({200, 100});
  QPixmap ground(200, 100);
  ground.fill(grey);
  screen.setBgImage(LXImage(ground));
  QPixmap knob(10, 20);
  knob.fill(red);
  int changes = 0;
  LXProgressBar* bar = NerinAction::AddProBar(
      {20, 30, 110, 20}, [&](LXProgressBar&) { ++changes; }, screen, LXImage(knob), 100, 0);
  EXPECT_EQ(bar->barStyle(), 1);
  EXPECT_EQ(bar->minimum(), 0);
  EXPECT_EQ(bar->maximum(), 100);
  bar->setValue(50);
  EXPECT_EQ(changes, 0);
  const QImage drawn = bar->grab().toImage();
  EXPECT_EQ(bar->indicatePosition(), 55);
  EXPECT_EQ(drawn.pixelColor(bar->indicateRect().center()), red);
  EXPECT_EQ(drawn.pixelColor(5, 10), grey);
  QKeyEvent right(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier);
  QApplication::sendEvent(bar, &right);
  EXPECT_EQ(bar->value(), 51);
  EXPECT_EQ(changes, 1);
}

TEST_F(Factory, AMenuIsMadeOnceAndThenOnlyFilled) {
  std::unique_ptr<LXMenulist> list;
  MenuDelegate first;
  MenuDelegate second;
  NerinAction::refreshMenuListData(list, &first, nullptr, 188);
  EXPECT_EQ(list, nullptr);
  NerinAction::refreshMenuListData(list, &first, menuOf({"one"}), 188);
  ASSERT_NE(list, nullptr);
  const LXMenulist* made = list.get();
  NerinAction::refreshMenuListData(list, &second, menuOf({"two", "three"}), 99);
  EXPECT_EQ(list.get(), made);
  EXPECT_EQ(list->menuDelegate(), &first);
  EXPECT_EQ(list->menuWidth(), 188);
  EXPECT_EQ(list->count(), 2);
  NerinAction::refreshMenuListData(list, &second, nullptr, 99);
  EXPECT_EQ(list->count(), 2);
}

TEST_F(Factory, AMenuIsWhiteOnGreyAndTheSelectedEntryRed) {
  std::unique_ptr<LXMenulist> list;
  NerinAction::refreshMenuListData(list, nullptr, menuOf({"one", "two"}), 188);
  list->showMenulist({0, 0}, 0);
  EXPECT_EQ(list->width(), 188);
  EXPECT_EQ(list->font().pixelSize(), 12);
  EXPECT_EQ(list->item(0)->textAlignment(), Qt::AlignCenter);
  const QImage drawn = list->grab().toImage();
  const QRect selected = list->visualItemRect(list->item(0));
  const QRect plain = list->visualItemRect(list->item(1));
  EXPECT_EQ(drawn.pixelColor(selected.topLeft() + QPoint(4, 4)), QColor(0x7D, 0x06, 0x08));
  EXPECT_EQ(drawn.pixelColor(plain.topLeft() + QPoint(4, 4)), QColor(0x39, 0x39, 0x39));
  list->hideMenulist();
  EXPECT_FALSE(list->isShowMenu());
}

TEST_F(Factory, AMenuStaysOnTheScreen) {
  std::unique_ptr<LXMenulist> list;
  NerinAction::refreshMenuListData(list, nullptr, menuOf({"one", "two"}), 188);
  const QRect room = QApplication::primaryScreen()->availableGeometry();
  list->showMenulist(room.bottomRight());
  EXPECT_TRUE(room.contains(list->geometry()));
  list->hideMenulist();
  list->showMenulist(room.topLeft() - QPoint(50, 50));
  EXPECT_TRUE(room.contains(list->geometry()));
  list->hideMenulist();
}

TEST_F(Factory, AMenuOpensAtItsButtonAndTellsWhatWasChosen) {
  start();
  std::unique_ptr<LXMenulist> list;
  MenuDelegate delegate;
  NerinAction::showMenulistWithBtn(button("currProfileBtn"), nullptr);
  NerinAction::refreshMenuListData(list, &delegate, menuOf({}), 188);
  NerinAction::refreshMenuListData(list, &delegate, menuOf({"one", "two"}), 188);
  window().move(0, 0);
  button("currProfileBtn").setTitle(QStringLiteral("one"));
  NerinAction::showMenulistWithBtn(button("currProfileBtn"), list.get());
  ASSERT_TRUE(list->isShowMenu());
  QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
  QApplication::sendEvent(list.get(), &down);
  QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
  QApplication::sendEvent(list.get(), &enter);
  EXPECT_THAT(delegate.chosen, ElementsAre("two"));
  EXPECT_FALSE(delegate.wasOpen);
  NerinAction::showMenulistWithBtn(button("currProfileBtn"), list.get());
  QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
  QApplication::sendEvent(list.get(), &escape);
  EXPECT_FALSE(list->isShowMenu());
  EXPECT_EQ(delegate.chosen.size(), 1U);
}
