#include "View/Windows/ProgramPanel.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>
#include <algorithm>
#include <tuple>
#include <utility>

#include "Action/Library/ProfieController.h"
#include "Kit/Core/ProcessWide.h"
#include "Kit/Desktop/FilePanel.h"
#include "Kit/Desktop/HeldKeys.h"
#include "View/Screen/ControlFactory.h"
#include "View/Windows/HelpDocument.h"

namespace fs = std::filesystem;

namespace {

constexpr QSize panelSize(460, 520);
constexpr QSize iconSize(24, 24);

const char* const panelStyle =
    "QDialog { background: #15171C; border: 1px solid #343943; }"
    "QLabel { color: #F2F4F7; font-size: 14px; font-weight: 600; }"
    "QLineEdit { background: #22252C; border: 1px solid #343943; border-radius: 6px;"
    "  color: #F2F4F7; font-size: 13px; min-height: 34px; padding: 0 10px; }"
    "QLineEdit:focus { border-color: #F2F4F7; }"
    "QListWidget { background: #0E0F13; border: 1px solid #343943; border-radius: 6px;"
    "  color: #F2F4F7; font-size: 13px; outline: none; }"
    "QListWidget::item { height: 36px; padding: 0 8px; background: transparent; border: none; }"
    "QListWidget::item:hover { background: #22252C; }"
    "QListWidget::item:selected { background: #7D0608; color: #F2F4F7; }"
    "QPushButton { background: #22252C; border: 1px solid #343943; border-radius: 6px;"
    "  color: #F2F4F7; font-size: 12px; font-weight: 600; min-height: 38px; padding: 0 16px; }"
    "QPushButton#chooseBtn { background: #C41A22; border-color: #E5262F; }"
    "QPushButton:hover { background: #2D313A; border-color: #5A6270; }"
    "QPushButton#chooseBtn:hover { background: #E5262F; border-color: #FF5A60; }"
    "QPushButton:pressed { background: #0B0C0F; border-color: #E5262F; }"
    "QPushButton:focus { border: 2px solid #F2F4F7; }"
    "QPushButton:disabled, QPushButton#chooseBtn:disabled { background: #15171C; color: #59606C;"
    "  border-color: #22252C; }";

ProcessWide<std::function<programpanel::Answer(QWidget*)>> answererInUse;

QPushButton* button(const char* key, const char* name) {
  auto* made = new QPushButton(NerinAction::tooltipText(key));
  made->setObjectName(QString::fromLatin1(name));
  made->setAutoDefault(false);
  return made;
}

std::set<std::string> usedPrograms() {
  std::set<std::string> paths;
  for (const auto& profile : ProfieController::getShareProCon().profileArr()) {
    paths.insert(profile->activeAppPath().value_or(""));
    for (const _BTN_INFO& info : profile->profileData().btnInfo) {
      paths.insert(std::string(textOf(info.app_path)));
    }
  }
  paths.erase("");
  return paths;
}

}  // namespace

ProgramPanel::ProgramPanel(Programs programs, const std::set<std::string>& used, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint),
      m_programs(std::move(programs)),
      m_search(new QLineEdit),
      m_list(new QListWidget),
      m_chooseBtn(button("Choose", "chooseBtn")) {
  std::stable_sort(m_programs.begin(), m_programs.end(), [&](const auto& a, const auto& b) {
    return std::tuple(!used.contains(a.path.string()), !a.isRunning) <
           std::tuple(!used.contains(b.path.string()), !b.isRunning);
  });
  setObjectName(QStringLiteral("programPanel"));
  helpdocument::serve(*this, "programs");
  setWindowTitle(NerinAction::tooltipText("Choose a program"));
  setWindowModality(Qt::WindowModal);
  setStyleSheet(QString::fromLatin1(panelStyle));
  heldkeys::dropIn(*this);
  resize(panelSize);
  m_search->setObjectName(QStringLiteral("searchTxt"));
  m_search->setPlaceholderText(NerinAction::tooltipText("Search"));
  m_search->setAccessibleName(m_search->placeholderText());
  m_search->installEventFilter(this);
  m_list->setObjectName(QStringLiteral("programList"));
  m_list->setAccessibleName(windowTitle());
  m_list->setIconSize(iconSize);
  m_list->setUniformItemSizes(true);
  QPushButton* otherBtn = button("Other file…", "otherBtn");
  QPushButton* cancelBtn = button("Cancel", "cancelBtn");
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(12);
  buttons->addWidget(otherBtn);
  buttons->addStretch();
  buttons->addWidget(m_chooseBtn);
  buttons->addWidget(cancelBtn);
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(20, 18, 20, 18);
  rows->setSpacing(12);
  rows->addWidget(new QLabel(windowTitle()));
  rows->addWidget(m_search);
  rows->addWidget(m_list);
  rows->addLayout(buttons);
  const auto other = [this] {
    m_wantsOtherFile = true;
    accept();
  };
  connect(m_search, &QLineEdit::textChanged, this, &ProgramPanel::fill);
  connect(m_list, &QListWidget::itemActivated, this, &QDialog::accept);
  connect(m_list, &QListWidget::currentRowChanged, this, &ProgramPanel::refreshChooseBtn);
  connect(m_chooseBtn, &QPushButton::clicked, this, &QDialog::accept);
  connect(cancelBtn, &QPushButton::clicked, this, &QDialog::reject);
  connect(otherBtn, &QPushButton::clicked, this, other);
  connect(new QShortcut(QKeySequence::Open, this), &QShortcut::activated, this, other);
  fill({});
  m_search->setFocus();
}

void ProgramPanel::fill(const QString& filter) {
  m_list->clear();
  for (std::size_t i = 0; i < m_programs.size(); ++i) {
    const auto& program = m_programs[i];
    const QString name = QString::fromStdString(program.name);
    if (!name.contains(filter, Qt::CaseInsensitive)) {
      continue;
    }
    auto* item = new QListWidgetItem(program.icon, name, m_list);
    item->setData(Qt::UserRole, static_cast<qulonglong>(i));
  }
  m_list->setCurrentRow(m_list->count() > 0 ? 0 : -1);
  refreshChooseBtn();
}

void ProgramPanel::refreshChooseBtn() {
  m_chooseBtn->setEnabled(m_list->currentItem() != nullptr);
}

fs::path ProgramPanel::chosen() const {
  const QListWidgetItem* item = m_list->currentItem();
  if (result() != Accepted || m_wantsOtherFile || item == nullptr) {
    return {};
  }
  return m_programs[static_cast<std::size_t>(item->data(Qt::UserRole).toULongLong())].path;
}

// The arrow keys move in the list while the user types.
bool ProgramPanel::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_search && event->type() == QEvent::KeyPress) {
    auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
      case Qt::Key_Up:
      case Qt::Key_Down:
      case Qt::Key_PageUp:
      case Qt::Key_PageDown:
        QCoreApplication::sendEvent(m_list, key);
        return true;
      case Qt::Key_Return:
      case Qt::Key_Enter:
        if (m_chooseBtn->isEnabled()) {
          accept();
        }
        return true;
      default:
        break;
    }
  }
  return QDialog::eventFilter(watched, event);
}

programpanel::Answer programpanel::choose(QWidget* parent) {
  if (*answererInUse) {
    return (*answererInUse)(parent);
  }
  ProgramPanel panel(installedprograms::list(), usedPrograms(), parent);
  if (panel.exec() != QDialog::Accepted) {
    return std::nullopt;
  }
  return panel.wantsOtherFile() ? filepanel::openProgram(parent) : Answer(panel.chosen());
}

void programpanel::setAnswerer(std::function<Answer(QWidget*)> answerer) {
  *answererInUse = std::move(answerer);
}

QString programpanel::shownName(const std::string& path) {
  if (path.empty()) {
    return {};
  }
  const QString name = QString::fromStdString(installedprograms::nameOf(path));
  std::error_code error;
  return fs::exists(path, error)
             ? name
             : NerinAction::tooltipText("%1 (not installed any more)").arg(name);
}
