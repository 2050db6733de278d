#include "Tests/Support/WireVectors.h"

// The bytes of whole profiles, with the virtual mouse in the same process.

namespace {

class WireVectors : public WireVectorTest, public testing::WithParamInterface<std::size_t> {
 protected:
  const WireVector& vector() { return wireVectors().at(GetParam()); }
};

TEST_P(WireVectors, AreWrittenByteForByte) {
  expectWritten(vector());
}

TEST_P(WireVectors, AreReadBackAsWhatTheMouseKeeps) {
  expectReadBack(vector());
}

TEST_P(WireVectors, HaveTheirSettingsSentByteForByte) {
  expectSettings(vector());
}

INSTANTIATE_TEST_SUITE_P(InProcess, WireVectors, testing::Range<std::size_t>(0, wireVectorCount));

class FactoryImages : public WireVectorTest, public testing::WithParamInterface<int> {};

TEST_P(FactoryImages, AreWrittenAndReadBack) {
  expectFactoryProfile(GetParam());
}

INSTANTIATE_TEST_SUITE_P(InProcess, FactoryImages,
                         testing::Range(0, static_cast<int>(factoryProfileCount)));

TEST(WireVectorFixture, IsTakenWhole) {
  EXPECT_EQ(wireVectors().size(), wireVectorCount);
  EXPECT_EQ(factoryImages().size(), factoryProfileCount);
}

}  // namespace
