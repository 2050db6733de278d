#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Library/ProfileFileNames.h"
#include "Action/Library/ProfileValue.h"
#include "Action/Wire/ProfileImage.h"
#include "Fuzz/FuzzInput.h"

// Any bytes as a profile file: loaded, shown, converted for the mouse, named and written again.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto path = fuzz::putFile("fuzz.pro", fuzz::textOf(data, size));
  const auto profile = ProfileValue::initWithPath(path);
  const _Nerin_PROFILE& record = profile->profileData();
  for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
    NerinAction::getBtnCaption(record.btnInfo[index], index);
  }
  NerinAction::encodeProfileImage(0, record, {});
  const std::string name = ProfileFileNames().next(profile->name());
  fuzz::require(std::filesystem::path(name).filename() == name && name.size() <= 255);
  const auto bytes = profile->fileBytes();
  fuzz::putFile("fuzz.pro", {bytes.data(), bytes.size()});
  fuzz::require(ProfileValue::initWithPath(path)->fileBytes() == bytes);
  return 0;
}
