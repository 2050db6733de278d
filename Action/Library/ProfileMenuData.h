#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "Action/Library/ProfileValue.h"
#include "Kit/Core/LXMenuData.h"

// A library profile in the pop-up menu of profiles.
class ProfileMenuData final : public LXMenuData {
 public:
  static std::shared_ptr<ProfileMenuData> initWithProfileValue(
      std::shared_ptr<ProfileValue> profile);

  std::int64_t profileId() const { return m_profileId; }
  void setProfileId(std::int64_t profileId) { m_profileId = profileId; }
  const std::shared_ptr<ProfileValue>& profileData() const { return m_profileData; }
  void setProfileData(std::shared_ptr<ProfileValue> data) { m_profileData = std::move(data); }
  const std::optional<std::string>& profileName() const { return m_profileName; }
  void setProfileName(std::optional<std::string> name) { m_profileName = std::move(name); }

 private:
  std::int64_t m_profileId = 0;
  std::shared_ptr<ProfileValue> m_profileData;
  std::optional<std::string> m_profileName;
};
