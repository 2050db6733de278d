#pragma once

#include <array>
#include <cstdint>

#include "View/Screen/TavImageView.h"

class LevelView;
class QLabel;

// Gets the user's changes to a level.
class LevelViewDelegate {
 public:
  // The field that was edited: for both axes, or for one.
  enum DpiType : int { DpiCommon = 0, DpiX = 1, DpiY = 2 };

  virtual ~LevelViewDelegate() = default;
  virtual void onLevelChange(LevelView& level) = 0;
  virtual void onDpiChange(LevelView& level, int type) = 0;
};

// A DPI level: its number and a field for its value, or one field per axis. Values are in the
// mouse's unit, 2..164; the fields show DPI, 50 per unit.
class LevelView : public TavImageView {
  Q_OBJECT

 public:
  // `showType` is one of DpiSliderView's; `levelIndex` starts at 1.
  LevelView(int showType, int levelIndex, QWidget* parent);

  // Not owned; must outlive the level.
  void setLevelDelegate(LevelViewDelegate* delegate) { m_levelDelegate = delegate; }
  int levelIndex() const { return m_levelIndex; }
  int showType() const { return m_showType; }
  void setDpiValue(std::uint32_t value);
  void setDpiXValue(std::uint32_t value);
  void setDpiYValue(std::uint32_t value);
  std::uint32_t dpiValue() const { return m_values[LevelViewDelegate::DpiCommon]; }
  std::uint32_t dpiXValue() const { return m_values[LevelViewDelegate::DpiX]; }
  std::uint32_t dpiYValue() const { return m_values[LevelViewDelegate::DpiY]; }
  void setIsActive(bool isActive);
  bool isActive() const { return m_isActive; }
  // Commits a typed value.
  void commit();

  void onNumTextChange(LXNumberTextField& sender) override;

 protected:
  void initData() override;
  void initControls() override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  LXNumberTextField* addField(const QRect& frame, const char* name, const QString& axis);
  void setValue(int type, std::uint32_t value);
  void activate();
  void showState();

  int m_showType;
  int m_levelIndex;
  LevelViewDelegate* m_levelDelegate = nullptr;
  // Both axes, X, Y; null if the level has no such field.
  std::array<LXNumberTextField*, 3> m_edits{};
  std::array<std::uint32_t, 3> m_values{};
  QLabel* m_levelTxt = nullptr;
  LXImage m_normalImg;
  LXImage m_hoverImg;
  LXImage m_activeImg;
  bool m_isActive = false;
};
