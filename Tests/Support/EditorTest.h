#pragma once

#include <QApplication>
#include <QObject>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Kit/Widgets/LXNoTitleWindow.h"
#include "Tests/Support/ViewTest.h"
#include "View/Assign/KeyAssignView.h"
#include "View/Windows/ChildView.h"

class LXMenulist;
class LXNumberTextField;
class LXProgressBar;
class LXTextField;

// A child view in its own window with a virtual mouse, without the main window. The end of the view
// closes the window, and closing the window ends the view.
class EditorTest : public ViewTest, private LXWindowDelegate {
 protected:
  EditorTest();
  ~EditorTest() override;

  using ActionTest::button;

  // Puts a constructed view into a window and shows the window.
  void place(ChildView* content);
  void show();
  void show(ChildView* content) {
    place(content);
    show();
  }
  LXNoTitleWindow& host() { return *m_host; }
  bool isOpen() const { return m_host && m_host->isVisible(); }
  void destroyHost() { m_host.reset(); }

  template <typename Control>
  Control& part(const char* name) {
    return partOf<Control>(*m_content, name);
  }
  template <typename Control>
  static Control& partOf(QWidget& view, const char* name) {
    auto* found = view.findChild<Control*>(QString::fromLatin1(name));
    if (found == nullptr) {
      throw std::runtime_error(std::string("no control ") + name);
    }
    return *found;
  }
  LXButton& control(const char* name) { return part<LXButton>(name); }
  // Clicks with the pointer.
  void press(const char* name) { clickThroughWindow(control(name)); }
  static std::string textOf(const LXTextField& field);
  // Replaces the field's text with typed keys, without a commit.
  static void type(LXNumberTextField& field, const char* text);
  static void hitKey(QWidget& widget, int key);
  // Opens the list of a button and chooses an entry with the pointer.
  void chooseIn(const char* button, const std::string& title) { chooseIn(control(button), title); }
  static void chooseIn(LXButton& button, const std::string& title);
  static void choose(LXMenulist& list, const std::string& title);
  static std::vector<std::string> titlesOf(const LXMenulist& list);

  // Calls `act` with the next window that has such a view, from within its loop.
  template <typename View>
  void onModal(std::function<void(LXNoTitleWindow&, View&)> act) {
    auto* timer = new QTimer(&m_scope);
    QObject::connect(timer, &QTimer::timeout, &m_scope, [this, timer, act = std::move(act)] {
      for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* window = qobject_cast<LXNoTitleWindow*>(widget);
        auto* view = window != nullptr && window->isVisible()
                         ? qobject_cast<View*>(window->contentView())
                         : nullptr;
        if (view != nullptr) {
          timer->stop();
          ++m_modals;
          act(*window, *view);
          return;
        }
      }
    });
    timer->start(5);
  }
  // The number of such windows so far.
  int modals() const { return m_modals; }
  // Whether it becomes true within a few seconds while the program runs.
  static bool waitFor(const std::function<bool()>& isSo);

  // The commands for the DPI and lift settings of a record, and for a report rate.
  static std::vector<std::string> settingCommands(const _Nerin_PROFILE& profile);
  static std::string rateCommand(std::uint32_t poRate);
  // The messages: "122 true" and "122 false" for a DPI trial, otherwise only the code.
  std::vector<std::string> told() const;

 private:
  void windowWillClose(LXNoTitleWindow& window) override;

  QObject m_scope;
  std::unique_ptr<LXNoTitleWindow> m_host;
  ChildView* m_content = nullptr;
  int m_modals = 0;
};

// The key assignment of a button.
class AssignTest : public EditorTest {
 protected:
  // Stores the assignment in the edited profile and opens the panel for it.
  KeyAssignView& openPanel(int btnIndex, const _BTN_INFO& stored);
  KeyAssignView& panel() { return *m_panel; }
  int btnIndex() const { return m_panel->btnIndex(); }
  const _BTN_INFO& stored() const { return editState->selProfile().btnInfo[m_panel->btnIndex()]; }
  // By its title in the list of kinds.
  void chooseType(const char* title) { chooseIn("comSelBtn", title); }
  // The visible parts.
  std::vector<std::string> shownParts();

  // The command that sets a button of the mouse at once. `entry` is five bytes in hex.
  static std::string buttonCommand(int btnIndex, const std::string& entry);
  static bool isSame(const _BTN_INFO& one, const _BTN_INFO& other);

 private:
  KeyAssignView* m_panel = nullptr;
};
