#include "Kit/Widgets/LXButton.h"

#include <QEnterEvent>
#include <QFocusEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <utility>

#include "Kit/Widgets/PlainTip.h"

namespace {

// The opacity of a disabled button's caption.
constexpr int disabledAlpha = 96;
constexpr QColor focusColor(0xF2, 0xF4, 0xF7);
constexpr qreal focusWidth = 2;

// The opacity of a disabled button's selection.
constexpr qreal disabledSelection = 0.4;

// The pointer shows its own position; only the keyboard needs the focus ring.
bool isFromKeyboard(Qt::FocusReason reason) {
  return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
         reason == Qt::ShortcutFocusReason || reason == Qt::OtherFocusReason;
}

}  // namespace

LXButton::LXButton(QWidget* parent) : QAbstractButton(parent) {
  setFocusPolicy(Qt::StrongFocus);
  connect(this, &QAbstractButton::clicked, this, [this] {
    if (m_action) {
      m_action(*this);
    }
  });
}

void LXButton::setImages(StateImages images) {
  m_images = std::move(images);
  update();
}

bool LXButton::isSelected() const {
  return (m_isCheckBox || m_isStepItem) && isChecked();
}

const LXImage& LXButton::currentImage() const {
  const LXImage* image = &m_images.normal;
  if (!isEnabled()) {
    image = &m_images.disable;
  } else if (isDown() && !(m_isStepItem && isChecked())) {
    image = &m_images.hight;
  } else if (isSelected()) {
    image = &m_images.active;
  } else if (isShownOver()) {
    image = &m_images.over;
  }
  return image->isNull() ? m_images.normal : *image;
}

void LXButton::setTitle(const QString& title) {
  // QAbstractButton would make a shortcut of an "&" in the name of a program.
  const QKeySequence none;
  setText(title);
  setShortcut(none);
}

void LXButton::setToolTip(const QString& toolTip) {
  QAbstractButton::setToolTip(toolTip);
  setAccessibleName(toolTip);
}

void LXButton::setIsCheckBox(bool isCheckBox) {
  m_isCheckBox = isCheckBox;
  m_images.active.expect();
  setCheckable(m_isCheckBox || m_isStepItem);
}

void LXButton::setIsStepItem(bool isStepItem) {
  m_isStepItem = isStepItem;
  m_images.active.expect();
  setCheckable(m_isCheckBox || m_isStepItem);
}

// A step item is selected by its group, which may refuse; a click alone selects nothing.
void LXButton::nextCheckState() {
  if (!m_isStepItem) {
    QAbstractButton::nextCheckState();
  }
}

void LXButton::setOverImagePro() {
  m_isLit = true;
  update();
}

void LXButton::setExitImagePro() {
  m_isLit = false;
  update();
}

bool LXButton::isShownOver() const {
  return isEnabled() && (m_isPointerIn || m_isLit);
}

void LXButton::setBtnColor(const QColor& color) {
  m_color = color;
  update();
}

void LXButton::setBtnTextAlignment(Qt::Alignment alignment) {
  m_alignment = (alignment & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter;
  update();
}

void LXButton::setLeftPad(int pixels) {
  m_leftPad = pixels;
  update();
}

void LXButton::setRightPad(int pixels) {
  m_rightPad = pixels;
  update();
}

void LXButton::setBtnAtr(const QColor& color, const QFont& font, Qt::Alignment alignment) {
  setBtnColor(color);
  setBtnFont(font);
  setBtnTextAlignment(alignment);
}

void LXButton::showFocus() {
  m_isFocusFromPointer = false;
  setFocus(Qt::OtherFocusReason);
}

QSize LXButton::sizeHint() const {
  return m_images.normal.isNull() ? QSize(80, 24) : m_images.normal.size();
}

bool LXButton::isCaptionCut() const {
  return fontMetrics().horizontalAdvance(text()) > captionRoom().width();
}

// A tooltip that repeats the caption is only shown when the caption is cut.
bool LXButton::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) {
    return QAbstractButton::event(event);
  }
  const bool isRead = !text().isEmpty() && toolTip() == text() && !isCaptionCut();
  QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                     isRead ? QString() : plainTip(toolTip()), this);
  return true;
}

void LXButton::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  currentImage().draw(painter, {0, 0});
  if (!isEnabled() && isSelected()) {
    painter.setOpacity(disabledSelection);
    m_images.active.draw(painter, {0, 0});
    painter.setOpacity(1);
  }
  if (!text().isEmpty()) {
    QColor color = m_color;
    if (!isEnabled()) {
      color.setAlpha(disabledAlpha);
    }
    painter.setPen(color);
    const QRect room = captionRoom();
    painter.drawText(room, static_cast<int>(m_alignment | Qt::TextSingleLine),
                     fontMetrics().elidedText(text(), Qt::ElideRight, room.width()));
  }
  if (m_showsFocus) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(focusColor, focusWidth));
    const qreal inset = focusWidth / 2;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), m_focusRadius,
                            m_focusRadius);
  }
}

void LXButton::enterEvent(QEnterEvent* event) {
  m_isPointerIn = true;
  update();
  QAbstractButton::enterEvent(event);
  if (m_delegate != nullptr) {
    m_delegate->onMouseEvent(*this, *event, LXButtonDelegate::Entered);
  }
}

void LXButton::leaveEvent(QEvent* event) {
  m_isPointerIn = false;
  m_isRightPressed = false;
  update();
  QAbstractButton::leaveEvent(event);
  if (m_delegate != nullptr) {
    m_delegate->onMouseEvent(*this, *event, LXButtonDelegate::Left);
  }
}

int LXButtonDelegate::pressType(const QMouseEvent& event, bool isDown) {
  switch (event.button()) {
    case Qt::LeftButton:
      return isDown ? LeftDown : LeftUp;
    case Qt::RightButton:
      return isDown ? RightDown : RightUp;
    default:
      return isDown ? OtherDown : OtherUp;
  }
}

void LXButton::report(QMouseEvent& event, bool isDown) {
  if (m_isCaptureMouseEvent && m_delegate != nullptr) {
    m_delegate->onMouseEvent(*this, event, LXButtonDelegate::pressType(event, isDown));
  }
}

void LXButton::mousePressEvent(QMouseEvent* event) {
  report(*event, true);
  if (event->button() == Qt::RightButton && m_rightAction) {
    m_isRightPressed = true;
    event->accept();
    return;
  }
  QAbstractButton::mousePressEvent(event);
  // A press between the controls moves the window; one on a control does not.
  event->accept();
}

void LXButton::mouseReleaseEvent(QMouseEvent* event) {
  report(*event, false);
  if (event->button() == Qt::RightButton && m_isRightPressed) {
    m_isRightPressed = false;
    if (rect().contains(event->position().toPoint())) {
      m_rightAction(*this);
    }
    return;
  }
  QAbstractButton::mouseReleaseEvent(event);
}

void LXButton::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    if (!event->isAutoRepeat()) {
      click();
    }
    return;
  }
  QAbstractButton::keyPressEvent(event);
}

void LXButton::showFocusRing(bool isShown) {
  if (m_showsFocus != isShown) {
    m_showsFocus = isShown;
    if (m_delegate != nullptr) {
      m_delegate->onFocusShown(*this, isShown);
    }
  }
}

void LXButton::focusInEvent(QFocusEvent* event) {
  // A reactivated window shows its focus as before, and so does the opener of a closed list.
  if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason) {
    m_isFocusFromPointer = !isFromKeyboard(event->reason());
  }
  showFocusRing(!m_isFocusFromPointer);
  QAbstractButton::focusInEvent(event);
}

void LXButton::focusOutEvent(QFocusEvent* event) {
  showFocusRing(false);
  QAbstractButton::focusOutEvent(event);
}
