#pragma once

#include <QAbstractItemDelegate>
#include <QAbstractTableModel>
#include <QTableView>
#include <memory>
#include <vector>

#include "Action/Catalogue/MacroKeyInfo.h"
#include "Kit/Widgets/LXImage.h"

class RigthMouseTBView;

// Gets every press and release of a mouse button over the table.
class RigthMouseTBDelegate {
 public:
  virtual ~RigthMouseTBDelegate() = default;
  // `type` is one of LXButtonDelegate's presses and releases.
  virtual void onMouseEvent(RigthMouseTBView& table, QMouseEvent& event, int type) = 0;
  // Whether editing a cell may begin, and whether it may end.
  virtual bool textShouldBeginEditing(RigthMouseTBView& /*table*/) { return true; }
  virtual bool textShouldEndEditing(RigthMouseTBView& /*table*/) { return true; }
  // A key of the table, before its own. True if it was used.
  virtual bool onKey(RigthMouseTBView& /*table*/, QKeyEvent& /*event*/) { return false; }
  // A row was dragged to the gap before another row, or after the last one.
  virtual void onRowDragged(RigthMouseTBView& /*table*/, int /*row*/, int /*gap*/) {}
};

// The commands of a macro as rows: an icon and text for the command, an icon and time for the pause
// after it. Shows the macro's own commands, so it must be told of changes.
class MacroCommandModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  // tbHeardColumnImage1, tbHeardColumn1, tbHeardColumnImage2, tbHeardColumn2
  enum Column : int { CommandImage, Command, DelayImage, Delay, columns };
  using Commands = std::vector<std::shared_ptr<MacroKeyInfo>>;

  explicit MacroCommandModel(QObject* parent);

  // Not owned; must outlive its use here. Null for no macro.
  void setCommands(const Commands* commands);
  void reloadData();
  // A time with its unit, "350 ms".
  static QString milliseconds(std::int64_t count);
  // The rows that are chosen together, both included; none without a row.
  void setChosenRows(int first, int last);
  bool isChosen(int row) const { return row >= m_firstChosen && row <= m_lastChosen; }
  // The text for a command.
  static QString describe(const MacroKeyInfo& command);
  // Only its key, mouse button or function.
  static QString keyWords(const MacroKeyInfo& command);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  // Typing in a cell does not change the command.
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 private:
  QPixmap icon(int index) const;

  const Commands* m_commands = nullptr;
  int m_firstChosen = 0;
  int m_lastChosen = -1;
  // Indexed by a command's flag: key down, key up, command, delay, mouse down, mouse up.
  std::vector<LXImage> m_icons;
};

// A table that passes all mouse presses to its delegate and, while capturing, hides them from the
// rows.
class RigthMouseTBView : public QTableView {
  Q_OBJECT

 public:
  explicit RigthMouseTBView(QWidget* parent);

  // Not owned; must outlive the table or be reset.
  void setLXBtnDelege(RigthMouseTBDelegate* delegate) { m_delegate = delegate; }
  void setIsCaptureMouseEvent(bool captures) { m_isCaptureMouseEvent = captures; }
  bool isCaptureMouseEvent() const { return m_isCaptureMouseEvent; }

  // While a press or a key with Shift selects a row, which extends the chosen rows to it.
  bool isExtending() const { return m_isExtending; }

  using QTableView::edit;
  // Typing a letter must not select a row.
  void keyboardSearch(const QString& /*search*/) override {}

 protected:
  bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
  void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
  // Selects a single row, with any modifiers.
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                       const QEvent* event) const override;
  // A screen reader selects a row without making it the current one.
  void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  static constexpr int none = -1;

  void sendMouseMove(QMouseEvent& event, bool isDown);
  void drag(const QPoint& point);
  void endDrag();

  RigthMouseTBDelegate* m_delegate = nullptr;
  bool m_isCaptureMouseEvent = false;
  bool m_isExtending = false;
  // The row under the pressed button, and the gap where it would be dropped.
  int m_draggedRow = none;
  int m_dropGap = none;
  QPoint m_pressedAt;
};
