#pragma once

#include <map>
#include <string>

// The texts of the windows in the user's language. The catalogue with all its languages is read
// when the first text is needed; only one language is kept.
class UserWords {
 public:
  // The text of that name; the name itself, which is English, if the catalogue lacks it.
  std::string operator()(const std::string& name);
  // The user may have chosen another language.
  void forget();

 private:
  void load();

  std::map<std::string, std::string> m_texts;
  bool m_isLoaded = false;
};
