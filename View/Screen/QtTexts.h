#pragma once

#include <QTranslator>
#include <map>
#include <memory>
#include <string>

// The toolkit's own words: file panels, message boxes, the menus of fields. While an object lives,
// they follow the language of the catalogue, also when it changes; what is open stays as it was
// opened. They come with the toolkit's translations, and for a language that those lack with the
// program ("qtbase_el.qm"). A language that neither has stays English.
class QtTexts : public QTranslator {
 public:
  // Needs the QApplication and the installed platform.
  QtTexts();
  ~QtTexts() override;
  QtTexts(const QtTexts&) = delete;
  QtTexts& operator=(const QtTexts&) = delete;

  QString translate(const char* context, const char* sourceText, const char* disambiguation,
                    int n) const override;
  bool isEmpty() const override { return false; }

 private:
  // Of the catalogue's language, loaded at the first question.
  const QTranslator* words() const;

  // By the name of the language. All are kept: the toolkit asks under a lock that the end of a
  // translator would wait for.
  mutable std::map<std::string, std::unique_ptr<QTranslator>> m_words;
};
