#include "Fuzz/FuzzInput.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/PreferenceFile.h"
#include "Kit/Core/PropertyList.h"

// Any bytes as a property list, in both forms, and as a preference file that is read and changed.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto bytes = fuzz::textOf(data, size);
  if (const auto list = propertylist::parse(bytes)) {
    for (const auto form : {propertylist::Form::Xml, propertylist::Form::Binary}) {
      fuzz::require(!propertylist::serialize(list.get(), form).empty());
    }
    const auto form = propertylist::formOf(bytes);
    const auto again = propertylist::parse(propertylist::serialize(list.get(), form));
    fuzz::require(again && propertylist::isKind(again.get(), plist_get_node_type(list.get())));
  }
  PreferenceFile file(fuzz::putFile("preferences/fuzz.plist", bytes));
  file.boolFor("a");
  file.integerFor("b");
  file.stringFor("LinkApp", "c");
  fuzz::require(file.setValue("OSDTag", true) && file.boolFor("OSDTag") == true);
  fuzz::require(file.setValues("LinkApp", {{"Profile_1", "<&>\u00E4"}}));
  fuzz::require(file.stringFor("LinkApp", "Profile_1") == "<&>\u00E4");
  std::filesystem::remove_all(fuzz::home() / "preferences");
  return 0;
}
