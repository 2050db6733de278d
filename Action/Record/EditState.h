#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "Action/Record/Records.h"
#include "Kit/Core/ProcessWide.h"

// The current edit: the profile of the current slot as the user has changed it, and as it was last
// read or applied.
//
// Reading a slot begins the edit (load), the windows change it (edit, take), and Apply and Reset
// end it (settle). Every edit sets isNeedSave. Apply, Reset and the start of the program clear it;
// a slot change on the mouse itself does not.
class EditState {
 public:
  // The profile being edited, which Apply writes.
  const _Nerin_PROFILE& selProfile() const { return m_selProfile; }
  // The profile that the slot holds; no value while that is not known.
  const std::optional<_Nerin_PROFILE>& base() const { return m_base; }
  // Whether the user has changed anything since the last Apply.
  bool isNeedSave() const { return m_isNeedSave; }
  // Whether the profile holds changes of the user since the current slot was read. Unlike
  // isNeedSave, it says nothing of slots that were left.
  bool isEdited() const { return m_isEdited; }

  // Begins the edit with the profile that was read from the slot.
  void load(const _Nerin_PROFILE& asRead) {
    m_selProfile = asRead;
    m_base = asRead;
    m_isEdited = false;
  }
  // For a slot that could not be read or holds no profile. The edited profile does not change.
  void forgetBase() {
    m_base.reset();
    m_isEdited = false;
  }
  // Begins the edit with another profile; the slot still holds the base.
  void bind(const _Nerin_PROFILE& profile) { m_selProfile = profile; }

  // Gives write access to the profile.
  _Nerin_PROFILE& edit() {
    raiseNeedSave();
    return m_selProfile;
  }
  // Takes over the result of a window. An identical profile is not an edit.
  void take(const _Nerin_PROFILE& edited) {
    if (!isSameRecord(edited, m_selProfile)) {
      edit() = edited;
    }
  }
  // For an edit outside the record: the profile's name or its linked program.
  void raiseNeedSave() {
    m_isNeedSave = true;
    m_isEdited = true;
  }

  // Makes the edited profile the base, because the slot holds it now.
  void settle() {
    m_base = m_selProfile;
    clearNeedSave();
  }
  // For a slot that was written: reading it again gives the edit back.
  void forgetEdited() { m_isEdited = false; }
  // Clears the flags without changing the base.
  void clearNeedSave() {
    m_isNeedSave = false;
    m_isEdited = false;
  }

  // The working copy for settings that go to the mouse at once, and its slot. Any window may change
  // it.
  _Nerin_PROFILE& currSetProfile() { return m_currSetProfile; }
  std::uint32_t currSetProfileID() const { return m_currSetProfileID; }
  void setCurrSetProfileID(std::uint32_t slot) { m_currSetProfileID = slot; }
  // The image of a slot, as read from the mouse or about to be written.
  _Nerin_PROFILE& currFWProfile() { return m_currFWProfile; }

  // An unnamed macro was read since the current slot was read. New macros are hidden while this is
  // set.
  bool isHaveNewName() const { return m_isHaveNewName; }
  void setIsHaveNewName(bool isHaveNewName) { m_isHaveNewName = isHaveNewName; }

 private:
  _Nerin_PROFILE m_selProfile{};
  std::optional<_Nerin_PROFILE> m_base;
  bool m_isNeedSave = false;
  bool m_isEdited = false;
  _Nerin_PROFILE m_currSetProfile{};
  std::uint32_t m_currSetProfileID = 0;
  _Nerin_PROFILE m_currFWProfile{};
  bool m_isHaveNewName = false;
};

inline ProcessWide<EditState> editState;
