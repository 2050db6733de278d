#include "Kit/Widgets/BGHUDScrollView.h"

BGHUDScrollView::BGHUDScrollView(QWidget* parent) : QScrollArea(parent) {
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setStyleSheet(QStringLiteral(
      "QScrollArea, QScrollArea > QWidget > QWidget { background: #15171C; }"
      "QScrollBar:vertical { background: #15171C; width: 10px; }"
      "QScrollBar::handle:vertical { background: #5A6270; border-radius: 4px; min-height: 24px; }"
      "QScrollBar::add-line, QScrollBar::sub-line { height: 0; }"));
}
