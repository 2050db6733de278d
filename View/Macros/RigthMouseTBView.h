#pragma once

#include <QAbstractItemDelegate>
#include <QAbstractTableModel>
#include <QTableView>
#include <memory>
#include <vector>

#include "Action/Catalogue/MacroKeyInfo.h"
#include "Kit/Widgets/LXImage.h"

class RigthMouseTBView;

// Hears of every button of the mouse that is pressed or let go over the table.
class RigthMouseTBDelegate {
 public:
  virtual ~RigthMouseTBDelegate() = default;
  // The type is one of LXButtonDelegate's presses and releases.
  virtual void onMouseEvent(RigthMouseTBView& table, QMouseEvent& event, int type) = 0;
  // Whether a cell may be edited, and whether the edit may end.
  virtual bool textShouldBeginEditing(RigthMouseTBView& /*table*/) { return true; }
  virtual bool textShouldEndEditing(RigthMouseTBView& /*table*/) { return true; }
};

// The commands of a macro as rows: an icon and words for the command, an icon and the time for the
// pause after it. Shows the macro's own commands; tell it when they changed.
class MacroCommandModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  // tbHeardColumnImage1, tbHeardColumn1, tbHeardColumnImage2, tbHeardColumn2
  enum Column : int { CommandImage, Command, DelayImage, Delay, columns };
  using Commands = std::vector<std::shared_ptr<MacroKeyInfo>>;

  explicit MacroCommandModel(QObject* parent);

  // Not owned, and in use until others are set; null for no macro.
  void setCommands(const Commands* commands);
  void reloadData();
  // What a command does, in words.
  static QString describe(const MacroKeyInfo& command);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  // What is typed into a cell changes no command.
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 private:
  QPixmap icon(int index) const;

  const Commands* m_commands = nullptr;
  // Key down, key up, command, delay, mouse down, mouse up: a command's flag is its place here.
  std::vector<LXImage> m_icons;
};

// A table that hands the presses of all buttons of the mouse to its delegate, and keeps them from
// the rows while it captures them.
class RigthMouseTBView : public QTableView {
  Q_OBJECT

 public:
  explicit RigthMouseTBView(QWidget* parent);

  // Not owned; has to outlive the table, or take itself out.
  void setLXBtnDelege(RigthMouseTBDelegate* delegate) { m_delegate = delegate; }
  void setIsCaptureMouseEvent(bool captures) { m_isCaptureMouseEvent = captures; }
  bool isCaptureMouseEvent() const { return m_isCaptureMouseEvent; }

  using QTableView::edit;
  // Letters select nothing.
  void keyboardSearch(const QString& /*search*/) override {}

 protected:
  bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
  void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
  // One row is selected, whatever modifiers are held.
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                       const QEvent* event) const override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  void sendMouseMove(QMouseEvent& event, bool isDown);

  RigthMouseTBDelegate* m_delegate = nullptr;
  bool m_isCaptureMouseEvent = false;
};
