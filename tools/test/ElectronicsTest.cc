#include "Electronics.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using StnTools::Electronics;
using StnTools::Random;

const auto k1000 = TFADCData::kFADC_RESOLUTION_1000_BINS;
const auto k2000 = TFADCData::kFADC_RESOLUTION_2000_BINS;

class ElectronicsTest : public testing::Test {
 protected:
  bool Digitise(const std::vector<float>& light, TFADCData::FADCTraceResolution resolution = k1000) {
    return Electronics(180.25).Digitise(fRandom, 77, light, resolution, fRecord);
  }

  double GetMean(int first, int last) const {
    double sum = 0.;
    for (int bin = first; bin < last; ++bin)
      sum += fRecord.fFadcData[bin].fData;
    return sum / (last - first);
  }

  Random fRandom{1, 0, 0};
  TFADCData::_FADCDataRec fRecord;
};

}  // namespace

TEST_F(ElectronicsTest, NamesThePixelAndAllBins) {
  Digitise({});
  EXPECT_EQ(fRecord.fPixelNumber.fPixelNumber, 77);
  EXPECT_EQ(fRecord.fTraceInfo.fStartBin, 0u);
  EXPECT_EQ(fRecord.fTraceInfo.fEndBin, 999u);
  EXPECT_EQ(fRecord.fTraceInfo.fResolution, static_cast<UInt_t>(k1000));
  EXPECT_EQ(fRecord.fTraceStartTime, 0.F);
}

TEST_F(ElectronicsTest, FillsTheBinsOfItsResolutionOnly) {
  Digitise({});
  EXPECT_NE(fRecord.fFadcData[999].fWord, 0);
  EXPECT_EQ(fRecord.fFadcData[1000].fWord, 0);
  Digitise({}, k2000);
  EXPECT_EQ(fRecord.fTraceInfo.fEndBin, 1999u);
  EXPECT_NE(fRecord.fFadcData[1999].fWord, 0);
}

TEST_F(ElectronicsTest, StaysInsideTheRecordWith4000Bins) {
  Digitise({}, TFADCData::kFADC_RESOLUTION_4000_BINS);
  EXPECT_EQ(fRecord.fTraceInfo.fEndBin, 1999u);
}

TEST_F(ElectronicsTest, ShowsPedestalAndNoiseWithoutLight) {
  Digitise({}, k2000);
  double mean = GetMean(0, 2000);
  double variance = 0.;
  for (const auto& word : fRecord.fFadcData)
    variance += (word.fData - mean) * (word.fData - mean) / 2000.;
  EXPECT_NEAR(mean, 180.25, 0.3);
  EXPECT_NEAR(std::sqrt(variance), 3.5, 0.2);
}

TEST_F(ElectronicsTest, HardlyEverTriggersWithoutLight) {
  int n_triggered = 0;
  for (int i = 0; i < 200; ++i)
    n_triggered += Digitise({});
  EXPECT_LE(n_triggered, 1);
}

TEST_F(ElectronicsTest, AddsTwoCountsForEachPhotoelectron) {
  std::vector<float> light(1000);
  std::fill(light.begin() + 400, light.begin() + 900, 20.F);
  Digitise(light);
  EXPECT_NEAR(GetMean(0, 400), 180.25, 0.6);
  EXPECT_NEAR(GetMean(400, 900), 220.25, 2.);
}

TEST_F(ElectronicsTest, FluctuatesAsPhotoelectronsDo) {
  Digitise(std::vector<float>(2000, 100.F), k2000);
  double mean = GetMean(0, 2000);
  double variance = 0.;
  for (const auto& word : fRecord.fFadcData)
    variance += (word.fData - mean) * (word.fData - mean) / 2000.;
  EXPECT_NEAR(variance, 4. * 100. + 3.5 * 3.5, 45.);
}

TEST_F(ElectronicsTest, SaturatesAt12Bits) {
  Digitise(std::vector<float>(1000, 100000.F));
  EXPECT_EQ(GetMean(0, 1000), 4095.);
}

TEST_F(ElectronicsTest, TriggersWhileTheSumOfTenSamplesIsAboveItsThreshold) {
  std::vector<float> light(1000);
  std::fill(light.begin() + 500, light.begin() + 520, 20.F);
  EXPECT_TRUE(Digitise(light));
  for (int bin = 0; bin < 1000; ++bin) {
    double sum = 0.;
    for (int i = bin - 9; i <= bin; ++i)
      sum += i < 0 ? 0. : fRecord.fFadcData[i].fData;
    EXPECT_EQ(fRecord.fFadcData[bin].fPixelTrigger, sum > 10. * 180.25 + 60.) << bin;
  }
  EXPECT_EQ(fRecord.fFadcData[515].fPixelTrigger, 1);
  EXPECT_EQ(fRecord.fFadcData[490].fPixelTrigger, 0);
  EXPECT_EQ(fRecord.fFadcData[560].fPixelTrigger, 0);
}

TEST_F(ElectronicsTest, MovesTheThresholdOfSomePixels) {
  int n_changed = 0;
  for (int i = 0; i < 1000; ++i) {
    Digitise({});
    for (const auto& word : fRecord.fFadcData)
      n_changed += word.fThresholdChanged;
  }
  EXPECT_NEAR(n_changed, 10, 9);
}

TEST_F(ElectronicsTest, MonitorsThePixel) {
  Digitise({});
  EXPECT_EQ(fRecord.fMonitor.fActualThreshold, 1863u);
  EXPECT_NEAR(fRecord.fMonitor.fPrevThreshold, 1863., 1.);
  EXPECT_NEAR(fRecord.fMonitor.fActualRate, 100., 50.);
  EXPECT_EQ(fRecord.fMonitor.fMean, 180.25);
  EXPECT_EQ(fRecord.fMonitor.fVariance, 12.25);
}
