#pragma once

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <cstdint>
#include <memory>

#include "Kit/Desktop/KeyTracker.h"
#include "Kit/Widgets/LXTextField.h"

class KeyboardHold;

// Shows a key, and takes another one: Return, Space or a click starts it, and the next key or mouse
// button ends it. Until then it owns the keyboard. A click elsewhere leaves the key as it is.
class KeyField : public LXTextField {
  Q_OBJECT

 public:
  explicit KeyField(QWidget* parent);
  ~KeyField() override;

  // The key that it shows while it waits for none.
  void setKey(const QString& words);
  bool isWaiting() const { return m_isWaiting; }
  // Leaves the key as it is. True if it was waiting for another one.
  bool endWaiting();

 signals:
  // A Mac key code, or 120 to 122 for a mouse button.
  void chosen(std::int32_t code, bool isMouseButton);

 protected:
  bool event(QEvent* event) override;
  // A press elsewhere ends the waiting, also one that takes no focus.
  bool eventFilter(QObject* watched, QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override { event->accept(); }
  void contextMenuEvent(QContextMenuEvent* event) override { event->accept(); }
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void wait();
  void leave();
  void takeKey(const QKeyEvent& event);

  KeyTracker m_keys;
  std::unique_ptr<KeyboardHold> m_keyboard;
  QString m_words;
  bool m_isWaiting = false;
};
