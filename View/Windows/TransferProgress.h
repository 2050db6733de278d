#pragma once

#include <QWidget>

// The progress bar for reading and writing the mouse. Painted directly, because no events are
// processed between two transfers.
class ProgressLine : public QWidget {
  Q_OBJECT

 public:
  explicit ProgressLine(QWidget* parent = nullptr);

  // 0..1, shown at once. A negative value clears the line.
  void showFraction(double fraction);
  double fraction() const { return m_fraction; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  double m_fraction = -1;
};

// Shows a wait cursor and fills the line with every report while the mouse is read or written. A
// nested one counts for the outer one.
class TransferProgress {
 public:
  // `reports`: the expected number of reports.
  TransferProgress(ProgressLine* line, int reports);
  ~TransferProgress();
  TransferProgress(const TransferProgress&) = delete;
  TransferProgress& operator=(const TransferProgress&) = delete;

  // Call in the pause after every report.
  static void reportDone();

 private:
  bool m_isOutermost;
};

// The pointer while the program does not answer.
namespace busycursor {

// Shows the wait cursor in all windows, at once. Calls may be nested.
void show(bool isBusy);

}  // namespace busycursor
