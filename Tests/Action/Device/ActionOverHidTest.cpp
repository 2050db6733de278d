#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/MacroImage.h"
#include "Action/Wire/ProfileImage.h"
#include "Kit/Device/HidDeviceRequester.h"
#include "Tests/Support/EmulatedMouse.h"
#include "Tests/Support/WireVectors.h"

// The bytes of whole profiles through hidapi and libudev, with a virtual mouse behind emulated
// nodes. Each test needs its own process.

namespace {

// A separate base class, so that the nodes exist before the program starts.
class EmulatedBus {
 protected:
  EmulatedBus() { m_emulated.plug(); }

  std::shared_ptr<VirtualMouse> m_virtualMouse = std::make_shared<VirtualMouse>();
  EmulatedMouse m_emulated{m_virtualMouse};
  std::shared_ptr<HidDeviceRequester> m_hidRequester =
      std::make_shared<HidDeviceRequester>(m_emulated.udevControl());
};

class OverHid : private EmulatedBus, public WireVectorTest {
 protected:
  OverHid() : WireVectorTest(m_virtualMouse, m_hidRequester) {}

  using EmulatedBus::m_emulated;
};

class WireVectors : public OverHid, public testing::WithParamInterface<std::size_t> {
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

INSTANTIATE_TEST_SUITE_P(OverHid, WireVectors, testing::Range<std::size_t>(0, wireVectorCount));

class FactoryImages : public OverHid, public testing::WithParamInterface<int> {};

TEST_P(FactoryImages, AreWrittenAndReadBack) {
  expectFactoryProfile(GetParam());
}

INSTANTIATE_TEST_SUITE_P(OverHid, FactoryImages,
                         testing::Range(0, static_cast<int>(factoryProfileCount)));

TEST_F(OverHid, AMacroOfAWholeReportGoesOutAndComesBack) {
  Events events;
  for (int n = 0; n < 2000; ++n) {
    events.push_back({n % 2 == 0 ? 49 : 36, 0, 0});
  }
  addMacro(50, "long", events);
  editState->currFWProfile().btnInfo[15] = macroButton(50);
  ASSERT_TRUE(NerinAction::setFWMacroData(9, 15).value);
  NerinAction::getMacroById(50)->keyInfoArr().clear();
  EXPECT_TRUE(NerinAction::getFWMacroData(9, 15).isDone());
  EXPECT_EQ(eventsOf(*NerinAction::getMacroById(50)), events);
  EXPECT_TRUE(mouse().faults().empty());
}

TEST_F(OverHid, TheActiveSlotIsChosenAndRead) {
  EXPECT_TRUE(NerinAction::setProfileIndexToDevice(7).isDone());
  EXPECT_EQ(mouse().activeSlot(), 7);
  EXPECT_EQ(NerinAction::getProfileIndexByDevice().value, 7);
}

TEST_F(OverHid, ResettingOpensTheNodesAgain) {
  const int opened = m_emulated.openCount();
  EXPECT_TRUE(NerinAction::setProfileIndexToDevice(3).isDone());
  EXPECT_TRUE(NerinAction::resetDevPro().isDone());
  EXPECT_GT(m_emulated.openCount(), opened);
  EXPECT_EQ(mouse().activeSlot(), 3);
}

TEST_F(OverHid, ApplyingToAMouseThatIsGoneKeepsTheProfile) {
  m_emulated.unplug();
  EXPECT_FALSE(NerinAction::checkListenDev());
  library().setCurrFWProfileName("Game");
  library().setFwProfileId(-1, 0);
  const Outcome outcome = NerinAction::applySlot();
  ASSERT_TRUE(outcome.failure());
  EXPECT_EQ(outcome.failure()->step, SlotStep::WriteName);
  EXPECT_EQ(outcome.failure()->error, std::errc::no_such_device);
  EXPECT_EQ(namesOf(library().profileArr()), std::vector<std::string>{"Game"});
  m_emulated.plug(7);
  EXPECT_TRUE(NerinAction::checkListenDev());
  EXPECT_TRUE(NerinAction::writeSlot(0).isDone());
  EXPECT_EQ(mouse().slotName(0), "Game");
}

}  // namespace
