#include "Action/Edit/Differences.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "Action/Edit/Descriptions.h"
#include "Action/Record/EditState.h"

namespace {

using descriptions::Fact;

const Fact* factAbout(const std::vector<Fact>& facts, std::string_view about) {
  const auto found = std::find_if(facts.begin(), facts.end(),
                                  [&](const Fact& fact) { return fact.about == about; });
  return found != facts.end() ? &*found : nullptr;
}

std::string valueOf(const Fact* fact) {
  return fact != nullptr ? fact->value : std::string();
}

bool isSameButton(const _Nerin_PROFILE& before, const _Nerin_PROFILE& after,
                  std::string_view about) {
  for (std::size_t index = 0; index < buttonCount; ++index) {
    if (about == descriptions::buttonName(index)) {
      return std::memcmp(&before.btnInfo[index], &after.btnInfo[index], sizeof(_BTN_INFO)) == 0;
    }
  }
  return true;
}

}  // namespace

std::vector<Difference> differencesBetween(const _Nerin_PROFILE& before,
                                           const _Nerin_PROFILE& after) {
  const auto old = descriptions::describe(before, descriptions::RecordSource::Mouse);
  const auto now = descriptions::describe(after, descriptions::RecordSource::Mouse);
  // The lists differ only in the number of levels, so the longer list has every place.
  const auto& places = old.size() > now.size() ? old : now;
  std::vector<Difference> differences;
  for (const Fact& place : places) {
    const std::string oldValue = valueOf(factAbout(old, place.about));
    const std::string newValue = valueOf(factAbout(now, place.about));
    if (oldValue != newValue || !isSameButton(before, after, place.about)) {
      differences.push_back({place.about, oldValue, newValue});
    }
  }
  return differences;
}

std::vector<Difference> NerinAction::pendingDifferences() {
  const auto& base = editState->base();
  return base ? differencesBetween(*base, editState->selProfile()) : std::vector<Difference>();
}
