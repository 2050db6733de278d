#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

#include "Kit/Widgets/LXImage.h"

class LXButton;
class LXNumberTextField;

// The base of every screen: a picture for each state, and controls that show the slices of those
// pictures under them.
//
// A screen is built in two phases, because a constructor cannot call what a subclass overrides:
// make it, then call construct().
class TavImageView : public QWidget {
  Q_OBJECT

 public:
  explicit TavImageView(const QSize& frame, QWidget* parent = nullptr);

  // Runs initData, initControls and refreshData, and registers the observers if the view stands in
  // a parent already.
  void construct();
  // The same in two steps, so that a window can be seen before its data is there.
  void constructControls();
  void finishConstruction();

  // The pictures of the normal, hovered, pressed, disabled and selected state. The stem of the
  // name is what stands before its first "_", or the whole name less its extension; missing
  // pictures are none. An empty name changes nothing.
  void setImageByName(const QString& name);
  // The picture "stem_tag.extension".
  static LXImage getImageByName(const QString& stem, const QString& tag, const QString& exeStr);

  const LXImage& bgImage() const { return m_bgImage; }
  const LXImage& overImage() const { return m_overImage; }
  const LXImage& downImage() const { return m_downImage; }
  const LXImage& disableImage() const { return m_disableImage; }
  const LXImage& activeImage() const { return m_activeImage; }
  // Height when the view was made.
  int frmHeight() const { return m_frmHeight; }
  QColor bgColor() const { return m_bgColor; }
  void setBgColor(const QColor& color);
  // The observers are registered.
  bool isAddNotify() const { return m_isAddNotify; }

  // Every button of a screen that is made for it ends here, told apart by its tag.
  virtual void buttonAction(LXButton& /*sender*/) {}
  virtual void buttonRightAction(LXButton& /*sender*/) {}
  virtual void onNumTextChange(LXNumberTextField& /*sender*/) {}

  virtual void refreshData() {}
  virtual void saveData() {}
  // From the data to the controls, and back.
  virtual void fillSettingData() {}
  virtual void saveSettingData() {}
  virtual void resetSettingData() {}

 protected:
  virtual void initData() {}
  virtual void initControls() {}
  virtual void initNotify() {}
  virtual void deallocNotify() {}

  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;

  void setBgImage(LXImage image) { m_bgImage = std::move(image); }
  void setOverImage(LXImage image) { m_overImage = std::move(image); }
  void setDownImage(LXImage image) { m_downImage = std::move(image); }
  void setDisableImage(LXImage image) { m_disableImage = std::move(image); }

  // A button and a check box that end in buttonAction, told apart by the tag. `name` is the
  // control's in the program, `tooltipKey` that of its text.
  LXButton* addButton(const QRect& frame, int tag, const char* name, const char* tooltipKey);
  LXButton* addCheckBox(const QRect& frame, int tag, const char* name, const char* tooltipKey);

 private:
  void viewDidMoveToSuperview();

  LXImage m_bgImage;
  LXImage m_overImage;
  LXImage m_downImage;
  LXImage m_disableImage;
  LXImage m_activeImage;
  int m_frmHeight;
  QColor m_bgColor = Qt::transparent;
  bool m_isConstructed = false;
  bool m_isAddNotify = false;
};
