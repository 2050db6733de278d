#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Action/Library/ProfileValue.h"
#include "Action/NerinAction.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Tests/Support/ViewTest.h"

using Names = std::vector<std::string>;

// The red of the first zone tells the records apart.
enum Red : std::uint32_t { OfSlotA = 10, OfSlotB = 20, OfStranger = 30, OfFileB = 40, Edited = 77 };

struct State {
  std::string link;      // the name of the slot's linked profile; "" for none
  std::string selected;  // the selected profile's name; "" for none
  std::string name;      // the slot's name
  std::string title;
  std::uint32_t red;
  bool needsSave;

  bool operator==(const State&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const State& state) {
  return out << "link '" << state.link << "', selected '" << state.selected << "', name '"
             << state.name << "', title '" << state.title << "', red " << state.red
             << (state.needsSave ? ", edited" : ", saved");
}

// A mouse whose first slot is linked to profile A, and the operations on profiles there.
class MainViewDeeds : public ViewTest {
 protected:
  static constexpr std::uint64_t idOfA = 5;
  static constexpr std::uint64_t idOfB = 9;

  // Slot 1 holds A, slot 2 holds B, slot 3 a profile that is not in the library, slot 4 none.
  void startLinked() {
    putProfile("A.pro", idOfA, "A");
    putRecord("B.pro", idOfB, "B", OfFileB);
    NerinAction::startListenDev();
    putSlot(0, "A", OfSlotA);
    putSlot(1, "B", OfSlotB);
    putSlot(2, "Stranger", OfStranger);
    NerinAction::sysDeviceReq->reset();
    mouse().clearSlot(3);
    start();
    m_factoryRed = library().defaultProfileArrs()[0]->profileData().lightColorArr[0].cR;
  }

  void edit() {
    editState->edit().lightColorArr[0].cR = Edited;
    editState->raiseNeedSave();
    view().refreshApplyBtn();
  }

  void perform(const std::string& deed) {
    if (deed == "New") {
      click("profileNewBtn");
    } else if (deed == "Duplicate") {
      click("profileSaveBtn");
    } else if (deed == "Delete") {
      click("profileDelBtn");
    } else if (deed == "Rename") {
      typeName("X");
    } else if (deed == "Import") {
      writeText(home() / "C.pro", profileBytes(30, "C"));
      m_chosen = home() / "C.pro";
      click("profileImportBtn");
    } else if (deed == "Choose") {
      choose("B");
    }
  }

  void choose(const std::string& name) {
    click("currProfileBtn");
    LXMenulist* list = openList();
    ASSERT_NE(list, nullptr);
    for (int row = 0; row < list->count(); ++row) {
      if (list->item(row)->text().toStdString() == name) {
        emit list->itemClicked(list->item(row));
        return;
      }
    }
    FAIL() << name << " is not in the list";
  }

  std::string linkOf(int slot) const {
    const auto profile = library().getProfileByFWProIndex(slot);
    const bool isLinked =
        library().fwProfileID()[static_cast<std::size_t>(slot)] != ProfieController::notLinked;
    return profile ? profile->name().value_or("?") : isLinked ? "?" : "";
  }

  State state() {
    return {linkOf(library().currFWProfileIndex()),
            library().currProfile() ? library().currProfile()->name().value_or("?") : "",
            shownName(),
            title(),
            editState->selProfile().lightColorArr[0].cR,
            editState->isNeedSave()};
  }

  Names disk() const { return namesIn(libraryFolder()); }
  std::uint32_t redOnDisk(const std::string& file) const {
    return ProfileValue::initWithPath(libraryFolder() / file)->profileData().lightColorArr[0].cR;
  }
  std::uint32_t redOnMouse(int slot) {
    const _Nerin_PROFILE before = editState->currFWProfile();
    NerinAction::startListenDev();
    EXPECT_TRUE(NerinAction::getFWProfileDataPro(static_cast<std::uint8_t>(slot)).isDone());
    const std::uint32_t red = editState->currFWProfile().lightColorArr[0].cR;
    editState->currFWProfile() = before;
    return red;
  }

  std::uint32_t m_factoryRed = 0;

 private:
  void putRecord(const std::string& file, std::uint64_t id, const std::string& name,
                 std::uint32_t red) const {
    _Nerin_PROFILE record{};
    record.lightColorArr[0].cR = red;
    ProfileValue profile;
    profile.setProfileId(id);
    profile.setName(name);
    profile.setProfileData(record);
    std::filesystem::create_directories(libraryFolder());
    EXPECT_FALSE(profile.saveToPath(libraryFolder() / file));
  }
  static void putSlot(std::uint8_t slot, const std::string& name, std::uint32_t red) {
    EXPECT_TRUE(NerinAction::getFWProfileDataPro(slot).isDone());
    editState->currFWProfile().lightColorArr[0].cR = red;
    EXPECT_TRUE(NerinAction::setFWProfileName(slot, name).isDone());
    EXPECT_TRUE(NerinAction::setFWProfileDataPro(slot).isDone());
    EXPECT_TRUE(NerinAction::refreshDeviceData().isDone());
  }
};
