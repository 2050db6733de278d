#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "Action/Record/Records.h"
#include "Kit/Core/ProcessWide.h"

// The edit that is going on: the profile of the current slot as the user has it now, beside the
// same profile as it was read or applied last.
//
// Who may write: a read of a slot begins the edit (load), the windows change it (edit, take), and
// Apply and Reset end it (settle). Any edit raises isNeedSave. Apply, Reset and the start of the
// program clear it; a slot that the mouse changed by itself does not.
class EditState {
 public:
  // The profile being edited. Apply writes it.
  const _Nerin_PROFILE& selProfile() const { return m_selProfile; }
  // The profile as the slot holds it; nothing when that is not known.
  const std::optional<_Nerin_PROFILE>& base() const { return m_base; }
  // There are edits that were not applied.
  bool isNeedSave() const { return m_isNeedSave; }

  // The slot was read: this is what it holds.
  void load(const _Nerin_PROFILE& asRead) {
    m_selProfile = asRead;
    m_base = asRead;
  }
  // The slot could not be read, or holds no profile. The edited profile stays as it is.
  void forgetBase() { m_base.reset(); }
  // Another profile is put on the slot: the edit begins with it, and the slot still holds the base.
  void bind(const _Nerin_PROFILE& profile) { m_selProfile = profile; }

  // Hands out the profile to change it.
  _Nerin_PROFILE& edit() {
    m_isNeedSave = true;
    return m_selProfile;
  }
  // Takes over what a window edited. A profile that is the same is no edit.
  void take(const _Nerin_PROFILE& edited) {
    if (!isSameRecord(edited, m_selProfile)) {
      edit() = edited;
    }
  }
  // An edit beside the record: the profile's name, or its linked program.
  void raiseNeedSave() { m_isNeedSave = true; }

  // The profile is on the slot now.
  void settle() {
    m_base = m_selProfile;
    m_isNeedSave = false;
  }
  // There is nothing to save, whatever was edited.
  void clearNeedSave() { m_isNeedSave = false; }

  // The working copy from which single settings go to the mouse at once, and the slot it belongs
  // to. Free for whoever tries settings.
  _Nerin_PROFILE& currSetProfile() { return m_currSetProfile; }
  std::uint32_t currSetProfileID() const { return m_currSetProfileID; }
  void setCurrSetProfileID(std::uint32_t slot) { m_currSetProfileID = slot; }
  // The image of one slot, as it was read from the mouse or is about to be written.
  _Nerin_PROFILE& currFWProfile() { return m_currFWProfile; }

  // A macro without a name was read since the current slot was read: macros that are made from
  // then on are hidden.
  bool isHaveNewName() const { return m_isHaveNewName; }
  void setIsHaveNewName(bool isHaveNewName) { m_isHaveNewName = isHaveNewName; }

 private:
  _Nerin_PROFILE m_selProfile{};
  std::optional<_Nerin_PROFILE> m_base;
  bool m_isNeedSave = false;
  _Nerin_PROFILE m_currSetProfile{};
  std::uint32_t m_currSetProfileID = 0;
  _Nerin_PROFILE m_currFWProfile{};
  bool m_isHaveNewName = false;
};

// The one of the process.
inline ProcessWide<EditState> editState;
