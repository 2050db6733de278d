// The two pictures of the mouse: hovering captions and markers, and leaving them.

#include <QApplication>
#include <QEnterEvent>
#include <QPaintEvent>
#include <QPainter>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXImageView.h"
#include "Tests/Support/ViewTest.h"
#include "View/Main/MainSubView1.h"
#include "View/Main/MainSubView2.h"
#include "View/Screen/Pictures.h"

using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

struct Pair {
  const char* button;
  int pair;
};

struct Marker {
  const char* marker;
  int pair;
  const char* caption;
};

constexpr Pair topCaptions[] = {{"leftClickBtn", 1}, {"WhellUpBtn", 2}, {"WhellBtn", 3},
                                {"WhellDownBtn", 4}, {"rightBtn", 5},   {"rightBtn1", 6},
                                {"rightBtn2", 7},    {"rightBtn3", 8},  {"midleBtn1", 9},
                                {"midleBtn2", 10}};
constexpr Pair sideCaptions[] = {{"leftBtn1", 1}, {"leftBtn2", 2}, {"leftBtn3", 3},
                                 {"leftBtn4", 4}, {"bomBtn1", 5},  {"bomBtn2", 6}};
constexpr Marker topMarkers[] = {
    {"leftClickTagBtn", 1, "leftClickBtn"}, {"rightTagBtn", 5, "rightBtn"},
    {"rightBtnTag1", 6, "rightBtn1"},       {"rightBtnTag2", 7, "rightBtn2"},
    {"rightBtnTag3", 8, "rightBtn3"},       {"midleBtnTag1", 9, "midleBtn1"},
    {"midleBtnTag2", 10, "midleBtn2"}};
constexpr Marker sideMarkers[] = {{"leftBtnTag1", 1, "leftBtn1"}, {"leftBtnTag2", 2, "leftBtn2"},
                                  {"leftBtnTag3", 3, "leftBtn3"}, {"leftBtnTag4", 4, "leftBtn4"},
                                  {"bomBtnTag1", 5, "bomBtn1"},   {"bomBtnTag2", 6, "bomBtn2"}};

// Collects the painted parts of a widget.
class PaintRecorder : public QObject {
 public:
  QRegion region;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint) {
      region += static_cast<QPaintEvent*>(event)->region();
    }
    return QObject::eventFilter(watched, event);
  }
};

class ButtonMap : public ViewTest {
 protected:
  void SetUp() override {
    start();
    m_top = view().findChild<MainSubView1*>();
    m_side = view().findChild<MainSubView2*>();
    ASSERT_NE(m_top, nullptr);
    ASSERT_NE(m_side, nullptr);
  }

  static void hover(LXButton& button) {
    QEnterEvent enter({1, 1}, {1, 1}, {1, 1});
    QApplication::sendEvent(&button, &enter);
  }
  static void leave(LXButton& button) {
    QEvent event(QEvent::Leave);
    QApplication::sendEvent(&button, &event);
  }
  // The buttons of the map with the hovered look.
  static std::vector<std::string> lit(const ButtonMapView& map) {
    std::vector<std::string> names;
    for (const auto* one : map.findChildren<LXButton*>()) {
      if (one->isShownOver()) {
        names.push_back(one->objectName().toStdString());
      }
    }
    return names;
  }
  // Expects that the map shows the picture of that name at its place in the drawing.
  static void expectLine(const ButtonMapView& map, const std::string& name) {
    const LXImage line = pictures::load(QString::fromStdString(name + ".png"));
    ASSERT_EQ(line.size(), map.size()) << name;
    ASSERT_FALSE(map.lineImgView()->image().isNull()) << name;
    QImage expected(map.size(), QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::transparent);
    QPainter painter(&expected);
    line.draw(painter, {0, 0});
    painter.end();
    QImage seen(map.size(), QImage::Format_ARGB32_Premultiplied);
    seen.fill(Qt::transparent);
    map.lineImgView()->render(&seen, map.lineImgView()->pos(), {}, QWidget::DrawChildren);
    EXPECT_EQ(seen, expected) << name;
  }
  static void expectNoLine(const ButtonMapView& map) {
    EXPECT_EQ(map.currSelectedBtn(), 0);
    EXPECT_TRUE(map.lineImgView()->image().isNull());
    EXPECT_THAT(lit(map), IsEmpty());
  }

  void expectCaptionPair(const ButtonMapView& map, const Pair& one, const std::string& line) {
    hover(button(one.button));
    EXPECT_EQ(map.currSelectedBtn(), one.pair) << one.button;
    EXPECT_THAT(lit(map), UnorderedElementsAre(one.button));
    expectLine(map, line + std::to_string(one.pair));
    leave(button(one.button));
    expectNoLine(map);
  }
  void expectMarkerPair(const ButtonMapView& map, const Marker& one, const std::string& line) {
    hover(button(one.marker));
    EXPECT_EQ(map.currSelectedBtn(), one.pair) << one.marker;
    EXPECT_THAT(lit(map), UnorderedElementsAre(one.marker, one.caption));
    expectLine(map, line + std::to_string(one.pair));
    leave(button(one.marker));
    expectNoLine(map);
  }

  MainSubView1* m_top = nullptr;
  MainSubView2* m_side = nullptr;
};

}  // namespace

TEST_F(ButtonMap, ATopCaptionDrawsItsLineAndLightsNoMarker) {
  for (const Pair& one : topCaptions) {
    expectCaptionPair(*m_top, one, "MainView1_Line");
  }
}

TEST_F(ButtonMap, ASideCaptionDrawsItsLineAndLightsNoMarker) {
  for (const Pair& one : sideCaptions) {
    expectCaptionPair(*m_side, one, "MainView2_Line");
  }
}

TEST_F(ButtonMap, ATopMarkerLightsItsCaptionToo) {
  for (const Marker& one : topMarkers) {
    expectMarkerPair(*m_top, one, "MainView1_Line");
  }
}

TEST_F(ButtonMap, ASideMarkerLightsItsCaptionToo) {
  for (const Marker& one : sideMarkers) {
    expectMarkerPair(*m_side, one, "MainView2_Line");
  }
}

TEST_F(ButtonMap, TheWheelsMarkerLightsItsThreeCaptions) {
  hover(button("WhellTagBtn"));
  EXPECT_EQ(m_top->currSelectedBtn(), 11);
  EXPECT_THAT(lit(*m_top),
              UnorderedElementsAre("WhellTagBtn", "WhellBtn", "WhellUpBtn", "WhellDownBtn"));
  expectLine(*m_top, "MainView1_Line11");
  leave(button("WhellTagBtn"));
  expectNoLine(*m_top);
}

TEST_F(ButtonMap, AnotherButtonEndsTheHighlight) {
  hover(button("rightBtn"));
  LXButton other(m_top);
  other.setTag(156);
  m_top->setLightSelImage(other, true);
  EXPECT_EQ(m_top->currSelectedBtn(), 0);
  EXPECT_TRUE(m_top->lineImgView()->image().isNull());
}

TEST_F(ButtonMap, OnlyEnteringAndLeavingCount) {
  QEvent event(QEvent::MouseMove);
  m_top->onMouseEvent(button("rightBtn"), event, LXButtonDelegate::Moved);
  expectNoLine(*m_top);
  hover(button("rightBtn"));
  m_top->onMouseEvent(button("rightBtn"), event, LXButtonDelegate::Moved);
  m_top->onMouseEvent(button("rightBtn"), event, 7);
  EXPECT_EQ(m_top->currSelectedBtn(), 5);
}

TEST_F(ButtonMap, FindsItsButtonsByTheirTags) {
  EXPECT_EQ(m_top->getBtnByTag(142), &button("WhellBtn"));
  EXPECT_EQ(m_top->getBtnByTag(180), &button("WhellTagBtn"));
  EXPECT_EQ(m_top->getBtnByTag(171), nullptr);
  EXPECT_EQ(m_top->getBtnByTag(150), nullptr);
  EXPECT_EQ(m_side->getBtnByTag(155), &button("bomBtn2"));
  EXPECT_EQ(m_side->getBtnByTag(140), nullptr);
}

TEST_F(ButtonMap, HasABlackGround) {
  EXPECT_EQ(m_top->bgColor(), QColor(Qt::black));
  EXPECT_EQ(m_side->bgColor(), QColor(Qt::black));
}

TEST_F(ButtonMap, SendsItsClicksToItsOwnerOnly) {
  class Owner : public TavImageView {
   public:
    Owner() : TavImageView({10, 10}) {}
    void buttonAction(LXButton& sender) override { tags.push_back(sender.tag()); }
    std::vector<int> tags;
  };
  Owner owner;
  MainSubView2 map;
  map.construct();
  map.getBtnByTag(151)->click();
  map.setDelegate(&owner);
  map.getBtnByTag(151)->click();
  map.getBtnByTag(158)->click();
  EXPECT_THAT(owner.tags, testing::ElementsAre(151, 158));
}

TEST_F(ButtonMap, HoveringRepaintsTheButtonAndItsLineOnly) {
  process();
  PaintRecorder recorder;
  m_top->installEventFilter(&recorder);
  hover(button("rightBtn"));
  process();
  m_top->removeEventFilter(&recorder);
  ASSERT_FALSE(recorder.region.isEmpty());
  const QRegion line = recorder.region - button("rightBtn").geometry();
  const QSize size = m_top->lineImgView()->image().size();
  EXPECT_LE(line.boundingRect().width(), size.width());
  EXPECT_LE(line.boundingRect().height(), size.height());
}

TEST_F(ButtonMap, ACaptionWithTheKeyboardDrawsItsLineAndLightsItsMarker) {
  QApplication::setActiveWindow(&window());
  for (const Marker& one : topMarkers) {
    button(one.caption).setFocus(Qt::TabFocusReason);
    expectLine(*m_top, "MainView1_Line" + std::to_string(one.pair));
    EXPECT_THAT(lit(*m_top), UnorderedElementsAre(one.marker));
  }
  button("WhellUpBtn").setFocus(Qt::TabFocusReason);
  expectLine(*m_top, "MainView1_Line2");
  EXPECT_THAT(lit(*m_top), UnorderedElementsAre("WhellTagBtn"));
  button("applyBtn").setFocus(Qt::TabFocusReason);
  button("menuBtn").setFocus(Qt::TabFocusReason);
  expectNoLine(*m_top);
}

TEST_F(ButtonMap, ThePointerShowsItsOwnPairAndGivesTheFocusedOneBack) {
  QApplication::setActiveWindow(&window());
  button("leftClickBtn").setFocus(Qt::TabFocusReason);
  hover(button("rightBtn"));
  expectLine(*m_top, "MainView1_Line5");
  leave(button("rightBtn"));
  expectLine(*m_top, "MainView1_Line1");
}

TEST_F(ButtonMap, ACaptionThatWasClickedDrawsNoLineOnceThePointerIsGone) {
  QApplication::setActiveWindow(&window());
  button("leftClickBtn").setFocus(Qt::MouseFocusReason);
  expectNoLine(*m_top);
}
