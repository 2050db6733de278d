#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Kit/Core/BinaryPropertyListGuard.h"
#include "Kit/Core/PropertyList.h"
#include "Kit/Core/XmlPropertyListGuard.h"

namespace {

using Objects = std::vector<std::string>;

std::string bigEndian(std::uint64_t value, std::size_t width) {
  std::string bytes(width, '\0');
  for (std::size_t i = 0; i < std::min(width, sizeof value); ++i) {
    bytes[width - 1 - i] = static_cast<char>(value >> (8 * i));
  }
  return bytes;
}

// What a binary file says about itself, right or wrong.
struct Trailer {
  int offsetSize = 2;
  int referenceSize = 1;
  std::optional<std::uint64_t> objects = {};
  std::uint64_t root = 0;
  std::optional<std::uint64_t> table = {};
};

std::string binary(const Objects& objects, const Trailer& trailer = {}) {
  std::string bytes = "bplist00";
  std::vector<std::size_t> offsets;
  for (const std::string& object : objects) {
    offsets.push_back(bytes.size());
    bytes += object;
  }
  const std::size_t table = bytes.size();
  for (const std::size_t offset : offsets) {
    bytes += bigEndian(offset, static_cast<std::size_t>(trailer.offsetSize));
  }
  bytes += std::string(6, '\0');
  bytes += static_cast<char>(trailer.offsetSize);
  bytes += static_cast<char>(trailer.referenceSize);
  return bytes + bigEndian(trailer.objects.value_or(objects.size()), 8) +
         bigEndian(trailer.root, 8) + bigEndian(trailer.table.value_or(table), 8);
}

// Bytes that may include a NUL.
template <std::size_t size>
std::string bytes(const char (&text)[size]) {
  return {text, size - 1};
}

// A short text.
std::string text(const std::string& ascii) {
  return static_cast<char>(0x50U + ascii.size()) + ascii;
}

bool isTaken(const Objects& objects, const Trailer& trailer = {}) {
  const std::string file = binary(objects, trailer);
  const bool isSafe = propertylist::isBinaryPropertyListSafe(file);
  EXPECT_EQ(propertylist::parse(file) != nullptr, isSafe);
  return isSafe;
}

// Nested arrays, `depth` levels including the number inside.
Objects nested(std::size_t depth) {
  Objects objects;
  for (std::size_t level = 1; level < depth; ++level) {
    objects.push_back("\xA1" + bigEndian(level, 2));
  }
  objects.emplace_back("\x09");
  return objects;
}

std::string xml(const std::string& content) {
  return "<plist version='1.0'>" + content + "</plist>";
}

std::string repeated(const std::string& text, std::size_t count) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) {
    result += text;
  }
  return result;
}

}  // namespace

TEST(BinaryPropertyListGuard, TakesEveryKindOfObject) {
  EXPECT_TRUE(isTaken({"\xD2\x01\x02\x03\x04", text("a"), bytes("\x61\x00\xE4"),
                       "\xA6\x05\x06\x07\x08\x09\x0A", "\x09", "\x08", "\x10\x05",
                       "\x22\x3F\xC0" + std::string(2, '\0'), "\x23" + std::string(8, '\0'),
                       "\x33" + std::string(8, '\0'), "\x42xy"}));
  EXPECT_TRUE(isTaken({bytes("\x80\x01")}));
  EXPECT_TRUE(isTaken({bytes("\x64\xD8\x3D\xDD\xB1\x00\x61\x00\x62")}));
  EXPECT_TRUE(isTaken({"\x5F\x10\x10" + std::string(16, 'x')}));
  EXPECT_TRUE(isTaken({"\x13" + std::string(8, '\xFF')}));
  EXPECT_TRUE(isTaken({"\x14" + std::string(16, '\0')}));
}

TEST(BinaryPropertyListGuard, RefusesAnObjectThatContainsItself) {
  EXPECT_FALSE(isTaken({bytes("\xA1\x00")}));
  EXPECT_FALSE(isTaken({"\xA1\x01", bytes("\xD1\x02\x00"), text("a")}));
}

TEST(BinaryPropertyListGuard, RefusesAFewBytesThatStandForABillionNodes) {
  const auto tenTimes = [](char levels) {
    Objects objects;
    for (char next = 1; next <= levels; ++next) {
      objects.push_back("\xAA" + std::string(10, next));
    }
    objects.emplace_back("\x09");
    return objects;
  };
  EXPECT_TRUE(isTaken(tenTimes(4)));
  EXPECT_FALSE(isTaken(tenTimes(9)));
  EXPECT_FALSE(isTaken(tenTimes(100)));
}

TEST(BinaryPropertyListGuard, TakesAnObjectThatIsSharedAFewTimes) {
  EXPECT_TRUE(isTaken({"\xA4\x01\x01\x01\x01", "\xA4\x02\x02\x02\x02", text("a")}));
}

TEST(BinaryPropertyListGuard, RefusesALongTextThatIsSharedTooOften) {
  const auto listOf = [](std::size_t references) {
    return Objects{"\xAF\x11" + bigEndian(references, 2) + std::string(references, '\x01'),
                   "\x5F\x12" + bigEndian(100'000, 4) + std::string(100'000, 'a')};
  };
  EXPECT_TRUE(propertylist::isBinaryPropertyListSafe(binary(listOf(10), {.offsetSize = 4})));
  EXPECT_FALSE(propertylist::isBinaryPropertyListSafe(binary(listOf(1000), {.offsetSize = 4})));
}

TEST(BinaryPropertyListGuard, BoundsTheDepth) {
  EXPECT_TRUE(isTaken(nested(propertylist::maximumDepth), {.referenceSize = 2}));
  EXPECT_FALSE(isTaken(nested(propertylist::maximumDepth + 1), {.referenceSize = 2}));
  EXPECT_FALSE(isTaken(nested(20'000), {.referenceSize = 2}));
}

TEST(BinaryPropertyListGuard, BoundsTheDepthOfWhatIsShared) {
  Objects objects = nested(200);
  objects.push_back("\xA1" + bigEndian(0, 2));
  for (std::size_t level = 0; level < 100; ++level) {
    objects.push_back("\xA2" + bigEndian(0, 2) + bigEndian(200 + level, 2));
  }
  EXPECT_FALSE(isTaken(objects, {.referenceSize = 2, .root = 300}));
  EXPECT_TRUE(isTaken(objects, {.referenceSize = 2, .root = 240}));
}

TEST(BinaryPropertyListGuard, RefusesCountsBeyondTheFile) {
  for (const char* marker : {"\xAF", "\xDF", "\x4F", "\x5F", "\x6F"}) {
    for (const std::uint64_t count :
         {std::uint64_t{2}, ~std::uint64_t{0}, std::uint64_t{1} << 63U}) {
      EXPECT_FALSE(isTaken({std::string(marker) + "\x13" + bigEndian(count, 8)})) << count;
    }
    EXPECT_FALSE(isTaken({marker})) << "no count";
    EXPECT_FALSE(isTaken({std::string(marker) + "\x51"})) << "the count is no number";
    EXPECT_FALSE(isTaken({std::string(marker) + "\x14" + std::string(16, '\0')}));
    EXPECT_FALSE(isTaken({std::string(marker) + "\x13" + std::string(3, '\0')})) << "cut off";
  }
  EXPECT_FALSE(isTaken({"\x13" + std::string(7, '\0')}));
  EXPECT_FALSE(isTaken({"\x23" + std::string(7, '\0')}));
  EXPECT_FALSE(isTaken({"\x33" + std::string(7, '\0')}));
  EXPECT_FALSE(isTaken({"\x83" + std::string(3, '\0')}));
  EXPECT_FALSE(isTaken({"\x54" + std::string("abc")}));
}

TEST(BinaryPropertyListGuard, RefusesObjectsOutsideTheFile) {
  EXPECT_FALSE(isTaken({"\xA1\x07"})) << "a reference";
  EXPECT_FALSE(isTaken({"\x09"}, {.root = 1}));
  EXPECT_FALSE(isTaken({"\x09"}, {.objects = 2}));
  EXPECT_FALSE(isTaken({"\x09"}, {.objects = ~std::uint64_t{0}}));
  EXPECT_FALSE(isTaken({"\x09"}, {.table = 7}));
  EXPECT_FALSE(isTaken({"\x09"}, {.table = 1000}));
  EXPECT_FALSE(isTaken({"\x09"}, {.table = ~std::uint64_t{0}}));
  EXPECT_FALSE(isTaken({}, {})) << "no objects";
}

TEST(BinaryPropertyListGuard, RefusesNumberSizesThatAreNone) {
  for (const int size : {0, 9, 255}) {
    EXPECT_FALSE(isTaken({"\x09"}, {.offsetSize = size})) << size;
    EXPECT_FALSE(isTaken({"\x09"}, {.referenceSize = size})) << size;
  }
}

TEST(BinaryPropertyListGuard, RefusesKindsThatAreNone) {
  for (const char* object : {"\x07", "\x0F", "\x0C", "\x15", "\x20", "\x21", "\x24", "\x32", "\x34",
                             "\x70", "\x8F", "\x90", "\xB0", "\xC0", "\xE0", "\xF0"}) {
    EXPECT_FALSE(isTaken({object + std::string(40, '\0')})) << object;
  }
  EXPECT_FALSE(isTaken({std::string(1, '\0')}));
}

TEST(BinaryPropertyListGuard, RefusesKeysThatAreNoTexts) {
  EXPECT_FALSE(isTaken({"\xD1\x01\x02", "\x10\x05", "\x09"}));
  EXPECT_FALSE(isTaken({"\xD1\x01\x02", "\xA1\x02", "\x09"}));
}

TEST(BinaryPropertyListGuard, RefusesTextsThatAreNone) {
  EXPECT_FALSE(isTaken({"\x51\xE4"})) << "not ASCII";
  EXPECT_FALSE(
      isTaken({bytes("\x53"
                     "a\0b")}));
  EXPECT_FALSE(isTaken({bytes("\x61\xD8\x00")})) << "half a pair";
  EXPECT_FALSE(isTaken({bytes("\x62\xD8\x00\x00\x61")}));
  EXPECT_FALSE(isTaken({bytes("\x61\xDC\x00")}));
  EXPECT_FALSE(isTaken({bytes("\x61\x00\x00")}));
}

TEST(BinaryPropertyListGuard, RefusesEveryBeginningOfAFile) {
  const std::string whole =
      binary({"\xD1\x01\x02", text("a"), "\x5F\x10\x10" + std::string(16, 'x')});
  EXPECT_TRUE(propertylist::isBinaryPropertyListSafe(whole));
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_FALSE(propertylist::isBinaryPropertyListSafe(whole.substr(0, size))) << size;
  }
}

TEST(XmlPropertyListGuard, WritesTheListAnewInPlainXml) {
  EXPECT_EQ(
      propertylist::plainXmlPropertyList(
          "<?xml version='1.0'?><!DOCTYPE plist [<!ENTITY x 'y'>]><!-- c -->"
          "<plist version='1.0'>\n <dict a='b'>\n <key>k&lt;<!-- </dict> -->&#65;</key>"
          "<array><![CDATA[ ]]><integer> 5 </integer><true/><string> a\n<![CDATA[<&>]]></string>"
          "</array></dict></plist>"),
      R"(<plist version="1.0"><dict><key>k&lt;A</key><array><integer>5</integer>)"
      "<true></true><string> a\n&lt;&amp;&gt;</string></array></dict></plist>");
}

TEST(XmlPropertyListGuard, ExpandsNoEntities) {
  EXPECT_EQ(propertylist::plainXmlPropertyList(
                "<!DOCTYPE plist [<!ENTITY x SYSTEM 'file:///etc/passwd'>]>" +
                xml("<string>&x;</string>")),
            R"(<plist version="1.0"><string>&amp;x;</string></plist>)");
}

TEST(XmlPropertyListGuard, BoundsTheDepth) {
  const std::size_t limit = propertylist::maximumDepth;
  const auto nestedXml = [](std::size_t depth, const std::string& open) {
    return xml(repeated(open, depth) + repeated("</array>", depth));
  };
  EXPECT_TRUE(propertylist::parse(nestedXml(limit, "<array>")));
  EXPECT_FALSE(propertylist::parse(nestedXml(limit + 1, "<array>")));
  EXPECT_FALSE(propertylist::parse(nestedXml(100'000, "<array>")));
  EXPECT_FALSE(propertylist::parse(nestedXml(100'000, "<array><!--</array>-->")));
  EXPECT_FALSE(propertylist::parse(nestedXml(100'000, "<array ><![CDATA[</array>]]>")));
  EXPECT_FALSE(propertylist::parse("<plist>" + repeated("<array><!--</array>-->", 100'000)));
  EXPECT_TRUE(propertylist::parse(xml("<array>" + repeated("<array/>", 1000) + "</array>")));
}

TEST(XmlPropertyListGuard, RefusesWhatIsNoPropertyList) {
  for (const char* content : {"<dict><key>a</key></dict>",
                              "<dict><true/></dict>",
                              "<dict><key>a</key><key>b</key></dict>",
                              "<dict><key>a</key><true/><false/></dict>",
                              "<array><key>a</key></array>",
                              "<array>text</array>",
                              "<dict>text</dict>",
                              "<key>a</key>",
                              "<true/><true/>",
                              "<unknown/>",
                              "<array><unknown/></array>",
                              "<true>text</true>",
                              "<string><b/></string>",
                              "<integer></integer>",
                              "<integer>five</integer>",
                              "<integer>18446744073709551616</integer>",
                              "<integer>-9223372036854775809</integer>",
                              "<integer>1.5</integer>",
                              "<integer>0x</integer>",
                              "<integer>--5</integer>",
                              "<real></real>",
                              "<real>nan</real>",
                              "<real>inf</real>",
                              "<real>1,5</real>",
                              "<real>1e999</real>",
                              "<date>yesterday</date>",
                              "<data>?</data>",
                              "<string>\xFF</string>",

                              "<dict><key>\xC3</key><true/></dict>",
                              "<array>",
                              "<array></dict>"}) {
    EXPECT_FALSE(propertylist::parse(xml(content))) << content;
  }
}

TEST(XmlPropertyListGuard, TakesNumbersUpToTheirLimits) {
  for (const char* content :
       {"<integer>18446744073709551615</integer>", "<integer>-9223372036854775808</integer>",
        "<integer>+5</integer>", "<integer>0XfF</integer>", "<real>+1.5E+3</real>",
        "<real>.5</real>", "<date>2026-11-21T03:04:05Z</date>", "<data>\n\tAAEC\n</data>",
        "<data/>", "<string/>", "<dict/>"}) {
    EXPECT_TRUE(propertylist::parse(xml(content))) << content;
  }
}
