#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "Action/Library/LibraryFolder.h"
#include "Action/Library/ProfileValue.h"
#include "Action/Record/Limits.h"

// The library of profiles on disk, its selection, the factory profiles, and the links between the
// library and the mouse's ten slots. Lookups return the first match.
class ProfieController {
 public:
  using Profile = std::shared_ptr<ProfileValue>;
  using Profiles = std::vector<Profile>;

  static constexpr int slotCount = limits::slotCount;
  // The id for a slot without a linked profile.
  static constexpr std::uint64_t notLinked = ~std::uint64_t{0};
  // The index for a profile that is not in the list.
  static constexpr std::size_t notFound = ~std::size_t{0};

  // Creates the library of the process at the first call.
  static ProfieController& getShareProCon();
  // Destroys the library; the next call of getShareProCon loads it again.
  static void releaseShareProCon();

  // Creates the folder if it is missing, then loads the factory profiles and the library.
  ProfieController();
  ProfieController(const ProfieController&) = delete;
  ProfieController& operator=(const ProfieController&) = delete;

  // --- Loading -----------------------------------------------------------------------------

  // Reloads the library from its folder, in byte order of the file names, and clears the selection.
  // If two files have the same name, the first counts; if the same id, the second gets a new one.
  void refreshProfile();
  void sortProfile();

  // --- Adding and naming -------------------------------------------------------------------

  Profile addProfile();
  // A new profile with a new id. Its record comes from `pro`, otherwise from the slot's factory
  // profile, otherwise it is all zero. The name is not checked.
  Profile addProfileByName(const std::optional<std::string>& name, const Profile& pro);
  std::uint64_t getNewProfileId() const;
  std::string getNewProfileName() const;
  // The profile's name with the first free number, for a copy.
  std::string getNewProfileNameByData(const ProfileValue& profile) const;
  // Whether no profile other than `pro` has exactly that name, or that id.
  bool checkProfileName(const std::optional<std::string>& name, const Profile& pro) const;
  bool checkProfileId(std::uint64_t id, const Profile& pro) const;

  // --- Import, saving, export --------------------------------------------------------------

  enum AddResult { Added = 0, NoFile = 1, NameTaken = 2, Full = 3 };
  // Takes in a file of the library's folder. No number of them is too large, because what lies
  // there is not lost, and a short file is a profile whose rest is zero.
  [[nodiscard]] AddResult addByPath(const std::filesystem::path& path);
  // With `isCreate`, imports a file from elsewhere: a profile whose name is taken gets a new name
  // and is added. The file must hold a whole profile, and the library must have room for it.
  [[nodiscard]] AddResult addByPath(const std::filesystem::path& path, bool isCreate);
  // Writes each profile to the folder, under a file name made from its name.
  [[nodiscard]] std::error_code saveToPath(const std::filesystem::path& folder);
  // Makes the library's folder hold the list, in one step: a crash or a full disk leaves the old or
  // the new library. What others did in the folder is taken in first: new profiles join the list,
  // deleted ones leave it unless they were edited here, and what the library cannot take is set
  // aside. A failure is logged; the list then still has to be saved. Fails with
  // device_or_resource_busy when another program keeps the library longer than a window may wait.
  [[nodiscard]] std::error_code saveToSys();
  // Puts copies of these profiles in place of the list, such as those of an earlier state. Each
  // name and each id is there once afterwards; a slot whose profile is gone is not linked. The next
  // saveToSys stores it.
  void replaceProfiles(const Profiles& profiles);
  // Takes in what others did in the folder, without a save. What only a save can settle waits for
  // one. Does not wait for another program that is at work there.
  enum class FolderNews { None, Taken, Busy };
  [[nodiscard]] FolderNews takeInFromDisk();
  // Empties the library's folder. Refuses any other folder.
  void clearAllProfile();
  // Copies selProfile into the selected profile and writes it. Does nothing without a selection.
  [[nodiscard]] std::error_code saveSeltoPath(const std::filesystem::path& folder);
  [[nodiscard]] std::error_code saveSelProfile();
  // Copy between selProfile and the selected profile's record. Do nothing without a selection.
  void saveSelProfileToData();
  void refreshSelProfileFromData();
  // saveSelProfileToData for a record that was read from the mouse. That is no edit of the user: if
  // another program deletes or changes the profile, its doing counts.
  void takeSelProfileFromMouse();

  // --- Selection and lookup ----------------------------------------------------------------

  void setSelectByName(const std::optional<std::string>& name);
  void setSelectByIndex(std::ptrdiff_t index);
  void setSelectById(std::uint64_t id);
  Profile getProfileByName(const std::optional<std::string>& name) const;
  Profile getProValueByProid(std::uint64_t id) const;
  std::size_t getProfileCount() const { return m_profileArr.size(); }
  std::size_t getCurrProfileIndex() const;

  // --- Deleting ----------------------------------------------------------------------------

  // The next saveToSys deletes the file.
  void delProfile(const Profile& profile);
  void delProByName(const std::optional<std::string>& name);
  // Adds a profile that was deleted, under its name and id where they are free.
  void restoreProfile(const Profile& profile);
  // Slots that are linked to the one id are then linked to the other, or to none: an id that is
  // free again must not be found by a slot.
  void relink(std::uint64_t from, std::uint64_t to);

  // --- Rarely used -------------------------------------------------------------------------

  Profile getNextProfie(const Profile& profile) const;
  Profile getNextProfieWithNodef(const Profile& profile) const;
  void removeAllNoDefault();
  void getNoDefaultProArr(Profiles& list) const;
  void setNoDefaultProArr(const Profiles& list);
  // Logs every profile's name and id.
  void des() const;

  // --- Slots -------------------------------------------------------------------------------

  // Slots 0..9; any other is ignored.
  void setCurrFWProfileIndex(int index);
  int currFWProfileIndex() const { return m_currFWProfileIndex; }
  // The id is -1 for a slot without a link.
  void setFwProfileId(std::int32_t id, int byIndex);
  Profile getProfileByFWProIndex(int index) const;
  void refreshFWCurrName();
  // Saves the current slot's profile in the library; a slot without a link gets a new profile.
  [[nodiscard]] std::error_code saveCurrFWProfileToList();
  // Has no effect: the mouse's slot is written elsewhere.
  void setFWProfileByIndex(int index);
  std::array<std::uint64_t, slotCount>& fwProfileID() { return m_fwProfileID; }
  const std::array<std::uint64_t, slotCount>& fwProfileID() const { return m_fwProfileID; }

  // --- Factory profiles --------------------------------------------------------------------

  // The current slot's profile, or the first without such a slot; null when its file is missing.
  Profile defaultProfile() const;
  // A button (0..15) of the current slot's factory profile; all zero without a factory profile.
  _BTN_INFO getDefBtnInfoByIndex(int index) const;

  // --- Preferences -------------------------------------------------------------------------

  // The setters return false when the preferences cannot be written, which is logged.

  // The link record of slot k - 1, under the number k (1..10). It is a boolean and only a hint,
  // since the mouse itself knows which profile a slot holds.
  [[nodiscard]] bool saveFWProfileIdByIndex(int k);
  std::int64_t getFWProfileIdByIndex(int k) const;
  [[nodiscard]] bool setLaunchPath(const std::string& path, int pIndex, int bIndex);
  std::optional<std::string> getLaunchPath(int pIndex, int bIndex) const;
  [[nodiscard]] bool setLinkAppPath(const std::optional<std::string>& path, int pIndex,
                                    bool isActive);
  std::optional<std::string> getLinkAppPath(int pIndex, bool& isActive) const;
  [[nodiscard]] bool setIsOSD(bool isOSD);
  // The on-screen display is on by default; the first call stores the default.
  bool isOSD();
  // Whether the slot follows the linked programs.
  [[nodiscard]] bool setSwitchesSlots(bool switchesSlots);
  bool switchesSlots() const;

  // --- Plain properties --------------------------------------------------------------------

  const Profiles& profileArr() const { return m_profileArr; }
  const Profile& currProfile() const { return m_currProfile; }
  void setCurrProfile(Profile profile) { m_currProfile = std::move(profile); }
  const Profile& currDefProfile() const { return m_currDefProfile; }
  const std::filesystem::path& sysProPath() const { return m_sysProPath; }
  const std::optional<std::string>& currFWProfileName() const { return m_currFWProfileName; }
  void setCurrFWProfileName(std::optional<std::string> name) {
    m_currFWProfileName = std::move(name);
  }
  const Profiles& defaultProfileArrs() const { return m_defaultProfileArrs; }
  const std::optional<std::string>& currActivePath() const { return m_currActivePath; }
  void setCurrActivePath(std::optional<std::string> path) { m_currActivePath = std::move(path); }
  bool currIsActive() const { return m_currIsActive; }
  void setCurrIsActive(bool isActive) { m_currIsActive = isActive; }

 private:
  static constexpr const char* libraryFolder = "Profiles";

  void loadDefaults();
  LibraryFolder::Changes takeInChanges();
  bool takeOver(const LibraryFolder::Change& change);
  std::error_code keepAside(const LibraryFolder::Changes& changes) const;
  std::string freeName(const std::string& stem) const;
  std::ptrdiff_t positionOf(const Profile& profile) const;

  Profiles m_profileArr;
  // Why the list may be incomplete. The library on disk is then not overwritten.
  std::error_code m_loadError;
  Profile m_currProfile;
  Profile m_currDefProfile;
  std::filesystem::path m_sysProPath;
  LibraryFolder m_files;
  int m_currFWProfileIndex = 0;
  std::optional<std::string> m_currFWProfileName;
  Profiles m_defaultProfileArrs;  // ten entries, null where the file is missing
  bool m_isOSD = false;
  std::optional<std::string> m_currActivePath;
  bool m_currIsActive = false;
  std::array<std::uint64_t, slotCount> m_fwProfileID{};
};
