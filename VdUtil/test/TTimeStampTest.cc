#include <VdRoot/TTimeStamp.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <thread>
#include <type_traits>

#include <gtest/gtest.h>

#include <TBufferFile.h>
#include <TClass.h>
#include <TObject.h>
// ROOT's own header of the same name: both must work side by side.
#include <TTimeStamp.h>

using VdUtil::TimeConvert;

// Inside, the name means our class.
namespace VdRoot {

namespace {

constexpr Int_t kIntMax = std::numeric_limits<Int_t>::max();
constexpr Int_t kIntMin = std::numeric_limits<Int_t>::min();

void ExpectStamp(const TTimeStamp& stamp, Long64_t sec, Int_t nsec) {
  EXPECT_EQ(stamp.GetSec(), sec);
  EXPECT_EQ(stamp.GetNanoSec(), nsec);
}

// 2024-05-06 07:08:09 UTC
const time_t kMay = 1714979289;

}  // namespace

TEST(TTimeStamp, HoldsUnixSecondsAndNanoseconds) { ExpectStamp(TTimeStamp(kMay, 123), kMay, 123); }

TEST(TTimeStamp, StartsWithThePresentMoment) {
  const time_t before = time(nullptr);
  const TTimeStamp now;
  EXPECT_GE(now.GetSec(), before);
  EXPECT_LE(now.GetSec(), time(nullptr));
  EXPECT_LT(now.GetNanoSec(), 1000000000);
  EXPECT_GE(now.GetNanoSec(), 0);
}

TEST(TTimeStamp, TimePassesBetweenTwoStamps) {
  const TTimeStamp first;
  std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_TRUE(first < TTimeStamp());
}

TEST(TTimeStamp, AssignmentAndCopyTakeBothFields) {
  TTimeStamp stamp(1, 2);
  stamp = TTimeStamp(3, 4);
  ExpectStamp(stamp, 3, 4);
  ExpectStamp(TTimeStamp(stamp), 3, 4);
}

TEST(TTimeStamp, NormalizeCarriesSeconds) { ExpectStamp(TTimeStamp(timespec_t{10, 1000000050}), 11, 50); }

TEST(TTimeStamp, NormalizeKeepsWhatIsInRange) {
  ExpectStamp(TTimeStamp(10, 0), 10, 0);
  ExpectStamp(TTimeStamp(10, 999999999), 10, 999999999);
  ExpectStamp(TTimeStamp(10, 1000000000), 11, 0);
}

TEST(TTimeStamp, NormalizeBorrowsForNegativeNanoseconds) {
  ExpectStamp(TTimeStamp(10, -1), 9, 999999999);
  ExpectStamp(TTimeStamp(10, -1000000000), 9, 0);
  ExpectStamp(TTimeStamp(10, -1000000001), 8, 999999999);
}

TEST(TTimeStamp, NormalizeTakesTheExtremes) {
  ExpectStamp(TTimeStamp(0, kIntMax), 2, 147483647);
  ExpectStamp(TTimeStamp(0, kIntMin), -3, 852516352);
  ExpectStamp(TTimeStamp(kIntMax, 1000000000), kIntMin, 0);
  ExpectStamp(TTimeStamp(kIntMin, -1), kIntMax, 999999999);
}

TEST(TTimeStamp, TakesTheLow32BitsOfBothNumbers) {
  ExpectStamp(TTimeStamp(timespec_t{(1L << 32) + 5, (1L << 32) + 6}), 5, 6);
  ExpectStamp(TTimeStamp(time_t{0xFFFFFFFF}, 0), -1, 0);
}

TEST(TTimeStamp, FromGPSHandsTheNanosecondsOn) {
  const timespec_t ts = TTimeStamp::FromGPS(0, 4294967295u);
  EXPECT_EQ(ts.tv_sec, 315964800);
  EXPECT_EQ(ts.tv_nsec, 4294967295);
  EXPECT_EQ(TTimeStamp::FromGPS(0, 1000000000u).tv_nsec, 1000000000);
}

TEST(TTimeStamp, FromGPSWithAWrappedNegativeBorrowsASecond) {
  const TTimeStamp stamp(TTimeStamp::FromGPS(1000000000, static_cast<UInt_t>(-50)));
  EXPECT_EQ(stamp.GetGPSSec(), 999999999);
  EXPECT_EQ(stamp.GetNanoSec(), 999999950);
}

TEST(TTimeStamp, AnswersTheGPSSecondItWasMadeFrom) {
  for (UInt_t sec : {0u, 1u, 46828799u, 46828801u, 1167264016u, 1167264018u, 1400000000u, 2000000000u, 3979002495u,
                     3979002496u, 4294967295u})
    EXPECT_EQ(TTimeStamp(TTimeStamp::FromGPS(sec, 7)).GetGPSSec(), sec);
}

TEST(TTimeStamp, OfAnInsertedLeapSecondAnswersTheNextGPSSecond) {
  EXPECT_EQ(TTimeStamp(TTimeStamp::FromGPS(1167264017, 0)).GetGPSSec(), 1167264018);
}

TEST(TTimeStamp, ZeroStampHasGPSSecondZero) {
  const TTimeStamp zero(TimeConvert::GetUnixTimeFromGPSTime(0), 0);
  EXPECT_EQ(zero.GetGPSSec(), 0);
  EXPECT_EQ(zero.GetSec(), 315964800);
}

TEST(TTimeStamp, UnixZeroIsAnotherStampThanTheZeroStamp) {
  EXPECT_EQ(TTimeStamp(0, 0).GetGPSSec(), 4294967296 - 315964800);
}

TEST(TTimeStamp, GPSSecondOfTheLatestStamp) {
  EXPECT_EQ(TTimeStamp(0x7fffffff, 0).GetGPSSec(), 2147483647 - 315964800 + 18);
}

TEST(TTimeStamp, ComparesSecondsFirst) {
  EXPECT_TRUE(TTimeStamp(1, 9) < TTimeStamp(2, 0));
  EXPECT_FALSE(TTimeStamp(2, 0) < TTimeStamp(1, 9));
}

TEST(TTimeStamp, ComparesNanosecondsOfTheSameSecond) {
  EXPECT_TRUE(TTimeStamp(1, 1) < TTimeStamp(1, 2));
  EXPECT_FALSE(TTimeStamp(1, 2) < TTimeStamp(1, 1));
  EXPECT_FALSE(TTimeStamp(1, 1) < TTimeStamp(1, 1));
}

TEST(TTimeStamp, NegativeSecondsComeFirst) { EXPECT_TRUE(TTimeStamp(-1, 0) < TTimeStamp(0, 0)); }

TEST(TTimeStamp, ShowsDateAndTimeWithNanosecondsInUTC) {
  EXPECT_STREQ(TTimeStamp(kMay, 123456789).AsString(""), "2024-05-06 07:08:09.123456789 UTC");
  EXPECT_STREQ(TTimeStamp(kMay, 7).AsString(), "2024-05-06 07:08:09.000000007 UTC");
  EXPECT_STREQ(TTimeStamp(-1, 0).AsString(""), "1969-12-31 23:59:59.000000000 UTC");
}

TEST(TTimeStamp, TimeZoneOfTheProcessDoesNotMatter) {
  setenv("TZ", "America/Argentina/Mendoza", 1);
  tzset();
  EXPECT_STREQ(TTimeStamp(kMay, 0).AsString(""), "2024-05-06 07:08:09.000000000 UTC");
  unsetenv("TZ");
  tzset();
}

TEST(TTimeStamp, ShowsOtherFormsOnRequest) {
  const TTimeStamp stamp(kMay, 123456789);
  EXPECT_STREQ(stamp.AsString("s"), "2024-05-06 07:08:09 UTC");
  EXPECT_STREQ(stamp.AsString("i"), "2024-05-06T07:08:09.123456789Z");
  EXPECT_STREQ(stamp.AsString("iso"), "2024-05-06T07:08:09.123456789Z");
  EXPECT_STREQ(stamp.AsString("g"), "1399014507.123456789");
}

TEST(TTimeStamp, UnknownAndNullOptionsCountAsNone) {
  const TTimeStamp stamp(kMay, 123456789);
  EXPECT_STREQ(stamp.AsString("x"), "2024-05-06 07:08:09.123456789 UTC");
  EXPECT_STREQ(stamp.AsString(nullptr), "2024-05-06 07:08:09.123456789 UTC");
}

TEST(TTimeStamp, TextHoldsUntilTheNextCallOfTheSameThread) {
  const char* text = TTimeStamp(kMay, 0).AsString("s");
  std::thread([] { TTimeStamp(0, 0).AsString("s"); }).join();
  EXPECT_STREQ(text, "2024-05-06 07:08:09 UTC");
}

TEST(TTimeStamp, TakesFourteenBytesOnFile) {
  TBufferFile buffer(TBuffer::kWrite);
  TTimeStamp stamp(kMay, 123456789);
  stamp.Streamer(buffer);
  EXPECT_EQ(buffer.Length(), 14);
}

TEST(TTimeStamp, OnFileIsROOTsFrameAndTwoBigEndianIntegers) {
  TBufferFile buffer(TBuffer::kWrite);
  TTimeStamp stamp(0x01020304, 0x05060708);
  stamp.Streamer(buffer);
  const unsigned char kBytes[] = {0x40, 0, 0, 10, 0, 1, 1, 2, 3, 4, 5, 6, 7, 8};
  EXPECT_EQ(std::memcmp(buffer.Buffer(), kBytes, sizeof(kBytes)), 0);
}

TEST(TTimeStamp, ReadsWhatItWrote) {
  TBufferFile buffer(TBuffer::kWrite);
  TTimeStamp stamp(-5, 999999999), read;
  stamp.Streamer(buffer);
  buffer.SetReadMode();
  buffer.SetBufferOffset(0);
  read.Streamer(buffer);
  ExpectStamp(read, -5, 999999999);
}

TEST(TTimeStamp, StampsOfAnArrayFollowOneAnother) {
  TBufferFile buffer(TBuffer::kWrite);
  TTimeStamp stamps[2] = {TTimeStamp(1, 2), TTimeStamp(3, 4)};
  for (auto& stamp : stamps)
    stamp.Streamer(buffer);
  EXPECT_EQ(buffer.Length(), 28);
}

TEST(TTimeStamp, HasItsDictionary) {
  TClass* cl = TClass::GetClass("VdRoot::TTimeStamp");
  ASSERT_TRUE(cl);
  EXPECT_TRUE(cl->HasDictionary());
  EXPECT_EQ(cl->GetClassVersion(), 1);
  EXPECT_EQ(cl->Size(), static_cast<Int_t>(sizeof(TTimeStamp)));
  EXPECT_FALSE(cl->IsTObject());
  EXPECT_TRUE(std::has_virtual_destructor<TTimeStamp>::value);
  EXPECT_FALSE((std::is_base_of<TObject, TTimeStamp>::value));
}

TEST(TTimeStamp, IsMadeByROOT) {
  TClass* cl = TTimeStamp::Class();
  void* made = cl->New();
  ASSERT_TRUE(made);
  EXPECT_GT(static_cast<TTimeStamp*>(made)->GetSec(), kMay);
  cl->Destructor(made);
}

TEST(TTimeStamp, StandsBesideROOTsClassOfThisName) {
  const ::TTimeStamp root(kMay, 5);
  ExpectStamp(TTimeStamp(root.GetTimeSpec()), kMay, 5);
}

}  // namespace VdRoot
