#pragma once

#include <QWidget>

// The thin bar that fills while the mouse is written or read. It is painted directly, because
// events are never processed between two transfers.
class ProgressLine : public QWidget {
  Q_OBJECT

 public:
  explicit ProgressLine(QWidget* parent = nullptr);

  // 0..1; shown at once. Below 0 the line is empty.
  void showFraction(double fraction);
  double fraction() const { return m_fraction; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  double m_fraction = -1;
};

// Stands while the mouse is written or read: shows a wait cursor and fills the line report by
// report. Inside another one it counts for that one.
class TransferProgress {
 public:
  // `reports`: how many will be sent or read, as far as is known.
  TransferProgress(ProgressLine* line, int reports);
  ~TransferProgress();
  TransferProgress(const TransferProgress&) = delete;
  TransferProgress& operator=(const TransferProgress&) = delete;

  // Called in the pause that follows every report.
  static void reportDone();

 private:
  bool m_isOutermost;
};
