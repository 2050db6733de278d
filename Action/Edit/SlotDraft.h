#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Action/Catalogue/MacroInfo.h"
#include "Action/Record/Records.h"

// What a slot is to hold and does not hold yet: an edit that was not applied, or an Apply that did
// not end. It lies on disk as a small XML document, so that it survives the end of the program.
struct SlotDraft {
  int slot = 0;  // 0..9
  // Name, record and linked program. `profileId` is the library profile that is linked to the slot,
  // all ones for none.
  _Nerin_CONFIG content{};
  // The macros that the buttons play, with their ids.
  std::vector<std::shared_ptr<MacroInfo>> macros;
  // The user gave up an Apply that did not end. The slot may still hold a mixture.
  bool isDiscarded = false;
  // Only the mouse gets it, since it does not come from the library.
  bool isMouseOnly = false;
};

// Whether both give a slot the same profile with the same macros. The links to the library may
// differ.
bool isSameEdit(const SlotDraft& one, const SlotDraft& other);

// The document of a draft, and the draft of a document; nothing when it is none.
std::string documentOf(const SlotDraft& draft);
std::optional<SlotDraft> draftIn(std::string_view document);
