#include "Action/Edit/SlotDraft.h"
#include "Fuzz/FuzzInput.h"

// Any bytes as the document of a draft. What is read must survive writing and reading again.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto draft = draftIn(fuzz::textOf(data, size));
  if (!draft) {
    return 0;
  }
  const auto again = draftIn(documentOf(*draft));
  fuzz::require(again && again->slot == draft->slot && again->isDiscarded == draft->isDiscarded);
  fuzz::require(bytesOf(again->content) == bytesOf(draft->content));
  fuzz::require(again->macros.size() == draft->macros.size());
  return 0;
}
