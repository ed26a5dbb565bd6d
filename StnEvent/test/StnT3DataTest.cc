#include <StnEvent/StnT3Data.h>

#include <TBufferFile.h>
#include <TClass.h>
#include <TVirtualStreamerInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

TStnT3Data Example() {
  TStnT3Data data;
  data.SetNPixels(12);
  data.SetSDPTheta(1.5);
  data.SetSDPPhi(-0.25);
  data.SetAzimuthAtGround(0.125);
  data.SetTimeAtGround(345);
  data.SetTotalSignal(5);
  return data;
}

void ExpectExample(const TStnT3Data& data) {
  EXPECT_EQ(data.GetNPixels(), 12U);
  EXPECT_EQ(data.GetSDPTheta(), 1.5F);
  EXPECT_EQ(data.GetSDPPhi(), -0.25F);
  EXPECT_EQ(data.GetAzimuthAtGround(), 0.125F);
  EXPECT_EQ(data.GetTimeAtGround(), 345);
  EXPECT_EQ(data.GetTotalSignal(), 5.0F);
}

void ExpectReset(const TStnT3Data& data) {
  EXPECT_EQ(data.GetNPixels(), 0U);
  EXPECT_EQ(data.GetSDPTheta(), 9999.0F);
  EXPECT_EQ(data.GetSDPPhi(), 9999.0F);
  EXPECT_EQ(data.GetAzimuthAtGround(), 9999.0F);
  EXPECT_EQ(data.GetTimeAtGround(), 9999);
}

TEST(StnT3DataTest, NewRecordIsReset) { ExpectReset(TStnT3Data()); }

TEST(StnT3DataTest, NewRecordHasATotalSignalOfZero) { EXPECT_EQ(TStnT3Data().GetTotalSignal(), 0.0F); }

TEST(StnT3DataTest, SettersStore) { ExpectExample(Example()); }

TEST(StnT3DataTest, ResetLeavesOnlyTheTotalSignal) {
  TStnT3Data data = Example();
  data.Reset();
  ExpectReset(data);
  EXPECT_EQ(data.GetTotalSignal(), 5.0F);
}

TEST(StnT3DataTest, NegativeNumberOfPixelsReadsAsALargeOne) {
  TStnT3Data data;
  data.SetNPixels(-1);
  EXPECT_EQ(data.GetNPixels(), 4294967295U);
}

TEST(StnT3DataTest, TimeAboveTheSignedRangeReadsAsNegative) {
  TStnT3Data data;
  data.SetTimeAtGround(4294967295U);
  EXPECT_EQ(data.GetTimeAtGround(), -1);
}

TEST(StnT3DataTest, CopyAndAssignmentTakeAllValues) {
  const TStnT3Data source = Example();
  const TStnT3Data copy(source);
  TStnT3Data target;
  target = source;
  ExpectExample(copy);
  ExpectExample(target);
}

TEST(StnT3DataTest, ShowsAllButTheTotalSignal) {
  std::ostringstream text;
  Example().Show(text);
  EXPECT_EQ(text.str(),
            "--- TStnT3Data ---\n"
            " NPixels=        12\n"
            " SDP-Theta=      1.5 [rad]\n"
            " SDP-PHI=        -0.25 [rad]\n"
            " AZ-at-Ground=   0.125 [rad]\n"
            " Time-at-Ground= 345 [nsec]\n"
            "------------------\n");
}

TEST(StnT3DataTest, ShowsToStandardOutputByDefault) {
  std::ostringstream text;
  Example().Show(text);
  testing::internal::CaptureStdout();
  Example().Show();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), text.str());
}

TEST(StnT3DataTest, ReadsBackWhatItWrote) {
  TStnT3Data source = Example(), target;
  TBufferFile b(TBuffer::kWrite);
  source.Streamer(b);
  EXPECT_EQ(b.Length(), 6 + 10 + 24);
  b.SetReadMode();
  b.SetBufferOffset(0);
  target.Streamer(b);
  ExpectExample(target);
}

TEST(StnT3DataTest, IsRegisteredAsVersion3) { EXPECT_EQ(TClass::GetClass("TStnT3Data")->GetClassVersion(), 3); }

TEST(StnT3DataTest, DescriptionHasSixValues) {
  std::vector<std::string> names;
  for (TObject* element : *TStnT3Data::Class()->GetStreamerInfo()->GetElements())
    names.push_back(element->GetName());
  EXPECT_THAT(names, testing::ElementsAre("TObject", "fNPixels", "fSDPTheta", "fSDPPhi", "fAzimuthAtGround",
                                          "fTimeAtGround", "fTotalSignal"));
}

}  // namespace
