// The rows of a macro's commands: their content and their selection.

#include <QHeaderView>
#include <QLineEdit>
#include <QTest>

#include <gmock/gmock.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Tests/View/Macros/MacroViewTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class MacroTable : public MacroViewTest {};

// Records the reports of the table.
class Listener : public RigthMouseTBDelegate {
 public:
  void onMouseEvent(RigthMouseTBView& table, QMouseEvent& /*event*/, int type) override {
    types.push_back(type);
    rows.push_back(table.currentIndex().row());
  }
  std::vector<int> types;
  // The selected row at each report.
  std::vector<int> rows;
};

}  // namespace

TEST_F(MacroTable, ARowHasAnIconWordsAndItsPause) {
  open();
  auto& model = *table().model();
  EXPECT_TRUE(table().horizontalHeader()->isHidden());
  EXPECT_TRUE(table().verticalHeader()->isHidden());
  press("newMacroBtn");
  struct Command {
    int code;
    int flag;
    const char* words;
    const char* icon;
  };
  const std::string function = NerinAction::getMacroMenuNameById(2).value_or("none");
  ASSERT_EQ(function, "Record after the Selected Line");
  const Command all[] = {
      {11, 0, "Press B", "MacroIconKeyDown"},
      {11, 1, "Release B", "MacroIconKeyUp"},
      {2, 2, "Record after the Selected Line", "MacroIconCommand"},
      {99, 2, "", "MacroIconCommand"},
      // The pictures are in the order of the flags, including one for a delay.
      {120, 3, "L Button Down", "MacroIconDelay"},
      {121, 3, "R Button Down", "MacroIconDelay"},
      {122, 4, "M Button Up", "MacroIconMouseDown"},
      // Keys whose codes are those of mouse buttons.
      {120, 0, "Press L Button", "MacroIconKeyDown"},
      {121, 1, "Release R Button", "MacroIconKeyUp"},
      {122, 0, "Press M Button", "MacroIconKeyDown"},
      {11, 3, "B Down", "MacroIconDelay"},
      {11, 4, "B Up", "MacroIconMouseDown"},
  };
  for (const Command& command : all) {
    commands().push_back(
        std::make_shared<MacroKeyInfo>(command.code, command.flag, 10 * command.code));
  }
  addCommands(0);
  ASSERT_EQ(model.rowCount(), static_cast<int>(std::size(all)));
  const auto picture = [](const std::string& name) {
    return QPixmap(QString::fromStdString(std::string(NERIN_RESOURCES) + '/' + name + ".png"))
        .toImage();
  };
  for (int row = 0; row < model.rowCount(); ++row) {
    const Command& command = all[row];
    const auto cell = [&](int column, int role) { return model.index(row, column).data(role); };
    const auto icon = [&](int column) {
      return cell(column, Qt::DecorationRole).value<QPixmap>().toImage();
    };
    EXPECT_EQ(cell(1, Qt::DisplayRole).toString().toStdString(), command.words);
    EXPECT_EQ(cell(3, Qt::DisplayRole).toString(), QString::number(10 * command.code) + " ms");
    EXPECT_EQ(cell(1, Qt::EditRole).toString(), QString::number(10 * command.code));
    EXPECT_TRUE(icon(0) == picture(command.icon)) << command.words;
    EXPECT_TRUE(icon(2) == picture("MacroIconDelay"));
    EXPECT_TRUE(cell(0, Qt::DisplayRole).isNull());
    EXPECT_TRUE(cell(2, Qt::DisplayRole).isNull());
  }
}

TEST_F(MacroTable, CommandsFromAFileMayHaveAnyFlag) {
  openOn(0, 0);
  for (const int flag : {-1, 5, 6, 1 << 30}) {
    commands().push_back(std::make_shared<MacroKeyInfo>(0, flag, 0));
  }
  addCommands(0);
  EXPECT_EQ(table().model()->rowCount(), 4);
  for (int row = 0; row < 4; ++row) {
    EXPECT_EQ(table().model()->index(row, 1).data().toString(), "A");
  }
  EXPECT_FALSE(editor().grab().isNull());
}

TEST_F(MacroTable, TheTableIsWhiteOnBlack) {
  openOn(3, 0);
  const QImage picture = table().viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
  const auto line = table().visualRect(table().model()->index(1, 1));
  bool hasWhite = false;
  bool hasBlack = false;
  for (int y = line.top(); y < line.bottom(); ++y) {
    for (int x = line.left(); x < line.left() + 60; ++x) {
      hasWhite = hasWhite || qGray(picture.pixel(x, y)) > 200;
      hasBlack = hasBlack || (picture.pixel(x, y) & 0xFFFFFFU) == 0;
    }
  }
  EXPECT_TRUE(hasWhite);
  EXPECT_TRUE(hasBlack);
  // The background shows the selection.
  EXPECT_NE(picture.pixelColor(line.right() - 2, 2), QColor(Qt::black));
}

TEST_F(MacroTable, WhatIsTypedIntoACellIsDiscarded) {
  openOn(2, 0);
  commands()[1]->setDelay(30);
  for (const int column : {MacroCommandModel::Command, MacroCommandModel::Delay}) {
    const QModelIndex cell = table().model()->index(1, column);
    const QPoint place = table().visualRect(cell).center();
    QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(table().viewport(), Qt::LeftButton, {}, place);
    auto* field = table().findChild<QLineEdit*>();
    ASSERT_NE(field, nullptr) << column;
    EXPECT_EQ(field->text(), "30");
    field->selectAll();
    QTest::keyClicks(field, "777");
    QTest::keyClick(field, Qt::Key_Return);
    process();
    EXPECT_EQ(table().findChild<QLineEdit*>(), nullptr);
  }
  EXPECT_THAT(rows(), ElementsAre("0/0/0", "1/0/30"));
  EXPECT_TRUE(isOpen());
}

TEST_F(MacroTable, OneCommandIsAlwaysSelected) {
  openOn(3, 1);
  const auto selected = [this] {
    std::vector<int> all;
    for (const QModelIndex& index : table().selectionModel()->selectedRows()) {
      all.push_back(index.row());
    }
    return all;
  };
  const QPoint second = table().visualRect(table().model()->index(1, 1)).center();
  const QPoint third = table().visualRect(table().model()->index(2, 1)).center();
  QTest::mouseClick(table().viewport(), Qt::LeftButton, Qt::ControlModifier, second);
  EXPECT_THAT(selected(), ElementsAre(1));
  QTest::mouseClick(table().viewport(), Qt::LeftButton, Qt::ShiftModifier, third);
  EXPECT_THAT(selected(), ElementsAre(2));
  QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, {100, 200});
  EXPECT_THAT(selected(), ElementsAre(2));
  QTest::keyClick(&table(), Qt::Key_Space, Qt::ControlModifier);
  EXPECT_THAT(selected(), ElementsAre(2));
  QTest::keyClick(&table(), Qt::Key_Up, Qt::ControlModifier);
  EXPECT_THAT(selected(), ElementsAre(row()));
  // Selecting a macro selects its first command.
  press("newMacroBtn");
  EXPECT_THAT(selected(), IsEmpty());
  chooseIn("macroNameBtn", "NewMacro_1");
  EXPECT_THAT(selected(), ElementsAre(0));
  EXPECT_EQ(editor().selKeyInfo(), commands()[0]);
}

TEST_F(MacroTable, LettersSelectNoCommand) {
  openOn(3, 0);
  const QModelIndex first = table().model()->index(0, MacroCommandModel::Command);
  QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, table().visualRect(first).center());
  QTest::keyClick(&table(), Qt::Key_P);
  EXPECT_EQ(row(), 0);
  QTest::keyClick(&table(), Qt::Key_Down);
  EXPECT_EQ(row(), 1);
}

TEST_F(MacroTable, ItsDelegateHearsOfEveryButtonFirst) {
  openOn(3, 0);
  Listener listener;
  table().setLXBtnDelege(&listener);
  const QPoint third = table().visualRect(table().model()->index(2, 1)).center();
  const auto clickAll = [&] {
    for (const Qt::MouseButton one :
         {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton, Qt::BackButton}) {
      QTest::mouseClick(table().viewport(), one, {}, third);
    }
  };
  for (const bool captures : {true, false}) {
    table().setIsCaptureMouseEvent(captures);
    listener = {};
    clickAll();
    EXPECT_THAT(listener.types, ElementsAre(4, 5, 6, 7, 8, 9, 8, 9)) << captures;
    EXPECT_EQ(listener.rows.front(), 0) << captures;
    EXPECT_EQ(row(), captures ? 0 : 2);
  }
  // Without a delegate, there are no reports.
  table().setLXBtnDelege(nullptr);
  clickAll();
  EXPECT_EQ(listener.types.size(), 8U);
}

TEST_F(MacroTable, ARightPressIsForWhatLiesUnderIt) {
  class Presses : public QObject {
   public:
    int count = 0;

   protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
      count += event->type() == QEvent::MouseButtonPress ? 1 : 0;
      return false;
    }
  } presses;
  openOn(3, 0);
  editor().installEventFilter(&presses);
  for (const bool captures : {false, true}) {
    table().setIsCaptureMouseEvent(captures);
    for (const Qt::MouseButton one : {Qt::LeftButton, Qt::RightButton}) {
      presses.count = 0;
      QTest::mouseClick(table().viewport(), one, {}, {30, 30});
      EXPECT_EQ(presses.count, !captures && one == Qt::RightButton ? 1 : 0) << captures << one;
    }
  }
}

TEST_F(MacroTable, ItsDelegateDecidesWhetherACellIsEdited) {
  class Consent : public RigthMouseTBDelegate {
   public:
    bool begins = false;
    bool ends = false;

    void onMouseEvent(RigthMouseTBView& /*table*/, QMouseEvent& /*event*/, int /*type*/) override {}
    bool textShouldBeginEditing(RigthMouseTBView& /*table*/) override { return begins; }
    bool textShouldEndEditing(RigthMouseTBView& /*table*/) override { return ends; }
  } consent;
  openOn(2, 0);
  table().setLXBtnDelege(&consent);
  const QModelIndex cell = table().model()->index(0, MacroCommandModel::Delay);
  const auto editors = [this] { return table().findChildren<QLineEdit*>().size(); };
  table().edit(cell);
  EXPECT_EQ(editors(), 0);
  consent.begins = true;
  table().edit(cell);
  ASSERT_EQ(editors(), 1);
  auto* field = table().findChild<QLineEdit*>();
  QTest::keyClick(field, Qt::Key_Return);
  process();
  EXPECT_EQ(editors(), 1);
  consent.ends = true;
  QTest::keyClick(field, Qt::Key_Return);
  process();
  EXPECT_EQ(editors(), 0);
  table().setLXBtnDelege(&editor());
}

TEST_F(MacroTable, OnlyWordsAndPausesCanBeEdited) {
  openOn(1, 0);
  const auto isEditable = [this](int column) {
    return (table().model()->index(0, column).flags() & Qt::ItemIsEditable) != 0;
  };
  EXPECT_FALSE(isEditable(MacroCommandModel::CommandImage));
  EXPECT_TRUE(isEditable(MacroCommandModel::Command));
  EXPECT_FALSE(isEditable(MacroCommandModel::DelayImage));
  EXPECT_TRUE(isEditable(MacroCommandModel::Delay));
}
