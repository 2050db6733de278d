#include <gtest/gtest.h>

#include "Kit/Core/LXLogger.h"
#include "Tests/Support/FailingDisk.h"

namespace {

class Logger : public testing::Test {
 protected:
  ~Logger() override {
    LXLogger::setFile({});
    LXLogger::setLevel(LXLogger::Level::Debug);
  }

  std::string written() const {
    LXLogger::setFile({});
    return textOfFile(m_file);
  }

  Scratch m_scratch;
  std::filesystem::path m_file = m_scratch / "program.log";
};

}  // namespace

TEST_F(Logger, WritesTheLineWithItsPlaceAndLevel) {
  LXLogger::setFile(m_file);
  LXLogger::debug("macroNameStr=a");
  const int line = __LINE__ - 1;
  LXLogger::warning("odd");
  LXLogger::error("bad {}");
  const std::string text = written();
  EXPECT_NE(text.find("[debug] LXLoggerTest.cpp:" + std::to_string(line) + " macroNameStr=a\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("[warning] LXLoggerTest.cpp:" + std::to_string(line + 2) + " odd\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find(" bad {}\n"), std::string::npos) << text;
}

TEST_F(Logger, AppendsToTheFileOfTheLastRun) {
  writeText(m_file, "before\n");
  LXLogger::setFile(m_file);
  LXLogger::debug("after");
  const std::string text = written();
  EXPECT_TRUE(text.starts_with("before\n")) << text;
  EXPECT_NE(text.find("after"), std::string::npos) << text;
}

TEST_F(Logger, DropsLinesBelowItsLevel) {
  LXLogger::setFile(m_file);
  LXLogger::setLevel(LXLogger::Level::Warning);
  LXLogger::debug("quiet");
  LXLogger::warning("loud");
  const std::string text = written();
  EXPECT_EQ(text.find("quiet"), std::string::npos);
  EXPECT_NE(text.find("loud"), std::string::npos);
}

TEST_F(Logger, WritesNowhereWithoutAFile) {
  LXLogger::setFile(m_file);
  LXLogger::setFile({});
  LXLogger::error("lost");
  EXPECT_EQ(textOfFile(m_file), "");
}

TEST_F(Logger, KeepsTheLatestMebibyteAndTwoOlderOnes) {
  LXLogger::setFile(m_file);
  const std::string longLine(1000, 'x');
  for (int line = 0; line < 5000; ++line) {
    LXLogger::debug(longLine);
  }
  LXLogger::debug("the last line");
  LXLogger::setFile({});
  EXPECT_EQ(namesIn(m_scratch.folder()),
            (std::vector<std::string>{"program.1.log", "program.2.log", "program.log"}));
  for (const std::string& name : namesIn(m_scratch.folder())) {
    EXPECT_LE(std::filesystem::file_size(m_scratch / name), 1024U * 1024U) << name;
  }
  EXPECT_NE(textOfFile(m_file).find("the last line"), std::string::npos);
}

TEST_F(Logger, HasEveryLineInTheFileAtOnceSoThatAKillLosesNone) {
  LXLogger::setFile(m_file);
  LXLogger::debug("just happened");
  EXPECT_NE(textOfFile(m_file).find("just happened"), std::string::npos);
}

TEST_F(Logger, IsReadableByTheUserAlone) {
  using std::filesystem::perms;
  const auto modeOf = [](const std::filesystem::path& file) {
    return std::filesystem::status(file).permissions();
  };
  const perms ownersOnly = perms::owner_read | perms::owner_write;
  const perms everybodys = ownersOnly | perms::group_read | perms::others_read;
  LXLogger::setFile(m_scratch / "new folder" / "program.log");
  EXPECT_EQ(modeOf(m_scratch / "new folder" / "program.log"), ownersOnly);
  for (const char* name : {"program.log", "program.1.log", "program.2.log"}) {
    writeText(m_scratch / name, "of an older version");
    std::filesystem::permissions(m_scratch / name, everybodys);
  }
  LXLogger::setFile(m_file);
  for (const char* name : {"program.log", "program.1.log", "program.2.log"}) {
    EXPECT_EQ(modeOf(m_scratch / name), ownersOnly) << name;
  }
  const std::string longLine(1000, 'x');
  for (int line = 0; line < 3000; ++line) {
    LXLogger::debug(longLine);
  }
  for (const char* name : {"program.log", "program.1.log", "program.2.log"}) {
    EXPECT_EQ(modeOf(m_scratch / name), ownersOnly) << name << " after a rotation";
  }
}

TEST_F(Logger, GoesOnWithoutAFileThatCannotBeOpened) {
  writeText(m_scratch / "file", "");
  LXLogger::setFile(m_scratch / "file" / "program.log");
  LXLogger::error("lost");
  LXLogger::setFile(m_scratch.folder());
  LXLogger::error("lost");
  EXPECT_EQ(textOfFile(m_scratch / "file"), "");
}

TEST_F(Logger, ShowsEveryLineToTheObserver) {
  LXLogger::setLevel(LXLogger::Level::Error);
  const LogLines log;
  LXLogger::debug("one");
  LXLogger::error("two");
  EXPECT_EQ(log.lines(), (std::vector<std::string>{"one", "two"}));
}
