#include "Tests/View/ViewTest.h"

#include <QApplication>
#include <algorithm>

#include "Kit/Core/LXPlatform.h"
#include "Kit/Widgets/ButtonAccessibility.h"
#include "Kit/Widgets/LXTextField.h"
#include "View/PopDialogView.h"
#include "View/Termination.h"

ViewTest::ViewTest() {
  termination::revive();
  LXPlatform platform = LXPlatform::current();
  platform.showInfoMessage = [this](const std::string& text) { m_shown.push_back(text); };
  platform.chooseInfoMessage = [this](const std::string& text) {
    m_shown.push_back(text);
    return m_answer;
  };
  LXPlatform::install(platform);
  NerinAction::setPopViewAnswerer([this](const std::string& key, bool isChoose) {
    m_asked.emplace_back(key, isChoose);
    if (m_duringQuestion) {
      m_duringQuestion();
    }
    return !isChoose || m_answer;
  });
  filepanel::setAnswerer([this](const filepanel::Request& request) {
    m_panels.push_back(request);
    return m_chosen;
  });
}

ViewTest::~ViewTest() {
  m_window.reset();
  process();
  NerinAction::setPopViewAnswerer({});
  filepanel::setAnswerer({});
  profileNode.reset();
  selProfile = {};
  isNeedSave = false;
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

void ViewTest::typeName(const std::string& name) {
  auto* field = m_view->findChild<LXTextField*>(QStringLiteral("profileNameTxt"));
  field->setText(QString::fromStdString(name));
  field->setModified(true);
  field->commit();
}

std::string ViewTest::shownName() {
  return m_view->findChild<LXTextField*>(QStringLiteral("profileNameTxt"))->text().toStdString();
}

void ViewTest::report(std::int32_t type, std::int32_t value) {
  m_view->devReportPro({{"type", type}, {"value", value}});
  process();
}

std::vector<std::string> ViewTest::messages() const {
  std::vector<std::string> objects;
  for (const auto& post : posts()) {
    objects.push_back(post.object);
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

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  const QApplication application(argc, argv);
  buttonaccessibility::install();
  return RUN_ALL_TESTS();
}
