#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <functional>
#include <string>
#include <utility>

// What other programs can ask of a running program of a desktop. Whatever it is, the program comes
// to the front.
class SingleInstanceObject : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

 public:
  using Activation = std::function<void(const std::string& token)>;

  explicit SingleInstanceObject(Activation activate) : m_activate(std::move(activate)) {}

 public slots:
  void Activate(const QVariantMap& platformData) {
    QString token = platformData.value(QStringLiteral("activation-token")).toString();
    if (token.isEmpty()) {
      token = platformData.value(QStringLiteral("desktop-startup-id")).toString();
    }
    m_activate(token.toStdString());
  }
  void Open(const QStringList& /*uris*/, const QVariantMap& platformData) {
    Activate(platformData);
  }
  void ActivateAction(const QString& /*name*/, const QVariantList& /*parameter*/,
                      const QVariantMap& platformData) {
    Activate(platformData);
  }

 private:
  Activation m_activate;
};
