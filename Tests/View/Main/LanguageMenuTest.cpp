// The languages in the application menu.

#include <QApplication>
#include <QElapsedTimer>
#include <QMenu>

#include <gmock/gmock.h>

#include "Action/Texts/Language.h"
#include "Action/Texts/TooltipManager.h"
#include "Tests/Support/ViewTest.h"
#include "View/Main/LanguageMenu.h"
#include "View/Screen/ControlFactory.h"

using testing::ElementsAreArray;
using testing::Not;

namespace {

class LanguageChoice : public ViewTest {
 protected:
  QMenu& menu() {
    auto* found = view().applicationMenu().findChild<QMenu*>(QStringLiteral("languageMenu"));
    emit found->aboutToShow();
    return *found;
  }
  QAction& entry(const char* name) {
    return *menu().findChild<QAction*>(QString::fromLatin1(name));
  }
  std::string spoken(const char* name) { return button(name).accessibleName().toStdString(); }
  // All texts of the main window that a user sees or hears.
  std::vector<std::string> texts() {
    std::vector<std::string> all;
    for (const QWidget* widget : view().findChildren<QWidget*>()) {
      all.push_back(widget->objectName().toStdString() + ": " +
                    widget->accessibleName().toStdString() + " | " +
                    widget->toolTip().toStdString() + " | " +
                    widget->accessibleDescription().toStdString());
      if (const auto* one = qobject_cast<const QAbstractButton*>(widget)) {
        all.back() += " | " + one->text().toStdString();
      }
    }
    for (const QAction* action : view().applicationMenu().actions()) {
      all.push_back(action->text().toStdString());
    }
    return all;
  }
};

}  // namespace

TEST_F(LanguageChoice, TheMenuOffersTheSystemsAndAllFifteenByTheirOwnNames) {
  start();
  std::vector<std::string> names;
  for (const QAction* action : menu().actions()) {
    if (!action->isSeparator()) {
      names.push_back(action->text().toStdString());
    }
  }
  std::vector<std::string> expected{"System"};
  for (const auto& one : language::all()) {
    expected.push_back(LanguageMenu::hasLettersOf(one.ownName)
                           ? one.ownName
                           : std::string(one.english) + " (no font for its letters)");
  }
  EXPECT_THAT(names, ElementsAreArray(expected));
  EXPECT_EQ(names.size(), 16U);
  EXPECT_THAT(names, testing::IsSupersetOf({"English", "Čeština", "Deutsch", "Français"}));
  EXPECT_TRUE(entry("languageSystem").isChecked());
}

TEST_F(LanguageChoice, EveryTextFollowsAtOnceAsIfTheProgramHadStartedInThatLanguage) {
  start();
  entry("language_de").trigger();
  process();
  const auto german = texts();
  const QImage seen = view().grab().toImage();
  EXPECT_EQ(menu().title(), QStringLiteral("Sprache (Language)"));
  EXPECT_TRUE(entry("language_de").isChecked());
  EXPECT_EQ(spoken("cancelBtn"), "Abbrechen");
  startAgain();
  process();
  EXPECT_EQ(texts(), german);
  EXPECT_TRUE(view().grab().toImage() == seen);
  entry("language_en").trigger();
  EXPECT_EQ(spoken("cancelBtn"), "Cancel");
  EXPECT_THAT(texts(), Not(german));
}

TEST_F(LanguageChoice, TheSystemsLanguageCanBeChosenAgain) {
  setPreferredLanguage("fr_FR.UTF-8");
  start();
  EXPECT_EQ(spoken("cancelBtn"), "Annuler");
  entry("language_pl").trigger();
  EXPECT_EQ(language::chosen(), "pl");
  EXPECT_NE(spoken("cancelBtn"), "Annuler");
  entry("languageSystem").trigger();
  EXPECT_EQ(language::chosen(), std::nullopt);
  EXPECT_EQ(spoken("cancelBtn"), "Annuler");
}

TEST_F(LanguageChoice, WhatIsEditedStaysAsItIs) {
  start();
  click("profileNewBtn");
  click("battleModeBtn");
  const _Nerin_PROFILE before = editState->selProfile();
  const auto name = button("currProfileBtn").title();
  entry("language_it").trigger();
  EXPECT_TRUE(isSameRecord(editState->selProfile(), before));
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_TRUE(button("applyBtn").isEnabled());
  EXPECT_EQ(button("currProfileBtn").title(), name);
  EXPECT_TRUE(button("battleModeBtn").isChecked());
}

TEST_F(LanguageChoice, AnUnknownCodeInThePreferencesIsTheSystemsLanguage) {
  start();
  EXPECT_TRUE(language::choose("tlh"));
  EXPECT_EQ(language::chosen(), std::nullopt);
  startAgain();
  EXPECT_EQ(spoken("cancelBtn"), "Cancel");
}

TEST_F(LanguageChoice, LettersThatNoFontHasAreNoticed) {
  EXPECT_TRUE(LanguageMenu::hasLettersOf("English"));
  EXPECT_FALSE(LanguageMenu::hasLettersOf("\xF3\xB0\x80\x80"));
}

TEST_F(LanguageChoice, WorksBeforeTheWindowListensToTheService) {
  MainView alone;
  alone.construct();
  alone.applicationMenu().findChild<QAction*>(QStringLiteral("language_de"))->trigger();
  EXPECT_EQ(alone.findChild<LXButton*>(QStringLiteral("applyBtn"))->accessibleName(),
            QStringLiteral("Anwenden"));
}
