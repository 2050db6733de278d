#include "Tests/Support/EditorTest.h"

#include <QElapsedTimer>
#include <QTest>
#include <cstring>

#include "Kit/Widgets/LXMenulist.h"
#include "Kit/Widgets/LXNumberTextField.h"

EditorTest::EditorTest() {
  beginProgram();
  // Selecting the slot also selects its factory profile.
  library().setCurrFWProfileIndex(0);
  clearTrace();
}

EditorTest::~EditorTest() {
  m_host.reset();
  process();
}

void EditorTest::place(ChildView* content) {
  m_content = content;
  m_host = std::make_unique<LXNoTitleWindow>(content->size());
  m_host->setClosesOnEscape(true);
  m_host->setWindowDelegate(this);
  m_host->setContentView(content);
  QObject::connect(content, &ChildView::ended, m_host.get(), &QWidget::close);
}

void EditorTest::show() {
  m_host->show();
  m_host->activateWindow();
  process();
}

void EditorTest::windowWillClose(LXNoTitleWindow& /*window*/) {
  m_content->windowCloses();
}

std::string EditorTest::textOf(const LXTextField& field) {
  return field.text().toStdString();
}

void EditorTest::type(LXNumberTextField& field, const char* text) {
  field.setFocus(Qt::OtherFocusReason);
  field.selectAll();
  if (*text == '\0') {
    QTest::keyClick(&field, Qt::Key_Delete);
  }
  QTest::keyClicks(&field, QString::fromLatin1(text));
}

void EditorTest::hitKey(QWidget& widget, int key) {
  QTest::keyClick(&widget, static_cast<Qt::Key>(key));
}

void EditorTest::chooseIn(LXButton& button, const std::string& title) {
  clickThroughWindow(button);
  LXMenulist* list = openList();
  if (list == nullptr) {
    throw std::runtime_error("no list of " + button.objectName().toStdString());
  }
  choose(*list, title);
}

void EditorTest::choose(LXMenulist& list, const std::string& title) {
  const auto found = list.findItems(QString::fromStdString(title), Qt::MatchExactly);
  if (found.isEmpty()) {
    throw std::runtime_error("no entry " + title);
  }
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                    list.visualItemRect(found.constFirst()).center());
  process();
}

std::vector<std::string> EditorTest::titlesOf(const LXMenulist& list) {
  std::vector<std::string> titles;
  titles.reserve(static_cast<std::size_t>(list.count()));
  for (int row = 0; row < list.count(); ++row) {
    titles.push_back(list.item(row)->text().toStdString());
  }
  return titles;
}

bool EditorTest::waitFor(const std::function<bool()>& isSo) {
  constexpr int longest = 5000;
  QElapsedTimer since;
  since.start();
  while (!isSo()) {
    if (since.elapsed() > longest) {
      return false;
    }
    QTest::qWait(5);
  }
  return true;
}

std::vector<std::string> EditorTest::settingCommands(const _Nerin_PROFILE& profile) {
  std::vector<std::string> commands;
  const auto send = [&commands](std::vector<std::uint32_t> words) {
    Bytes bytes(8);
    for (std::size_t at = 0; at < words.size(); ++at) {
      bytes[at] = static_cast<std::uint8_t>(words[at]);
    }
    commands.push_back("SET 0300 0 " + hexOf(bytes));
  };
  for (std::uint32_t level = 0; level < levelCount; ++level) {
    send({0xC4, 0x0F, 0, 4 + 5 * level, profile.xSensArr[level]});
    send({0xC4, 0x0F, 0, 3 + 5 * level, profile.ySensArr[level]});
  }
  send({0xC4, 0x0F, 0, 2, profile.currSelectDPI + 16 * profile.dpiLevel});
  send({0xC4, 0x0F, 1, profile.currSelectDPI, 0});
  send({0xC4, 0x0F, 0, 1, profile.liftHeight | 0x20U});
  send({0xC5, 0, 46, profile.liftHeight, 0});
  return commands;
}

std::string EditorTest::rateCommand(std::uint32_t poRate) {
  const Bytes bytes{0xC4, 0x0F, 0, 0, static_cast<std::uint8_t>(8U >> poRate), 0, 0, 0};
  return "SET 0300 0 " + hexOf(bytes);
}

std::vector<std::string> EditorTest::told() const {
  std::vector<std::string> all;
  for (const auto& post : posts()) {
    const auto* isTrial = post.userInfo && post.userInfo->count("value1") == 1
                              ? std::get_if<bool>(&post.userInfo->at("value1"))
                              : nullptr;
    all.push_back(isTrial == nullptr ? post.object : post.object + (*isTrial ? " true" : " false"));
  }
  return all;
}

KeyAssignView& AssignTest::openPanel(int btnIndex, const _BTN_INFO& stored) {
  editState->edit().btnInfo[btnIndex] = stored;
  editState->clearNeedSave();
  m_panel = new KeyAssignView;
  m_panel->construct();
  place(m_panel);
  m_panel->setBtnIndex(btnIndex);
  m_panel->setTmpBtnInfo(editState->selProfile().btnInfo[btnIndex]);
  m_panel->fillSettingData();
  show();
  return *m_panel;
}

std::vector<std::string> AssignTest::shownParts() {
  std::vector<std::string> names;
  for (const char* name : {"tkeyView", "singleKeyView", "sensitivityView", "launchProView"}) {
    if (part<QWidget>(name).isVisible()) {
      names.emplace_back(name);
    }
  }
  return names;
}

std::string AssignTest::buttonCommand(int btnIndex, const std::string& entry) {
  const auto position = static_cast<std::uint8_t>(btnIndex > 13 ? btnIndex + 3 : btnIndex);
  return "SET 0300 0 c40e" + hexOf(Bytes{position}) + entry;
}

bool AssignTest::isSame(const _BTN_INFO& one, const _BTN_INFO& other) {
  return std::memcmp(&one, &other, sizeof one) == 0;
}
