// The four zones of the LED window: selection, line, color and history.

#include <QEnterEvent>
#include <QPixmap>
#include <QTest>
#include <cstring>

#include <gmock/gmock.h>

#include "Tests/View/Lights/LightTest.h"
#include "View/Windows/LocalNotifications.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct Zone {
  const char* button;
  const char* marker;
  const char* line;
  int number;
  int buttonTag;
  int markerTag;
};

std::ostream& operator<<(std::ostream& out, const Zone& zone) {
  return out << zone.button;
}

const Zone zones[] = {
    {"midLightBtn", "midLightTagBtn", "midImgView", 1, 230, 240},
    {"reProfileLightBtn", "reProfileLightTagBtn", "reProfileImgView", 2, 231, 241},
    {"logoLightBtn", "logoLightTagBtn", "logoImgView", 3, 232, 242},
    {"leftLightBtn", "leftLightTagBtn", "leftImgView", 4, 233, 243},
};

const LightColor red{1, 0, 0};
const LightColor green{0, 1, 0};
const LightColor blue{0, 0, 1};

class LightZones : public LightTest, public testing::WithParamInterface<Zone> {
 protected:
  // The zones with a visible line.
  std::vector<int> lines() {
    std::vector<int> all;
    for (const Zone& zone : zones) {
      if (hasLine(zone.line)) {
        all.push_back(zone.number);
      }
    }
    return all;
  }
  QColor before() { return part<LXColorView>("beforeColorView").color(); }
  QColor after() { return part<LXColorView>("afterColorView").color(); }
  void hover(const char* button, bool isIn) {
    const QPointF place(3, 3);
    QEnterEvent entered(place, place, place);
    QEvent left(QEvent::Leave);
    QCoreApplication::sendEvent(&control(button), isIn ? &entered : &left);
  }
  static QColor shown(const _LightColorInfo& color) {
    return {static_cast<int>(color.cR), static_cast<int>(color.cG), static_cast<int>(color.cB)};
  }
  const Zone& other() const { return zones[GetParam().number % 4]; }
  static bool isSameProfile(const _Nerin_PROFILE& one, const _Nerin_PROFILE& two) {
    return std::memcmp(&one, &two, sizeof one) == 0;
  }
};

}  // namespace

TEST_P(LightZones, HasAButtonAMarkerAndALine) {
  open();
  const Zone& zone = GetParam();
  EXPECT_EQ(control(zone.button).btnTag(), zone.buttonTag);
  EXPECT_EQ(control(zone.marker).btnTag(), zone.markerTag);
  for (const char* name : {zone.button, zone.marker}) {
    EXPECT_EQ(control(name).toolTip(), "Color adjustment") << name;
    EXPECT_FALSE(control(name).accessibleName().isEmpty()) << name;
    EXPECT_TRUE(control(name).isStepItem()) << name;
  }
  // The button shows only its color.
  const auto& images = control(zone.button).images();
  EXPECT_TRUE(images.normal.isNull() && images.over.isNull() && images.hight.isNull() &&
              images.disable.isNull() && images.active.isNull());
  light().setLineImage(zone.number, true);
  EXPECT_THAT(lines(), ElementsAre(zone.number));
  const QPixmap picture(
      QStringLiteral(NERIN_RESOURCES "/LightOptionView_Line%1.png").arg(zone.number));
  ASSERT_FALSE(picture.isNull());
  EXPECT_TRUE(part<LXImageView>(zone.line).image().pixmap().toImage() == picture.toImage());
  light().setLineImage(zone.number, false);
  EXPECT_THAT(lines(), IsEmpty());
}

TEST_P(LightZones, IsChosenByItsButtonAndByItsMarker) {
  const Zone& zone = GetParam();
  for (const bool byMarker : {false, true}) {
    open();
    const char* one = byMarker ? zone.marker : zone.button;
    const char* twin = byMarker ? zone.button : zone.marker;
    press(one);
    EXPECT_EQ(light().currSelectedIndex(), zone.number);
    EXPECT_THAT(lines(), ElementsAre(zone.number));
    EXPECT_TRUE(control(one).isChecked());
    EXPECT_FALSE(control(twin).isChecked());
    // Select the same zone again, in the other group and in its own.
    press(twin);
    EXPECT_EQ(light().currSelectedIndex(), zone.number);
    EXPECT_TRUE(control(twin).isChecked());
    EXPECT_FALSE(control(one).isChecked());
    press(one);
    EXPECT_TRUE(control(one).isChecked());
    press(one);
    EXPECT_THAT(lines(), ElementsAre(zone.number));
    // Select another zone, then the first again.
    press(byMarker ? other().button : other().marker);
    EXPECT_EQ(light().currSelectedIndex(), other().number);
    EXPECT_THAT(lines(), ElementsAre(other().number));
    press(one);
    EXPECT_EQ(light().currSelectedIndex(), zone.number);
    EXPECT_THAT(lines(), ElementsAre(zone.number));
    EXPECT_THAT(sent(), IsEmpty());
  }
}

TEST_P(LightZones, ItsColorIsPaintedInItsPlace) {
  open();
  const Zone& zone = GetParam();
  const int index = zone.number - 1;
  const auto pixel = [&](const QPoint& place) {
    const QImage picture = light().grab().toImage();
    return picture.pixelColor(place);
  };
  const QRect well = control(zone.button).geometry();
  EXPECT_EQ(pixel(well.center()), shown(editState->selProfile().lightColorArr[index]));
  press(zone.button);
  for (const LightColor& color : {red, LightColor{0, 0, 0}, LightColor{1, 1, 1}}) {
    light().onChangeColorPro(color);
    process();
    EXPECT_EQ(pixel(well.center()), color.shown());
    EXPECT_EQ(pixel(well.center() + QPoint(well.width() / 2 - 7, 0)), color.shown());
    EXPECT_EQ(pixel(control(other().button).geometry().center()),
              shown(editState->selProfile().lightColorArr[other().number - 1]));
  }
  // The frame has round corners, which do not show the color.
  const QColor corner = pixel(well.topLeft() + QPoint(4, 4));
  const QColor edge = pixel(well.topLeft() + QPoint(1, well.height() / 2));
  light().onChangeColorPro(blue);
  process();
  EXPECT_LT(pixel(well.topLeft() + QPoint(4, 4)).blue(), 200);
  EXPECT_LT(corner.green(), 200);
  EXPECT_EQ(pixel(well.topLeft() + QPoint(1, well.height() / 2)), edge);
}

TEST_P(LightZones, TheColorGoesToItsOwnPlaceInTheProfile) {
  open();
  const Zone& zone = GetParam();
  _Nerin_PROFILE expected = editState->selProfile();
  expected.lightColorArr[zone.number - 1] = {255, 127, 64};
  press(zone.marker);
  light().OnColorChange(nullptr, {1.0, 0.5, 0.25});
  EXPECT_TRUE(isSameProfile(editState->currSetProfile(), expected));
  press("applyBtn");
  EXPECT_EQ(sent(), colorCommands(expected));
}

TEST_P(LightZones, HoveringShowsItsLineUnlessItIsChosen) {
  open();
  const Zone& zone = GetParam();
  press(other().button);
  for (const char* name : {zone.button, zone.marker}) {
    hover(name, true);
    EXPECT_EQ(light().currShowIndex(), zone.number);
    EXPECT_THAT(lines(), testing::UnorderedElementsAre(zone.number, other().number)) << name;
    hover(name, false);
    EXPECT_THAT(lines(), ElementsAre(other().number)) << name;
  }
  EXPECT_EQ(light().currSelectedIndex(), other().number);
  press(zone.button);
  for (const char* name : {zone.button, zone.marker}) {
    hover(name, true);
    EXPECT_THAT(lines(), ElementsAre(zone.number)) << name;
    hover(name, false);
    EXPECT_THAT(lines(), ElementsAre(zone.number)) << name;
  }
}

TEST_P(LightZones, OtherReportsOfThePointerShowNothing) {
  open();
  QEvent event(QEvent::None);
  for (const int type : {0, 2, 4, 5, 6, 7, 8, 9, 10}) {
    light().onMouseEvent(control(GetParam().button), event, type);
    EXPECT_THAT(lines(), IsEmpty()) << type;
  }
  light().onMouseEvent(control(GetParam().button), event, 1);
  for (const int type : {0, 2, 4, 5, 6, 7, 8, 9, 10}) {
    light().onMouseEvent(control(GetParam().button), event, type);
    EXPECT_THAT(lines(), ElementsAre(GetParam().number)) << type;
  }
  light().onMouseEvent(control(GetParam().button), event, 3);
  EXPECT_THAT(lines(), IsEmpty());
}

TEST_P(LightZones, ItsHistoryIsWhatItWasAndWhatItIs) {
  open();
  const Zone& zone = GetParam();
  const QColor filled = shown(editState->selProfile().lightColorArr[zone.number - 1]);
  press(zone.button);
  EXPECT_EQ(before(), QColor(Qt::black));
  EXPECT_EQ(after(), filled);
  light().onChangeColorPro(red);
  EXPECT_EQ(before(), filled);
  EXPECT_EQ(after(), red.shown());
  light().onChangeColorPro(green);
  EXPECT_EQ(before(), red.shown());
  EXPECT_EQ(after(), green.shown());
  // Selecting the same zone by its marker changes nothing visible.
  press(zone.marker);
  EXPECT_EQ(before(), red.shown());
  EXPECT_EQ(after(), green.shown());
  press(other().button);
  EXPECT_EQ(before(), QColor(Qt::black));
  EXPECT_EQ(after(), shown(editState->selProfile().lightColorArr[other().number - 1]));
  press(zone.button);
  // The last zone keeps its original history, although its color changed.
  const bool isLast = zone.number == 4;
  EXPECT_EQ(before(), isLast ? QColor(Qt::black) : red.shown());
  EXPECT_EQ(after(), isLast ? filled : green.shown());
  expectColor(color(zone.number - 1), 0, 255, 0);
}

INSTANTIATE_TEST_SUITE_P(Every, LightZones, testing::ValuesIn(zones),
                         [](const auto& test) { return std::string(test.param.button); });

TEST_F(LightZones, ItsButtonsHaveTheirTagsAndTexts) {
  open();
  struct Row {
    const char* name;
    int tag;
    const char* text;
  };
  for (const Row& row : {Row{"applyBtn", 234, "Apply"}, Row{"cancelBtn", 235, "Cancel"},
                         Row{"okBtn", 236, "Close"}}) {
    EXPECT_EQ(control(row.name).tag(), row.tag) << row.name;
    EXPECT_EQ(control(row.name).toolTip(), row.text) << row.name;
    EXPECT_EQ(control(row.name).accessibleName(), row.text) << row.name;
    EXPECT_TRUE(control(row.name).isEnabled()) << row.name;
  }
  EXPECT_EQ(light().findChildren<LXButton*>().size(), 11);
}

TEST_F(LightZones, OtherTagsDoNothing) {
  open();
  LXButton stranger;
  QEvent event(QEvent::None);
  for (const int tag : {0, 229, 230, 233, 237, 239, 240, 244}) {
    stranger.setTag(tag);
    light().buttonAction(stranger);
    stranger.setBtnTag(tag >= 230 && tag <= 243 ? 300 : tag);
    light().onMouseEvent(stranger, event, 1);
    EXPECT_EQ(light().currShowIndex(), 0) << tag;
    EXPECT_THAT(lines(), IsEmpty()) << tag;
  }
  for (const int zone : {-1, 0, 5, 1000}) {
    light().setLineImage(zone, true);
    EXPECT_THAT(lines(), IsEmpty()) << zone;
  }
  EXPECT_TRUE(isOpen());
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(LightZones, FillingTakesTheWholeProfile) {
  editState->edit().poRate = 3;
  editState->edit().modeType = 1;
  editState->clearNeedSave();
  std::memset(&editState->currSetProfile(), 0x77, sizeof editState->currSetProfile());
  open();
  EXPECT_TRUE(isSameProfile(editState->currSetProfile(), editState->selProfile()));
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(light().historyColorDir().at("bColor" + std::to_string(i)), LightColor());
    EXPECT_EQ(light().historyColorDir().at("aColor" + std::to_string(i)),
              LightView::getColorPro(editState->selProfile().lightColorArr[i]));
  }
  EXPECT_EQ(light().historyColorDir().size(), 8U);
  EXPECT_THAT(lines(), IsEmpty());
  EXPECT_FALSE(editState->isNeedSave());
}

TEST_F(LightZones, ColorsAreTakenWhileItIsFilled) {
  editState->currSetProfile() = {};
  LightView unfilled;
  unfilled.construct();
  EXPECT_FALSE(unfilled.isOverFill());
  unfilled.onSelectIndex(1, 0, *unfilled.findChild<LXSetpPanelObj*>());
  unfilled.onChangeColorPro(red);
  unfilled.OnColorChange(nullptr, red);
  EXPECT_EQ(unfilled.afterColor(), LightColor());
  expectColor(color(0), 0, 0, 0);
  for (const char* end : {"okBtn", "cancelBtn"}) {
    open();
    press("midLightBtn");
    press(end);
    EXPECT_FALSE(light().isOverFill()) << end;
    light().OnColorChange(nullptr, red);
    expectColor(color(0), 10, 20, 30);
  }
}

TEST_F(LightZones, WithoutAZoneOnlyTheSwatchesChange) {
  open();
  const auto history = light().historyColorDir();
  const _Nerin_PROFILE before = editState->currSetProfile();
  light().onChangeColorPro(red);
  EXPECT_EQ(light().beforeColor(), LightColor());
  light().OnColorChange(nullptr, green);
  EXPECT_EQ(light().beforeColor(), red);
  EXPECT_EQ(light().afterColor(), green);
  EXPECT_EQ(this->before(), red.shown());
  EXPECT_EQ(after(), green.shown());
  EXPECT_EQ(light().historyColorDir(), history);
  EXPECT_TRUE(isSameProfile(editState->currSetProfile(), before));
  light().displayBAColor();
  EXPECT_EQ(light().afterColor(), green);
}

TEST_F(LightZones, AComponentIsRoundedToEightBits) {
  for (std::uint32_t value = 0; value <= 255; ++value) {
    LightView::setColorPro(0, LightView::getColorPro({value, 255 - value, value}));
    expectColor(color(0), value, 255 - value, value);
  }
  struct Case {
    double component;
    std::uint32_t stored;
  };
  for (const Case& one : {Case{0.5, 127},
                          {0.25, 64},
                          {0.75, 191},
                          {0.1, 25},
                          {0.3, 76},
                          // Half a step rounds up, slightly less rounds down.
                          {127.5 / 254.99998474121094, 128},
                          {127.4999 / 254.99998474121094, 127},
                          {1.0 / 510, 0},
                          {1.0, 255},
                          // Values out of range keep only their low bits.
                          {1.01, 2},
                          {-0.01, 253}}) {
    LightView::setColorPro(2, {one.component, 0, 0});
    EXPECT_EQ(color(2).cR, one.stored) << one.component;
  }
  const _Nerin_PROFILE before = editState->currSetProfile();
  for (const int index : {-1, 4, -1000, 1000}) {
    LightView::setColorPro(index, red);
    EXPECT_TRUE(isSameProfile(editState->currSetProfile(), before)) << index;
  }
}

TEST_F(LightZones, AComponentIsShownAsItsPartOf255) {
  const LightColor color = LightView::getColorPro({255, 51, 1});
  EXPECT_EQ(color, (LightColor{1.0, 0.2, 1.0 / 255}));
  EXPECT_EQ(color.shown().alpha(), 255);
}

TEST_F(LightZones, ApplyEndsTheChoiceInBothGroups) {
  for (const char* chosen : {"logoLightBtn", "logoLightTagBtn"}) {
    open();
    press(chosen);
    press("applyBtn");
    EXPECT_THAT(lines(), IsEmpty());
    EXPECT_EQ(light().currSelectedIndex(), 0);
    EXPECT_FALSE(control(chosen).isChecked());
    EXPECT_TRUE(light().isOverFill());
    const _Nerin_PROFILE applied = editState->currSetProfile();
    light().onChangeColorPro(red);
    EXPECT_TRUE(isSameProfile(editState->currSetProfile(), applied));
    // The same zone can be selected again.
    press(chosen);
    EXPECT_EQ(light().currSelectedIndex(), 3);
    EXPECT_THAT(lines(), ElementsAre(3));
    light().onChangeColorPro(red);
    expectColor(color(2), 255, 0, 0);
  }
}

TEST_F(LightZones, OkCommitsTheWholeWorkingCopy) {
  open();
  editState->currSetProfile().poRate = 2;
  press("midLightBtn");
  light().onChangeColorPro(red);
  const _Nerin_PROFILE edited = editState->currSetProfile();
  press("applyBtn");
  EXPECT_EQ(sent(), colorCommands(edited));
  EXPECT_FALSE(isSameProfile(editState->selProfile(), edited));
  clearTrace();
  press("okBtn");
  EXPECT_TRUE(isSameProfile(editState->selProfile(), edited));
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_FALSE(isOpen());
}

TEST_F(LightZones, EveryOtherEndGivesTheMouseTheProfile) {
  const std::function<void()> ends[] = {
      [this] { press("cancelBtn"); },
      [this] { QTest::keyClick(&host(), Qt::Key_Escape); },
      [this] { host().close(); },
  };
  for (const auto& end : ends) {
    open();
    const _Nerin_PROFILE stored = editState->selProfile();
    editState->currSetProfile().poRate = 2;
    press("leftLightTagBtn");
    light().onChangeColorPro(red);
    press("applyBtn");
    clearTrace();
    end();
    EXPECT_EQ(sent(), colorCommands(stored));
    EXPECT_TRUE(isSameProfile(editState->currSetProfile(), stored));
    EXPECT_TRUE(isSameProfile(editState->selProfile(), stored));
    EXPECT_EQ(light().endTag(), 0);
    EXPECT_FALSE(light().isOverFill());
    EXPECT_FALSE(editState->isNeedSave());
    EXPECT_FALSE(isOpen());
  }
}

TEST_F(LightZones, NotificationsAreNoneOfItsBusiness) {
  open();
  LocalNotifications::shared().post("Notify_OutPlus");
  EXPECT_TRUE(isOpen());
  EXPECT_TRUE(light().isOverFill());
}
