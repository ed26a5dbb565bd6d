#include <StnEvent/StnPixelList.h>

#include <MrEvent/MiPixelList.h>
#include <StnEvent/StnEvent.h>

#include "HostOfStation4.h"
#include "LogCapture.h"
#include "PixelLists.h"

#include <TClass.h>
#include <TDataMember.h>
#include <TList.h>
#include <TSystem.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const UInt_t kStn = 2;

_PixelNumber MirrorPixel(UInt_t mirror, UInt_t pixel_no, UInt_t stn = kStn) {
  _PixelNumber pixel;
  pixel.fPixelNumber = 0;
  VdUtil::Vd::SetPixelNo(&pixel, pixel_no);
  VdUtil::Vd::SetMirrorNo(&pixel, mirror);
  VdUtil::Vd::SetStnNo(&pixel, stn);
  return pixel;
}

using TList2 = TListOf<kStn>;

class StnPixelListTest : public testing::Test {
 protected:
  void TearDown() override { TStnEvent::fgPrintLevel = 0; }
  LogCapture fLog;
};

TEST_F(StnPixelListTest, NewListIsEmpty) {
  TStnPixelList list;
  EXPECT_EQ(list.GetNumPixels(), 0U);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnPixelListTest, NewListHasTheStationOfTheHost) { EXPECT_EQ(TStnPixelList().GetStnNo(), 4U); }

TEST_F(StnPixelListTest, ConstructionIsTracedAtPrintLevel2) {
  TStnEvent::fgPrintLevel = 2;
  TStnPixelList list;
  EXPECT_THAT(fLog.Take(), testing::MatchesRegex("DBG:StnEvent/src/StnPixelList.cc:[0-9]+: Vd::kSTN_NEXTPIXELS= 2880\n"
                                                 "DBG:StnEvent/src/StnPixelList.cc:[0-9]+: fPixelVectorSize=    90\n"));
}

TEST_F(StnPixelListTest, ConstructionIsSilentAtPrintLevel1) {
  TStnEvent::fgPrintLevel = 1;
  TStnPixelList list;
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnPixelListTest, EmptyListHasNoPixelAndIsNotExpanded) {
  TList2 list;
  TStnEvent::fgPrintLevel = 2;
  EXPECT_EQ(list.GetPixel(0), nullptr);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnPixelListTest, PixelComesBackWithItsInstallationNumber) {
  TList2 list({17});
  EXPECT_EQ(list.GetNumPixels(), 1U);
  EXPECT_EQ(list.At(0), 2880U + 17U);
}

TEST_F(StnPixelListTest, PixelsComeBackInAscendingOrder) {
  TList2 list({2880, 5, 1, 481});
  EXPECT_EQ(list.At(0), 2880U + 1U);
  EXPECT_EQ(list.At(1), 2880U + 5U);
  EXPECT_EQ(list.At(2), 2880U + 481U);
  EXPECT_EQ(list.At(3), 2880U + 2880U);
  EXPECT_EQ(list.GetPixel(4), nullptr);
}

TEST_F(StnPixelListTest, PixelByMirrorIsTheSamePixel) {
  TList2 list;
  _PixelNumber pixel = MirrorPixel(6, 480);
  list.AddPixel(&pixel);
  EXPECT_EQ(list.At(0), 2880U + 2880U);
}

TEST_F(StnPixelListTest, EveryStationPixelCanBeAdded) {
  TList2 list;
  for (UInt_t n = 1; n <= 2880; ++n)
    list.Add(n);
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(list.GetNumPixels(), 2880U);
  for (UInt_t n = 1; n <= 2880; ++n)
    ASSERT_EQ(list.At(n - 1), 2880U + n);
}

TEST_F(StnPixelListTest, AddPixelIsReportedAtPrintLevel1) {
  TList2 list;
  TStnEvent::fgPrintLevel = 1;
  list.Add(500);
  EXPECT_EQ(fLog.Take(), "INF:TStnPixelList::AddPixel((2,2)=2,3380) ...\n");
}

TEST_F(StnPixelListTest, RefusesNoPixel) {
  TList2 list({3});
  list.At(0);
  _VdPixelNumber none;
  list.AddPixel(&none);
  EXPECT_EQ(fLog.Take(), "WRN:TStnPixelList::AddPixel() - tried to add illegal pixel 0 - ignored!\n");
  EXPECT_EQ(list.GetNumPixels(), 1U);
}

TEST_F(StnPixelListTest, RefusesNullAsNoPixel) {
  TList2 list;
  TStnEvent::fgPrintLevel = 0;
  list.AddPixel(static_cast<_VdPixelNumber*>(nullptr));
  list.AddPixel(static_cast<_PixelNumber*>(nullptr));
  EXPECT_EQ(fLog.Take(),
            "WRN:TStnPixelList::AddPixel() - tried to add illegal pixel 0 - ignored!\n"
            "WRN:TStnPixelList::AddPixel() - tried to add illegal pixel 0 - ignored!\n");
  EXPECT_EQ(list.GetNumPixels(), 0U);
}

TEST_F(StnPixelListTest, RefusesAPixelBeyondTheInstallation) {
  TList2 list;
  _VdPixelNumber pixel;
  VdUtil::Vd::SetPixelNo(&pixel, 14401);
  list.AddPixel(&pixel);
  EXPECT_EQ(fLog.Take(), "WRN:TStnPixelList::AddPixel() - tried to add illegal pixel 14401 - ignored!\n");
  EXPECT_EQ(list.GetNumPixels(), 0U);
}

TEST_F(StnPixelListTest, RefusesAPixelOfAnotherStation) {
  TList2 list({3});
  list.At(0);
  list.Add(4, 3);
  EXPECT_EQ(fLog.Take(), "WRN:TStnPixelList::AddPixel() - tried to add pixel 5764from illegal Stn 3 - ignored!\n");
  EXPECT_EQ(list.GetNumPixels(), 1U);
}

TEST_F(StnPixelListTest, RefusedPixelOfAnotherStationKeepsTheExpandedList) {
  TList2 list({3});
  const _VdPixelNumber* pixel = list.GetPixel(0);
  list.Add(4, 3);
  TStnEvent::fgPrintLevel = 2;
  fLog.Take();
  EXPECT_EQ(list.GetPixel(0), pixel);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnPixelListTest, RefusedIllegalPixelKeepsTheExpandedList) {
  TList2 list({3});
  const _VdPixelNumber* pixel = list.GetPixel(0);
  _VdPixelNumber none;
  list.AddPixel(&none);
  TStnEvent::fgPrintLevel = 2;
  fLog.Take();
  EXPECT_EQ(list.GetPixel(0), pixel);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnPixelListTest, RefusesARepeatedPixel) {
  TList2 list({3});
  list.Add(3);
  EXPECT_EQ(fLog.Take(), "WRN:TStnPixelList::AddPixel(3) - tried to add pixel again to list - ignored!\n");
  EXPECT_EQ(list.GetNumPixels(), 1U);
  EXPECT_EQ(list.At(0), 2883U);
}

TEST_F(StnPixelListTest, RepeatedPixelDiscardsTheExpandedList) {
  TList2 list({3});
  list.At(0);
  list.Add(3);
  fLog.Take();
  TStnEvent::fgPrintLevel = 2;
  list.At(0);
  EXPECT_EQ(fLog.Take(), "INF:Pixel 2 is set !\nINF:TStnPixelList:: adding pixel 2 as no. 0\n");
}

TEST_F(StnPixelListTest, NewPixelAppearsInAnExpandedList) {
  TList2 list({3});
  list.At(0);
  list.Add(1);
  EXPECT_EQ(list.At(0), 2881U);
  EXPECT_EQ(list.At(1), 2883U);
}

TEST_F(StnPixelListTest, AddsTheListOfAMirror) {
  TMirrorPixelList mirror_list;
  for (UInt_t n : {7U, 3U}) {
    _PixelNumber pixel = MirrorPixel(2, n);
    mirror_list.AddPixel(&pixel);
  }
  TList2 list;
  list.AddPixelList(&mirror_list);
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(list.GetNumPixels(), 2U);
  EXPECT_EQ(list.At(0), 2880U + 480U + 3U);
  EXPECT_EQ(list.At(1), 2880U + 480U + 7U);
}

TEST_F(StnPixelListTest, RefusedPixelOfAMirrorListIsLeftOut) {
  TMirrorPixelList mirror_list;
  _PixelNumber pixel = MirrorPixel(2, 7, 4);
  mirror_list.AddPixel(&pixel);
  pixel = MirrorPixel(2, 8);
  mirror_list.AddPixel(&pixel);
  TList2 list;
  list.AddPixelList(&mirror_list);
  EXPECT_EQ(list.GetNumPixels(), 1U);
  EXPECT_EQ(list.At(0), 2880U + 480U + 8U);
}

TEST_F(StnPixelListTest, AddPixelListIsReportedAtPrintLevel1) {
  TMirrorPixelList mirror_list;
  _PixelNumber pixel = MirrorPixel(2, 7);
  mirror_list.AddPixel(&pixel);
  TList2 list;
  TStnEvent::fgPrintLevel = 1;
  list.AddPixelList(&mirror_list);
  EXPECT_EQ(fLog.Take(),
            "INF:TMirrorPixelList contains 1 pixels !\n"
            "INF:TStnPixelList::AddPixel((2,2)=2,3367) ...\n"
            "INF:TStnPixelList::AddPixelList(seq=1): 3367,487,7\n");
}

TEST_F(StnPixelListTest, AddPixelListReportsARefusedPixelToo) {
  TMirrorPixelList mirror_list;
  _PixelNumber pixel = MirrorPixel(2, 7, 4);
  mirror_list.AddPixel(&pixel);
  TList2 list;
  TStnEvent::fgPrintLevel = 1;
  list.AddPixelList(&mirror_list);
  EXPECT_EQ(fLog.Take(),
            "INF:TMirrorPixelList contains 1 pixels !\n"
            "INF:TStnPixelList::AddPixel((4,2)=2,9127) ...\n"
            "WRN:TStnPixelList::AddPixel() - tried to add pixel 9127from illegal Stn 4 - ignored!\n"
            "INF:TStnPixelList::AddPixelList(seq=0): 9127,487,7\n");
}

TEST_F(StnPixelListTest, NoMirrorListAddsNothing) {
  TList2 list;
  list.AddPixelList(nullptr);
  EXPECT_EQ(list.GetNumPixels(), 0U);
}

TEST_F(StnPixelListTest, PositionIsTheStationPixelCountedFromZero) {
  TList2 list;
  UInt_t element = 0, bit = 0;
  _VdPixelNumber pixel = MakeStnPixel(kStn, 33);
  list.GetPosition(&pixel, &element, &bit);
  EXPECT_EQ(element, 1U);
  EXPECT_EQ(bit, 1U);
}

TEST_F(StnPixelListTest, TestPixelAnswersForTheNextPixel) {
  TList2 list({64});
  EXPECT_TRUE(list.Test(63));
  EXPECT_FALSE(list.Test(64));
  EXPECT_FALSE(list.Test(62));
}

TEST_F(StnPixelListTest, TestPixelOfAnAddedPixelIsTrueIfTheNextWasAddedToo) {
  TList2 list({64, 65});
  EXPECT_TRUE(list.Test(64));
}

TEST_F(StnPixelListTest, TestPixelOfTheLastStationPixelIsFalse) {
  TList2 list({2880});
  EXPECT_FALSE(list.Test(2880));
  EXPECT_TRUE(list.Test(2879));
}

TEST_F(StnPixelListTest, TestPixelMakesNoStationCheck) {
  TList2 list({64});
  _VdPixelNumber pixel = MakeStnPixel(5, 63);
  EXPECT_TRUE(list.TestPixel(&pixel));
}

TEST_F(StnPixelListTest, TestPixelOfNoPixelIsFalse) {
  TList2 list({1});
  _VdPixelNumber none;
  EXPECT_FALSE(list.TestPixel(&none));
  EXPECT_FALSE(list.TestPixel(nullptr));
}

TEST_F(StnPixelListTest, RemovePixelClearsTheNextPixel) {
  TList2 list({10, 11});
  list.Remove(10);
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(list.GetNumPixels(), 1U);
  EXPECT_EQ(list.At(0), 2890U);
}

TEST_F(StnPixelListTest, RemovePixelByMirrorIsTheSame) {
  TList2 list({10, 11});
  _PixelNumber pixel = MirrorPixel(1, 10);
  list.RemovePixel(&pixel);
  EXPECT_EQ(list.At(0), 2890U);
}

TEST_F(StnPixelListTest, RemovePixelLeavesTheExpandedListAsItWas) {
  TList2 list({10, 20});
  list.At(0);
  list.Remove(10);
  EXPECT_EQ(list.GetNumPixels(), 1U);
  EXPECT_EQ(list.At(0), 2890U);
  EXPECT_EQ(list.GetPixel(1), nullptr);
  EXPECT_TRUE(list.Test(9));
}

TEST_F(StnPixelListTest, RemovePixelLowersTheCountWhenTheBitIsClear) {
  TList2 list({10});
  list.Remove(20);
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(list.GetNumPixels(), 0U);
}

TEST_F(StnPixelListTest, RemovePixelNoticesAbsenceAtBit0OfAnEmptyWord) {
  TList2 list({32});
  list.Remove(32);
  EXPECT_EQ(fLog.Take(), "WRN:TStnPixelList::RemovePixel(32): Tried to remove non-existing pixel from the list !\n");
  EXPECT_EQ(list.GetNumPixels(), 1U);
  EXPECT_EQ(list.At(0), 2912U);
}

TEST_F(StnPixelListTest, RemovePixelAtBit0OfAFilledWordLowersTheCount) {
  TList2 list({32, 40});
  list.Remove(32);
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_EQ(list.GetNumPixels(), 1U);
}

TEST_F(StnPixelListTest, RemovePixelOfTheLastStationPixelFindsAnEmptyWord) {
  TList2 list({2880});
  list.Remove(2880);
  EXPECT_EQ(fLog.Take(), "WRN:TStnPixelList::RemovePixel(2880): Tried to remove non-existing pixel from the list !\n");
  EXPECT_EQ(list.GetNumPixels(), 1U);
  EXPECT_EQ(list.At(0), 5760U);
}

TEST_F(StnPixelListTest, RemovePixelRefusesNoPixel) {
  TList2 list({1});
  _VdPixelNumber none;
  list.RemovePixel(&none);
  list.RemovePixel(static_cast<_VdPixelNumber*>(nullptr));
  EXPECT_EQ(fLog.Take(), "WRN:Tried to remove illegal pixel 0\nWRN:Tried to remove illegal pixel 0\n");
  EXPECT_EQ(list.GetNumPixels(), 1U);
  EXPECT_EQ(list.At(0), 2881U);
}

TEST_F(StnPixelListTest, RemovePixelRefusesAPixelBeyondTheInstallation) {
  TList2 list({1});
  _VdPixelNumber pixel;
  VdUtil::Vd::SetPixelNo(&pixel, 14401);
  list.RemovePixel(&pixel);
  EXPECT_EQ(fLog.Take(), "WRN:Tried to remove illegal pixel 14401\n");
  EXPECT_EQ(list.GetNumPixels(), 1U);
}

TEST_F(StnPixelListTest, ExpansionIsReportedAtPrintLevel2) {
  TList2 list({1, 2880});
  TStnEvent::fgPrintLevel = 2;
  list.ConstructPixelList();
  EXPECT_EQ(fLog.Take(),
            "INF:Pixel 0 is set !\n"
            "INF:TStnPixelList:: adding pixel 0 as no. 0\n"
            "INF:Pixel 2879 is set !\n"
            "INF:TStnPixelList:: adding pixel 2879 as no. 1\n");
}

TEST_F(StnPixelListTest, ExpansionIsSilentAtPrintLevel1) {
  TList2 list({1});
  TStnEvent::fgPrintLevel = 1;
  list.ConstructPixelList();
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnPixelListTest, ExpandedAgainItHoldsEachPixelOnce) {
  TList2 list({1, 2880});
  list.ConstructPixelList();
  list.ConstructPixelList();
  EXPECT_EQ(list.GetPixels(), std::vector<UInt_t>({1, 2880}));
}

TEST(StnPixelListDeathTest, FewerBitsThanTheCountEndTheProcess) {
  TList2 list;
  list.Remove(20);
  EXPECT_EXIT((gSystem->ResetSignals(), list.GetPixel(0)), testing::ExitedWithCode(1),
              testing::Eq("FAT:TStnPixelList::ConstructPixelList() - "
                          "Size mismatch whilst constructing of internal PixelList !\n"
                          "FAT:Size= 0 vs. expected size= 4294967295\n"));
}

TEST(StnPixelListDeathTest, MoreBitsThanTheCountEndTheProcess) {
  TList2 list({10, 20});
  list.Remove(10);
  EXPECT_EXIT((gSystem->ResetSignals(), list.GetPixel(0)), testing::ExitedWithCode(1),
              testing::Eq("FAT:TStnPixelList::ConstructPixelList() - "
                          "Size mismatch whilst constructing of internal PixelList !\n"
                          "FAT:Size= 2 vs. expected size= 1\n"));
}

TEST_F(StnPixelListTest, SetsEveryStation) {
  TList2 list;
  for (UInt_t stn = 1; stn <= 5; ++stn) {
    list.SetStnNo(stn);
    EXPECT_EQ(list.GetStnNo(), stn);
  }
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnPixelListTest, RefusesStationsOutsideTheRange) {
  TList2 list;
  list.SetStnNo(0);
  list.SetStnNo(6);
  EXPECT_EQ(fLog.Take(),
            "WRN:TStnPixelList::SetStnNo(0) - StnNo is outside valid range 1 .. 5 !\n"
            "WRN:TStnPixelList::SetStnNo(6) - StnNo is outside valid range 1 .. 5 !\n");
  EXPECT_EQ(list.GetStnNo(), kStn);
}

TEST_F(StnPixelListTest, SetStnNoIsReportedAtPrintLevel1) {
  TList2 list;
  TStnEvent::fgPrintLevel = 1;
  list.SetStnNo(3);
  EXPECT_EQ(fLog.Take(), "INF:TStnPixelList::SetStnNo(3)\n");
}

TEST_F(StnPixelListTest, ClearTakesThePixelsOut) {
  TList2 list({3, 2880});
  list.Clear();
  EXPECT_EQ(list.GetNumPixels(), 0U);
  EXPECT_EQ(list.GetPixel(0), nullptr);
  EXPECT_FALSE(list.Test(2));
  EXPECT_FALSE(list.Test(2879));
}

TEST_F(StnPixelListTest, ClearKeepsTheStation) {
  TList2 list;
  list.Clear();
  EXPECT_EQ(list.GetStnNo(), kStn);
}

TEST_F(StnPixelListTest, ClearLeavesTheExpandedList) {
  TList2 list({3});
  list.At(0);
  list.Clear();
  list.Remove(20);
  EXPECT_EQ(list.GetNumPixels(), 4294967295U);
  EXPECT_EQ(list.At(0), 2883U);
}

TEST_F(StnPixelListTest, ClearedExpandedListTakesNewPixels) {
  TList2 list({3});
  list.At(0);
  list.Clear();
  list.Add(9);
  EXPECT_EQ(list.At(0), 2889U);
}

TEST_F(StnPixelListTest, AssignmentTakesThePixels) {
  const TList2 source({3, 2880});
  TList2 target({7});
  target = source;
  EXPECT_EQ(target.GetNumPixels(), 2U);
  EXPECT_EQ(target.At(0), 2883U);
  EXPECT_EQ(target.At(1), 5760U);
}

TEST_F(StnPixelListTest, AssignmentTakesTheExpandedListAlong) {
  TList2 source({3});
  source.At(0);
  TList2 target;
  target = source;
  TStnEvent::fgPrintLevel = 2;
  EXPECT_EQ(target.At(0), 2883U);
  EXPECT_EQ(fLog.Take(), "");
}

TEST_F(StnPixelListTest, AssignmentKeepsTheTargetsStation) {
  const TList2 source({3});
  TList2 target;
  target.SetStnNo(4);
  target = source;
  EXPECT_EQ(target.GetStnNo(), 4U);
}

TEST_F(StnPixelListTest, SelfAssignmentChangesNothing) {
  TList2 list({3});
  TList2& same = list;
  list = same;
  EXPECT_EQ(list.GetNumPixels(), 1U);
  EXPECT_EQ(list.At(0), 2883U);
}

TEST_F(StnPixelListTest, CopyHasThePixelsAndTheStation) {
  const TList2 source({3, 2880});
  TStnPixelList copy(source);
  EXPECT_EQ(copy.GetStnNo(), kStn);
  EXPECT_EQ(copy.GetNumPixels(), 2U);
  EXPECT_EQ(VdUtil::Vd::GetPixelNo(copy.GetPixel(1)), 5760U);
}

TEST_F(StnPixelListTest, CopyIsIndependentOfItsSource) {
  TList2 source({3});
  TList2 copy(source);
  source.Add(4);
  EXPECT_EQ(copy.GetNumPixels(), 1U);
  EXPECT_FALSE(copy.Test(3));
}

TEST_F(StnPixelListTest, ListIsEqualToItself) {
  const TList2 list({3});
  EXPECT_TRUE(list == list);
}

TEST_F(StnPixelListTest, ListsWithTheSameBitsAreEqual) {
  const TList2 a({3, 2880}), b({2880, 3});
  EXPECT_TRUE(a == b);
}

TEST_F(StnPixelListTest, ListsWithOtherBitsDiffer) {
  const TList2 a({3, 2880}), b({3});
  EXPECT_FALSE(a == b);
  EXPECT_FALSE(b == a);
}

TEST_F(StnPixelListTest, ListsThatDifferInTheirFirstWordDiffer) {
  const TList2 a({32}), b({31});
  EXPECT_FALSE(a == b);
}

TEST_F(StnPixelListTest, StationIsNotCompared) {
  TList2 a({3}), b({3});
  b.SetStnNo(5);
  EXPECT_TRUE(a == b);
}

TEST_F(StnPixelListTest, CountIsNotCompared) {
  TList2 a({3}), b({3});
  b.Remove(20);
  EXPECT_TRUE(a == b);
}

TEST_F(StnPixelListTest, ShowsAnEmptyList) {
  TList2 list;
  EXPECT_EQ(list.GetText(),
            "--- TStnPixelList ---\n"
            " Stn number      : 2\n"
            " Number of pixels: 0\n"
            " Streamer version: 0\n"
            " Class version   : 4\n"
            " Pixel numbers   : \n"
            "---------------------\n");
}

TEST_F(StnPixelListTest, ShowsTenPixelsOnALine) {
  TList2 list;
  list.SetStnNo(1);
  for (UInt_t n = 1; n <= 21; ++n)
    list.Add(n * 100, 1);
  EXPECT_EQ(list.GetText(),
            "--- TStnPixelList ---\n"
            " Stn number      : 1\n"
            " Number of pixels: 21\n"
            " Streamer version: 0\n"
            " Class version   : 4\n"
            " Pixel numbers   :    100   200   300   400   500   600   700   800   900  1000\n"
            "                     1100  1200  1300  1400  1500  1600  1700  1800  1900  2000\n"
            "                     2100\n"
            "---------------------\n");
}

TEST_F(StnPixelListTest, ShowStopsWhereAnOlderExpandedListEnds) {
  TList2 list({3});
  list.At(0);
  list.Remove(20);
  list.Remove(20);
  EXPECT_EQ(list.GetNumPixels(), 4294967295U);
  EXPECT_EQ(list.GetText(),
            "--- TStnPixelList ---\n"
            " Stn number      : 2\n"
            " Number of pixels: 4294967295\n"
            " Streamer version: 0\n"
            " Class version   : 4\n"
            " Pixel numbers   :   2883\n"
            "---------------------\n");
}

TEST_F(StnPixelListTest, ShowsToStandardOutputByDefault) {
  TList2 list;
  testing::internal::CaptureStdout();
  list.Show();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), list.GetText());
}

TEST_F(StnPixelListTest, IsRegisteredAsVersion4) { EXPECT_EQ(TClass::GetClass("TStnPixelList")->GetClassVersion(), 4); }

TEST_F(StnPixelListTest, DictionaryKnowsAllMembersButTheExpandedList) {
  std::vector<std::string> members;
  for (TObject* object : *TStnPixelList::Class()->GetListOfDataMembers()) {
    const auto* member = static_cast<TDataMember*>(object);
    if (!(member->Property() & kIsStatic)) members.push_back(std::string(member->GetName()) + ":" + member->GetTitle());
  }
  EXPECT_THAT(members,
              testing::ElementsAre("fStreamerVersion:! version read from file", "fStnNo:Stn number (0..3)",
                                   "fNPixels:number of pixels in list", "fPixelVectorSize:size of the pixel bit vector",
                                   "fPixelVector:[fPixelVectorSize]", "fPixelNumber:! pixel number to return"));
}

}  // namespace
