#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QPointer>
#include <QString>
#include <functional>

#include "Kit/Widgets/LXImage.h"

class LXButton;

// Receives pointer movements over a button and, while the button captures them, mouse presses and
// releases.
class LXButtonDelegate {
 public:
  // The kinds of reports.
  enum MouseEventType : int {
    Entered = 1,
    Moved = 2,
    Left = 3,
    LeftDown = 4,
    LeftUp = 5,
    RightDown = 6,
    RightUp = 7,
    OtherDown = 8,
    OtherUp = 9,
  };

  // The event type of a press or release of a mouse button.
  static int pressType(const QMouseEvent& event, bool isDown);

  virtual ~LXButtonDelegate() = default;
  virtual void onMouseEvent(LXButton& button, QEvent& event, int type) = 0;
  // The button shows that it has the keyboard, or no longer does.
  virtual void onFocusShown(LXButton& /*button*/, bool /*isShown*/) {}
};

// A button, check box or step item that shows one picture per state and a caption over it. Space
// and Return press it. Screen readers find the actions of the widget beside the press.
class LXButton : public QAbstractButton {
  Q_OBJECT

 public:
  using Action = std::function<void(LXButton&)>;
  struct StateImages {
    LXImage normal;
    LXImage over;
    LXImage hight;  // pressed
    LXImage disable;
    LXImage active;  // selected, or checked
  };

  explicit LXButton(QWidget* parent = nullptr);

  void setImages(StateImages images);
  const StateImages& images() const { return m_images; }
  // The picture of the current state, or else the normal one; none if both are missing.
  const LXImage& currentImage() const;

  void setTitle(const QString& title);
  QString title() const { return text(); }
  void setToolTip(const QString& toolTip);
  void setTag(int tag) { m_tag = tag; }
  int tag() const { return m_tag; }
  // A second number for the delegate.
  void setBtnTag(int btnTag) { m_btnTag = btnTag; }
  int btnTag() const { return m_btnTag; }

  // The actions of a left click and of a right click.
  void setAction(Action action) { m_action = std::move(action); }
  void setRightAction(Action action) { m_rightAction = std::move(action); }
  void setLXBtnDelege(LXButtonDelegate* delegate) { m_delegate = delegate; }

  // Also reports every press and release to the delegate. The button still acts.
  void setIsCaptureMouseEvent(bool captures) { m_isCaptureMouseEvent = captures; }
  bool isCaptureMouseEvent() const { return m_isCaptureMouseEvent; }

  void setIsEnable(bool isEnable) { setEnabled(isEnable); }
  void setIsCheckBox(bool isCheckBox);
  bool isCheckBox() const { return m_isCheckBox; }
  bool Checked() const { return isChecked(); }
  // A step item shows the picture of its selection and is presented as one of a group.
  void setIsStepItem(bool isStepItem);
  bool isStepItem() const { return m_isStepItem; }
  // Its pictures are its own, not slices of the parent's.
  void setIsNoanomaly(bool isNoanomaly) { m_isNoanomaly = isNoanomaly; }
  bool isNoanomaly() const { return m_isNoanomaly; }

  // Shows the picture of the hovered button wherever the pointer is, and ends that.
  void setOverImagePro();
  void setExitImagePro();
  bool isShownOver() const;

  void setBtnColor(const QColor& color);
  QColor btnColor() const { return m_color; }
  void setBtnFont(const QFont& font) { setFont(font); }
  void setBtnTextAlignment(Qt::Alignment alignment);
  void setLeftPad(int pixels);
  void setRightPad(int pixels);
  // Color, font and alignment in one call.
  void setBtnAtr(const QColor& color, const QFont& font, Qt::Alignment alignment);
  // The list that the button opens.
  void setOpenedList(QWidget* list) { m_openedList = list; }
  QWidget* openedList() const { return m_openedList; }
  // Whether the caption is longer than its room, so that its end is not shown.
  bool isCaptionCut() const;
  // Gives the button the focus and shows it, even in a window that is not active yet.
  void showFocus();
  // Whether the pointer gave it the focus.
  bool isFocusFromPointer() const { return m_isFocusFromPointer; }
  // Corner radius of the focus ring.
  void setFocusRadius(int pixels) { m_focusRadius = pixels; }

  QSize sizeHint() const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void nextCheckState() override;

 private:
  bool isSelected() const;
  void showFocusRing(bool isShown);
  // Where the caption is drawn.
  QRect captionRoom() const { return rect().adjusted(m_leftPad, 0, -m_rightPad, 0); }
  void report(QMouseEvent& event, bool isDown);

  StateImages m_images;
  Action m_action;
  Action m_rightAction;
  LXButtonDelegate* m_delegate = nullptr;
  int m_tag = 0;
  int m_btnTag = 0;
  bool m_isCaptureMouseEvent = false;
  bool m_isCheckBox = false;
  bool m_isStepItem = false;
  bool m_isNoanomaly = false;
  bool m_isPointerIn = false;
  bool m_isLit = false;
  bool m_isRightPressed = false;
  bool m_showsFocus = false;
  // The keyboard has not been used yet.
  bool m_isFocusFromPointer = true;
  QColor m_color = Qt::white;
  Qt::Alignment m_alignment = Qt::AlignCenter;
  int m_leftPad = 0;
  int m_rightPad = 0;
  int m_focusRadius = 6;
  QPointer<QWidget> m_openedList;
};
