#include <limits>

#include <gtest/gtest.h>

#include "Kit/Core/KeyedArchive.h"
#include "Kit/Core/PropertyList.h"
#include "Tests/Support/FailingDisk.h"

namespace {

class Note final : public LXCoding {
 public:
  Note() = default;
  explicit Note(std::int32_t itsPitch) : pitch(itsPitch) {}

  std::int32_t pitch = 0;

  std::string_view className() const override { return "Note"; }
  void encodeWithCoder(LXKeyedArchiver& coder) const override { coder.encodeInt(pitch, "pitch"); }
  void initWithCoder(LXKeyedUnarchiver& coder) override { pitch = coder.decodeInt("pitch"); }
};

class Song final : public LXCoding {
 public:
  std::int32_t length = 0;
  bool isLoud = false;
  std::optional<std::string> title;
  std::vector<std::shared_ptr<Note>> notes;
  Note last;
  bool hasLast = false;

  std::string_view className() const override { return "Song"; }
  void encodeWithCoder(LXKeyedArchiver& coder) const override {
    coder.encodeInt(length, "length");
    coder.encodeBool(isLoud, "isLoud");
    coder.encodeString(title, "title");
    std::vector<const LXCoding*> plain;
    for (const auto& note : notes) {
      plain.push_back(note.get());
    }
    coder.encodeArray(plain, "notes");
    coder.encodeObject(last, "last");
  }
  void initWithCoder(LXKeyedUnarchiver& coder) override {
    length = coder.decodeInt("length");
    isLoud = coder.decodeBool("isLoud");
    title = coder.decodeString("title");
    notes = coder.decodeArray<Note>("notes");
    hasLast = coder.decodeObject(last, "last");
  }
};

constexpr std::int32_t minimum = std::numeric_limits<std::int32_t>::min();

Song exampleSong() {
  Song song;
  song.length = -7;
  song.isLoud = true;
  song.title = "Lied \u00E4";
  song.notes = {std::make_shared<Note>(440), std::make_shared<Note>(minimum)};
  song.last.pitch = minimum;
  return song;
}

void expectExample(const Song& song) {
  EXPECT_EQ(song.length, -7);
  EXPECT_TRUE(song.isLoud);
  EXPECT_EQ(song.title, "Lied \u00E4");
  ASSERT_EQ(song.notes.size(), 2U);
  EXPECT_EQ(song.notes[0]->pitch, 440);
  EXPECT_EQ(song.notes[1]->pitch, minimum);
  EXPECT_TRUE(song.hasLast);
  EXPECT_EQ(song.last.pitch, minimum);
}

// An XML archive with the given objects from index 1 on. 6 is the class Note, 7 NSMutableArray, 8
// Song. Each of the others starts with a comment.
std::string archiveOf(const std::string& first, const std::string& others = "") {
  const auto classEntry = [](const std::string& name) {
    return "<dict><key>$classname</key><string>" + name + "</string></dict>";
  };
  std::string objects = "<string>$null</string>" + first + others;
  const std::string filler = "<string>filler</string>";
  std::size_t given = 1;
  for (std::size_t at = others.find("<!--"); at != std::string::npos;
       at = others.find("<!--", at + 1)) {
    ++given;
  }
  for (; given < 5; ++given) {
    objects += filler;
  }
  return "<plist><dict><key>$archiver</key><string>NSKeyedArchiver</string>"
         "<key>$top</key><dict><key>root</key><dict><key>CF$UID</key><integer>1</integer></dict>"
         "</dict><key>$objects</key><array>" +
         objects + classEntry("Note") + classEntry("NSMutableArray") + classEntry("Song") +
         "</array></dict></plist>";
}

std::string reference(const std::string& key, int index) {
  return "<key>" + key + "</key><dict><key>CF$UID</key><integer>" + std::to_string(index) +
         "</integer></dict>";
}

constexpr int noteClass = 6;
constexpr int arrayClass = 7;
constexpr int songClass = 8;

std::string songWith(const std::string& keys) {
  return "<dict>" + reference("$class", songClass) + keys + "</dict>";
}

}  // namespace

TEST(KeyedArchive, IsReadByAnotherProgram) {
  const Scratch scratch;
  writeText(scratch / "song", keyedarchive::archive(exampleSong()));
  EXPECT_TRUE(python("check-song", scratch / "song"));
}

TEST(KeyedArchive, OfAnotherProgramIsReadInBothForms) {
  const Scratch scratch;
  for (const char* command : {"write-song-binary", "write-song-xml"}) {
    ASSERT_TRUE(python(command, scratch / "song"));
    Song song;
    ASSERT_TRUE(keyedarchive::unarchive(textOfFile(scratch / "song"), song)) << command;
    expectExample(song);
  }
}

TEST(KeyedArchive, IsReadBack) {
  Song song;
  ASSERT_TRUE(keyedarchive::unarchive(keyedarchive::archive(exampleSong()), song));
  expectExample(song);
  ASSERT_TRUE(keyedarchive::unarchive(keyedarchive::archive(Song()), song));
  EXPECT_EQ(song.title, std::nullopt) << "no text is not an empty one";
  EXPECT_TRUE(song.notes.empty());
  Song empty;
  empty.title = "";
  ASSERT_TRUE(keyedarchive::unarchive(keyedarchive::archive(empty), song));
  EXPECT_EQ(song.title, "");
}

TEST(KeyedArchive, HoldsManyObjectsInTheirOrder) {
  Song song;
  for (std::int32_t pitch = 0; pitch < 5000; ++pitch) {
    song.notes.push_back(std::make_shared<Note>(pitch));
  }
  Song read;
  ASSERT_TRUE(keyedarchive::unarchive(keyedarchive::archive(song), read));
  ASSERT_EQ(read.notes.size(), 5000U);
  for (std::int32_t pitch = 0; pitch < 5000; ++pitch) {
    EXPECT_EQ(read.notes[static_cast<std::size_t>(pitch)]->pitch, pitch);
  }
}

TEST(KeyedArchive, RepairsTextsThatAreNone) {
  Song song;
  song.title = "a\xFF";
  Song read;
  ASSERT_TRUE(keyedarchive::unarchive(keyedarchive::archive(song), read));
  EXPECT_EQ(read.title, "a\uFFFD");
}

TEST(KeyedArchive, ReadsMissingKeysAsNothing) {
  Song song = exampleSong();
  ASSERT_TRUE(keyedarchive::unarchive(archiveOf(songWith("")), song));
  EXPECT_EQ(song.length, 0);
  EXPECT_FALSE(song.isLoud);
  EXPECT_EQ(song.title, std::nullopt);
  EXPECT_TRUE(song.notes.empty());
  EXPECT_FALSE(song.hasLast);
}

TEST(KeyedArchive, ReadsAMutableText) {
  Song song;
  ASSERT_TRUE(keyedarchive::unarchive(
      archiveOf(songWith(reference("title", 2)),
                "<!-- 2 --><dict><key>NS.string</key><string>soft</string></dict>"),
      song));
  EXPECT_EQ(song.title, "soft");
}

TEST(KeyedArchive, TakesOneObjectManyTimes) {
  Song song;
  const std::string note = "<!-- 2 --><dict>" + reference("$class", noteClass) +
                           "<key>pitch</key><integer>5</integer></dict>";
  const std::string one = "<dict><key>CF$UID</key><integer>2</integer></dict>";
  const std::string list = "<!-- 3 --><dict>" + reference("$class", arrayClass) +
                           "<key>NS.objects</key><array>" + one + one + "</array></dict>";
  ASSERT_TRUE(
      keyedarchive::unarchive(archiveOf(songWith(reference("notes", 3)), note + list), song));
  ASSERT_EQ(song.notes.size(), 2U);
  EXPECT_EQ(song.notes[1]->pitch, 5);
}

TEST(KeyedArchive, RefusesArraysThatHoldSomethingElse) {
  Song song;
  const auto listOf = [](const std::string& elements) {
    return "<!-- 2 --><dict>" + reference("$class", arrayClass) + elements + "</dict>";
  };
  const auto isRead = [&](const std::string& elements) {
    return keyedarchive::unarchive(archiveOf(songWith(reference("notes", 2)), listOf(elements)),
                                   song);
  };
  const auto element = [](int index) {
    return "<key>NS.objects</key><array><dict><key>CF$UID</key><integer>" + std::to_string(index) +
           "</integer></dict></array>";
  };
  EXPECT_TRUE(isRead("<key>NS.objects</key><array/>"));
  EXPECT_FALSE(isRead("")) << "no elements";
  EXPECT_FALSE(isRead("<key>NS.objects</key><string>a</string>"));
  EXPECT_FALSE(isRead(element(0))) << "nil";
  EXPECT_FALSE(isRead(element(1))) << "the song itself";
  EXPECT_FALSE(isRead(element(2))) << "the array itself";
  EXPECT_FALSE(isRead(element(3))) << "a text";
  EXPECT_FALSE(isRead(element(1000))) << "outside";
  EXPECT_FALSE(isRead(element(-1))) << "outside";
  EXPECT_FALSE(isRead("<key>NS.objects</key><array><integer>2</integer></array>"));
  EXPECT_FALSE(keyedarchive::unarchive(archiveOf(songWith("<key>notes</key><array/>")), song));
}

TEST(KeyedArchive, RefusesAnotherClass) {
  Note note;
  EXPECT_FALSE(keyedarchive::unarchive(keyedarchive::archive(Song()), note));
  Song song;
  EXPECT_FALSE(keyedarchive::unarchive(archiveOf("<dict/>"), song));
  EXPECT_FALSE(keyedarchive::unarchive(archiveOf("<string>song</string>"), song));
  EXPECT_FALSE(
      keyedarchive::unarchive(archiveOf("<dict>" + reference("$class", 1) + "</dict>"), song))
      << "its own class";
}

TEST(KeyedArchive, IsNoOtherPropertyList) {
  Song song;
  for (const char* text :
       {"", "text", "<plist><dict/></plist>", "<plist><array/></plist>",
        "<plist><dict><key>$archiver</key><string>NSArchiver</string></dict></plist>",
        "<plist><dict><key>$archiver</key><string>NSKeyedArchiver</string></dict></plist>",
        "<plist><dict><key>$archiver</key><string>NSKeyedArchiver</string><key>$top</key><dict/>"
        "<key>$objects</key><array/></dict></plist>",
        "<plist><dict><key>$archiver</key><string>NSKeyedArchiver</string><key>$top</key><array/>"
        "<key>$objects</key><dict/></dict></plist>"}) {
    EXPECT_FALSE(keyedarchive::unarchive(text, song)) << text;
  }
}

TEST(KeyedArchive, CutOffAnywhereIsNone) {
  const std::string whole = keyedarchive::archive(exampleSong());
  for (std::size_t size = 0; size < whole.size(); ++size) {
    Song song;
    EXPECT_FALSE(keyedarchive::unarchive(std::string_view(whole).substr(0, size), song)) << size;
  }
}

TEST(KeyedArchive, WithOneByteChangedIsReadOrRefused) {
  const std::string whole = keyedarchive::archive(exampleSong());
  int refused = 0;
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const int flipped : {0x01, 0x10, 0x80, 0xFF}) {
      std::string changed = whole;
      changed[at] = static_cast<char>(changed[at] ^ flipped);
      Song song;
      refused += keyedarchive::unarchive(changed, song) ? 0 : 1;
      EXPECT_LE(song.notes.size(), whole.size());
    }
  }
  EXPECT_GT(refused, 0);
}
