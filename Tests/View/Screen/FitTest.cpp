// Every word of the windows has the room that it needs, in every language. The build also runs
// these tests at 150 % and 200 %, where the letters have other widths.

#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QTableView>
#include <QTextDocumentFragment>
#include <set>

#include <gmock/gmock.h>

#include "Action/Texts/Language.h"
#include "Action/Texts/TooltipManager.h"
#include "Tests/View/Screen/EveryWindow.h"
#include "View/Main/LanguageMenu.h"

namespace {

using testing::IsEmpty;

// Smaller type is hard to read.
constexpr int leastType = 11;
constexpr QChar ellipsis(0x2026);

// A text that somebody reads, and where its letters stand in its window.
struct Seen {
  const QWidget* widget;
  QString text;
  QRect place;
};

std::string nameOf(const QWidget& widget) {
  return widget.objectName().toStdString() + " (" + widget.metaObject()->className() + ")";
}

QRect inWindow(const QWidget& widget, const QRect& place) {
  return {widget.mapTo(widget.window(), place.topLeft()), place.size()};
}

class Fit : public EveryWindow, public testing::WithParamInterface<language::Language> {
 protected:
  Fit() {
    EXPECT_TRUE(language::choose(GetParam().code));
    endProgram();
    beginProgram();
    library().setCurrFWProfileIndex(0);
    const QWidgetList older = QApplication::allWidgets();
    m_older = {older.begin(), older.end()};
    addCombo();
  }

  // What cannot be read on the open windows: type that is too small, words that are cut, and words
  // that stand on others.
  std::vector<std::string> misfits() const {
    process();
    std::set<std::string> found;
    std::vector<Seen> seen;
    for (const QWidget* widget : QApplication::allWidgets()) {
      if (m_older.contains(widget) || !widget->isVisible()) {
        continue;
      }
      const std::size_t before = seen.size();
      const QString cut = cutText(*widget, seen);
      if (!cut.isEmpty()) {
        found.insert(nameOf(*widget) + " is cut: " + cut.toStdString());
      }
      const double type = QFontInfo(widget->font()).pixelSize();
      if ((seen.size() > before || !cut.isEmpty()) && type < leastType) {
        found.insert(nameOf(*widget) + " is too small: " + std::to_string(type));
      }
    }
    for (std::size_t one = 0; one < seen.size(); ++one) {
      for (std::size_t other = 0; other < one; ++other) {
        if (seen[one].widget->window() == seen[other].widget->window() &&
            seen[one].place.intersects(seen[other].place)) {
          found.insert(nameOf(*seen[other].widget) + " and " + nameOf(*seen[one].widget) +
                       " overlap: " + seen[other].text.toStdString() + ", " +
                       seen[one].text.toStdString());
        }
      }
    }
    return {found.begin(), found.end()};
  }

 private:
  // The text of the widget if it is cut. Adds what stands there to `seen`.
  static QString cutText(const QWidget& widget, std::vector<Seen>& seen) {
    if (const auto* button = qobject_cast<const LXButton*>(&widget)) {
      return button->isCaptionCut() ? button->text() : QString();
    }
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
      return cutLabel(*label, seen);
    }
    if (const auto* field = qobject_cast<const QLineEdit*>(&widget)) {
      const QString text = field->text().isEmpty() ? field->placeholderText() : field->text();
      return field->fontMetrics().horizontalAdvance(text) > field->contentsRect().width()
                 ? text
                 : QString();
    }
    if (const auto* header = qobject_cast<const QHeaderView*>(&widget)) {
      return cutHeading(*header);
    }
    if (const auto* table = qobject_cast<const QTableView*>(&widget)) {
      return cutCell(*table);
    }
    if (const auto* list = qobject_cast<const QListWidget*>(&widget)) {
      return cutRow(*list);
    }
    if (const auto* plain = qobject_cast<const QAbstractButton*>(&widget)) {
      return !plain->text().isEmpty() && plain->sizeHint().width() > plain->width() ? plain->text()
                                                                                    : QString();
    }
    return {};
  }

  static QString cutLabel(const QLabel& label, std::vector<Seen>& seen) {
    const QString text = label.textFormat() == Qt::PlainText || !Qt::mightBeRichText(label.text())
                             ? label.text()
                             : QTextDocumentFragment::fromHtml(label.text()).toPlainText();
    if (text.trimmed().isEmpty()) {
      return {};
    }
    const int flags = static_cast<int>(label.alignment()) |
                      (label.wordWrap() ? static_cast<int>(Qt::TextWordWrap) : 0);
    const QRect room = label.contentsRect();
    const QRect needed = label.fontMetrics().boundingRect(room, flags, text);
    seen.push_back({&label, text, inWindow(label, needed.intersected(room))});
    const bool isCut = needed.width() > room.width() || needed.height() > room.height();
    return isCut || text.endsWith(ellipsis) ? text : QString();
  }

  static QString cutHeading(const QHeaderView& header) {
    for (int section = 0; header.model() != nullptr && section < header.count(); ++section) {
      const QString text = header.model()->headerData(section, header.orientation()).toString();
      if (header.orientation() == Qt::Horizontal && !header.isSectionHidden(section) &&
          header.fontMetrics().horizontalAdvance(text) > header.sectionSize(section)) {
        return text;
      }
    }
    return {};
  }

  static QString cutCell(const QTableView& table) {
    for (int row = 0; table.model() != nullptr && row < table.model()->rowCount(); ++row) {
      for (int column = 0; column < table.model()->columnCount(); ++column) {
        const QString text = table.model()->index(row, column).data().toString();
        if (!table.isColumnHidden(column) &&
            table.fontMetrics().horizontalAdvance(text) > table.columnWidth(column)) {
          return text;
        }
      }
    }
    return {};
  }

  static QString cutRow(const QListWidget& list) {
    for (int row = 0; row < list.count(); ++row) {
      const QString text = list.item(row)->text();
      if (list.fontMetrics().horizontalAdvance(text) > list.viewport()->width()) {
        return text;
      }
    }
    return {};
  }

  std::set<const QWidget*> m_older;
};

INSTANTIATE_TEST_SUITE_P(Words, Fit, testing::ValuesIn(language::all()), [](const auto& tested) {
  std::string name = tested.param.code;
  std::erase(name, '-');
  return name;
});

}  // namespace

TEST_P(Fit, InTheChosenLanguage) {
  EXPECT_EQ(TooltipManager::shareTooltipManager().languageCode(), GetParam().code);
  EXPECT_TRUE(LanguageMenu::canReadLanguage());
}

TEST_P(Fit, OnTheMainWindow) {
  throughTheMainWindow([&](const char* state) { EXPECT_THAT(misfits(), IsEmpty()) << state; });
}

TEST_P(Fit, InTheFooterOfEachEnd) {
  throughTheFooterOfEachEnd([&](const char* state) { EXPECT_THAT(misfits(), IsEmpty()) << state; });
}

TEST_P(Fit, InTheChildWindows) {
  throughTheChildWindows([&](const char* state) { EXPECT_THAT(misfits(), IsEmpty()) << state; });
}

TEST_P(Fit, InTheAssignmentOfEachKind) {
  throughTheAssignmentOfEachKind(
      [&](const char* state) { EXPECT_THAT(misfits(), IsEmpty()) << state; });
}

TEST_P(Fit, InTheListsOfFunctions) {
  throughTheListsOfFunctions(
      [&](const char* state) { EXPECT_THAT(misfits(), IsEmpty()) << state; });
}

TEST_P(Fit, InTheMacroEditor) {
  throughTheMacroEditor([&](const char* state) { EXPECT_THAT(misfits(), IsEmpty()) << state; });
}

TEST_P(Fit, InTheInnerWindows) {
  throughTheInnerWindows([&](const char* state) { EXPECT_THAT(misfits(), IsEmpty()) << state; });
}

TEST_P(Fit, OnThePanelOfPrograms) {
  throughThePanelOfPrograms([&](const char* state) { EXPECT_THAT(misfits(), IsEmpty()) << state; });
}
