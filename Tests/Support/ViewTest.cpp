#include "Tests/Support/ViewTest.h"

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <algorithm>

#include "Kit/Core/LXPlatform.h"
#include "Kit/Widgets/ButtonAccessibility.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Kit/Widgets/LXTextField.h"
#include "View/Windows/PopDialogView.h"
#include "View/Windows/ProgramPanel.h"
#include "View/Windows/StatusLine.h"
#include "View/Windows/Termination.h"
#include "View/Windows/TransferProgress.h"

ViewTest::ViewTest() {
  // Without this, an earlier quit() would end every loop of this test.
  QTimer::singleShot(0, qApp, &QCoreApplication::quit);
  QApplication::exec();
  installSeams();
}

void ViewTest::installSeams() {
  LXPlatform platform = LXPlatform::current();
  platform.showInfoMessage = [this](const std::string& text) { m_shown.push_back(text); };
  platform.chooseInfoMessage = [this](const std::string& text) {
    m_shown.push_back(text);
    return m_answer;
  };
  platform.showBusy = busycursor::show;
  platform.documentsFolder = [this] { return home() / "Documents"; };
  platform.open = [this](const std::string& address) {
    m_opened.push_back(address);
    return true;
  };
  LXPlatform::install(platform);
  NerinAction::setPopViewAnswerer([this](const std::string& key, bool isChoose) {
    m_asked.emplace_back(key, isChoose);
    if (m_duringQuestion) {
      m_duringQuestion();
    }
    return !isChoose || m_answer;
  });
  // The panel of programs leads to that of files.
  programpanel::setAnswerer([](QWidget* parent) { return filepanel::openProgram(parent); });
  LXPlatform named = LXPlatform::current();
  named.programName = installedprograms::nameOf;
  LXPlatform::install(named);
  filepanel::setAnswerer([this](const filepanel::Request& request) {
    m_panels.push_back(request);
    if (m_duringPanel) {
      m_duringPanel();
    }
    return m_chosen;
  });
}

ViewTest::~ViewTest() {
  m_window.reset();
  process();
  NerinAction::setPopViewAnswerer({});
  filepanel::setAnswerer({});
  programpanel::setAnswerer({});
}

void ViewTest::endProgram() {
  ActionTest::endProgram();
  installSeams();
}

void ViewTest::start() {
  auto* made = new MainView;
  m_view = made;
  m_window = std::make_unique<LXNoTitleWindow>(made->size());
  made->constructControls();
  m_window->setContentView(made);
  m_window->show();
  made->finishConstruction();
  process();
}

void ViewTest::startAgain() {
  m_window.reset();
  process();
  endProgram();
  setPreferredLanguage(std::nullopt);
  installSeams();
  start();
}

void ViewTest::process() {
  QCoreApplication::processEvents();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  QCoreApplication::processEvents();
}

LXButton& ViewTest::button(const char* name) {
  auto* found = m_view->findChild<LXButton*>(QString::fromLatin1(name));
  if (found == nullptr) {
    throw std::runtime_error(std::string("no button ") + name);
  }
  return *found;
}

LXTextField& ViewTest::nameField() {
  return *m_view->findChild<LXTextField*>(QStringLiteral("profileNameTxt"));
}

void ViewTest::typeName(const std::string& name) {
  nameField().setText(QString::fromStdString(name));
  nameField().setModified(true);
  nameField().commit();
}

std::string ViewTest::shownName() {
  return nameField().text().toStdString();
}

std::string ViewTest::status() {
  return m_view->findChild<StatusLine*>(QStringLiteral("statusLine"))->text().toStdString();
}

void ViewTest::takeOffer() {
  auto* offer = m_view->findChild<StatusLine*>(QStringLiteral("statusLine"))->offerButton();
  if (offer == nullptr) {
    throw std::runtime_error("nothing is offered");
  }
  offer->click();
}

QAction& ViewTest::menuItem(const char* name) {
  auto* item = m_view->applicationMenu().findChild<QAction*>(QString::fromLatin1(name));
  if (item == nullptr) {
    throw std::runtime_error(std::string("no menu item ") + name);
  }
  return *item;
}

LXMenulist* ViewTest::openList() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (auto* list = qobject_cast<LXMenulist*>(widget); list != nullptr && list->isShowMenu()) {
      return list;
    }
  }
  return nullptr;
}

void ViewTest::report(std::int32_t type, std::int32_t value) {
  m_view->devReportPro({{"type", type}, {"value", value}});
  process();
}

std::vector<std::string> ViewTest::messages() const {
  std::vector<std::string> objects;
  for (const auto& post : posts()) {
    if (post.name == "NerinSettingChange") {
      objects.push_back(post.object);
    }
  }
  return objects;
}

bool ViewTest::hasSent(const std::string& part) const {
  const auto all = sent();
  return std::any_of(all.begin(), all.end(),
                     [&](const std::string& line) { return line.find(part) != std::string::npos; });
}

LXNoTitleWindow* ViewTest::child() {
  for (auto* window : m_window->findChildren<LXNoTitleWindow*>()) {
    if (window->isVisible()) {
      return window;
    }
  }
  return nullptr;
}

void ViewTest::clickThroughWindow(QWidget& widget, Qt::MouseButton button) {
  QWidget* top = widget.window();
  QTest::mouseClick(top->windowHandle(), button, {}, widget.mapTo(top, widget.rect().center()));
  process();
}

void ViewTest::onDialog(std::function<void(LXNoTitleWindow&, PopDialogView&)> act) {
  NerinAction::setPopViewAnswerer({});
  QTimer::singleShot(0, qApp, [act = std::move(act)] {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      auto* window = qobject_cast<LXNoTitleWindow*>(widget);
      auto* dialog = window != nullptr && window->isVisible()
                         ? qobject_cast<PopDialogView*>(window->contentView())
                         : nullptr;
      if (dialog != nullptr) {
        act(*window, *dialog);
        return;
      }
    }
  });
}

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  const QApplication application(argc, argv);
  // Closing a window of one test must not end the program.
  QApplication::setQuitOnLastWindowClosed(false);
  buttonaccessibility::install();
  return RUN_ALL_TESTS();
}
