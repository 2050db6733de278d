// Every word of the windows comes from the catalogue. In this one each text stands between marks,
// so that a word without them was never looked up.

#include <QAbstractItemView>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QRegularExpression>
#include <filesystem>
#include <set>

#include <gmock/gmock.h>
#include <pugixml.hpp>

#include "Action/Texts/Language.h"
#include "Kit/Core/LXKey.h"
#include "Tests/View/Screen/DrawnWords.h"
#include "Tests/View/Screen/EveryWindow.h"
#include "View/Windows/PlainMessage.h"

namespace {

using testing::IsEmpty;

const QString openMark = QStringLiteral("\u27E6");
const QString closeMark = QStringLiteral("\u27E7");

// The same in every language: names of the product and of the user's own things, names of keys,
// axes, color channels, and numbers with their units.
const std::set<QString> sameEverywhere{
    QStringLiteral("NerinOption"), QStringLiteral("Game"), QStringLiteral("Combo"),
    QStringLiteral("Chess"),       QStringLiteral("Hz"),   QStringLiteral("DPI"),
    QStringLiteral("Option"),      QStringLiteral("X"),    QStringLiteral("Y"),
    QStringLiteral("R"),           QStringLiteral("G"),    QStringLiteral("B"),
    QStringLiteral("Shift"),       QStringLiteral("Ctrl"), QStringLiteral("LED"),
};

bool isKey(const QString& text) {
  static const auto names = [] {
    std::set<QString> all;
    for (std::int32_t code = 0; code < 256; ++code) {
      all.insert(QString::fromStdString(LXKey::getStrByKeycode(code)));
    }
    return all;
  }();
  return names.contains(text);
}

// What stands outside of the marks, without what is the same everywhere.
QStringList strangers(QString text, bool mayBeKey = false) {
  // Languages by their own names, and the way back from a foreign one.
  for (const auto& one : language::all()) {
    if (text == QString::fromUtf8(one.ownName)) {
      return {};
    }
  }
  text.remove(QStringLiteral(" (Language)"));
  static const QRegularExpression lookedUp(
      openMark + QStringLiteral("[^%1%2]*").arg(openMark, closeMark) + closeMark);
  // From the inside out: a text may be filled into another.
  while (text.contains(lookedUp)) {
    text.replace(lookedUp, QStringLiteral(" "));
  }
  static const QRegularExpression factoryName(QStringLiteral("Profile ?#?[0-9]+"));
  static const QRegularExpression color(QStringLiteral("#[0-9A-F]{6}"));
  // Keys are named as they are engraved, some with what a PC has there: "F14 (Scroll Lock)".
  static const QRegularExpression separator(QStringLiteral("^[\\s:]+"));
  if (mayBeKey && isKey(text.remove(separator).trimmed().section(QStringLiteral(" ("), 0, 0))) {
    return {};
  }
  static const QRegularExpression newProfile(QStringLiteral("NewPF_[0-9]+"));
  static const QRegularExpression shortcut(QStringLiteral("Ctrl\\+(Shift\\+)?[A-Z]"));
  text.replace(shortcut, QStringLiteral(" "));
  text.replace(newProfile, QStringLiteral(" "));
  text.replace(QCoreApplication::applicationName(), QStringLiteral(" "));
  text.replace(factoryName, QStringLiteral(" "));
  text.replace(color, QStringLiteral(" "));
  QStringList found;
  static const QRegularExpression word(QStringLiteral("\\p{L}+"));
  for (auto match = word.globalMatch(text); match.hasNext();) {
    const QString one = match.next().captured();
    if (!sameEverywhere.contains(one)) {
      found.append(one);
    }
  }
  return found;
}

class LookedUp : public EveryWindow {
 protected:
  LookedUp() {
    pugi::xml_document catalogue;
    EXPECT_TRUE(catalogue.load_file(NERIN_RESOURCES "/Tooltip.xml"));
    for (const auto& language : catalogue.document_element().children("Lan")) {
      for (const auto& item : language.children("Item")) {
        auto text = item.attribute("text");
        if (*text.value() != '\0') {
          text.set_value((openMark.toStdString() + text.value() + closeMark.toStdString()).c_str());
        }
      }
    }
    endProgram();
    std::filesystem::create_directories(supportFolder());
    catalogue.save_file((supportFolder() / "Tooltip.xml").c_str());
    beginProgram();
    library().setCurrFWProfileIndex(0);
    // What lasts as long as the process has the texts of an earlier test.
    const QWidgetList older = QApplication::allWidgets();
    m_older = {older.begin(), older.end()};
    addCombo();
  }

  // The texts of all widgets that were not looked up, with the widgets' names.
  std::vector<std::string> notLookedUp() const {
    process();
    std::set<std::string> found;
    for (const QWidget* widget : QApplication::allWidgets()) {
      if (m_older.contains(widget)) {
        continue;
      }
      const bool mayBeKey = qobject_cast<const LXButton*>(widget) != nullptr ||
                            qobject_cast<const QLineEdit*>(widget) != nullptr ||
                            qobject_cast<const QAbstractItemView*>(widget) != nullptr;
      for (const QString& text : textsOf(*widget)) {
        if (!strangers(text, mayBeKey).isEmpty()) {
          found.insert(widget->objectName().toStdString() + " (" +
                       widget->metaObject()->className() + "): " + text.toStdString());
        }
      }
    }
    return {found.begin(), found.end()};
  }

 private:
  static QStringList textsOf(const QWidget& widget) {
    QStringList texts{widget.toolTip(), widget.accessibleName(), widget.accessibleDescription()};
    if (widget.isWindow()) {
      texts.append(widget.windowTitle());
    }
    for (const QAction* action : widget.actions()) {
      texts.append(action->text());
    }
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
      static const QRegularExpression tag(QStringLiteral("<[^>]*>"));
      texts.append(label->text().remove(tag));
    }
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) {
      texts.append(button->text());
    }
    if (const auto* field = qobject_cast<const QLineEdit*>(&widget)) {
      texts.append(field->placeholderText());
      texts.append(field->text());
    }
    if (const auto* items = qobject_cast<const QAbstractItemView*>(&widget)) {
      for (int row = 0; items->model() != nullptr && row < items->model()->rowCount(); ++row) {
        for (int column = 0; column < items->model()->columnCount(); ++column) {
          for (const int role : {Qt::DisplayRole, Qt::ToolTipRole, Qt::AccessibleTextRole}) {
            texts.append(items->model()->index(row, column).data(role).toString());
          }
        }
      }
    }
    return texts;
  }

  std::set<const QWidget*> m_older;
};

}  // namespace

TEST_F(LookedUp, AWordOfItsOwnIsFound) {
  QLabel label(QStringLiteral("Stray"));
  label.setObjectName(QStringLiteral("strayLbl"));
  EXPECT_THAT(notLookedUp(), testing::ElementsAre("strayLbl (QLabel): Stray"));
  EXPECT_THAT(strangers(openMark + QStringLiteral("a ") + openMark + QStringLiteral("b") +
                        closeMark + closeMark + QStringLiteral(" 125 Hz c")),
              testing::ElementsAre(QStringLiteral("c")));
}

TEST_F(LookedUp, InTheMainWindow) {
  throughTheMainWindow([&](const char* state) { EXPECT_THAT(notLookedUp(), IsEmpty()) << state; });
}

TEST_F(LookedUp, InItsListsAndItsMenu) {
  start();
  click("currProfileBtn");
  EXPECT_THAT(notLookedUp(), IsEmpty());
  QApplication::activePopupWidget()->close();
  view().applicationMenu().popup({0, 0});
  for (const char* name :
       {"aboutMenu", "osdMenu", "switchMenu", "helpMenu", "webMenu", "quitMenu"}) {
    const QString text = menuItem(name).text();
    EXPECT_TRUE(text.contains(openMark)) << name;
    EXPECT_TRUE(strangers(text).isEmpty()) << text.toStdString();
  }
}

TEST_F(LookedUp, InTheFooterOfEachEnd) {
  throughTheFooterOfEachEnd(
      [&](const char* state) { EXPECT_THAT(notLookedUp(), IsEmpty()) << state; });
  for (const auto& message : m_shown) {
    EXPECT_THAT(strangers(QString::fromStdString(message)), IsEmpty()) << message;
  }
}

TEST_F(LookedUp, InTheChildWindows) {
  throughTheChildWindows(
      [&](const char* state) { EXPECT_THAT(notLookedUp(), IsEmpty()) << state; });
}

TEST_F(LookedUp, InTheAssignmentOfEachKind) {
  throughTheAssignmentOfEachKind(
      [&](const char* state) { EXPECT_THAT(notLookedUp(), IsEmpty()) << state; });
}

TEST_F(LookedUp, InTheListsOfFunctions) {
  throughTheListsOfFunctions(
      [&](const char* state) { EXPECT_THAT(notLookedUp(), IsEmpty()) << state; });
}

TEST_F(LookedUp, InTheMacroEditor) {
  throughTheMacroEditor([&](const char* state) { EXPECT_THAT(notLookedUp(), IsEmpty()) << state; });
}

TEST_F(LookedUp, InTheInnerWindows) {
  throughTheInnerWindows(
      [&](const char* state) { EXPECT_THAT(notLookedUp(), IsEmpty()) << state; });
}

TEST_F(LookedUp, OnThePanelOfPrograms) {
  throughThePanelOfPrograms(
      [&](const char* state) { EXPECT_THAT(notLookedUp(), IsEmpty()) << state; });
}

TEST_F(LookedUp, OnAMessage) {
  bool wasShown = false;
  QTimer::singleShot(0, qApp, [&] {
    wasShown = true;
    EXPECT_THAT(notLookedUp(), IsEmpty());
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      if (auto* box = qobject_cast<QMessageBox*>(widget)) {
        box->reject();
      }
    }
  });
  plainmessage::ask("Combo");
  EXPECT_TRUE(wasShown);
}

// The words of the pictures are drawn from the catalogue if the drawing names a key.
TEST_F(LookedUp, InThePictures) {
  int words = 0;
  for (const auto& [screen, drawn] : drawnWords()) {
    for (const auto& each : drawn) {
      const QJsonObject word = each.toObject();
      if (word[u"key"].toString().isEmpty()) {
        EXPECT_THAT(strangers(word[u"text"].toString()), IsEmpty()) << screen;
        ++words;
      }
    }
  }
  EXPECT_GT(words, 10);
}
