// Exporting macros to files and importing them.

#include <QElapsedTimer>
#include <array>
#include <string_view>

#include <gmock/gmock.h>

#include "Action/Texts/TooltipManager.h"
#include "Kit/Core/LXAction.h"
#include "Tests/View/Macros/MacroViewTest.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

namespace fs = std::filesystem;

class MacroExchange : public MacroViewTest {
 protected:
  void import(const fs::path& path) {
    m_chosen = path;
    press("importMacroBtn");
  }
  fs::path put(const char* name, std::string_view bytes) {
    writeText(file(name), bytes);
    return file(name);
  }
};

// A binary property list with a maximum of 255 objects.
class PropertyListWriter {
 public:
  using Ref = std::uint8_t;

  Ref text(std::string_view text) {
    return add("\x5F\x10" + byte(text.size()) + std::string(text));
  }
  Ref number(std::uint32_t value) { return add("\x12" + word(value)); }
  Ref reference(std::size_t object) { return add("\x80" + byte(object)); }
  Ref list(const std::string& refs) {
    return add("\xAF\x12" + word(static_cast<std::uint32_t>(refs.size())) + refs);
  }
  Ref dictionary(const std::vector<std::pair<const char*, Ref>>& entries) {
    std::string keys;
    std::string values;
    for (const auto& [key, value] : entries) {
      keys += byte(text(key));
      values += byte(value);
    }
    return add(std::string(1, static_cast<char>(0xD0U | entries.size())) + keys + values);
  }
  static std::string byte(std::size_t value) { return {static_cast<char>(value)}; }

  std::string written(Ref root) const {
    std::string bytes = "bplist00";
    std::string offsets;
    for (const std::string& object : m_objects) {
      offsets += word(static_cast<std::uint32_t>(bytes.size()));
      bytes += object;
    }
    const auto place = static_cast<std::uint32_t>(bytes.size());
    constexpr char offsetWidth = 4;
    constexpr char refWidth = 1;
    return bytes + offsets + std::string(6, '\0') + offsetWidth + refWidth +
           wide(m_objects.size()) + wide(root) + wide(place);
  }

 private:
  static std::string word(std::uint32_t value) {
    return byte(value >> 24U) + byte(value >> 16U) + byte(value >> 8U) + byte(value);
  }
  static std::string wide(std::size_t value) {
    return word(0) + word(static_cast<std::uint32_t>(value));
  }
  Ref add(std::string object) {
    m_objects.push_back(std::move(object));
    return static_cast<Ref>(m_objects.size() - 1);
  }

  std::vector<std::string> m_objects;
};

// A small file that repeats one event that many times.
std::string archiveOfRepeatedEvent(std::size_t times) {
  enum : std::size_t { Nil, Macro, Events, Event, MacroClass, ArrayClass, EventClass, Name };
  PropertyListWriter plist;
  const auto classNamed = [&](const char* name) {
    return plist.dictionary(
        {{"$classname", plist.text(name)}, {"$classes", plist.list(plist.byte(plist.text(name)))}});
  };
  const auto to = [&](std::size_t object) { return plist.reference(object); };
  const std::array<PropertyListWriter::Ref, 8> objects{
      plist.text("$null"),
      plist.dictionary({{"$class", to(MacroClass)},
                        {"keyInfoArr", to(Events)},
                        {"loopTime", plist.number(1)},
                        {"nameStr", to(Name)}}),
      plist.dictionary(
          {{"$class", to(ArrayClass)},
           {"NS.objects", plist.list(std::string(times, static_cast<char>(to(Event))))}}),
      plist.dictionary({{"$class", to(EventClass)},
                        {"keyCode", plist.number(11)},
                        {"keyFlag", plist.number(0)},
                        {"delay", plist.number(5)}}),
      classNamed("MacroInfo"),
      classNamed("NSMutableArray"),
      classNamed("MacroKeyInfo"),
      plist.text("many")};
  std::string table;
  for (const auto object : objects) {
    table += plist.byte(object);
  }
  return plist.written(plist.dictionary({{"$archiver", plist.text("NSKeyedArchiver")},
                                         {"$version", plist.number(100000)},
                                         {"$top", plist.dictionary({{"root", to(Macro)}})},
                                         {"$objects", plist.list(table)}}));
}

std::string xmlArchive(const std::string& objects) {
  return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>
    <key>$archiver</key><string>NSKeyedArchiver</string>
    <key>$version</key><integer>100000</integer>
    <key>$top</key><dict><key>root</key><dict><key>CF$UID</key><integer>1</integer></dict></dict>
    <key>$objects</key><array><string>$null</string>)" +
         objects + "</array></dict></plist>";
}

constexpr const char* macroOfItself = R"(
  <dict><key>$class</key><dict><key>CF$UID</key><integer>2</integer></dict>
    <key>keyInfoArr</key><dict><key>CF$UID</key><integer>3</integer></dict>
    <key>nameStr</key><dict><key>CF$UID</key><integer>1</integer></dict></dict>
  <dict><key>$classname</key><string>MacroInfo</string></dict>
  <dict><key>$class</key><dict><key>CF$UID</key><integer>4</integer></dict>
    <key>NS.objects</key><array>
      <dict><key>CF$UID</key><integer>1</integer></dict>
      <dict><key>CF$UID</key><integer>3</integer></dict></array></dict>
  <dict><key>$classname</key><string>NSArray</string></dict>)";

}  // namespace

TEST_F(MacroExchange, AnExportedMacroIsTheSameWhenItIsImported) {
  const auto original = addMacro(5, "Five", {{1, 0, 10}, {121, 3, 20}, {57, 1, 0}});
  original->setLoopTime(3);
  open();
  chooseIn("macroNameBtn", "Five");
  m_chosen = file("Saved");
  press("exportMacroBtn");
  ASSERT_THAT(m_panels, SizeIs(1));
  EXPECT_TRUE(m_panels[0].isSave);
  EXPECT_EQ(m_panels[0].folder, home() / "Documents");
  EXPECT_EQ(m_panels[0].name, "Five");
  EXPECT_THAT(m_shown, IsEmpty());
  import(file("Saved.mac"));
  EXPECT_FALSE(m_panels[1].isSave);
  EXPECT_THAT(m_panels[1].patterns, ElementsAre("*.mac"));
  EXPECT_EQ(m_panels[1].kind, filepanel::Kind::File);
  EXPECT_EQ(name(), "Saved");
  const auto read = editor().currMacroInfo();
  EXPECT_EQ(read->macroId(), 0);
  EXPECT_EQ(read->loopTime(), 3);
  EXPECT_EQ(eventsOf(*read), eventsOf(*original));
  EXPECT_EQ(row(), 0);
}

TEST_F(MacroExchange, ACancelledPanelDoesNothing) {
  openOn(1, 0);
  m_chosen = std::nullopt;
  press("exportMacroBtn");
  press("importMacroBtn");
  EXPECT_THAT(m_panels, SizeIs(2));
  EXPECT_THAT(names(), ElementsAre("NewMacro_1"));
  EXPECT_THAT(m_shown, IsEmpty());
}

TEST_F(MacroExchange, AFileThatIsThereIsReplacedAfterAQuestion) {
  openOn(1, 0);
  put("old.mac", "old");
  m_chosen = file("old");
  m_answer = false;
  press("exportMacroBtn");
  EXPECT_THAT(m_shown, SizeIs(1));
  EXPECT_EQ(textOfFile(file("old.mac")), "old");
  m_answer = true;
  press("exportMacroBtn");
  EXPECT_NE(LXAction::CopyObject<MacroInfo>(file("old.mac")), nullptr);
}

TEST_F(MacroExchange, AFileThatCannotBeWrittenIsToldOf) {
  openOn(1, 0);
  m_chosen = file("missing folder") / "macro";
  editor().extentMacro();
  EXPECT_THAT(m_shown, ElementsAre("The file could not be written."));
}

TEST_F(MacroExchange, ANameInUseIsToldInTheLanguageOfTheUserAsOneSentence) {
  MacroInfo macro;
  ASSERT_TRUE(LXAction::SaveObject(macro, file("Taken.mac")));
  addMacro(6, "Taken");
  open();
  auto& texts = TooltipManager::shareTooltipManager();
  for (const char* language : {"US", "German", "Japanese"}) {
    texts.setLanByname(language);
    import(file("Taken.mac"));
  }
  texts.setLanByname("US");
  EXPECT_THAT(m_shown, ElementsAre("A macro of this name already exists.",
                                   "Ein Makro dieses Namens ist bereits vorhanden.",
                                   "同じ名前のマクロがすでにあります。"));
}

TEST_F(MacroExchange, OnlyShownNamesAreInUse) {
  MacroInfo macro;
  macro.setNameStr("Another");
  ASSERT_TRUE(LXAction::SaveObject(macro, file("Hidden.mac")));
  ASSERT_TRUE(LXAction::SaveObject(macro, file("Shown.mac")));
  addMacro(5, "Hidden")->setIsNoDisplay(true);
  addMacro(6, "Shown");
  open();
  import(file("Hidden.mac"));
  EXPECT_THAT(m_shown, IsEmpty());
  EXPECT_THAT(names(), ElementsAre("Hidden", "Shown", "Hidden"));
  import(file("Shown.mac"));
  EXPECT_THAT(m_shown, ElementsAre("A macro of this name already exists."));
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(3));
  // The edited macro stays.
  EXPECT_EQ(name(), "Hidden");
  import(file("Hidden.mac"));
  EXPECT_THAT(m_shown, SizeIs(2));
}

TEST_F(MacroExchange, AMacroThatWasArchivedAsHiddenStaysHidden) {
  MacroInfo macro;
  macro.setIsNoDisplay(true);
  macro.keyInfoArr().push_back(std::make_shared<MacroKeyInfo>(1, 0, 0));
  ASSERT_TRUE(LXAction::SaveObject(macro, file("Secret.mac")));
  open();
  import(file("Secret.mac"));
  EXPECT_THAT(names(), ElementsAre("Secret"));
  EXPECT_TRUE(NerinAction::macroStore->macroListArrs[0]->isNoDisplay());
  EXPECT_THAT(offered(), IsEmpty());
  EXPECT_EQ(editor().currMacroInfo(), nullptr);
  // Nor does it reserve its name.
  import(file("Secret.mac"));
  EXPECT_THAT(names(), ElementsAre("Secret", "Secret"));
}

TEST_F(MacroExchange, ImportedMacrosAreWithoutANumberAndWithoutALimit) {
  for (int id = 1; id <= 100; ++id) {
    addMacro(id, "Macro " + std::to_string(id));
  }
  open();
  for (const char* base : {"one", "two"}) {
    ASSERT_TRUE(LXAction::SaveObject(MacroInfo(), file(std::string(base) + ".mac")));
    import(file(std::string(base) + ".mac"));
    EXPECT_EQ(name(), base);
    EXPECT_EQ(editor().currMacroInfo()->macroId(), 0);
  }
  EXPECT_THAT(m_shown, IsEmpty());
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(102));
}

TEST_F(MacroExchange, ImportedMacrosGetNumbersOfTheirOwnWhenTheyAreSaved) {
  addMacro(7, "Seven");
  open();
  for (const char* base : {"one", "two"}) {
    ASSERT_TRUE(LXAction::SaveObject(MacroInfo(), file(std::string(base) + ".mac")));
    import(file(std::string(base) + ".mac"));
  }
  press("applyBtn");
  EXPECT_EQ(NerinAction::getMacroByName("one")->macroId(), 8);
  EXPECT_EQ(NerinAction::getMacroByName("two")->macroId(), 9);
}

TEST_F(MacroExchange, FilesWithoutAMacroAreIgnored) {
  ASSERT_TRUE(LXAction::SaveObject(MacroKeyInfo(1, 2, 3), file("event.mac")));
  fs::create_directory(file("folder.mac"));
  put("whole.mac", textOfFile(file("event.mac")));
  openOn(1, 0);
  const std::string whole = textOfFile(file("event.mac"));
  for (const fs::path& path :
       {file("missing.mac"), put("empty.mac", ""), put("text.mac", "Press A"), file("folder.mac"),
        put("list.mac", "<plist version=\"1.0\"><dict/></plist>"), file("event.mac"),
        put("half.mac", std::string_view(whole).substr(0, whole.size() / 2)),
        put("zeros.mac", std::string(4096, '\0')), put("cycle.mac", xmlArchive(macroOfItself))}) {
    import(path);
    EXPECT_THAT(names(), ElementsAre("NewMacro_1")) << path;
    EXPECT_EQ(name(), "NewMacro_1") << path;
    EXPECT_THAT(rows(), ElementsAre("0/0/0")) << path;
    EXPECT_TRUE(isOpen());
  }
  EXPECT_THAT(m_shown, IsEmpty());
}

TEST_F(MacroExchange, AFileOfManyEventsIsReadAndShown) {
  open();
  import(put("Many.mac", archiveOfRepeatedEvent(5000)));
  ASSERT_EQ(name(), "Many");
  EXPECT_THAT(commands(), SizeIs(5000));
  EXPECT_EQ(table().model()->rowCount(), 5000);
  EXPECT_EQ(row(), 0);
  editor().selectLastCom();
  press("keyUpBtn");
  EXPECT_EQ(row(), 4998);
  press("delKeyBtn");
  EXPECT_THAT(commands(), SizeIs(4999));
  // There is no room for a recording.
  record();
  down(KeyA, 1000);
  EXPECT_THAT(m_shown, ElementsAre("Maximum number of macros reached"));
  EXPECT_THAT(commands(), SizeIs(4999));
  stop();
}

TEST_F(MacroExchange, AMillionEventsKeepNobodyWaiting) {
  constexpr std::size_t million = 1000000;
  constexpr qint64 longest = 20000;
  std::string each;
  for (int i = 0; i < 1000; ++i) {
    each += "<dict><key>CF$UID</key><integer>3</integer></dict>";
  }
  std::string elements;
  for (std::size_t i = 0; i < million / 1000; ++i) {
    elements += each;
  }
  std::string objects = macroOfItself;
  objects.insert(objects.find("<array>") + 7, elements);
  open();
  QElapsedTimer since;
  since.start();
  import(put("Text.mac", xmlArchive(objects)));
  EXPECT_LT(since.restart(), longest);
  import(put("Binary.mac", archiveOfRepeatedEvent(million)));
  process();
  EXPECT_LT(since.elapsed(), longest);
  // The window still works, whatever the result.
  press("newMacroBtn");
  EXPECT_EQ(name(), "NewMacro_1");
}
