#include <cerrno>
#include <chrono>
#include <map>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Kit/Core/DurableFile.h"
#include "Kit/Core/FileLock.h"
#include "Tests/Support/FailingDisk.h"

namespace fs = std::filesystem;

namespace {

using Files = std::map<std::string, std::string>;

const Files oldFiles{{"a.pro", "old a"}, {"b.pro", "old b"}};
const Files newFiles{{"b.pro", "new b"}, {"c.pro", ""}, {"d.pro", std::string(5264, 'd')}};

class DurableFolder : public testing::Test {
 protected:
  void makeOld() const {
    fs::remove_all(m_folder);
    fs::create_directory(m_folder);
    for (const auto& [name, bytes] : oldFiles) {
      writeText(m_folder / name, bytes);
    }
  }

  std::error_code replace() const {
    std::vector<durable::FolderEntry> entries;
    for (const auto& [name, bytes] : newFiles) {
      entries.push_back({name, bytes});
    }
    return durable::replaceFolder(m_folder, entries);
  }

  Files held() const {
    Files files;
    for (const std::string& name : namesIn(m_folder)) {
      files[name] = textOfFile(m_folder / name);
    }
    return files;
  }

  // What must be true after an interruption and the next start.
  void expectOneOfBoth(const std::string& step) const {
    durable::recoverFolder(m_folder);
    EXPECT_TRUE(held() == oldFiles || held() == newFiles) << step;
    EXPECT_EQ(beside(), std::vector<std::string>{}) << step;
  }

  // What should not be beside the folder. The lock file stays, so that all processes use the same
  // one.
  std::vector<std::string> beside() const {
    std::vector<std::string> names = namesIn(m_scratch.folder());
    std::erase(names, "Profiles");
    std::erase(names, ".Profiles.lock");
    return names;
  }

  Scratch m_scratch;
  fs::path m_folder = m_scratch / "Profiles";
};

}  // namespace

TEST_F(DurableFolder, HoldsExactlyTheNewFiles) {
  makeOld();
  EXPECT_FALSE(replace());
  EXPECT_EQ(held(), newFiles);
  EXPECT_EQ(beside(), std::vector<std::string>{});
}

TEST_F(DurableFolder, IsMadeWhenThereWasNone) {
  EXPECT_FALSE(replace());
  EXPECT_EQ(held(), newFiles);
  EXPECT_EQ(beside(), std::vector<std::string>{});
}

TEST_F(DurableFolder, MayBecomeEmpty) {
  makeOld();
  EXPECT_FALSE(durable::replaceFolder(m_folder, {}));
  EXPECT_EQ(held(), Files{});
}

TEST_F(DurableFolder, TakesNamesAsLongAsNamesCanBe) {
  makeOld();
  const std::vector<durable::FolderEntry> entries{{std::string(255, 'n'), "long"}};
  EXPECT_FALSE(durable::replaceFolder(m_folder, entries));
  EXPECT_EQ(held(), (Files{{std::string(255, 'n'), "long"}}));
}

TEST_F(DurableFolder, TakesOverTheFilesThatStayTheSame) {
  makeOld();
  const auto fileOf = [&](const char* name) {
    struct stat status {};
    EXPECT_EQ(::stat((m_folder / name).c_str(), &status), 0);
    return status.st_ino;
  };
  const auto before = fileOf("a.pro");
  const std::vector<durable::FolderEntry> entries{{"a.pro", oldFiles.at("a.pro")}, {"n.pro", "n"}};
  EXPECT_FALSE(durable::replaceFolder(m_folder, entries));
  EXPECT_EQ(held(), (Files{{"a.pro", oldFiles.at("a.pro")}, {"n.pro", "n"}}));
  EXPECT_EQ(fileOf("a.pro"), before);
}

TEST_F(DurableFolder, WritesAnewWhatCannotBeTakenOver) {
  makeOld();
  durable::setFaultInjector(
      [](const char* step) { return std::string_view(step) == "link" ? EPERM : 0; });
  const std::vector<durable::FolderEntry> entries{{"a.pro", oldFiles.at("a.pro")}};
  EXPECT_FALSE(durable::replaceFolder(m_folder, entries));
  durable::setFaultInjector({});
  EXPECT_EQ(held(), (Files{{"a.pro", oldFiles.at("a.pro")}}));
}

TEST_F(DurableFolder, WritesAFileWhereALinkWas) {
  makeOld();
  fs::rename(m_folder / "a.pro", m_scratch / "elsewhere");
  fs::create_symlink(m_scratch / "elsewhere", m_folder / "a.pro");
  const std::vector<durable::FolderEntry> entries{{"a.pro", oldFiles.at("a.pro")}};
  EXPECT_FALSE(durable::replaceFolder(m_folder, entries));
  EXPECT_FALSE(fs::is_symlink(m_folder / "a.pro"));
  EXPECT_EQ(textOfFile(m_folder / "a.pro"), oldFiles.at("a.pro"));
}

TEST_F(DurableFolder, StaysTheOldOneWhenAFileCannotBeWritten) {
  makeOld();
  const std::vector<durable::FolderEntry> tooLong{{"a.pro", "new a"}, {std::string(256, 'n'), ""}};
  EXPECT_EQ(durable::replaceFolder(m_folder, tooLong).value(), ENAMETOOLONG);
  const std::vector<durable::FolderEntry> twice{{"a.pro", "new a"}, {"a.pro", "newer a"}};
  EXPECT_EQ(durable::replaceFolder(m_folder, twice).value(), EEXIST);
  EXPECT_EQ(held(), oldFiles);
  EXPECT_EQ(beside(), std::vector<std::string>{});
}

TEST_F(DurableFolder, IsTheOldOneOrTheNewOneWhicheverStepFails) {
  for (const int error : {ENOSPC, EIO, EACCES}) {
    for (const bool staysBroken : {false, true}) {
      for (const bool canExchange : {true, false}) {
        std::error_code result;
        const int steps = FailingDisk{error, staysBroken, canExchange}.failEachStep(
            [&] { makeOld(); }, [&] { result = replace(); },
            [&](const std::string& step) {
              EXPECT_TRUE(result.value() == error || !result) << step;
              EXPECT_EQ(held(), result ? oldFiles : newFiles) << step;
              expectOneOfBoth(step);
            });
        EXPECT_EQ(held(), newFiles);
        // One folder, one old file read for comparison, and three files, one of them empty. All are
        // synced and moved into place.
        EXPECT_EQ(steps, 1 + 3 + 3 + 2 + 2 * 3 + 2 + (canExchange ? 1 : 2) + 2);
      }
    }
  }
}

TEST_F(DurableFolder, IsTheOldOneOrTheNewOneWheneverThePowerGoes) {
  for (const bool canExchange : {true, false}) {
    const int steps = FailingDisk{.canExchange = canExchange}.failEachStep(
        [&] { makeOld(); }, [&] { EXPECT_FALSE(replace()); },
        [&](const std::string& step) { expectOneOfBoth(step); });
    EXPECT_GE(steps, 17);
  }
}

TEST_F(DurableFolder, IsNewOnceItWasCompleteWheneverThePowerGoes) {
  FailingDisk{.canExchange = false}.failEachStep(
      [&] { makeOld(); }, [&] { EXPECT_FALSE(replace()); },
      [&](const std::string& step) {
        durable::recoverFolder(m_folder);
        if (step.find("take place") != std::string::npos) {
          EXPECT_EQ(held(), newFiles) << step;
        }
      });
}

TEST_F(DurableFolder, IsReplacedAfterAnInterruptionWithoutARecovery) {
  FailingDisk{.canExchange = false}.failEachStep(
      [&] { makeOld(); }, [&] { EXPECT_FALSE(replace()); },
      [&](const std::string& step) {
        EXPECT_FALSE(replace()) << step;
        EXPECT_EQ(held(), newFiles) << step;
        EXPECT_EQ(beside(), std::vector<std::string>{}) << step;
      });
}

TEST_F(DurableFolder, RecoveryLeavesAloneWhatIsWhole) {
  makeOld();
  writeText(m_scratch / "Profiles.new", "not ours");
  durable::recoverFolder(m_folder);
  EXPECT_EQ(held(), oldFiles);
  EXPECT_EQ(beside(), std::vector<std::string>{"Profiles.new"});
}

TEST_F(DurableFolder, RecoveryOfNothingLeavesNothing) {
  durable::recoverFolder(m_folder);
  EXPECT_FALSE(fs::exists(m_folder));
  EXPECT_EQ(beside(), std::vector<std::string>{});
}

TEST_F(DurableFolder, RecoveryThatFailsLosesNothing) {
  makeOld();
  fs::rename(m_folder, m_scratch / ".Profiles.old");
  durable::setFaultInjector([](const char*) { return EIO; });
  durable::recoverFolder(m_folder);
  EXPECT_EQ(replace().value(), EIO);
  durable::setFaultInjector({});
  durable::recoverFolder(m_folder);
  EXPECT_EQ(held(), oldFiles);
}

TEST_F(DurableFolder, IsLeftAloneWhileAnotherReplacesIt) {
  makeOld();
  fs::rename(m_folder, m_scratch / ".Profiles.old");
  const auto lock = FileLock::acquire(m_scratch / ".Profiles.lock", std::chrono::milliseconds(0));
  durable::recoverFolder(m_folder);
  EXPECT_EQ(beside(), std::vector<std::string>{".Profiles.old"});
}

TEST_F(DurableFolder, IsReplacedBehindASymbolicLink) {
  fs::create_directory(m_scratch / "elsewhere");
  fs::create_symlink("elsewhere/real", m_folder);
  EXPECT_FALSE(replace());
  EXPECT_FALSE(replace());
  EXPECT_TRUE(fs::is_symlink(m_folder));
  EXPECT_EQ(held(), newFiles);
  EXPECT_EQ(namesIn(m_scratch / "elsewhere"), (std::vector<std::string>{".real.lock", "real"}));
}

TEST_F(DurableFolder, KeepsItsPermissions) {
  makeOld();
  fs::permissions(m_folder, fs::perms::owner_all);
  EXPECT_FALSE(replace());
  EXPECT_EQ(fs::status(m_folder).permissions(), fs::perms::owner_all);
}

TEST_F(DurableFolder, DoesNotTakeThePlaceOfAFile) {
  writeText(m_folder, "a file");
  EXPECT_EQ(replace().value(), ENOTDIR);
  EXPECT_EQ(textOfFile(m_folder), "a file");
  EXPECT_EQ(beside(), std::vector<std::string>{});
}

TEST_F(DurableFolder, RecoveryIsLogged) {
  makeOld();
  fs::rename(m_folder, m_scratch / ".Profiles.old");
  const LogLines log;
  durable::recoverFolder(m_folder);
  EXPECT_EQ(held(), oldFiles);
  EXPECT_TRUE(log.has("recovering the interrupted replacement"));
}
