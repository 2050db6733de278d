#pragma once

#include <functional>
#include <optional>
#include <string>

class QMenu;

// The part of the application menu with the program's languages: that of the system, then each by
// its own name. A language whose letters no installed font has cannot be chosen.
class LanguageMenu {
 public:
  // Calls back with the code of the chosen language, or none for that of the system.
  using Choose = std::function<void(const std::optional<std::string>&)>;

  // Adds itself to the menu, which owns it.
  LanguageMenu(QMenu& menu, const Choose& choose);

  // Says its title in the language of now.
  void showTexts();

  // False if no font has the letters of the language of now. The texts are English then.
  static bool canReadLanguage();
  // Whether the program's fonts have the letters of this text.
  static bool hasLettersOf(const std::string& text);

 private:
  // Looks for the letters only when it opens: it loads the fonts.
  void fill();

  QMenu* m_menu;
};
