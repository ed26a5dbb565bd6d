#include "HeaderRecord.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace StnTools;
using VdRoot::TTimeStamp;

namespace {

/// Every field has a value of its own; mirrors 2 and 6 have data.
TStnEventHeader MakeHeader() {
  TStnEventHeader header;
  header.SetEventNo(101);
  header.SetStnNo(3);
  header.SetEventClass(TStnEventHeader::kMuonAndNoise);
  header.SetEventType(TStnEventHeader::kCalibration);
  header.SetMirrorDataPresent(2);
  header.SetMirrorDataPresent(6);
  header.SetMirrorPresent(1);
  header.SetRunNo(104);
  header.SetLidarIsTriggered();
  header.SetTimeCorrectionParameters(99.5F, 106.25F);
  header.SetVetoTimeCounter(18446744073709551615ULL);
  header.SetStnDaqDeadTime(108);
  header.SetT3Id(109);
  header.SetNRejectedT3(110);
  header.SetTotalT3DeadTime(0.25F);
  for (UInt_t mirror = 1; mirror <= 6; ++mirror) {
    header.SetTriggerSource(static_cast<TMirrorEventHeader::EMiTriggerSource>(mirror), mirror);
    header.SetRawMirrorTime(mirror, TTimeStamp(1700000000 + mirror, 5));
    header.SetTriggerTimeStamp(200 + mirror, mirror);
    header.SetDeadTimeCounter(300 + mirror, mirror);
    header.SetRunTimeCounter(400 + mirror, mirror);
    header.SetMirrorDaqDeadTime(500 + mirror, mirror);
    header.SetMirrorNSkippedTriggers(600 + mirror, mirror);
    header.SetMirrorEventLabel(-700 - static_cast<Int_t>(mirror), mirror);
  }
  header.AdjustMirrorTimes();
  header.SetTimeStamp(TTimeStamp(1700000000, 7));
  header.SetT3TimeStamp(TTimeStamp(1700000001, 8));
  return header;
}

}  // namespace

TEST(HeaderRecord, HasEveryFieldAsJson) {
  EXPECT_EQ(FormatJsonLine(12, MakeHeader()),
            R"({"entry":12,"fEventNumber":101,"fStnNumber":3,"fEventClass":9,"fEventType":2,"fMirrorDataBits":34,)"
            R"("fMirrorStatus":1,"fRunNo":104,"fTriggerSource":[1,2,3,4,5,6],"fStatusBits":1,)"
            R"("fTimeStamp":"2023-11-14T22:13:20.000000007Z","fTimeCorrectionQuality":1,"fT10Mhz":99.5,)"
            R"("fOffset":106.25,"fMirrorTimeOffset":[0,0,0,0,0,1000000000],"fRawMirrorTime":[null,)"
            R"("2023-11-14T22:13:22.000000005Z",null,null,null,"2023-11-14T22:13:26.000000005Z"],)"
            R"("fTriggerTimeStamp":[201,202,203,204,205,206],"fDeadTimeCounter":[301,302,303,304,305,306],)"
            R"("fVetoTimeCounter":18446744073709551615,"fRunTimeCounter":[401,402,403,404,405,406],)"
            R"("fStnDaqDeadTime":108,"fMirrorDaqDeadTime":[501,502,503,504,505,506],)"
            R"("fMirrorNSkippedTriggers":[601,602,603,604,605,606],)"
            R"("fMirrorEventLabel":[-701,-702,-703,-704,-705,-706],"fT3Id":109,)"
            R"("fT3TimeAtGround":"2023-11-14T22:13:21.000000008Z","fNRejectedT3":110,"fTotalT3DeadTime":0.25,)"
            R"("eventClass":"Muon + Noise","eventType":"Calibration","timeCorrectionQuality":"Averaged"})"
            "\n");
}

TEST(HeaderRecord, HasAColumnForEachMirror) {
  const std::string head = FormatCsvHead();
  EXPECT_EQ(
      head.substr(0, head.find(",fTriggerSource_2")),
      "entry,fEventNumber,fStnNumber,fEventClass,fEventType,fMirrorDataBits,fMirrorStatus,fRunNo,fTriggerSource_1");
  EXPECT_EQ(head.substr(head.find(",fMirrorEventLabel_6")),
            ",fMirrorEventLabel_6,fT3Id,fT3TimeAtGround,fNRejectedT3,fTotalT3DeadTime,eventClass,eventType,"
            "timeCorrectionQuality\n");
}

TEST(HeaderRecord, HasEveryFieldAsCommaSeparatedValues) {
  EXPECT_EQ(FormatCsvLine(12, MakeHeader()),
            "12,101,3,9,2,34,1,104,1,2,3,4,5,6,1,2023-11-14T22:13:20.000000007Z,1,99.5,106.25,0,0,0,0,0,1000000000,,"
            "2023-11-14T22:13:22.000000005Z,,,,2023-11-14T22:13:26.000000005Z,201,202,203,204,205,206,301,302,303,304,"
            "305,306,18446744073709551615,401,402,403,404,405,406,108,501,502,503,504,505,506,601,602,603,604,605,606,"
            "-701,-702,-703,-704,-705,-706,109,2023-11-14T22:13:21.000000008Z,110,0.25,Muon + Noise,Calibration,"
            "Averaged\n");
}

TEST(HeaderRecord, HasAsManyValuesAsColumns) {
  const auto count = [](const std::string& line) { return std::count(line.begin(), line.end(), ','); };
  EXPECT_EQ(count(FormatCsvHead()), count(FormatCsvLine(0, TStnEventHeader())));
}
