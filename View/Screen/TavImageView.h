#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

#include "Kit/Widgets/LXImage.h"

class LXButton;
class LXNumberTextField;

// The base of every screen: a picture for each state, and controls that show their parts of these
// pictures.
//
// Building a screen takes two steps, because a constructor cannot call a subclass's overrides:
// create it, then call construct().
class TavImageView : public QWidget {
  Q_OBJECT

 public:
  explicit TavImageView(const QSize& frame, QWidget* parent = nullptr);

  // Runs initData, initControls and refreshData. Registers the observers if the view already has a
  // parent.
  void construct();
  // construct() in two steps, so that the window can appear before its data is loaded.
  void constructControls();
  void finishConstruction();

  // Loads the pictures of the normal, hovered, pressed, disabled and selected state. The stem is
  // the part of the name before the first "_", or else the name without its extension. Missing
  // pictures stay empty. An empty name changes nothing.
  void setImageByName(const QString& name);
  // The picture "stem_tag.extension".
  static LXImage getImageByName(const QString& stem, const QString& tag, const QString& exeStr);

  const LXImage& bgImage() const { return m_bgImage; }
  const LXImage& overImage() const { return m_overImage; }
  const LXImage& downImage() const { return m_downImage; }
  const LXImage& disableImage() const { return m_disableImage; }
  const LXImage& activeImage() const { return m_activeImage; }
  // The height when the view was created.
  int frmHeight() const { return m_frmHeight; }
  QColor bgColor() const { return m_bgColor; }
  void setBgColor(const QColor& color);
  // Whether the observers are registered.
  bool isAddNotify() const { return m_isAddNotify; }

  // Gets the clicks of all buttons of the screen, told apart by their tags.
  virtual void buttonAction(LXButton& /*sender*/) {}
  virtual void buttonRightAction(LXButton& /*sender*/) {}
  virtual void onNumTextChange(LXNumberTextField& /*sender*/) {}

  virtual void refreshData() {}
  virtual void saveData() {}
  // Copy the data to the controls, and back.
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

  // Add a button and a check box that call buttonAction with their tag. `name` is the object name,
  // `tooltipKey` the key of the text.
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
