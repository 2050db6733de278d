#include "Action/Library/ProfileValue.h"

#include <fstream>
#include <string_view>

#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/Utf8.h"

namespace fs = std::filesystem;

namespace {

std::optional<std::string> validText(const char (&field)[textSize]) {
  const std::string_view text = textOf(field);
  return utf8::isValid(text) ? std::optional<std::string>(text) : std::nullopt;
}

}  // namespace

std::shared_ptr<ProfileValue> ProfileValue::initWithPath(const fs::path& path) {
  std::error_code error;
  if (path.empty() || !fs::exists(path, error)) {
    return nullptr;
  }
  auto profile = std::make_shared<ProfileValue>();
  profile->m_pathName = path.filename().string();
  std::ifstream file;
  // Opening a pipe would block.
  if (fs::is_regular_file(path, error)) {
    file.open(path, std::ios::binary);
  }
  ConfigBytes bytes{};
  if (file.is_open()) {
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  if (!file.is_open() || file.bad()) {
    LXLogger::warning(path.string() + " cannot be read");
    return nullptr;
  }
  profile->m_configPro = configOf(bytes);
  profile->takeFields();
  return profile;
}

std::shared_ptr<ProfileValue> ProfileValue::initWithWholeFile(const fs::path& path) {
  std::error_code error;
  return fs::file_size(path, error) >= sizeof(_Nerin_CONFIG) && !error ? initWithPath(path)
                                                                       : nullptr;
}

void ProfileValue::setName(std::optional<std::string> name) {
  m_name = std::move(name);
  if (m_name) {
    m_name->resize(utf8::prefixOfBytes(*m_name, textSize - 1).size());
  }
}

void ProfileValue::takeFields() {
  m_isDefault = m_configPro.isDefault != 0;
  m_profileId = m_configPro.profileId;
  m_name = validText(m_configPro.profileName);
  m_profileData = m_configPro.profile;
  m_isActiveApp = m_configPro.isActiveApp != 0;
  m_activeAppPath = validText(m_configPro.activeAppPath);
}

ConfigBytes ProfileValue::fileBytes() {
  m_configPro.profileId = m_profileId;
  m_configPro.profile = m_profileData;
  m_configPro.isDefault = m_isDefault ? 1 : 0;
  m_configPro.isActiveApp = m_isActiveApp ? 1 : 0;
  if (m_name) {
    setText(m_configPro.profileName, *m_name);
  }
  if (m_activeAppPath && !m_activeAppPath->empty()) {
    setText(m_configPro.activeAppPath, *m_activeAppPath);
  }
  return bytesOf(m_configPro);
}

std::error_code ProfileValue::saveToPath(const fs::path& path) {
  const ConfigBytes bytes = fileBytes();
  const auto error = durable::writeFile(path, {bytes.data(), bytes.size()});
  if (error) {
    LXLogger::error(path.string() + " was not written: " + error.message());
  }
  return error;
}
