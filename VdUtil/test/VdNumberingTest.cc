#include <VdUtil/VdNumbering.h>

#include <cstring>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

using VdUtil::Vd;

namespace {

_PixelNumber MakePixel(unsigned int stn, unsigned int mirror, unsigned int pixel_no) {
  _PixelNumber pixel;
  pixel.fPixelNumber = 0;
  pixel.fBits.fStnNo = stn;
  pixel.fBits.fMirrorNo = mirror;
  pixel.fBits.fPixelNo = pixel_no;
  return pixel;
}

_VdPixelNumber MakeVdPixel(unsigned int pixel_no) {
  _VdPixelNumber pixel;
  Vd::SetPixelNo(&pixel, pixel_no);
  return pixel;
}

_MirrorNumber MakeMirror(unsigned int stn, unsigned int mirror) {
  _MirrorNumber number;
  number.fMirrorNumber = -1;
  Vd::SetStnNo(&number, stn);
  Vd::SetMirrorNo(&number, mirror);
  return number;
}

template <class Function>
void ForEachPixel(Function function) {
  for (unsigned int stn = 1; stn <= 5; ++stn)
    for (unsigned int mirror = 1; mirror <= 6; ++mirror)
      for (unsigned int pixel = 1; pixel <= 480; ++pixel)
        function(stn, mirror, pixel);
}

}  // namespace

TEST(VdNumbering, FieldsHaveTheirWidths) {
  Vd::_PixelNumber pixel;
  pixel.fPixelNumber = -1;
  EXPECT_EQ(pixel.fBits.fPixelNo, 511U);
  EXPECT_EQ(pixel.fBits.fMirrorNo, 7U);
  EXPECT_EQ(pixel.fBits.fStnNo, 7U);
  EXPECT_EQ(pixel.fBits.fTrigger, 1U);
  Vd::_VdPixelNumber vd_pixel;
  std::memset(static_cast<void*>(&vd_pixel), 0xFF, sizeof(vd_pixel));
  EXPECT_EQ(vd_pixel.fBits.fPixelNo, 16383U);
  EXPECT_EQ(vd_pixel.fBits.fBit0, 1U);
  EXPECT_EQ(vd_pixel.fBits.fBit1, 1U);
  Vd::_MirrorNumber mirror;
  mirror.fMirrorNumber = -1;
  EXPECT_EQ(mirror.fBits.fMirrorNo, 31U);
  EXPECT_EQ(mirror.fBits.fStnNo, 7U);
}

TEST(VdNumbering, HasTheConstantsOfTheInstrument) {
  EXPECT_EQ(Vd::kVD_FIRST_STN, 1u);
  EXPECT_EQ(Vd::kVD_LAST_STN, 5u);
  EXPECT_EQ(Vd::kSTN_NMIRRORS, 6u);
  EXPECT_EQ(Vd::kMI_NEXTPIXELS, 480u);
  EXPECT_EQ(Vd::kSTN_NEXTPIXELS, 2880u);
  EXPECT_EQ(Vd::kMI_NSLT_BINS, 100u);
  EXPECT_EQ(Vd::kMI_NCOLUMNS * Vd::kMI_NROWS, Vd::kMI_NEXTPIXELS);
}

TEST(VdNumbering, RecordsTakeFourBytes) {
  EXPECT_EQ(sizeof(_PixelNumber), 4u);
  EXPECT_EQ(sizeof(_VdPixelNumber), 4u);
  EXPECT_EQ(sizeof(_MirrorNumber), 4u);
}

TEST(VdNumbering, RecordsHaveTheirWholeNumbersAsPlainIntegers) {
  EXPECT_TRUE((std::is_same<decltype(_PixelNumber::fPixelNumber), int>::value));
  EXPECT_TRUE((std::is_same<decltype(_VdPixelNumber::fPixelNumber), short>::value));
  EXPECT_TRUE((std::is_same<decltype(_MirrorNumber::fMirrorNumber), short>::value));
}

TEST(VdNumbering, GlobalNamesAreThoseOfTheClass) {
  EXPECT_TRUE((std::is_same<_PixelNumber, Vd::_PixelNumber>::value));
  EXPECT_TRUE((std::is_same<_VdPixelNumber, Vd::_VdPixelNumber>::value));
  EXPECT_TRUE((std::is_same<_MirrorNumber, Vd::_MirrorNumber>::value));
  EXPECT_TRUE((std::is_same<VdPixelNumberRec, Vd::_VdPixelNumber>::value));
  EXPECT_TRUE((std::is_same<VdPixelNumber, Vd::_VdPixelNumber*>::value));
  EXPECT_TRUE((std::is_same<PixelNumber, Vd::_PixelNumber*>::value));
}

TEST(PixelNumber, LaysItsFieldsOutFromTheLowestBit) {
  _PixelNumber pixel = MakePixel(5, 3, 0x101);
  EXPECT_EQ(pixel.fPixelNumber, 0x5000 | 0x0600 | 0x101);
  pixel.fBits.fTrigger = 1;
  EXPECT_EQ(pixel.fPixelNumber, 0x8000 | 0x5000 | 0x0600 | 0x101);
}

TEST(PixelNumber, GetPixelNoTakesTheLowNineBits) {
  _PixelNumber pixel;
  pixel.fPixelNumber = -1;
  EXPECT_EQ(Vd::GetPixelNo(&pixel), 0x1FFu);
}

TEST(PixelNumber, GetsItsFields) {
  const _PixelNumber pixel = MakePixel(4, 6, 480);
  EXPECT_EQ(Vd::GetPixelNo(&pixel), 480u);
  EXPECT_EQ(Vd::GetMirrorNo(&pixel), 6u);
  EXPECT_EQ(Vd::GetStnNo(&pixel), 4u);
}

TEST(PixelNumber, StampingRewritesBitsNineToFourteenAlone) {
  _PixelNumber pixel;
  pixel.fPixelNumber = -1;
  Vd::SetStnNo(&pixel, 2);
  Vd::SetMirrorNo(&pixel, 1);
  EXPECT_EQ(pixel.fPixelNumber, static_cast<int>(0xFFFF0000u | 0x8000 | 0x2000 | 0x0200 | 0x1FF));
}

TEST(PixelNumber, StampingKeepsClearBitsClear) {
  _PixelNumber pixel = MakePixel(0, 0, 0);
  Vd::SetStnNo(&pixel, 7);
  Vd::SetMirrorNo(&pixel, 7);
  EXPECT_EQ(pixel.fPixelNumber, 0x7E00);
}

TEST(PixelNumber, SettersTakeTheirValuesModuloTheWidth) {
  _PixelNumber pixel = MakePixel(0, 0, 0);
  Vd::SetMirrorNo(&pixel, 9);
  Vd::SetStnNo(&pixel, 10);
  Vd::SetPixelNo(&pixel, 512 + 3);
  EXPECT_EQ(pixel.fPixelNumber, MakePixel(2, 1, 3).fPixelNumber);
}

TEST(VdPixelNumber, LaysItsFieldsOutFromTheLowestBit) {
  _VdPixelNumber pixel;
  pixel.fBits.fPixelNo = 0x2001;
  EXPECT_EQ(pixel.fPixelNumber, 0x2001);
  pixel.fBits.fBit0 = 1;
  EXPECT_EQ(pixel.fPixelNumber, 0x6001);
  pixel.fBits.fBit1 = 1;
  EXPECT_EQ(static_cast<unsigned short>(pixel.fPixelNumber), 0xE001);
}

TEST(VdPixelNumber, StartsWithZero) { EXPECT_EQ(_VdPixelNumber().fPixelNumber, 0); }

TEST(VdPixelNumber, CopiesSixteenBitsAndLeavesTheRestOfTheTarget) {
  const short kSource[] = {0x1234, 0x77};
  short words[] = {0, 0x55};
  _VdPixelNumber target, source;
  std::memcpy(static_cast<void*>(&target), words, sizeof(target));
  std::memcpy(static_cast<void*>(&source), kSource, sizeof(source));
  target = source;
  std::memcpy(words, &target, sizeof(target));
  EXPECT_EQ(words[0], 0x1234);
  EXPECT_EQ(words[1], 0x55);
}

TEST(VdPixelNumber, CopyConstructorTakesTheNumber) {
  const _VdPixelNumber source = MakeVdPixel(0x1234);
  EXPECT_EQ(_VdPixelNumber(source).fPixelNumber, 0x1234);
  // The compiler's own would take all four bytes.
  EXPECT_FALSE(std::is_trivially_copy_constructible<_VdPixelNumber>::value);
}

TEST(VdPixelNumber, IsMadeFromAPixelAsTheConversionMakesIt) {
  _PixelNumber pixel = MakePixel(3, 2, 100);
  EXPECT_EQ(_VdPixelNumber(pixel).fPixelNumber, Vd::GetVdPixelNumber(&pixel)->fPixelNumber);
  EXPECT_EQ(_VdPixelNumber(&pixel).fPixelNumber, 2 * 2880 + 480 + 100);
}

TEST(VdPixelNumber, IsZeroFromANullPointer) {
  PixelNumber none = nullptr;
  EXPECT_EQ(_VdPixelNumber(none).fPixelNumber, 0);
}

TEST(VdPixelNumber, SetPixelNoKeepsTheSpareFlags) {
  _VdPixelNumber pixel;
  pixel.fPixelNumber = -1;
  Vd::SetPixelNo(&pixel, 0);
  EXPECT_EQ(static_cast<unsigned short>(pixel.fPixelNumber), 0xC000);
  EXPECT_EQ(Vd::GetPixelNo(&pixel), 0u);
}

TEST(VdPixelNumber, SetPixelNoKeepsTheLowFourteenBitsOfItsValue) {
  EXPECT_EQ(MakeVdPixel(16384 + 5).fPixelNumber, 5);
  EXPECT_EQ(MakeVdPixel(0xFFFFFFFF).fPixelNumber, 0x3FFF);
}

TEST(VdPixelNumber, StationChangesAfterPixel2880) {
  const _VdPixelNumber last = MakeVdPixel(2880), first = MakeVdPixel(2881), end = MakeVdPixel(14400);
  EXPECT_EQ(Vd::GetStnNo(&last), 1u);
  EXPECT_EQ(Vd::GetStnNo(&first), 2u);
  EXPECT_EQ(Vd::GetStnNo(&end), 5u);
}

TEST(VdPixelNumber, StationOfPixelZeroWraps) {
  const _VdPixelNumber none;
  EXPECT_EQ(Vd::GetStnNo(&none), 0xFFFFFFFFu / 2880 + 1);
}

TEST(VdPixelNumber, SpareFlagsDontCount) {
  _VdPixelNumber pixel = MakeVdPixel(2881);
  pixel.fBits.fBit0 = pixel.fBits.fBit1 = 1;
  EXPECT_EQ(Vd::GetPixelNo(&pixel), 2881u);
  EXPECT_EQ(Vd::GetStnNo(&pixel), 2u);
  EXPECT_EQ(Vd::GetStnPixelNo(&pixel), 1u);
}

TEST(VdPixelNumber, EveryPixelConvertsAndComesBack) {
  ForEachPixel([](unsigned int stn, unsigned int mirror, unsigned int pixel_no) {
    const _PixelNumber pixel = MakePixel(stn, mirror, pixel_no);
    const _VdPixelNumber vd = *Vd::GetVdPixelNumber(&pixel);
    ASSERT_EQ(Vd::GetPixelNo(&vd), (stn - 1) * 2880 + (mirror - 1) * 480 + pixel_no);
    ASSERT_EQ(Vd::GetPixelNumber(&vd)->fPixelNumber, pixel.fPixelNumber);
  });
}

TEST(VdPixelNumber, EveryPixelHasItsPlace) {
  ForEachPixel([](unsigned int stn, unsigned int mirror, unsigned int pixel_no) {
    const unsigned int stn_pixel = (mirror - 1) * 480 + pixel_no;
    const _VdPixelNumber vd = MakeVdPixel((stn - 1) * 2880 + stn_pixel);
    const _PixelNumber pixel = MakePixel(0, mirror, pixel_no);
    ASSERT_EQ(Vd::GetStnPixelNo(&pixel), stn_pixel);
    ASSERT_EQ(Vd::GetStnPixelNo(&vd), stn_pixel);
    ASSERT_EQ(Vd::GetStnNo(&vd), stn);
    ASSERT_EQ(Vd::GetStnMirrorNo(&vd), mirror);
    ASSERT_EQ(Vd::GetMirrorNo(&vd), mirror);
    ASSERT_EQ(Vd::GetMirrorPixelNo(&vd), pixel_no);
  });
}

TEST(VdPixelNumber, ConversionDropsTheTriggerFlag) {
  _PixelNumber pixel = MakePixel(1, 1, 1);
  pixel.fBits.fTrigger = 1;
  EXPECT_EQ(Vd::GetVdPixelNumber(&pixel)->fPixelNumber, 1);
}

TEST(VdPixelNumber, ZeroConvertsToZeroBothWays) {
  const _PixelNumber pixel = MakePixel(0, 0, 0);
  const _VdPixelNumber vd;
  EXPECT_EQ(Vd::GetVdPixelNumber(&pixel)->fPixelNumber, 0);
  EXPECT_EQ(Vd::GetPixelNumber(&vd)->fPixelNumber, 0);
}

TEST(VdPixelNumber, IllegalPixelsConvertToZero) {
  const unsigned int kIllegal[][3] = {{0, 1, 1}, {6, 1, 1}, {1, 0, 1}, {1, 7, 1}, {1, 1, 0}, {1, 1, 481}};
  for (const auto& numbers : kIllegal) {
    const _PixelNumber pixel = MakePixel(numbers[0], numbers[1], numbers[2]);
    EXPECT_EQ(Vd::GetVdPixelNumber(&pixel)->fPixelNumber, 0) << numbers[0] << numbers[1] << numbers[2];
  }
}

TEST(VdPixelNumber, NumbersAboveTheInstallationCountAsNone) {
  const _VdPixelNumber pixel = MakeVdPixel(14401);
  EXPECT_EQ(Vd::GetStnPixelNo(&pixel), 0u);
  EXPECT_EQ(Vd::GetStnMirrorNo(&pixel), 0u);
  EXPECT_EQ(Vd::GetMirrorNo(&pixel), 0u);
  EXPECT_EQ(Vd::GetMirrorPixelNo(&pixel), 0u);
  EXPECT_EQ(Vd::GetPixelNumber(&pixel)->fPixelNumber, 0);
}

TEST(VdPixelNumber, NullAnswersZero) {
  const VdPixelNumber none = nullptr;
  EXPECT_EQ(Vd::GetPixelNo(none), 0u);
  EXPECT_EQ(Vd::GetStnNo(none), 0u);
  EXPECT_EQ(Vd::GetStnPixelNo(none), 0u);
  EXPECT_EQ(Vd::GetStnMirrorNo(none), 0u);
  EXPECT_EQ(Vd::GetMirrorNo(none), 0u);
  EXPECT_EQ(Vd::GetMirrorPixelNo(none), 0u);
  EXPECT_EQ(Vd::GetPixelNumber(none)->fPixelNumber, 0);
}

TEST(PixelNumber, NullAnswersZero) {
  const PixelNumber none = nullptr;
  EXPECT_EQ(Vd::GetPixelNo(none), 0u);
  EXPECT_EQ(Vd::GetMirrorNo(none), 0u);
  EXPECT_EQ(Vd::GetStnNo(none), 0u);
  EXPECT_EQ(Vd::GetStnPixelNo(none), 0u);
  EXPECT_EQ(Vd::GetColumnNo(none), 0u);
  EXPECT_EQ(Vd::GetRowNo(none), 0u);
  EXPECT_EQ(Vd::GetVdPixelNumber(none)->fPixelNumber, 0);
}

TEST(MirrorNumber, NullAnswersZero) {
  const _MirrorNumber* none = nullptr;
  EXPECT_EQ(Vd::GetStnNo(none), 0u);
  EXPECT_EQ(Vd::GetMirrorNo(none), 0u);
  EXPECT_EQ(Vd::GetVdMirrorNo(none), 0u);
}

TEST(VdNumbering, SettersIgnoreNull) {
  Vd::SetStnNo(static_cast<PixelNumber>(nullptr), 1);
  Vd::SetMirrorNo(static_cast<PixelNumber>(nullptr), 1);
  Vd::SetPixelNo(static_cast<PixelNumber>(nullptr), 1);
  Vd::SetPixelNo(static_cast<VdPixelNumber>(nullptr), 1);
  Vd::SetStnNo(static_cast<VdPixelNumber>(nullptr), 1);
  Vd::SetStnNo(static_cast<_MirrorNumber*>(nullptr), 1);
  Vd::SetMirrorNo(static_cast<_MirrorNumber*>(nullptr), 1);
}

TEST(VdPixelNumber, SetStnNoKeepsStationPixelAndFlags) {
  _VdPixelNumber pixel = MakeVdPixel(2880 + 2880);
  pixel.fBits.fBit1 = 1;
  Vd::SetStnNo(&pixel, 5);
  EXPECT_EQ(Vd::GetPixelNo(&pixel), 14400u);
  EXPECT_EQ(pixel.fBits.fBit1, 1u);
  Vd::SetStnNo(&pixel, 1);
  EXPECT_EQ(Vd::GetPixelNo(&pixel), 2880u);
}

TEST(VdPixelNumber, SetStnNoMakesNoPixelOfAnIllegalStation) {
  for (unsigned int stn : {0u, 6u, 0xFFFFFFFFu}) {
    _VdPixelNumber pixel = MakeVdPixel(17);
    Vd::SetStnNo(&pixel, stn);
    EXPECT_EQ(Vd::GetPixelNo(&pixel), 0u) << stn;
  }
}

TEST(VdPixelNumber, SetStnNoLeavesPixelZero) {
  _VdPixelNumber pixel;
  Vd::SetStnNo(&pixel, 3);
  EXPECT_EQ(pixel.fPixelNumber, 0);
}

TEST(Camera, RunsDownItsColumns) {
  const unsigned int kPlaces[][3] = {{1, 1, 1}, {24, 1, 24}, {25, 2, 1}, {457, 20, 1}, {480, 20, 24}};
  for (const auto& place : kPlaces) {
    const _PixelNumber pixel = MakePixel(1, 1, place[0]);
    EXPECT_EQ(Vd::GetColumnNo(&pixel), place[1]);
    EXPECT_EQ(Vd::GetRowNo(&pixel), place[2]);
  }
}

TEST(Camera, HasNoPlaceForAnIllegalPixel) {
  for (unsigned int pixel_no : {0u, 481u}) {
    const _PixelNumber pixel = MakePixel(1, 1, pixel_no);
    EXPECT_EQ(Vd::GetColumnNo(&pixel), 0u);
    EXPECT_EQ(Vd::GetRowNo(&pixel), 0u);
  }
}

TEST(MirrorNumber, LaysItsFieldsOutFromTheLowestBit) {
  _MirrorNumber number = MakeMirror(5, 6);
  EXPECT_EQ(number.fMirrorNumber, 5 << 5 | 30);
  EXPECT_EQ(number.fBits.fStnNo, 5u);
  EXPECT_EQ(number.fBits.fMirrorNo, 30u);
}

TEST(MirrorNumber, MadeOfStationAndMirrorGivesBoth) {
  for (unsigned int stn = 1; stn <= 5; ++stn)
    for (unsigned int mirror = 1; mirror <= 6; ++mirror) {
      const _MirrorNumber number = MakeMirror(stn, mirror);
      EXPECT_EQ(Vd::GetStnNo(&number), stn);
      EXPECT_EQ(Vd::GetMirrorNo(&number), mirror);
      EXPECT_EQ(Vd::GetVdMirrorNo(&number), (stn - 1) * 6 + mirror);
      EXPECT_EQ(Vd::GetVdMirrorNo(stn, mirror), (stn - 1) * 6 + mirror);
    }
}

TEST(MirrorNumber, NumbersSevenAndTwelveAreOfStationTwo) {
  EXPECT_EQ(Vd::GetVdMirrorNo(2, 1), 7u);
  EXPECT_EQ(Vd::GetVdMirrorNo(2, 6), 12u);
}

TEST(MirrorNumber, OneStationServesSeveralMirrors) {
  _MirrorNumber number = MakeMirror(2, 1);
  Vd::SetMirrorNo(&number, 6);
  EXPECT_EQ(Vd::GetVdMirrorNo(&number), 12u);
}

TEST(MirrorNumber, MirrorOfAnEmptyRecordWraps) {
  _MirrorNumber number;
  number.fMirrorNumber = 0;
  EXPECT_EQ(Vd::GetMirrorNo(&number), 0xFFFFFFFFu % 6 + 1);
}

TEST(MirrorNumber, OnlyTheFirstByteCounts) {
  _MirrorNumber number = MakeMirror(3, 4);
  number.fMirrorNumber |= static_cast<short>(0xFF00);
  EXPECT_EQ(Vd::GetStnNo(&number), 3u);
  EXPECT_EQ(Vd::GetMirrorNo(&number), 4u);
  EXPECT_EQ(Vd::GetVdMirrorNo(&number), 16u);
}

TEST(MirrorNumber, IllegalStationOrMirrorLeavesNone) {
  EXPECT_EQ(MakeMirror(0, 1).fMirrorNumber, 0);
  EXPECT_EQ(MakeMirror(9, 1).fMirrorNumber, 0);
  EXPECT_EQ(MakeMirror(1, 7).fMirrorNumber, 1 << 5);
  EXPECT_EQ(MakeMirror(1, 0).fMirrorNumber, 1 << 5);
  EXPECT_EQ(Vd::GetVdMirrorNo(0, 1), 0u);
  EXPECT_EQ(Vd::GetVdMirrorNo(6, 1), 0u);
  EXPECT_EQ(Vd::GetVdMirrorNo(1, 7), 0u);
}

TEST(MirrorNumber, LastMirrorOfAStation) {
  for (unsigned int stn = 1; stn <= 4; ++stn)
    EXPECT_EQ(Vd::GetStnLastMirrorNo(stn), 6u);
  EXPECT_EQ(Vd::GetStnLastMirrorNo(5), 3u);
  EXPECT_EQ(Vd::GetStnLastMirrorNo(0), 0u);
  EXPECT_EQ(Vd::GetStnLastMirrorNo(6), 0u);
}

TEST(VdPixelNumber, ThreadsConvertIntoRecordsOfTheirOwn) {
  const _PixelNumber mine = MakePixel(1, 1, 7), other = MakePixel(5, 6, 480);
  _VdPixelNumber* vd = Vd::GetVdPixelNumber(&mine);
  _PixelNumber* back = Vd::GetPixelNumber(vd);
  std::thread([&] { Vd::GetPixelNumber(Vd::GetVdPixelNumber(&other)); }).join();
  EXPECT_EQ(vd->fPixelNumber, 7);
  EXPECT_EQ(back->fPixelNumber, mine.fPixelNumber);
}

TEST(VdPixelNumber, ThreadsDontDisturbEachOther) {
  std::vector<std::thread> threads;
  int n_wrong[4] = {};
  for (unsigned int i = 0; i < 4; ++i)
    threads.emplace_back([i, &n_wrong] {
      for (unsigned int n = 0; n < 20000; ++n) {
        const _PixelNumber pixel = MakePixel(i + 1, i + 2, n % 480 + 1);
        n_wrong[i] += Vd::GetPixelNumber(Vd::GetVdPixelNumber(&pixel))->fPixelNumber != pixel.fPixelNumber;
      }
    });
  for (auto& thread : threads)
    thread.join();
  EXPECT_EQ(n_wrong[0] + n_wrong[1] + n_wrong[2] + n_wrong[3], 0);
}
