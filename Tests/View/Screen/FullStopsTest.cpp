// How texts end that the catalogue answers without their closing period.

#include "Tests/Support/ViewTest.h"
#include "View/Screen/FullStops.h"

TEST(FullStops, OneSentenceStaysWithoutOne) {
  for (const char* text : {"The mouse did not answer", "Menu", "", "Other file…", "What now?"}) {
    EXPECT_EQ(fullstops::completed(text), text);
  }
}

TEST(FullStops, SeveralSentencesGetTheirLastOneBack) {
  EXPECT_EQ(fullstops::completed("It is busy. Try again"), "It is busy. Try again.");
  EXPECT_EQ(fullstops::completed("Занято. Повторите попытку"), "Занято. Повторите попытку.");
  EXPECT_EQ(fullstops::completed("사용 중입니다. 다시 시도하세요"),
            "사용 중입니다. 다시 시도하세요.");
  EXPECT_EQ(fullstops::completed("No left click. Apply anyway?"), "No left click. Apply anyway?");
  EXPECT_EQ(fullstops::completed("使用中です。もう一度。"), "使用中です。もう一度。");
}

TEST(FullStops, AnOrdinalNumberEndsNoSentence) {
  EXPECT_EQ(fullstops::completed("Fare 2 rapordan 1. raporu almadı"),
            "Fare 2 rapordan 1. raporu almadı");
}

TEST(FullStops, AMessageIsASentence) {
  EXPECT_EQ(fullstops::sentence("The file could not be written"), "The file could not be written.");
  EXPECT_EQ(fullstops::sentence("(off)"), "(off).");
  EXPECT_EQ(fullstops::sentence("Replace it?"), "Replace it?");
  EXPECT_EQ(fullstops::sentence("同じ名前のマクロがすでにあります"),
            "同じ名前のマクロがすでにあります。");
  EXPECT_EQ(fullstops::sentence(""), "");
}
