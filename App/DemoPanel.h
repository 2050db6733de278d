#pragma once

#include <QWidget>
#include <functional>
#include <memory>

#include "Kit/Core/LXNotificationCenter.h"
#include "VirtualMouse/VirtualMouse.h"

class QComboBox;
class QPlainTextEdit;
class QPushButton;

// Stands beside the demonstration and does to the virtual mouse what hands do to a real one:
// unplugs it, plugs it in, presses its slot button. Shows what a slot holds. Notifies the program
// like the background service.
class DemoPanel : public QWidget {
  Q_OBJECT

 public:
  using Report = std::function<void(const LXUserInfo& userInfo)>;

  DemoPanel(std::shared_ptr<VirtualMouse> mouse, Report report);

  // Shows the panel when the program waits for its user, in its event loop or in a question of the
  // start. By then its window is there: a desktop that places windows itself puts a later one
  // beside it or in front of it. The window keeps the keyboard where a program has a say in it.
  void showWhenProgramWaits();
  // Right of the window, or overlapping its edge if the screen ends there.
  void standBeside(const QWidget& window);
  // What the slot (0..9) holds, in words and bytes.
  QString describe(int slot) const;

 private:
  void unplug();
  void plug();
  void pressSlotButton();
  void refresh();

  std::shared_ptr<VirtualMouse> m_mouse;
  Report m_report;
  QPushButton* m_unplugBtn;
  QPushButton* m_plugBtn;
  QPushButton* m_slotBtn;
  QComboBox* m_slotBox;
  QPlainTextEdit* m_memory;
};
