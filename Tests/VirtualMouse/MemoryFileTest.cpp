#include <csignal>
#include <fstream>
#include <iterator>
#include <system_error>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Tests/Support/Scratch.h"
#include "Tests/VirtualMouse/MouseHost.h"

using namespace MouseHost;

namespace {

constexpr std::size_t headerSize = 16;
constexpr std::size_t fileSize = headerSize + 11UL * 256 + 10UL * 70 + 190UL * 2053;

Bytes contentsOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void put(const std::filesystem::path& path, const Bytes& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

std::size_t entriesIn(const std::filesystem::path& folder) {
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder),
                                                std::filesystem::directory_iterator()));
}

// The error number with which a mouse refuses the file; 0 if it accepts it.
int refusalOf(const std::filesystem::path& path) {
  try {
    const VirtualMouse mouse(path);
    return 0;
  } catch (const std::system_error& error) {
    EXPECT_NE(std::string(error.what()).find(path.string()), std::string::npos) << error.what();
    return error.code().value();
  }
}

// Root may write every file, so the process is another user while this lives.
class AsOrdinaryUser {
 public:
  AsOrdinaryUser() : m_isRoot(::geteuid() == 0) {
    if (m_isRoot && ::seteuid(65534) != 0) {
      throw std::runtime_error("cannot become an ordinary user");
    }
  }
  ~AsOrdinaryUser() {
    if (m_isRoot && ::seteuid(0) != 0) {
      std::abort();
    }
  }
  AsOrdinaryUser(const AsOrdinaryUser&) = delete;
  AsOrdinaryUser& operator=(const AsOrdinaryUser&) = delete;

 private:
  bool m_isRoot;
};

}  // namespace

TEST(MemoryFile, IsMadeAsDelivered) {
  const Scratch folder;
  const auto path = folder.folder() / "mouse";
  {
    const VirtualMouse mouse(path);
    EXPECT_EQ(mouse.slotName(9), "Profile#10");
  }
  const Bytes bytes = contentsOf(path);
  ASSERT_EQ(bytes.size(), fileSize);
  EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + headerSize),
            (Bytes{'N', 'E', 'R', 'I', 'N', 'M', 'E', 'M', 1, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(bytes[headerSize + 25], 0xA0);
  EXPECT_EQ(bytes[headerSize + 256 + 1], 0x2F);
  EXPECT_EQ(entriesIn(folder.folder()), 1U);
}

TEST(MemoryFile, KeepsEverythingThatCanBeChanged) {
  const Scratch folder;
  const auto path = folder.folder() / "mouse";
  {
    VirtualMouse mouse(path);
    write(mouse, nameReport(0, "first"));
    write(mouse, numberedReport(5, 9));
    for (const int macroSlot : {0, 189}) {
      announceMacro(mouse, macroSlot);
      write(mouse, numberedReport(4, macroSlot, macroSlot));
    }
    writeMemory(mouse, 11 * 256 - 1, 0x21);
    command(mouse, {0xC4, 0x07, 3});
    command(mouse, {0xC4, 0x0F, 0, 0, 8});
    command(mouse, {0xC4, 0x0E, 0, 9, 8, 7, 6, 5});
    command(mouse, {0xC5, 0x00, 46, 2});
    mouse.clearSlot(5);
    mouse.pressSlotButton(4);
  }
  VirtualMouse mouse(path);
  EXPECT_EQ(mouse.slotName(0), "first");
  EXPECT_EQ(copyOf(mouse.imageReport(9)), numberedReport(5, 9));
  for (const int macroSlot : {0, 189}) {
    Bytes macro = numberedReport(4, macroSlot, macroSlot);
    macro[0] = 0xB0;
    EXPECT_EQ(copyOf(mouse.macroReport(macroSlot)), macro);
  }
  EXPECT_EQ(readMemory(mouse, 11 * 256 - 1), 0x21);
  EXPECT_EQ(mouse.imageReport(3)[4], 8);
  EXPECT_EQ(mouse.imageReport(3)[5], 0x22);
  EXPECT_EQ(mouse.imageReport(3)[58], 9);
  EXPECT_EQ(mouse.slotName(5), "");
  EXPECT_EQ(mouse.activeSlot(), 4);
}

TEST(MemoryFile, HasEachChangeBeforeTheTransferReturns) {
  const Scratch folder;
  const auto path = folder.folder() / "mouse";
  VirtualMouse mouse(path);
  Bytes before = contentsOf(path);
  const auto changed = [&] {
    const Bytes after = contentsOf(path);
    std::vector<std::size_t> offsets;
    for (std::size_t index = 0; index < std::min(before.size(), after.size()); ++index) {
      if (before[index] != after[index]) {
        offsets.push_back(index - headerSize);
      }
    }
    before = after;
    return offsets;
  };
  command(mouse, {0xC4, 0x07, 3});
  EXPECT_EQ(changed(), (std::vector<std::size_t>{25}));
  command(mouse, {0xC4, 0x0F, 0, 38, 3});
  EXPECT_EQ(changed(), (std::vector<std::size_t>{4 * 256 + 38}));
  write(mouse, nameReport(0, "Profile-1"));
  // The character and the checksum.
  EXPECT_EQ(changed(), (std::vector<std::size_t>{11 * 256 + 3, 11 * 256 + 12}));
  announceMacro(mouse, 1);
  EXPECT_TRUE(changed().empty());
  write(mouse, numberedReport(4, 1));
  EXPECT_EQ(changed().front(), 11 * 256U + 700 + 2053);
}

TEST(MemoryFile, IsSharedByTwoMice) {
  const Scratch folder;
  const auto path = folder.folder() / "mouse";
  VirtualMouse one(path);
  VirtualMouse other(path);
  write(one, nameReport(2, "of one"));
  writeMemory(other, 100, 7);
  EXPECT_EQ(readMemory(one, 100), 7);
  EXPECT_EQ(other.slotName(2), "of one");
  command(one, {0xC4, 0x07, 3});
  other.refresh();
  EXPECT_EQ(other.activeSlot(), 3);
  // A write keeps what the other one wrote beside it.
  write(other, nameReport(3, "of other"));
  write(one, nameReport(2, "of one again"));
  EXPECT_EQ(VirtualMouse(path).slotName(3), "of other");
}

// All programs talk to one mouse: what one announces is answered to the other.
TEST(MemoryFile, SharesWhatWasAnnouncedToo) {
  const Scratch folder;
  const auto path = folder.folder() / "mouse";
  VirtualMouse one(path);
  VirtualMouse other(path);
  command(one, {0xC4, 0x0C, 2, 0});
  command(other, {0xC4, 0x0C, 5, 0});
  Bytes report(70);
  EXPECT_EQ(MouseHost::get(one, 0x0306, 1, report).status, TransferStatus::Done);
  EXPECT_EQ(report[2], 5) << "the slot that the other one announced";
  writeMemory(other, 100, 7);
  command(one, {0xDF, 100, 0});
  command(other, {0xDF, 25, 0});
  EXPECT_EQ(MouseHost::answer(one)[1], 25);
  VirtualMouse late(path);
  EXPECT_EQ(MouseHost::get(late, 0x0305, 1, report).status, TransferStatus::Stalled)
      << "the buffer is too small";
  report.resize(154);
  EXPECT_EQ(MouseHost::get(late, 0x0305, 1, report).status, TransferStatus::Done);
  EXPECT_EQ(report[2], 5);
  one.detach();
  EXPECT_EQ(MouseHost::get(other, 0x0305, 1, report).status, TransferStatus::Stalled)
      << "the power is gone for all";
}

TEST(MemoryFile, WithoutItsPowerFileIsAMouseOfEachProgram) {
  const Scratch folder;
  const auto path = folder.folder() / "mouse";
  std::filesystem::create_directory(path.string() + ".power");
  VirtualMouse one(path);
  VirtualMouse other(path);
  command(one, {0xC4, 0x0C, 2, 0});
  command(other, {0xC4, 0x0C, 5, 0});
  Bytes report(70);
  EXPECT_EQ(MouseHost::get(one, 0x0306, 1, report).status, TransferStatus::Done);
  EXPECT_EQ(report[2], 2);
}

TEST(MemoryFile, ThatAnotherProgramKeepsMakesATransferFail) {
  const Scratch folder;
  const auto path = folder.folder() / "mouse";
  VirtualMouse mouse(path);
  const int descriptor = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(::flock(descriptor, LOCK_EX), 0);
  EXPECT_EQ(command(mouse, {0xC4, 0x07, 3}), TransferStatus::Stalled);
  ASSERT_EQ(mouse.faults().size(), 1U);
  EXPECT_NE(mouse.faults()[0].find("another program is using"), std::string::npos);
  ::close(descriptor);
  EXPECT_EQ(command(mouse, {0xC4, 0x07, 3}), TransferStatus::Done);
}

TEST(MemoryFile, SurvivesAKill) {
  const Scratch folder;
  const auto path = folder.folder() / "mouse";
  int channel[2];
  ASSERT_EQ(::pipe(channel), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    VirtualMouse mouse(path);
    for (int count = 0;; ++count) {
      const auto value = static_cast<std::uint8_t>(count);
      writeMemory(mouse, 100, value);
      if (::write(channel[1], &value, 1) != 1) {
        ::_exit(1);
      }
    }
  }
  ::close(channel[1]);
  std::uint8_t last = 0;
  for (int count = 0; count < 1000; ++count) {
    ASSERT_EQ(::read(channel[0], &last, 1), 1);
  }
  ::kill(child, SIGKILL);
  ASSERT_EQ(::waitpid(child, nullptr, 0), child);
  while (::read(channel[0], &last, 1) == 1) {
  }
  ::close(channel[0]);
  VirtualMouse mouse(path);
  const auto ahead = static_cast<std::uint8_t>(readMemory(mouse, 100) - last);
  EXPECT_LE(ahead, 1);
}

TEST(MemoryFile, OfAnotherKindIsRefusedAndLeftAlone) {
  const Scratch folder;
  const auto path = folder.folder() / "mouse";
  { const VirtualMouse mouse(path); }
  const Bytes good = contentsOf(path);
  struct Case {
    const char* reason;
    Bytes bytes;
  };
  std::vector<Case> cases{{"does not begin", {}},
                          {"does not begin", {'N', 'E', 'R', 'I', 'N', 'M', 'E', 'M'}},
                          {"does not begin", Bytes(fileSize, 'x')},
                          {"wrong size", Bytes(good.begin(), good.begin() + headerSize)},
                          {"wrong size", Bytes(good.begin(), good.end() - 1)},
                          {"wrong size", good},
                          {"version", good}};
  cases[5].bytes.push_back(0);
  cases[6].bytes[8] = 2;
  for (const Case& each : cases) {
    put(path, each.bytes);
    try {
      const VirtualMouse mouse(path);
      ADD_FAILURE() << each.reason;
    } catch (const std::system_error& error) {
      ADD_FAILURE() << error.what();
    } catch (const std::runtime_error& error) {
      const std::string words = error.what();
      EXPECT_NE(words.find(path.string()), std::string::npos) << words;
      EXPECT_NE(words.find(each.reason), std::string::npos) << words;
    }
    EXPECT_EQ(contentsOf(path), each.bytes);
    EXPECT_EQ(entriesIn(folder.folder()), 1U);
  }
  put(path, good);
  EXPECT_EQ(refusalOf(path), 0);
}

TEST(MemoryFile, ThatIsNoFileIsRefused) {
  const Scratch folder;
  const auto pipe = folder.folder() / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_THROW(const VirtualMouse mouse(pipe), std::runtime_error);
  EXPECT_EQ(refusalOf(folder.folder()), EISDIR);
}

TEST(MemoryFile, OfAnyContentIsHeldWithoutHarm) {
  const Scratch folder;
  const auto path = folder.folder() / "mouse";
  { const VirtualMouse mouse(path); }
  Bytes bytes = contentsOf(path);
  std::fill(bytes.begin() + headerSize, bytes.end(), std::uint8_t{0xFF});
  put(path, bytes);
  VirtualMouse mouse(path);
  EXPECT_EQ(mouse.activeSlot(), 15);
  EXPECT_EQ(mouse.slotName(0), std::string(65, '\xFF'));
  EXPECT_EQ(readAfterReady(mouse, 4, 189), Bytes(2053, 0xFF));
  command(mouse, {0xC4, 0x0F, 0, 0, 8});
  EXPECT_EQ(mouse.faults().size(), 1U);
  EXPECT_EQ(contentsOf(path), bytes);
}

TEST(MemoryFile, ThatAnotherProgramKeepsIsRefused) {
  const Scratch folder;
  const auto path = folder.folder() / "mouse";
  { const VirtualMouse made(path); }
  const int descriptor = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(::flock(descriptor, LOCK_EX), 0);
  EXPECT_EQ(refusalOf(path), EWOULDBLOCK);
  ::close(descriptor);
  EXPECT_EQ(refusalOf(path), 0);
}

TEST(MemoryFile, IsMadeByOneOfSeveralAtOnce) {
  const Scratch folder;
  const auto path = folder.folder() / "mouse";
  std::vector<pid_t> children;
  for (int index = 0; index < 8; ++index) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      int code = 1;
      try {
        VirtualMouse mouse(path);
        writeMemory(mouse, static_cast<std::uint16_t>(100 + index), 1);
        code = 0;
      } catch (const std::system_error&) {
        code = 3;
      }
      ::_exit(code);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
  }
  VirtualMouse mouse(path);
  for (std::uint16_t index = 0; index < children.size(); ++index) {
    EXPECT_EQ(readMemory(mouse, static_cast<std::uint16_t>(100 + index)), 1) << index;
  }
  // The memory, and what the mouse knows while it has power.
  EXPECT_EQ(entriesIn(folder.folder()), 2U);
}

TEST(MemoryFile, ThatCannotBeWrittenIsRefused) {
  const Scratch folder;
  const auto path = folder.folder() / "mouse";
  { const VirtualMouse mouse(path); }
  std::filesystem::permissions(folder.folder(), static_cast<std::filesystem::perms>(0755));
  std::filesystem::permissions(path, static_cast<std::filesystem::perms>(0444));
  const AsOrdinaryUser user;
  EXPECT_EQ(refusalOf(path), EACCES);
}

TEST(MemoryFile, ThatCannotBeMadeIsRefused) {
  const Scratch folder;
  put(folder.folder() / "file", {1});
  EXPECT_EQ(refusalOf(folder.folder() / "missing" / "mouse"), ENOENT);
  EXPECT_EQ(refusalOf(folder.folder() / "file" / "mouse"), ENOTDIR);
  EXPECT_EQ(refusalOf(folder.folder() / std::string(300, 'n')), ENAMETOOLONG);
  std::filesystem::create_symlink("nowhere", folder.folder() / "dangling");
  EXPECT_EQ(refusalOf(folder.folder() / "dangling"), ENOENT);
  std::filesystem::permissions(folder.folder(), static_cast<std::filesystem::perms>(0555));
  {
    const AsOrdinaryUser user;
    EXPECT_EQ(refusalOf(folder.folder() / "mouse"), EACCES);
  }
  std::filesystem::permissions(folder.folder(), static_cast<std::filesystem::perms>(0755));
  EXPECT_EQ(entriesIn(folder.folder()), 2U);
}

TEST(MemoryFile, IsFollowedThroughALink) {
  const Scratch folder;
  { const VirtualMouse mouse(folder.folder() / "mouse"); }
  std::filesystem::create_symlink("mouse", folder.folder() / "link");
  {
    VirtualMouse mouse(folder.folder() / "link");
    write(mouse, nameReport(0, "linked"));
  }
  const VirtualMouse mouse(folder.folder() / "mouse");
  EXPECT_EQ(mouse.slotName(0), "linked");
}

TEST(MemoryFile, LeavesNothingWhenTheDiskIsFull) {
  const Scratch folder;
  for (const rlim_t limit : {0U, 8U, 16U, 5000U}) {
    const FileSizeLimit full(limit);
    EXPECT_EQ(refusalOf(folder.folder() / "mouse"), EFBIG);
    EXPECT_EQ(entriesIn(folder.folder()), 0U);
  }
}

TEST(MemoryFile, ChangesNothingWhenItCannotBeWritten) {
  const Scratch folder;
  const auto path = folder.folder() / "mouse";
  VirtualMouse mouse(path);
  const Bytes before = contentsOf(path);
  {
    const FileSizeLimit full(100);
    EXPECT_EQ(write(mouse, nameReport(0, "lost")), TransferStatus::Stalled);
    EXPECT_EQ(command(mouse, {0xC4, 0x0F, 0, 0, 8}), TransferStatus::Stalled);
    mouse.clearSlot(3);
  }
  ASSERT_EQ(mouse.faults().size(), 3U);
  EXPECT_NE(mouse.faults()[0].find("cannot write the memory file"), std::string::npos);
  EXPECT_EQ(mouse.slotName(0), "Profile#1");
  EXPECT_EQ(mouse.slotName(3), "Profile#4");
  EXPECT_EQ(mouse.imageReport(0)[4], 1);
  EXPECT_FALSE(mouse.hasUnrefreshedWrites());
  EXPECT_EQ(contentsOf(path), before);
  EXPECT_EQ(write(mouse, nameReport(0, "kept")), TransferStatus::Done);
  EXPECT_NE(contentsOf(path), before);
}

TEST(MemoryFile, SeesNothingOfGarbage) {
  const Scratch folder;
  const auto path = folder.folder() / "mouse";
  VirtualMouse mouse(path);
  const Bytes before = contentsOf(path);
  mouse.setScenario({MouseScenario::Kind::HoldsGarbage});
  EXPECT_EQ(mouse.activeSlot(), 15);
  write(mouse, nameReport(0, "over"));
  mouse.pressSlotButton(1);
  mouse.clearSlot(2);
  EXPECT_EQ(contentsOf(path), before);
  mouse.setScenario({});
  write(mouse, nameReport(0, "under"));
  EXPECT_NE(contentsOf(path), before);
  EXPECT_EQ(mouse.slotName(2), "Profile#3");
}
