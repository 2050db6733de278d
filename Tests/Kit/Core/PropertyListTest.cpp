#include <array>
#include <clocale>
#include <cstdlib>
#include <limits>

#include <gtest/gtest.h>

#include "Kit/Core/PropertyList.h"
#include "Tests/Support/FailingDisk.h"

using propertylist::Form;

namespace {

std::string xml(const std::string& content) {
  return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0">)" + content + "</plist>";
}

plist_t at(const propertylist::Handle& list, const char* key) {
  return plist_dict_get_item(list.get(), key);
}

propertylist::Handle inBothForms(const propertylist::Handle& list, Form form) {
  return propertylist::parse(propertylist::serialize(list.get(), form));
}

// While this lives, the process uses a decimal comma.
class CommaNumbers {
 public:
  explicit CommaNumbers(const std::filesystem::path& folder) {
    const std::string command = "localedef -i de_DE -f UTF-8 '" + (folder / "comma").string() + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << "the package locales is needed";
    ::setenv("LOCPATH", folder.c_str(), 1);
    EXPECT_NE(std::setlocale(LC_ALL, "comma"), nullptr);
  }
  ~CommaNumbers() {
    std::setlocale(LC_ALL, "C");
    ::unsetenv("LOCPATH");
  }
  CommaNumbers(const CommaNumbers&) = delete;
  CommaNumbers& operator=(const CommaNumbers&) = delete;
};

}  // namespace

TEST(PropertyList, IsToldByItsFirstBytes) {
  EXPECT_EQ(propertylist::formOf("bplist00"), Form::Binary);
  EXPECT_EQ(propertylist::formOf("bplist0"), Form::Xml);
  EXPECT_EQ(propertylist::formOf("<?xml"), Form::Xml);
  EXPECT_EQ(propertylist::formOf(""), Form::Xml);
}

TEST(PropertyList, KeepsEverythingThatAnotherProgramWrote) {
  const Scratch scratch;
  for (const char* written : {"write-xml", "write-binary"}) {
    ASSERT_TRUE(python(written, scratch / "list"));
    const auto list = propertylist::parse(textOfFile(scratch / "list"));
    ASSERT_TRUE(list) << written;
    for (const Form form : {Form::Xml, Form::Binary}) {
      writeText(scratch / "ours", propertylist::serialize(list.get(), form));
      EXPECT_TRUE(python("check", scratch / "ours")) << written;
      const auto again = inBothForms(list, form);
      ASSERT_TRUE(again);
      writeText(scratch / "ours", propertylist::serialize(again.get(), Form::Binary));
      EXPECT_TRUE(python("check", scratch / "ours")) << written;
    }
  }
}

TEST(PropertyList, GivesItsValues) {
  const auto list = propertylist::parse(
      xml("<dict><key>text</key><string>a&amp;<!-- c -->b<![CDATA[<c>]]></string>"
          "<key>number</key><integer> -12 </integer><key>hexadecimal</key><integer>0xfF</integer>"
          "<key>real</key><real>-2.75</real><key>huge</key><real>1e300</real>"
          "<key>yes</key><true/><key>no</key><false></false><key>list</key><array/></dict>"));
  ASSERT_TRUE(list);
  EXPECT_TRUE(propertylist::isKind(list.get(), PLIST_DICT));
  EXPECT_EQ(propertylist::stringOf(at(list, "text")), "a&b<c>");
  EXPECT_EQ(propertylist::integerOf(at(list, "number")), -12);
  EXPECT_EQ(propertylist::integerOf(at(list, "hexadecimal")), 255);
  EXPECT_EQ(propertylist::integerOf(at(list, "real")), -2);
  EXPECT_EQ(propertylist::integerOf(at(list, "huge")), 9'000'000'000'000'000'000);
  EXPECT_EQ(propertylist::integerOf(at(list, "yes")), 1);
  EXPECT_EQ(propertylist::integerOf(at(list, "text")), 0);
  EXPECT_TRUE(propertylist::boolOf(at(list, "yes")));
  EXPECT_FALSE(propertylist::boolOf(at(list, "no")));
  EXPECT_TRUE(propertylist::boolOf(at(list, "number")));
  EXPECT_FALSE(propertylist::boolOf(at(list, "list")));
  EXPECT_EQ(propertylist::stringOf(at(list, "number")), "");
  EXPECT_EQ(at(list, "absent"), nullptr);
  EXPECT_FALSE(propertylist::isKind(nullptr, PLIST_DICT));
}

TEST(PropertyList, IsTheSameInEveryLanguage) {
  const Scratch scratch;
  ASSERT_TRUE(python("write-xml", scratch / "list"));
  const CommaNumbers comma(scratch.folder());
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%.1f", 1.5);
  ASSERT_STREQ(text.data(), "1,5");
  const auto list = propertylist::parse(textOfFile(scratch / "list"));
  ASSERT_TRUE(list);
  writeText(scratch / "ours", propertylist::serialize(list.get(), Form::Xml));
  EXPECT_TRUE(python("check", scratch / "ours"));
  std::snprintf(text.data(), text.size(), "%.1f", 1.5);
  EXPECT_STREQ(text.data(), "1,5") << "the caller's language is left as it was";
}

TEST(PropertyList, IsReadInOtherEncodings) {
  std::u16string wide =
      u"\uFEFF<?xml version='1.0' encoding='UTF-16'?><plist><string>\u00E4\u20AC"
      u"</string></plist>";
  const std::string bytes(reinterpret_cast<const char*>(wide.data()), 2 * wide.size());
  EXPECT_EQ(propertylist::stringOf(propertylist::parse(bytes).get()), "\u00E4\u20AC");
}

TEST(PropertyList, IsNoOtherText) {
  for (const char* text : {"", " ", "plain", "{a = 1;}", "<plist", "<plist/>", "<plist></plist>",
                           "<html><body/></html>", "<!-- -->", "bplist00", "bplist01"}) {
    EXPECT_FALSE(propertylist::parse(text)) << text;
  }
  EXPECT_FALSE(propertylist::parse(std::string(propertylist::maximumSize + 1, ' ')));
}
