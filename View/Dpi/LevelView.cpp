#include "View/Dpi/LevelView.h"

#include <QLabel>
#include <QMouseEvent>
#include <algorithm>

#include "Action/Record/Limits.h"
#include "ArtworkFrames.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "View/Dpi/DpiSliderView.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"
#include "View/Screen/Pictures.h"

namespace {

using frames = Artwork::LevelView;
using framesXY = Artwork::LevelXYView;

constexpr int dpiDigits = 4;
constexpr qreal numberType = 11;

}  // namespace

LevelView::LevelView(int showType, int levelIndex, QWidget* parent)
    : TavImageView({frames::screenWidth, frames::screenHeight}, parent),
      m_showType(showType),
      m_levelIndex(levelIndex) {}

void LevelView::initData() {
  setImageByName(m_showType == DpiSliderView::ShowXY ? QStringLiteral("LevelXYView_Normal.png")
                                                     : QStringLiteral("LevelView_Normal.png"));
  m_normalImg = bgImage();
  m_hoverImg = overImage();
  m_activeImg = activeImage();
}

void LevelView::initControls() {
  const bool isXY = m_showType == DpiSliderView::ShowXY;
  m_levelTxt = new QLabel(QString::number(m_levelIndex), this);
  m_levelTxt->setGeometry(frameRect(isXY ? framesXY::levelTxt : frames::levelTxt));
  m_levelTxt->setAlignment(Qt::AlignCenter);
  m_levelTxt->setFont(pictures::font(numberType, QFont::DemiBold));
  m_levelTxt->setAttribute(Qt::WA_TransparentForMouseEvents);
  if (isXY) {
    m_edits[LevelViewDelegate::DpiX] =
        addField(frameRect(framesXY::dpiXEdt), "dpiXEdt", QStringLiteral(" X"));
    m_edits[LevelViewDelegate::DpiY] =
        addField(frameRect(framesXY::dpiYEdt), "dpiYEdt", QStringLiteral(" Y"));
  } else {
    m_edits[LevelViewDelegate::DpiCommon] = addField(frameRect(frames::dpiEdt), "dpiEdt", {});
  }
  showState();
}

LXNumberTextField* LevelView::addField(const QRect& frame, const char* name, const QString& axis) {
  LXNumberTextField* field =
      NerinAction::AddNumTextField(frame, *this, static_cast<int>(limits::maximumDpi),
                                   static_cast<int>(limits::minimumDpi), dpiDigits, false);
  field->setObjectName(QString::fromLatin1(name));
  field->setAlignment(Qt::AlignCenter);
  field->setStep(static_cast<int>(limits::dpiStep));
  field->setKeepsNumber(true);
  field->setAccessibleName(NerinAction::tooltipText("DPI of each level") + u' ' +
                           QString::number(m_levelIndex) + axis);
  field->installEventFilter(this);
  return field;
}

void LevelView::setValue(int type, std::uint32_t value) {
  const auto index = static_cast<std::size_t>(type);
  m_values[index] = value;
  if (m_edits[index] != nullptr) {
    m_edits[index]->setValue(static_cast<int>(value * limits::dpiStep));
  }
}

void LevelView::setDpiValue(std::uint32_t value) {
  setValue(LevelViewDelegate::DpiCommon, value);
}

void LevelView::setDpiXValue(std::uint32_t value) {
  setValue(LevelViewDelegate::DpiX, value);
}

void LevelView::setDpiYValue(std::uint32_t value) {
  setValue(LevelViewDelegate::DpiY, value);
}

void LevelView::onNumTextChange(LXNumberTextField& sender) {
  const auto found = std::find(m_edits.begin(), m_edits.end(), &sender);
  if (found == m_edits.end()) {
    return;
  }
  const auto type = static_cast<int>(found - m_edits.begin());
  const auto typed = static_cast<std::uint32_t>(sender.value()) / limits::dpiStep;
  setValue(type, std::clamp(typed, limits::minimumSensitivity, limits::maximumSensitivity));
  if (m_levelDelegate != nullptr) {
    m_levelDelegate->onDpiChange(*this, type);
  }
}

void LevelView::commit() {
  for (LXNumberTextField* field : m_edits) {
    if (field != nullptr) {
      field->commit();
    }
  }
}

void LevelView::setIsActive(bool isActive) {
  m_isActive = isActive;
  showState();
}

void LevelView::showState() {
  const bool isHovered = underMouse();
  setBgImage(m_isActive ? m_activeImg : isHovered ? m_hoverImg : m_normalImg);
  const std::uint32_t color = m_isActive || isHovered ? Artwork::Color::snow : Artwork::Color::mist;
  m_levelTxt->setStyleSheet(
      QStringLiteral("color: #%1;").arg(static_cast<uint>(color), 6, 16, QLatin1Char('0')));
  update();
}

void LevelView::activate() {
  if (m_levelDelegate != nullptr) {
    m_levelDelegate->onLevelChange(*this);
  }
  setIsActive(true);
}

// A click in the field also selects its level.
bool LevelView::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonRelease &&
      static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
    activate();
  }
  return TavImageView::eventFilter(watched, event);
}

void LevelView::mousePressEvent(QMouseEvent* event) {
  event->accept();
}

void LevelView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
    activate();
  }
}

void LevelView::enterEvent(QEnterEvent* event) {
  TavImageView::enterEvent(event);
  showState();
}

void LevelView::leaveEvent(QEvent* event) {
  TavImageView::leaveEvent(event);
  showState();
}
