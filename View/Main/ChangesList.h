#pragma once

#include <QColor>
#include <QFrame>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

class QScrollArea;
class QVBoxLayout;

// A pop-up list of what Apply would change, with a button in each row that takes that change back.
// The arrow keys and Tab go from button to button, Return and Space press one, Escape closes the
// list.
class ChangesList : public QFrame {
  Q_OBJECT

 public:
  struct Row {
    QString place;
    QString before;
    QString after;
    // For a light.
    std::optional<QColor> beforeColor;
    std::optional<QColor> afterColor;
    // The whole row in words, for screen readers.
    QString words;
  };

  explicit ChangesList(QWidget* parent);

  // Says the heading in the language of now.
  void showTexts();
  // Shows the rows, or else the words that say why there are none. The focus stays at its row, or
  // goes to the last one.
  void fill(const std::vector<Row>& rows, const QString& none);
  // Opens with its bottom right corner there, in screen coordinates, but on the screen.
  void openAbove(const QPoint& corner);
  bool isOpen() const { return isVisible(); }

 signals:
  // The user takes that row back.
  void takenBack(int row);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QWidget* rowOf(const Row& row, int index);
  int focusedRow() const;

  class QLabel* m_heading;
  QScrollArea* m_scroll;
  std::vector<QWidget*> m_buttons;
};
