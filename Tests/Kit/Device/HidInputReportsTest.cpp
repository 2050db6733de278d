#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Kit/Device/HidInputReports.h"
#include "Kit/Device/ReportDescriptor.h"
#include "Tests/Support/EmulatedMouse.h"

namespace {

using ReportBytes = std::vector<std::uint8_t>;
using Ids = std::set<std::uint8_t>;

constexpr std::uint16_t inputVid = 0x264A;
constexpr std::uint16_t inputPid = 0x1001;

TEST(ReportDescriptor, FindsTheVendorsInputReports) {
  struct Row {
    const char* name;
    ReportBytes descriptor;
    bool isNumbered;
    Ids ids;
  };
  const Row rows[] = {
      {"nothing", {}, false, {}},
      {"a pointer", {0x05, 0x01, 0x09, 0x02, 0xA1, 0x01, 0x81, 0x02, 0xC0}, false, {}},
      {"a vendor input", {0x06, 0xA1, 0xFF, 0x09, 0x01, 0xA1, 0x01, 0x81, 0x02, 0xC0}, false, {0}},
      {"a vendor feature", {0x06, 0xA1, 0xFF, 0xA1, 0x01, 0x85, 0x04, 0xB1, 0x02, 0xC0}, true, {}},
      {"a numbered one", {0x06, 0x00, 0xFF, 0xA1, 0x01, 0x85, 0x07, 0x81, 0x02, 0xC0}, true, {7}},
      {"keys beside it",
       {0x05, 0x01, 0xA1, 0x01, 0x85, 0x01, 0x81, 0x02, 0xC0,  //
        0x06, 0x00, 0xFF, 0xA1, 0x01, 0x85, 0x07, 0x81, 0x02, 0x85, 0x08, 0x81, 0x02, 0xC0},
       true,
       {7, 8}},
      {"a usage with its page",
       {0x05, 0x01, 0xA1, 0x01, 0x85, 0x02, 0x0B, 0x01, 0x00, 0x00, 0xFF, 0x81, 0x02,  //
        0x85, 0x03, 0x81, 0x02, 0xC0},
       true,
       {2}},
      {"a page saved and restored",
       {0x06, 0x00, 0xFF, 0xA4, 0x05, 0x01, 0x81, 0x02, 0xB4, 0x85, 0x05, 0x81, 0x02},
       true,
       {5}},
      {"a restore without a save", {0xB4, 0xB4, 0x06, 0x00, 0xFF, 0x81, 0x02}, false, {0}},
      {"a long item before it",
       {0xFE, 0x02, 0x10, 0x81, 0x81, 0x06, 0x00, 0xFF, 0x81, 0x02},
       false,
       {0}},
      {"a long item that is cut", {0x06, 0x00, 0xFF, 0xFE, 0xFF, 0x10, 0x81, 0x02}, false, {}},
      {"an item that is cut", {0x06, 0x00, 0xFF, 0x81, 0x02, 0x85}, false, {0}},
  };
  for (const Row& row : rows) {
    const VendorInputs inputs = vendorInputsOf(row.descriptor);
    EXPECT_EQ(inputs.isNumbered, row.isNumbered) << row.name;
    EXPECT_EQ(inputs.reportIds, row.ids) << row.name;
  }
}

TEST(HidInputReports, HearsNothingWithoutAMouse) {
  EmulatedMouse emulated;
  HidInputReports reports(inputVid, inputPid);
  EXPECT_FALSE(reports.hasAny());
  EXPECT_TRUE(reports.descriptors().empty());
  EXPECT_TRUE(reports.take().empty());
}

TEST(HidInputReports, OpensNothingOfAMouseThatSendsNothingOfItsOwn) {
  EmulatedMouse emulated;
  emulated.plug();
  HidInputReports reports(inputVid, inputPid);
  EXPECT_FALSE(reports.hasAny());
  EXPECT_TRUE(reports.descriptors().empty());
}

TEST(HidInputReports, HearsTheVendorsReportsAndNoKeys) {
  EmulatedMouse emulated;
  emulated.plugWithVendorInput();
  {
    HidInputReports reports(inputVid, inputPid);
    EXPECT_TRUE(reports.hasAny());
    EXPECT_EQ(reports.descriptors().size(), 1U);
    EXPECT_TRUE(reports.take().empty());
    emulated.sendInput(1, {7, 1, 2, 3, 4, 5, 6, 7, 8});
    const auto heard = reports.take();
    ASSERT_EQ(heard.size(), 1U);
    EXPECT_EQ(heard[0], (HidInputReport{1, 7, {7, 1, 2, 3, 4, 5, 6, 7, 8}}));
    emulated.sendInput(1, {1, 0, 0, 4, 0, 0, 0, 0, 0});
    EXPECT_TRUE(reports.take().empty());
  }
}

}  // namespace
