#pragma once

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <map>
#include <string>

// The words that are drawn into the pictures, by the file of their screen.
inline std::map<std::string, QJsonArray> drawnWords() {
  std::map<std::string, QJsonArray> words;
  const QDir folder(QStringLiteral(NERIN_RESOURCES "/Words"));
  for (const QString& name : folder.entryList(QDir::Files)) {
    QFile file(folder.filePath(name));
    if (file.open(QIODevice::ReadOnly)) {
      words[name.toStdString()] =
          QJsonDocument::fromJson(file.readAll()).object()[u"words"].toArray();
    }
  }
  return words;
}
