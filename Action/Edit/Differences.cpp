#include "Action/Edit/Differences.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "Action/Edit/Descriptions.h"
#include "Action/Edit/Drafts.h"
#include "Action/Edit/EditHistory.h"
#include "Action/Library/ProfieController.h"
#include "Action/Record/EditState.h"

namespace {

using descriptions::Fact;
using Place = Difference::Place;
using Where = std::pair<Place, std::size_t>;

// The places of describe(), in its order.
std::vector<Where> placesOf(const _Nerin_PROFILE& profile) {
  std::vector<Where> places{{Place::Rate, 0}, {Place::LiftHeight, 0}, {Place::Mode, 0}};
  const auto add = [&places](Place place, std::size_t count) {
    for (std::size_t index = 0; index < count; ++index) {
      places.emplace_back(place, index);
    }
  };
  add(Place::Zone, zoneCount);
  add(Place::Level, descriptions::levelsInUse(profile));
  add(Place::Button, buttonCount);
  return places;
}

std::string valueOf(const std::vector<Fact>& facts, const std::string& about) {
  const auto found = std::find_if(facts.begin(), facts.end(),
                                  [&](const Fact& fact) { return fact.about == about; });
  return found != facts.end() ? found->value : std::string();
}

bool isSameButton(const _Nerin_PROFILE& before, const _Nerin_PROFILE& after, const Where& where) {
  return where.first != Place::Button ||
         std::memcmp(&before.btnInfo[where.second], &after.btnInfo[where.second],
                     sizeof(_BTN_INFO)) == 0;
}

int currentSlot() {
  return ProfieController::getShareProCon().currFWProfileIndex();
}

std::string programText(const _Nerin_CONFIG& content) {
  const std::string path(textOf(content.activeAppPath));
  return path.empty() || content.isActiveApp != 0 ? path : path + " (off)";
}

void takeBackLevel(_Nerin_PROFILE& edited, const _Nerin_PROFILE& base, std::size_t index) {
  const std::size_t levels = descriptions::levelsInUse(edited);
  const std::size_t held = descriptions::levelsInUse(base);
  // The levels in use are the first ones, so those between go with it.
  const std::size_t wanted = index < held ? std::max(levels, index + 1) : index;
  for (std::size_t level = std::min(index, levels); level <= index && level < held; ++level) {
    edited.xSensArr[level] = base.xSensArr[level];
    edited.ySensArr[level] = base.ySensArr[level];
  }
  if (wanted != levels) {
    edited.dpiLevel = static_cast<std::uint32_t>(wanted);
  }
  if (edited.currSelectDPI == index || base.currSelectDPI == index) {
    edited.currSelectDPI = base.currSelectDPI;
  }
  edited.currSelectDPI = std::min(edited.currSelectDPI, static_cast<std::uint32_t>(wanted - 1));
}

}  // namespace

std::vector<Difference> differencesBetween(const _Nerin_PROFILE& before,
                                           const _Nerin_PROFILE& after) {
  const auto old = descriptions::describe(before, descriptions::RecordSource::Mouse);
  const auto now = descriptions::describe(after, descriptions::RecordSource::Mouse);
  // The lists differ only in the number of levels, so the longer list has every place.
  const auto& facts = old.size() > now.size() ? old : now;
  const auto places = placesOf(old.size() > now.size() ? before : after);
  std::vector<Difference> differences;
  for (std::size_t i = 0; i < places.size(); ++i) {
    const std::string& about = facts[i].about;
    std::string oldValue = valueOf(old, about);
    std::string newValue = valueOf(now, about);
    if (oldValue != newValue || !isSameButton(before, after, places[i])) {
      differences.push_back(
          {places[i].first, places[i].second, about, std::move(oldValue), std::move(newValue)});
    }
  }
  return differences;
}

std::vector<Difference> differencesBetween(const _Nerin_CONFIG& before,
                                           const _Nerin_CONFIG& after) {
  std::vector<Difference> differences = differencesBetween(before.profile, after.profile);
  const std::string_view oldName = textOf(before.profileName);
  const std::string_view newName = textOf(after.profileName);
  if (oldName != newName) {
    differences.insert(differences.begin(),
                       {Place::Name, 0, "name", std::string(oldName), std::string(newName)});
  }
  const std::string oldProgram = programText(before);
  const std::string newProgram = programText(after);
  if (oldProgram != newProgram) {
    differences.push_back({Place::Program, 0, "linked program", oldProgram, newProgram});
  }
  return differences;
}

std::vector<Difference> NerinAction::pendingDifferences() {
  const auto held = heldContent();
  const auto& base = editState->base();
  if (!base) {
    return {};
  }
  if (!held) {
    return differencesBetween(*base, editState->selProfile());
  }
  return differencesBetween(*held, currentDraft(currentSlot()).content);
}

void NerinAction::takeBack(const Difference& difference) {
  const auto& base = editState->base();
  if (!base) {
    return;
  }
  recordEdit();
  _Nerin_CONFIG edited = currentDraft(currentSlot()).content;
  _Nerin_PROFILE& profile = edited.profile;
  const std::size_t index = difference.index;
  switch (difference.place) {
    case Place::Rate:
      profile.poRate = base->poRate;
      break;
    case Place::LiftHeight:
      profile.liftHeight = base->liftHeight;
      break;
    case Place::Mode:
      profile.modeType = base->modeType;
      break;
    case Place::Zone:
      profile.lightColorArr[index] = base->lightColorArr[index];
      break;
    case Place::Level:
      takeBackLevel(profile, *base, index);
      break;
    case Place::Button:
      profile.btnInfo[index] = base->btnInfo[index];
      break;
    case Place::Name:
      // The name tells which library profile the slot has.
      if (const auto held = heldContent()) {
        setText(edited.profileName, textOf(held->profileName));
        edited.profileId = held->profileId;
      }
      break;
    case Place::Program:
      if (const auto held = heldContent()) {
        setText(edited.activeAppPath, textOf(held->activeAppPath));
        edited.isActiveApp = held->isActiveApp;
      }
      break;
  }
  if (differencesBetween(*base, profile).empty()) {
    // What is left cannot be seen, such as the values of levels that are not in use.
    profile = *base;
  }
  takeContent(currentSlot(), edited);
  recordEdit();
  settleIfUnchanged();
}
