#include "Action/Library/ProfileMenuData.h"

#include <utility>

std::shared_ptr<ProfileMenuData> ProfileMenuData::initWithProfileValue(
    std::shared_ptr<ProfileValue> profile) {
  auto entry = std::make_shared<ProfileMenuData>();
  entry->setTitleStr(profile->name().value_or(""));
  entry->m_profileName = profile->name();
  entry->m_profileId = static_cast<std::int64_t>(profile->profileId());
  entry->m_profileData = std::move(profile);
  return entry;
}
