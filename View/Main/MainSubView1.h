#pragma once

#include "View/Main/ButtonMapView.h"

// The mouse from the top: ten captions and eight markers. The wheel's marker stands for turning it
// either way and for pressing it.
class MainSubView1 : public ButtonMapView {
  Q_OBJECT

 public:
  explicit MainSubView1(QWidget* parent = nullptr);

 protected:
  void setCaptionsLit(int pair, bool isLit) override;

 private:
  static Map map();
};
