#include "Kit/Bus/NotificationSignal.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QVariantMap>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <variant>

namespace {

// The limit that D-Bus sets.
constexpr std::size_t maximumNameLength = 255;

bool isLetter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         character == '_';
}

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

QVariant variantOf(const std::variant<bool, std::int32_t>& value) {
  return std::visit([](auto held) { return QVariant::fromValue(held); }, value);
}

template <typename Number>
std::optional<std::variant<bool, std::int32_t>> fitting(Number number) {
  if (!std::in_range<std::int32_t>(number)) {
    return std::nullopt;
  }
  return static_cast<std::int32_t>(number);
}

std::optional<std::variant<bool, std::int32_t>> valueOf(const QVariant& variant) {
  switch (variant.typeId()) {
    case QMetaType::Bool:
      return variant.toBool();
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
      return fitting(variant.toLongLong());
    case QMetaType::ULongLong:
      return fitting(variant.toULongLong());
    default:
      return std::nullopt;
  }
}

}  // namespace

bool NotificationSignal::isValidName(const std::string& name) {
  if (name.empty() || name.size() > maximumNameLength || isDigit(name.front())) {
    return false;
  }
  for (const char character : name) {
    if (!isLetter(character) && !isDigit(character)) {
      return false;
    }
  }
  return true;
}

QDBusMessage NotificationSignal::toMessage() const {
  auto message = QDBusMessage::createSignal(
      QString::fromLatin1(path), QString::fromLatin1(interface), QString::fromStdString(name));
  message << QString::fromStdString(object);
  if (userInfo) {
    QVariantMap map;
    for (const auto& [key, value] : *userInfo) {
      map.insert(QString::fromStdString(key), variantOf(value));
    }
    message << map;
  }
  return message;
}

std::optional<NotificationSignal> NotificationSignal::fromMessage(const QDBusMessage& message) {
  const QString signature = message.signature();
  const bool hasUserInfo = signature == QLatin1String("sa{sv}");
  if (!hasUserInfo && signature != QLatin1String("s")) {
    return std::nullopt;
  }
  const QVariantList arguments = message.arguments();
  NotificationSignal signal;
  signal.name = message.member().toStdString();
  signal.object = arguments.at(0).toString().toStdString();
  if (hasUserInfo) {
    signal.userInfo.emplace();
    const auto map = qdbus_cast<QVariantMap>(arguments.at(1));
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
      if (const auto value = valueOf(entry.value())) {
        signal.userInfo->emplace(entry.key().toStdString(), *value);
      }
    }
  }
  return signal;
}
