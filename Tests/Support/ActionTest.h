#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "Action/Catalogue/MacroInfo.h"
#include "Action/Library/ProfieController.h"
#include "Kit/Core/LXDeviceRequester.h"
#include "Kit/Core/LXNotificationCenter.h"
#include "Tests/Support/Scratch.h"
#include "VirtualMouse/VirtualMouse.h"

using Bytes = std::vector<std::uint8_t>;

// Converts bytes to lower-case hex digits, two per byte, and back.
std::string hexOf(std::span<const std::uint8_t> bytes);
Bytes bytesOfHex(std::string_view hex);
// The checksum of a long report, from byte 4 to the last but one.
std::uint8_t checksumOf(std::span<const std::uint8_t> report);

// Keeps what was posted.
class RecordingNotificationCenter final : public LXNotificationCenter {
 public:
  struct Post {
    std::string name;
    std::string object;
    std::optional<LXUserInfo> userInfo;
  };

  void postNotificationName(const std::string& name, const std::string& object,
                            const std::optional<LXUserInfo>& userInfo) override {
    m_posts.push_back({name, object, userInfo});
  }
  void addObserver(const std::string&, Observer) override {}
  void removeObserver(const std::string&) override {}

  const std::vector<Post>& posts() const { return m_posts; }

 private:
  std::vector<Post> m_posts;
};

// Each test has its own home, a factory-new mouse and a freshly started program. Time does not
// pass: the trace records the pauses.
class ActionTest : public testing::Test {
 protected:
  ActionTest();
  // For a mouse behind another requester.
  ActionTest(std::shared_ptr<VirtualMouse> mouse, std::shared_ptr<LXDeviceRequester> requester);
  ~ActionTest() override;

  // Destroys the program's state, as at its end.
  static void endProgram();
  // Loads the catalogues and finds the mouse, as at the program's start.
  static void beginProgram();

  void setPreferredLanguage(std::optional<std::string> language);
  void setResourceFolder(std::filesystem::path folder);

  static ProfieController& library() { return ProfieController::getShareProCon(); }
  VirtualMouse& mouse() { return *m_mouse; }
  const std::shared_ptr<VirtualMouse>& sharedMouse() const { return m_mouse; }
  const std::vector<RecordingNotificationCenter::Post>& posts() const;

  const std::filesystem::path& home() const { return m_home.folder(); }
  std::filesystem::path supportFolder() const;
  std::filesystem::path libraryFolder() const { return supportFolder() / "Profiles"; }
  // The content of the support folder without the locks and the history of the library.
  std::vector<std::string> supportNames() const;
  std::filesystem::path preferenceFile() const;

  // The transfers and pauses, in order: "SET 0300 0 c40c…", "GET 0305 1 05…", "SLEEP 30"
  // (milliseconds). " failed" follows a failed transfer.
  const std::vector<std::string>& trace() const { return m_trace; }
  void clearTrace() { m_trace.clear(); }
  // The writes of the trace.
  std::vector<std::string> sent() const;

  // Called at every pause.
  void setOnPause(std::function<void()> onPause) { m_onPause = std::move(onPause); }

  // Adds a macro to the catalogue. Each event is key code, kind and delay.
  using Events = std::vector<std::vector<int>>;
  static std::shared_ptr<MacroInfo> addMacro(int id, const std::string& name,
                                             const Events& events = {});
  static Events eventsOf(const MacroInfo& macro);
  // A button that plays a macro.
  static _BTN_INFO macroButton(std::uint32_t macroId, std::uint32_t mode = 1,
                               std::uint32_t count = 0);
  static _BTN_INFO button(std::uint32_t code, std::vector<std::uint32_t> keyBits = {},
                          std::uint32_t type = ButtonTypeSingle);
  // Writes a report with a correct checksum into the mouse, like another host.
  void putMacro(int macroSlot, Bytes report);
  void putImage(int slot, Bytes report);

  // The bytes of a profile file. Tests tell files apart by the record's report rate.
  static std::string profileBytes(std::uint64_t id, const std::string& name,
                                  std::uint32_t poRate = 0, bool isDefault = false);
  void putProfile(const std::string& fileName, std::uint64_t id, const std::string& name,
                  std::uint32_t poRate = 0) const;
  static std::vector<std::string> namesOf(const ProfieController::Profiles& profiles);
  static std::vector<std::uint64_t> idsOf(const ProfieController::Profiles& profiles);

 private:
  void install();

  Scratch m_home;
  std::filesystem::path m_resources;
  std::optional<std::string> m_language;
  std::shared_ptr<VirtualMouse> m_mouse;
  std::shared_ptr<LXDeviceRequester> m_requester;
  std::shared_ptr<RecordingNotificationCenter> m_notifications =
      std::make_shared<RecordingNotificationCenter>();
  std::vector<std::string> m_trace;
  std::function<void()> m_onPause;
};
