#include "View/Main/LanguageMenu.h"

#include <QActionGroup>
#include <QFontMetrics>
#include <QMenu>
#include <algorithm>

#include "Action/Texts/Language.h"
#include "Action/Texts/TooltipManager.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Pictures.h"

namespace {

constexpr qreal typeSize = 12;

}  // namespace

LanguageMenu::LanguageMenu(QMenu& menu, const Choose& choose) : m_menu(menu.addMenu(QString())) {
  m_menu->setObjectName(QStringLiteral("languageMenu"));
  m_menu->menuAction()->setObjectName(QStringLiteral("languages"));
  auto* group = new QActionGroup(m_menu);
  const auto add = [&](const QString& name, const QString& text) {
    QAction* action = m_menu->addAction(text);
    action->setObjectName(name);
    action->setCheckable(true);
    group->addAction(action);
    return action;
  };
  QAction* system = add(QStringLiteral("languageSystem"), {});
  QObject::connect(system, &QAction::triggered, m_menu, [choose] { choose(std::nullopt); });
  m_menu->addSeparator();
  for (const auto& one : language::all()) {
    const std::string code = one.code;
    QAction* action = add(QStringLiteral("language_") + QString::fromStdString(code),
                          QString::fromUtf8(one.ownName));
    QObject::connect(action, &QAction::triggered, m_menu, [choose, code] { choose(code); });
  }
  QObject::connect(m_menu, &QMenu::aboutToShow, m_menu, [this] { fill(); });
  showTexts();
}

bool LanguageMenu::hasLettersOf(const std::string& text) {
  const QFontMetrics metrics(pictures::font(typeSize, QFont::Normal));
  const QList<uint> letters = QString::fromStdString(text).toUcs4();
  return std::all_of(letters.begin(), letters.end(),
                     [&](uint letter) { return metrics.inFontUcs4(letter); });
}

bool LanguageMenu::canReadLanguage() {
  auto& texts = TooltipManager::shareTooltipManager();
  if (hasLettersOf(language::ofCode(texts.languageCode())->ownName)) {
    return true;
  }
  texts.setLanByname(language::all().front().name);
  return false;
}

void LanguageMenu::showTexts() {
  const QString own = NerinAction::tooltipText("Language");
  // Whoever cannot read the language of now must find the way back.
  const QString english = QStringLiteral("Language");
  m_menu->setTitle(own == english ? own : own + QStringLiteral(" (%1)").arg(english));
}

void LanguageMenu::fill() {
  const std::string chosen = language::chosen().value_or("");
  for (QAction* action : m_menu->actions()) {
    const QString name = action->objectName();
    if (name == u"languageSystem") {
      action->setText(NerinAction::tooltipText("System"));
      action->setChecked(chosen.empty());
    } else if (const auto* one = language::ofCode(name.section(u'_', 1).toStdString())) {
      const bool canBeRead = hasLettersOf(one->ownName);
      action->setText(canBeRead ? QString::fromUtf8(one->ownName)
                                : NerinAction::tooltipText("%1 (no font for its letters)")
                                      .arg(QString::fromUtf8(one->english)));
      action->setEnabled(canBeRead);
      action->setChecked(chosen == one->code);
    }
  }
}
