#pragma once

#include <QLabel>
#include <QWidget>

// How much of something limited is used: a number beside, and a bar.
class UsageBar : public QWidget {
  Q_OBJECT

 public:
  // The label, which this shows the number in, belongs to the same parent.
  UsageBar(QLabel* label, QWidget* parent);

  void showUsage(int used, int most);
  double fraction() const { return m_fraction; }
  QString words() const { return m_label->text(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QLabel* m_label;
  double m_fraction = 0;
};
