#include "View/Dpi/DpiLevelsView.h"

#include <algorithm>

#include "Action/Record/EditState.h"
#include "Action/Record/Limits.h"
#include "Kit/Widgets/LXButton.h"
#include "View/Screen/ControlFactory.h"
#include "View/Windows/StatusLine.h"

namespace {

constexpr auto maximumLevels = static_cast<std::uint32_t>(levelCount);

// Only these values can be shown; the mouse knows no others.
std::uint32_t limited(std::uint32_t value) {
  return std::clamp(value, limits::minimumSensitivity, limits::maximumSensitivity);
}

// Whether both give the mouse the same levels and lift height.
bool areSameSettings(const _Nerin_PROFILE& one, const _Nerin_PROFILE& other) {
  return std::equal(std::begin(one.xSensArr), std::end(one.xSensArr), other.xSensArr) &&
         std::equal(std::begin(one.ySensArr), std::end(one.ySensArr), other.ySensArr) &&
         one.dpiLevel == other.dpiLevel && one.currSelectDPI == other.currSelectDPI &&
         one.liftHeight == other.liftHeight;
}

}  // namespace

DpiLevelsView::DpiLevelsView(const QSize& frame, const char* picture, const Places& places)
    : ChildView(frame), m_picture(picture), m_places(places) {}

void DpiLevelsView::initData() {
  setImageByName(QString::fromLatin1(m_picture));
}

void DpiLevelsView::initControls() {
  m_enableXYChk =
      addCheckBox(m_places.enableXYChk, m_places.enableXYTag, "enableXYChk", "Enable X-Y Axis");

  m_bgViewSetp = new LXSetpPanelObj(this);
  for (std::size_t i = 0; i < levelCount; ++i) {
    const int number = static_cast<int>(i) + 1;
    auto* button = new LXButton(this);
    button->setGeometry(m_places.levels[i]);
    button->setObjectName(QStringLiteral("level%1").arg(number));
    button->setAccessibleName(NerinAction::tooltipText("DPI levels") + u' ' +
                              QString::number(number));
    button->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_levelBtns[i] = button;
    m_bgViewSetp->addItem(button);
    const auto add = [&](int showType, const QString& name) {
      auto* level = new LevelView(showType, number, this);
      level->move(m_places.levels[i].topLeft());
      level->setObjectName(name);
      level->setLevelDelegate(this);
      level->construct();
      return level;
    };
    m_levelViewArrs[i] = add(DpiSliderView::ShowCommon, QStringLiteral("levelView%1").arg(number));
    m_levelXYViewArrs[i] = add(DpiSliderView::ShowXY, QStringLiteral("levelXYView%1").arg(number));
  }
  for (LXButton* button : m_levelBtns) {
    button->raise();
  }
  m_bgViewSetp->setSetpDelegate(this);

  m_dpiSliderView = new DpiSliderView(this);
  m_dpiSliderView->move(m_places.slider.topLeft());
  m_dpiSliderView->setObjectName(QStringLiteral("dpiSliderView"));
  m_dpiSliderView->setDelegate(this);
  m_dpiSliderView->construct();
}

bool DpiLevelsView::isXY() const {
  return m_enableXYChk->Checked();
}

DpiLevelsView::Levels& DpiLevelsView::shownLevels() {
  return isXY() ? m_levelXYViewArrs : m_levelViewArrs;
}

DpiLevelsView::Levels& DpiLevelsView::hiddenLevels() {
  return isXY() ? m_levelViewArrs : m_levelXYViewArrs;
}

void DpiLevelsView::setLevelsVisible(Levels& levels, std::size_t count) {
  for (std::size_t i = 0; i < levelCount; ++i) {
    levels[i]->setVisible(i < count);
  }
}

void DpiLevelsView::fillSettingData() {
  editState->currSetProfile() = editState->selProfile();
  setLevelsVisible(m_levelViewArrs, 0);
  setLevelsVisible(m_levelXYViewArrs, 0);
  const std::uint32_t count = std::clamp(editState->currSetProfile().dpiLevel, 1U, maximumLevels);
  fillXYChk(count);
  for (std::size_t i = 0; i < levelCount; ++i) {
    const std::uint32_t x = limited(editState->currSetProfile().xSensArr[i]);
    m_levelViewArrs[i]->setDpiValue(x);
    m_levelXYViewArrs[i]->setDpiXValue(x);
    m_levelXYViewArrs[i]->setDpiYValue(limited(editState->currSetProfile().ySensArr[i]));
  }
  const std::uint32_t active =
      std::min(editState->currSetProfile().currSelectDPI, maximumLevels - 1);
  // Resets the panel so that it selects the same level again.
  m_bgViewSetp->resetSetp();
  m_bgViewSetp->selectindex(static_cast<int>(active) + 1);
  setSelectedDpi(active);
  setCurrLevlePro(count, isXY());
}

std::optional<_Nerin_PROFILE> DpiLevelsView::workingProfile() {
  saveData();
  return editState->currSetProfile();
}

void DpiLevelsView::fillXYChk(std::uint32_t count) {
  const std::size_t used = std::min(count, maximumLevels);
  const bool hasTwo =
      !std::equal(editState->currSetProfile().xSensArr, editState->currSetProfile().xSensArr + used,
                  editState->currSetProfile().ySensArr);
  m_enableXYChk->setChecked(hasTwo);
  m_dpiSliderView->setShowType(hasTwo ? DpiSliderView::ShowXY : DpiSliderView::ShowCommon);
}

void DpiLevelsView::setSelectedDpi(std::uint32_t level) {
  for (std::size_t i = 0; i < levelCount; ++i) {
    shownLevels()[i]->setIsActive(i == level);
  }
}

void DpiLevelsView::setCurrLevlePro(std::uint32_t count, bool isXY) {
  m_currLevel = count;
  editState->currSetProfile().dpiLevel = count;
  if (count < 1 || count > maximumLevels) {
    return;
  }
  setLevelsVisible(isXY ? m_levelXYViewArrs : m_levelViewArrs, count);
  for (std::size_t i = 0; i < levelCount; ++i) {
    m_levelBtns[i]->setVisible(i < count);
  }
  if (editState->currSetProfile().currSelectDPI >= count) {
    editState->currSetProfile().currSelectDPI = count - 1;
    setSelectedDpi(count - 1);
    m_bgViewSetp->selectindex(static_cast<int>(count));
  }
}

void DpiLevelsView::fillDPiData(std::uint32_t level) {
  if (level >= maximumLevels) {
    return;
  }
  m_dpiSliderView->setDpiXValue(m_levelXYViewArrs[level]->dpiXValue());
  m_dpiSliderView->setDpiYValue(m_levelXYViewArrs[level]->dpiYValue());
  m_dpiSliderView->setDpiValue(m_levelViewArrs[level]->dpiValue());
}

void DpiLevelsView::saveDPiData(std::uint32_t level) {
  if (level >= maximumLevels) {
    return;
  }
  const DpiSliderView& slider = *m_dpiSliderView;
  const bool isTwo = slider.showType() == DpiSliderView::ShowXY;
  editState->currSetProfile().xSensArr[level] = isTwo ? slider.dpiXValue() : slider.dpiValue();
  editState->currSetProfile().ySensArr[level] = isTwo ? slider.dpiYValue() : slider.dpiValue();
}

void DpiLevelsView::saveDpiDataPro() {
  const bool isTwo = m_dpiSliderView->showType() == DpiSliderView::ShowXY;
  for (std::size_t i = 0; i < levelCount; ++i) {
    const LevelView& both = *m_levelXYViewArrs[i];
    const LevelView& one = *m_levelViewArrs[i];
    editState->currSetProfile().xSensArr[i] = isTwo ? both.dpiXValue() : one.dpiValue();
    editState->currSetProfile().ySensArr[i] = isTwo ? both.dpiYValue() : one.dpiValue();
  }
}

void DpiLevelsView::fillLevelViewData() {
  const std::uint32_t level = editState->currSetProfile().currSelectDPI;
  if (level >= maximumLevels) {
    return;
  }
  const DpiSliderView& slider = *m_dpiSliderView;
  const bool isTwo = slider.showType() == DpiSliderView::ShowXY;
  m_levelViewArrs[level]->setDpiValue(isTwo ? slider.dpiXValue() : slider.dpiValue());
  m_levelXYViewArrs[level]->setDpiXValue(isTwo ? slider.dpiXValue() : slider.dpiValue());
  m_levelXYViewArrs[level]->setDpiYValue(isTwo ? slider.dpiYValue() : slider.dpiValue());
}

void DpiLevelsView::onLevelChange(LevelView& level) {
  // Committing another level makes that one active, so do it first. The user may still be typing in
  // this level.
  commitLevels(&level);
  for (LevelView* one : shownLevels()) {
    one->setIsActive(false);
  }
  m_bgViewSetp->selectindex(level.levelIndex());
}

void DpiLevelsView::onDpiChange(LevelView& level, int type) {
  const std::uint32_t typed = type == DpiX   ? level.dpiXValue()
                              : type == DpiY ? level.dpiYValue()
                                             : level.dpiValue();
  // Typing in a level makes it the active one.
  if (static_cast<std::uint32_t>(level.levelIndex()) !=
      editState->currSetProfile().currSelectDPI + 1) {
    onLevelChange(level);
    level.setIsActive(true);
  }
  if (type == DpiX) {
    m_dpiSliderView->setDpiXValue(typed);
  } else if (type == DpiY) {
    m_dpiSliderView->setDpiYValue(typed);
  } else {
    m_dpiSliderView->setDpiValue(typed);
  }
  fillLevelViewData();
}

void DpiLevelsView::OnChangeSliderValue(DpiSliderView& /*sender*/) {
  fillLevelViewData();
}

void DpiLevelsView::onSelectIndex(int newIndex, int /*oldIndex*/, LXSetpPanelObj& sender) {
  if (&sender != m_bgViewSetp) {
    return;
  }
  const auto level = static_cast<std::uint32_t>(newIndex - 1);
  editState->currSetProfile().currSelectDPI = level;
  fillDPiData(level);
  setSelectedDpi(level);
}

void DpiLevelsView::commitLevels(const LevelView* except) {
  for (const Levels* levels : {&m_levelViewArrs, &m_levelXYViewArrs}) {
    for (LevelView* level : *levels) {
      if (level != except) {
        level->commit();
      }
    }
  }
}

void DpiLevelsView::buttonAction(LXButton& sender) {
  commitLevels();
  if (&sender == m_enableXYChk) {
    enableXYAction();
  }
  ChildView::buttonAction(sender);
}

void DpiLevelsView::enableXYAction() {
  const std::uint32_t active =
      std::min(editState->currSetProfile().currSelectDPI, maximumLevels - 1);
  setLevelsVisible(hiddenLevels(), 0);
  if (isXY()) {
    m_dpiSliderView->setShowType(DpiSliderView::ShowXY);
    m_dpiSliderView->setDpiXValue(m_levelXYViewArrs[active]->dpiXValue());
    m_dpiSliderView->setDpiYValue(m_levelXYViewArrs[active]->dpiYValue());
  } else {
    const std::uint32_t value = m_levelViewArrs[active]->dpiValue();
    m_dpiSliderView->setShowType(DpiSliderView::ShowCommon);
    m_dpiSliderView->setDpiXValue(value);
    m_dpiSliderView->setDpiYValue(value);
    // The hidden slider may still show another level.
    m_dpiSliderView->setDpiValue(value);
  }
  setSelectedDpi(active);
  setCurrLevlePro(m_currLevel, isXY());
}

void DpiLevelsView::noteTried(const Outcome& outcome) {
  m_hasTried = m_hasTried || outcome.isDone();
  statusline::tell(outcome);
}

void DpiLevelsView::tellCancelled(const Outcome& outcome) {
  const bool isLeft = !areSameSettings(editState->currSetProfile(), editState->selProfile());
  if (isLeft && (m_hasTried || outcome.isDone())) {
    editState->raiseNeedSave();
  }
  if (isLeft && outcome.isDone()) {
    statusline::say(NerinAction::tooltipText(
        "The mouse keeps the DPI settings you tried. Apply gives it the profile's own."));
  } else {
    statusline::tell(outcome);
  }
}
