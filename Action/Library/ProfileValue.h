#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

#include "Action/Record/Records.h"

// A profile of the library in memory. Reads and writes its file: the raw image of a _Nerin_CONFIG,
// 5264 bytes, little-endian.
class ProfileValue {
 public:
  // An all-zero profile without a name.
  ProfileValue() = default;
  // Loads a file; null if there is none at the path, or if it cannot be read. Bytes missing from a
  // short file are zero; bytes beyond 5264 are ignored.
  static std::shared_ptr<ProfileValue> initWithPath(const std::filesystem::path& path);
  // The same for a file that comes from elsewhere: null as well if the file is shorter than a
  // profile, since only part of one arrived.
  static std::shared_ptr<ProfileValue> initWithWholeFile(const std::filesystem::path& path);
  // Writes the whole file or nothing. A failure is logged.
  [[nodiscard]] std::error_code saveToPath(const std::filesystem::path& path);
  // The bytes that saveToPath writes.
  ConfigBytes fileBytes();

  std::uint64_t profileId() const { return m_profileId; }
  void setProfileId(std::uint64_t profileId) { m_profileId = profileId; }
  // UTF-8, cut to the 255 bytes that fit in the file; no value when the file's text is not valid.
  const std::optional<std::string>& name() const { return m_name; }
  void setName(std::optional<std::string> name);
  // The file that the profile was loaded from; no value for a profile made in memory.
  const std::optional<std::string>& pathName() const { return m_pathName; }
  void setPathName(std::optional<std::string> pathName) { m_pathName = std::move(pathName); }
  // The linked program. Clearing it does not clear the file's field: check isActiveApp.
  const std::optional<std::string>& activeAppPath() const { return m_activeAppPath; }
  void setActiveAppPath(std::optional<std::string> path) { m_activeAppPath = std::move(path); }
  bool isDefault() const { return m_isDefault; }
  void setIsDefault(bool isDefault) { m_isDefault = isDefault; }
  bool isActiveApp() const { return m_isActiveApp; }
  void setIsActiveApp(bool isActiveApp) { m_isActiveApp = isActiveApp; }
  const _Nerin_PROFILE& profileData() const { return m_profileData; }
  void setProfileData(const _Nerin_PROFILE& profileData) { m_profileData = profileData; }
  const _Nerin_CONFIG& configPro() const { return m_configPro; }
  void setConfigPro(const _Nerin_CONFIG& configPro) { m_configPro = configPro; }

  // Changes only the report rate of the record.
  void setProRate(std::uint32_t poRate) { m_profileData.poRate = poRate; }

 private:
  void takeFields();

  std::uint64_t m_profileId = 0;
  std::optional<std::string> m_name;
  std::optional<std::string> m_pathName;
  std::optional<std::string> m_activeAppPath;
  bool m_isDefault = false;
  bool m_isActiveApp = false;
  _Nerin_PROFILE m_profileData{};
  // The file's image as it was read, to keep bytes that no field here covers.
  _Nerin_CONFIG m_configPro{};
};
