#pragma once

#include <QScrollArea>

// A dark scroll view for lists. Owns the widget that it shows.
class BGHUDScrollView : public QScrollArea {
  Q_OBJECT

 public:
  explicit BGHUDScrollView(QWidget* parent = nullptr);
};
