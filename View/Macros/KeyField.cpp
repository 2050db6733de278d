#include "View/Macros/KeyField.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>

#include "ArtworkFrames.h"
#include "Kit/Desktop/KeyboardHold.h"
#include "View/Screen/ControlFactory.h"

namespace {

constexpr std::int32_t leftButton = 120;
constexpr std::int32_t rightButton = 121;
constexpr std::int32_t otherButton = 122;

bool startsWaiting(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter ||
         event.key() == Qt::Key_Space;
}

}  // namespace

KeyField::KeyField(QWidget* parent) : LXTextField(parent) {
  setReadOnly(true);
  setCursor(Qt::PointingHandCursor);
}

KeyField::~KeyField() = default;

void KeyField::setKey(const QString& words) {
  m_words = words;
  if (!m_isWaiting) {
    setText(words);
  }
}

void KeyField::wait() {
  m_isWaiting = true;
  setText(NerinAction::tooltipText("Press a key"));
  setTextColor(QColor::fromRgb(Artwork::Color::emberLit));
  qApp->installEventFilter(this);
  m_keyboard = std::make_unique<KeyboardHold>(*this);
}

bool KeyField::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonPress && watched->isWidgetType() && watched != this) {
    leave();
  }
  return LXTextField::eventFilter(watched, event);
}

bool KeyField::endWaiting() {
  const bool wasWaiting = m_isWaiting;
  leave();
  return wasWaiting;
}

void KeyField::leave() {
  if (!m_isWaiting) {
    return;
  }
  m_isWaiting = false;
  qApp->removeEventFilter(this);
  m_keyboard.reset();
  setTextColor(Qt::white);
  setText(m_words);
}

// The key that started it may repeat, and its release does not count.
void KeyField::takeKey(const QKeyEvent& event) {
  const auto key = m_keys.take(event);
  const bool isPress =
      key && !key->isRepeat && !event.isAutoRepeat() &&
      (key->kind == TrackedKey::Kind::KeyDown ||
       (key->kind == TrackedKey::Kind::FlagsChanged && event.type() == QEvent::KeyPress));
  if (m_isWaiting && isPress) {
    leave();
    emit chosen(key->keyCode, false);
  } else if (!m_isWaiting && event.type() == QEvent::KeyPress && !event.isAutoRepeat() &&
             startsWaiting(event) && (!key || !key->isRepeat)) {
    wait();
  }
}

bool KeyField::event(QEvent* event) {
  const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
  if (event->type() == QEvent::ShortcutOverride && m_isWaiting) {
    event->accept();
    return true;
  }
  if (isKey) {
    auto& keyEvent = static_cast<QKeyEvent&>(*event);
    const bool isTaken = m_isWaiting || startsWaiting(keyEvent);
    takeKey(keyEvent);
    if (isTaken) {
      event->accept();
      return true;
    }
  }
  if (event->type() == QEvent::WindowDeactivate) {
    leave();
  }
  return LXTextField::event(event);
}

void KeyField::mousePressEvent(QMouseEvent* event) {
  event->accept();
  if (!m_isWaiting) {
    if (event->button() == Qt::LeftButton) {
      wait();
    }
    return;
  }
  leave();
  emit chosen(event->button() == Qt::LeftButton    ? leftButton
              : event->button() == Qt::RightButton ? rightButton
                                                   : otherButton,
              true);
}

void KeyField::mouseDoubleClickEvent(QMouseEvent* event) {
  mousePressEvent(event);
}

void KeyField::focusOutEvent(QFocusEvent* event) {
  leave();
  m_keys.forgetAll();
  LXTextField::focusOutEvent(event);
}
