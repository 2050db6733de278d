#include <cerrno>
#include <chrono>
#include <csignal>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Kit/Core/DurableFile.h"
#include "Tests/Support/FailingDisk.h"

namespace fs = std::filesystem;

namespace {

class DurableFile : public testing::Test {
 protected:
  Scratch m_scratch;
  fs::path m_file = m_scratch / "file";
};

}  // namespace

TEST_F(DurableFile, IsReadWhole) {
  const std::string bytes = std::string(200'000, 'x') + std::string("\0\r\n", 3);
  writeText(m_file, bytes);
  EXPECT_EQ(durable::readFile(m_file), bytes);
  writeText(m_file, "");
  EXPECT_EQ(durable::readFile(m_file), "");
}

TEST_F(DurableFile, IsReadUpToItsLimitAndNotBeyond) {
  writeText(m_file, std::string(100, 'x'));
  EXPECT_EQ(durable::readFile(m_file, 100), std::string(100, 'x'));
  EXPECT_FALSE(durable::readFile(m_file, 99));
}

TEST_F(DurableFile, IsNothingWhereThereIsNone) {
  EXPECT_FALSE(durable::readFile(m_file));
  EXPECT_FALSE(durable::readFile(""));
  EXPECT_FALSE(durable::readFile(m_scratch.folder()));
  writeText(m_file, "");
  EXPECT_FALSE(durable::readFile(m_file / "below"));
  EXPECT_FALSE(durable::readFile(m_scratch / std::string(300, 'n')));
}

TEST_F(DurableFile, IsNoDeviceAndNoPipe) {
  EXPECT_FALSE(durable::readFile("/dev/zero"));
  EXPECT_FALSE(durable::readFile("/dev/null"));
  ASSERT_EQ(::mkfifo(m_file.c_str(), 0600), 0);
  EXPECT_FALSE(durable::readFile(m_file)) << "and it does not wait for a writer";
}

TEST_F(DurableFile, IsNothingWhenTheDiskFailsWhileItIsRead) {
  writeText(m_file, "bytes");
  const int steps = FailingDisk{EIO}.failEachStep([] {}, [&] { durable::readFile(m_file); },
                                                  [](const std::string&) {});
  EXPECT_GE(steps, 2);
  durable::setFaultInjector(
      [](const char* step) { return std::string_view(step) == "read" ? EIO : 0; });
  EXPECT_FALSE(durable::readFile(m_file));
  durable::setFaultInjector({});
}

TEST_F(DurableFile, IsWrittenAndReplaced) {
  EXPECT_FALSE(durable::writeFile(m_file, "one"));
  EXPECT_EQ(textOfFile(m_file), "one");
  EXPECT_FALSE(durable::writeFile(m_file, ""));
  EXPECT_EQ(textOfFile(m_file), "");
  EXPECT_EQ(namesIn(m_scratch.folder()), std::vector<std::string>{"file"});
}

TEST_F(DurableFile, MayHaveANameAsLongAsNamesCanBe) {
  const fs::path name = m_scratch / std::string(255, 'n');
  EXPECT_FALSE(durable::writeFile(name, "one"));
  EXPECT_FALSE(durable::writeFile(name, "two"));
  EXPECT_EQ(durable::readFile(name), "two");
  EXPECT_EQ(durable::writeFile(m_scratch / std::string(256, 'n'), "one").value(), ENAMETOOLONG);
  EXPECT_EQ(namesIn(m_scratch.folder()).size(), 1U);
}

TEST_F(DurableFile, KeepsItsPermissions) {
  writeText(m_file, "one");
  for (const int mode : {0600, 0666, 0640}) {
    fs::permissions(m_file, static_cast<fs::perms>(mode));
    EXPECT_FALSE(durable::writeFile(m_file, "two"));
    EXPECT_EQ(fs::status(m_file).permissions(), static_cast<fs::perms>(mode));
  }
}

TEST_F(DurableFile, IsReplacedBehindASymbolicLink) {
  fs::create_directory(m_scratch / "elsewhere");
  writeText(m_scratch / "elsewhere/real", "one");
  fs::create_symlink("elsewhere/second", m_file);
  fs::create_symlink("real", m_scratch / "elsewhere/second");
  EXPECT_FALSE(durable::writeFile(m_file, "two"));
  EXPECT_EQ(fs::read_symlink(m_file), "elsewhere/second");
  EXPECT_TRUE(fs::is_symlink(m_scratch / "elsewhere/second"));
  EXPECT_EQ(textOfFile(m_scratch / "elsewhere/real"), "two");
}

TEST_F(DurableFile, IsMadeWhereALinkLeadsToNothing) {
  fs::create_symlink("real", m_file);
  EXPECT_FALSE(durable::writeFile(m_file, "one"));
  EXPECT_TRUE(fs::is_symlink(m_file));
  EXPECT_EQ(textOfFile(m_scratch / "real"), "one");
}

TEST_F(DurableFile, IsRefusedBehindLinksInACircle) {
  fs::create_symlink("other", m_file);
  fs::create_symlink("file", m_scratch / "other");
  EXPECT_EQ(durable::writeFile(m_file, "one").value(), ELOOP);
  EXPECT_EQ(namesIn(m_scratch.folder()), (std::vector<std::string>{"file", "other"}));
}

TEST_F(DurableFile, CannotTakeThePlaceOfAFolder) {
  fs::create_directory(m_file);
  writeText(m_file / "inside", "kept");
  EXPECT_EQ(durable::writeFile(m_file, "one").value(), EISDIR);
  EXPECT_EQ(textOfFile(m_file / "inside"), "kept");
  EXPECT_EQ(namesIn(m_scratch.folder()), std::vector<std::string>{"file"});
}

TEST_F(DurableFile, TellsThatItsFolderIsMissing) {
  EXPECT_EQ(durable::writeFile(m_scratch / "none/file", "one").value(), ENOENT);
}

TEST_F(DurableFile, StaysTheOldOneOnAFullDisk) {
  writeText(m_file, "one");
  {
    const FileSizeLimit full(1000);
    EXPECT_EQ(durable::writeFile(m_file, std::string(5000, 'x')).value(), EFBIG);
  }
  EXPECT_EQ(textOfFile(m_file), "one");
  EXPECT_EQ(namesIn(m_scratch.folder()), std::vector<std::string>{"file"});
}

TEST_F(DurableFile, IsTheOldOneOrTheNewOneWhicheverStepFails) {
  for (const int error : {ENOSPC, EIO}) {
    for (const bool staysBroken : {false, true}) {
      std::error_code result;
      int failures = 0;
      const int steps = FailingDisk{error, staysBroken}.failEachStep(
          [&] { writeText(m_file, "old"); }, [&] { result = durable::writeFile(m_file, "new"); },
          [&](const std::string& step) {
            EXPECT_TRUE(result.value() == error || !result) << step;
            EXPECT_EQ(textOfFile(m_file), result ? "old" : "new") << step;
            EXPECT_EQ(namesIn(m_scratch.folder()), std::vector<std::string>{"file"}) << step;
            failures += result ? 1 : 0;
          });
      EXPECT_EQ(steps, 7) << "create, write, open and sync the file, rename, open and sync the "
                             "folder";
      EXPECT_EQ(failures, 5) << "what fails after the rename takes nothing back";
      EXPECT_EQ(textOfFile(m_file), "new");
    }
  }
}

TEST_F(DurableFile, IsTheOldOneOrTheNewOneWheneverThePowerGoes) {
  FailingDisk{}.failEachStep(
      [&] { writeText(m_file, "old"); }, [&] { EXPECT_FALSE(durable::writeFile(m_file, "new")); },
      [&](const std::string& step) {
        EXPECT_TRUE(textOfFile(m_file) == "old" || textOfFile(m_file) == "new") << step;
        EXPECT_FALSE(durable::writeFile(m_file, "next")) << step;
        EXPECT_EQ(textOfFile(m_file), "next") << step;
      });
}

TEST_F(DurableFile, LeavesNothingForLongAfterThePowerWent) {
  writeText(m_file, "old");
  writeText(m_scratch / ".nerin-notes.txt", "not ours");
  FailingDisk{}.failEachStep([] {}, [&] { EXPECT_FALSE(durable::writeFile(m_file, "new")); },
                             [](const std::string&) {});
  std::vector<std::string> young = namesIn(m_scratch.folder());
  EXPECT_EQ(young.size(), 2U + 4U) << "one for each step between create and rename";
  durable::sweepTemporaries(m_scratch.folder());
  EXPECT_EQ(namesIn(m_scratch.folder()), young) << "they could still be at work";
  for (const std::string& name : young) {
    fs::last_write_time(m_scratch / name,
                        fs::file_time_type::clock::now() - std::chrono::minutes(61));
  }
  durable::sweepTemporaries(m_scratch.folder());
  EXPECT_EQ(namesIn(m_scratch.folder()), (std::vector<std::string>{".nerin-notes.txt", "file"}));
  durable::sweepTemporaries(m_scratch / "none");
}

TEST_F(DurableFile, DoesNotTakeThePlaceOfADevice) {
  fs::create_symlink("/dev/null", m_file);
  EXPECT_EQ(durable::writeFile(m_file, "one").value(), EINVAL);
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  ASSERT_EQ(::mkfifo((m_scratch / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(durable::writeFile(m_scratch / "pipe", "one").value(), EINVAL);
  EXPECT_EQ(namesIn(m_scratch.folder()), (std::vector<std::string>{"file", "pipe"}));
}
