#include <QTest>
#include <chrono>
#include <filesystem>

#include <gmock/gmock.h>

#include "Kit/Core/FileLock.h"
#include "Kit/Core/LXMenuData.h"
#include "Kit/Widgets/LXTextField.h"
#include "Tests/Support/ViewTest.h"
#include "View/Main/LibraryWatch.h"

// The window shows what others do in the library's folder while it runs.

namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;

class LibraryWatching : public ViewTest {
 protected:
  static std::vector<std::string> listed() {
    std::vector<std::string> names;
    for (const auto& child : (*profileNode)->children()) {
      names.push_back(child->nodeData()->titleStr());
    }
    return names;
  }
  static bool waitFor(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, 10000);
  }
  // As another program saves: with a new folder in place of the old one.
  void replaceLibrary(const std::function<void(const fs::path& folder)>& change) const {
    const fs::path fresh = supportFolder() / ".another";
    fs::copy(libraryFolder(), fresh);
    change(fresh);
    fs::rename(libraryFolder(), supportFolder() / ".before");
    fs::rename(fresh, libraryFolder());
    fs::remove_all(supportFolder() / ".before");
  }
  void startOn(const std::string& name) {
    start();
    click("profileNewBtn");
    typeName(name);
    click("applyBtn");
    EXPECT_EQ(title(), name);
  }
};

TEST_F(LibraryWatching, AProfileThatAppearsIsListed) {
  start();
  putProfile("Strange.pro", 77, "Strange");
  EXPECT_TRUE(waitFor([] { return listed() == std::vector<std::string>{"Strange"}; }));
}

TEST_F(LibraryWatching, ItGoesOnAfterTheFolderWasReplaced) {
  start();
  for (int n = 1; n <= 3; ++n) {
    const std::string name = "P" + std::to_string(n);
    replaceLibrary([&](const fs::path& folder) {
      writeText(folder / (name + ".pro"), profileBytes(static_cast<std::uint64_t>(n), name));
    });
    EXPECT_TRUE(waitFor([&] { return listed().size() == static_cast<std::size_t>(n); })) << n;
  }
  EXPECT_THAT(listed(), ElementsAre("P1", "P2", "P3"));
}

TEST_F(LibraryWatching, TheTitleOfAProfileThatIsGoneGoes) {
  startOn("Mine");
  replaceLibrary([](const fs::path& folder) { fs::remove(folder / "Mine.pro"); });
  EXPECT_TRUE(waitFor([this] { return title().empty(); }));
  EXPECT_EQ(shownName(), "Mine");
  // Apply stores it anew.
  editState->raiseNeedSave();
  view().refreshApplyBtn();
  click("applyBtn");
  EXPECT_THAT(namesOf(library().profileArr()), ElementsAre("Mine"));
}

TEST_F(LibraryWatching, TheTitleFollowsARename) {
  startOn("Mine");
  replaceLibrary([](const fs::path& folder) {
    std::string bytes = textOfFile(folder / "Mine.pro");
    bytes[9] = 'P';
    fs::remove(folder / "Mine.pro");
    writeText(folder / "Pine.pro", bytes);
  });
  EXPECT_TRUE(waitFor([this] { return title() == "Pine"; }));
  EXPECT_EQ(shownName(), "Pine");
}

TEST_F(LibraryWatching, ItWaitsWhileAnotherProgramIsAtWork) {
  start();
  {
    const auto other = FileLock::acquire(supportFolder() / ".lock", std::chrono::milliseconds(0));
    putProfile("Strange.pro", 77, "Strange");
    QTest::qWait(400);
    EXPECT_THAT(listed(), ElementsAre());
  }
  EXPECT_TRUE(waitFor([] { return !listed().empty(); }));
}

TEST_F(LibraryWatching, ChangesInARowAreTakenTogether) {
  start();
  LibraryWatch watch;
  int told = 0;
  QObject::connect(&watch, &LibraryWatch::libraryChanged, [&] { ++told; });
  // Only this one tells, since the window's would take the change first.
  delete view().findChild<LibraryWatch*>(QString(), Qt::FindDirectChildrenOnly);
  for (int n = 1; n <= 20; ++n) {
    const std::string name = "P" + std::to_string(n);
    putProfile(name + ".pro", static_cast<std::uint64_t>(n), name);
    process();
  }
  EXPECT_TRUE(waitFor([&] { return library().getProfileCount() == 20; }));
  EXPECT_GE(told, 1);
  EXPECT_LT(told, 10);
}

TEST_F(LibraryWatching, ItsOwnSaveIsNoNews) {
  start();
  LibraryWatch watch;
  int told = 0;
  QObject::connect(&watch, &LibraryWatch::libraryChanged, [&] { ++told; });
  click("profileNewBtn");
  click("applyBtn");
  QTest::qWait(400);
  EXPECT_EQ(told, 0);
}

}  // namespace
