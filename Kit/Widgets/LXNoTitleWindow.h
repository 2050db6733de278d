#pragma once

#include <QWidget>

class LXNoTitleWindow;

// Is notified that a window closes, while the window is still complete.
class LXWindowDelegate {
 public:
  virtual ~LXWindowDelegate() = default;
  virtual void windowWillClose(LXNoTitleWindow& window) = 0;
};

// A frameless window that is moved by a strip at its top. Owns its content, which it dims while
// another window blocks this one.
class LXNoTitleWindow : public QWidget {
  Q_OBJECT

 public:
  explicit LXNoTitleWindow(const QSize& contentSize, QWidget* parent = nullptr);

  void setContentView(QWidget* view);
  QWidget* contentView() const { return m_content; }
  void setIsCanDrag(bool isCanDrag) { m_isCanDrag = isCanDrag; }
  bool isCanDrag() const { return m_isCanDrag; }
  // Pixels from the top.
  void setDragHeight(int height) { m_dragHeight = height; }
  int dragHeight() const { return m_dragHeight; }
  // Whether a press at this position, between the controls, moves the window.
  bool isInDragStrip(const QPoint& position) const;
  void setWindowDelegate(LXWindowDelegate* delegate) { m_delegate = delegate; }
  // Whether Esc closes the window.
  void setClosesOnEscape(bool closes) { m_closesOnEscape = closes; }
  // Makes the window no higher than that many pixels; a content that is higher scrolls. Call it
  // once, after the content is set.
  void fitInto(int height);
  // Centers the window over another one, or on the screen without one.
  void center(const QWidget* over = nullptr);

 signals:
  void closed();
  // The right button was pressed in the drag strip, at a position in screen coordinates.
  void menuRequested(const QPoint& position);

 protected:
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QWidget* m_content = nullptr;
  QWidget* m_shade;
  LXWindowDelegate* m_delegate = nullptr;
  bool m_isCanDrag = false;
  bool m_closesOnEscape = false;
  int m_dragHeight = 0;
};
