#pragma once

#include <QLabel>
#include <QWidget>

// Shows usage against a limit, as a number and a bar.
class UsageBar : public QWidget {
  Q_OBJECT

 public:
  // The bar writes the number into `label`, which has the same parent, and adds it to the label's
  // accessible name.
  UsageBar(QLabel* label, QWidget* parent);

  void showUsage(int used, int most);
  double fraction() const { return m_fraction; }
  QString words() const { return m_label->text(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QLabel* m_label;
  QString m_title;
  double m_fraction = 0;
};
