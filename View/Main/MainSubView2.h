#pragma once

#include "View/Main/ButtonMapView.h"

// The side of the mouse: six captions and six markers.
class MainSubView2 : public ButtonMapView {
  Q_OBJECT

 public:
  explicit MainSubView2(QWidget* parent = nullptr);

 private:
  static Map map();
};
