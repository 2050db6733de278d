#pragma once

#include <QDialog>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Kit/Desktop/InstalledPrograms.h"

class QLineEdit;
class QListWidget;
class QPushButton;

// Lets the user choose a program by its name and icon. The programs that profiles use already come
// first, then the running ones. "Other file" opens the panel for any file.
class ProgramPanel : public QDialog {
  Q_OBJECT

 public:
  using Programs = std::vector<installedprograms::Program>;

  // `used`: the paths that profiles link to or launch.
  ProgramPanel(Programs programs, const std::set<std::string>& used, QWidget* parent);

  // The chosen program's desktop entry; empty until one is chosen.
  std::filesystem::path chosen() const;
  // The user wants another file.
  bool wantsOtherFile() const { return m_wantsOtherFile; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void fill(const QString& filter);
  void refreshChooseBtn();

  Programs m_programs;
  QLineEdit* m_search;
  QListWidget* m_list;
  QPushButton* m_chooseBtn;
  bool m_wantsOtherFile = false;
};

namespace programpanel {

using Answer = std::optional<std::filesystem::path>;

// Runs until the user has chosen a program or a file; nothing if the user cancels.
Answer choose(QWidget* parent);
// For tests: answers instead of the panel; an empty function turns this off.
void setAnswerer(std::function<Answer(QWidget* parent)> answerer);

// What the windows show for a stored path: the program's name, and that it is not installed any
// more where its file is gone. Empty for an empty path.
QString shownName(const std::string& path);

}  // namespace programpanel
