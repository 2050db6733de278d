#pragma once

#include "View/Main/ButtonMapView.h"

// The top of the mouse: ten captions and eight markers. One marker serves all three captions of the
// wheel: both turns and the press.
class MainSubView1 : public ButtonMapView {
  Q_OBJECT

 public:
  explicit MainSubView1(QWidget* parent = nullptr);

 protected:
  int markerPairOf(int captionPair) const override;
  void setCaptionsLit(int pair, bool isLit) override;

 private:
  static Map map();
};
