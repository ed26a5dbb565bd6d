#include "RunSummary.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::json;
using StnTools::RunSummary;

const UInt_t kSecond = 1400000000;

TStnEventHeader HeaderAt(UInt_t second, UInt_t nanosec = 0) {
  TStnEventHeader header;
  header.SetTimeStamp(second, nanosec);
  return header;
}

void AddMirror(TStnEventHeader& header, UInt_t mirror, UInt_t nanosec) {
  header.SetMirrorPresent(mirror);
  header.SetMirrorDataPresent(mirror);
  header.SetRawMirrorTime(mirror, VdRoot::TTimeStamp(VdRoot::TTimeStamp::FromGPS(kSecond, nanosec)));
  header.AdjustMirrorTimes();
}

Json Summarise(const std::vector<TStnEventHeader>& headers) {
  RunSummary summary;
  for (const TStnEventHeader& header : headers)
    summary.AddHeader(header);
  return Json::parse(summary.FormatJson());
}

}  // namespace

TEST(RunSummaryTest, OfNothingIsEmpty) {
  const Json summary = Summarise({});
  EXPECT_EQ(summary["events"], 0);
  EXPECT_TRUE(summary["first"].is_null());
  EXPECT_EQ(summary["classes"], Json::array());
  EXPECT_TRUE(summary["veto"].is_null());
  EXPECT_TRUE(summary["mirrors"].at(0)["offset"]["mean"].is_null());
}

TEST(RunSummaryTest, HasTheEarliestAndTheLatestTime) {
  const Json summary = Summarise({HeaderAt(kSecond + 5), HeaderAt(kSecond), HeaderAt(kSecond + 9, 500000000)});
  EXPECT_EQ(summary["first"], "2024-05-17T16:53:02.000000000Z");
  EXPECT_EQ(summary["last"], "2024-05-17T16:53:11.500000000Z");
  EXPECT_EQ(summary["span"], 9.5);
}

TEST(RunSummaryTest, CountsEventsByTime) {
  const Json rate = Summarise({HeaderAt(kSecond, 900000000), HeaderAt(kSecond + 1), HeaderAt(kSecond + 2)})["rate"];
  EXPECT_EQ(rate["width"], 1.);
  EXPECT_EQ(rate["counts"].at(0), 2);
  EXPECT_EQ(rate["counts"].at(1), 1);
}

TEST(RunSummaryTest, ATimeBeforeTheFirstEventGoesToTheFirstBin) {
  EXPECT_EQ(Summarise({HeaderAt(kSecond), HeaderAt(kSecond - 7)})["rate"]["counts"].at(0), 2);
}

TEST(RunSummaryTest, BinsOfTimeGrowWithTheRun) {
  const Json rate = Summarise({HeaderAt(kSecond), HeaderAt(kSecond + 120)})["rate"];
  EXPECT_EQ(rate["width"], 2.);
  EXPECT_EQ(rate["counts"].at(60), 1);
}

TEST(RunSummaryTest, TimesFarFromTheOthersAreMisplaced) {
  const Json summary = Summarise({HeaderAt(0), HeaderAt(kSecond), HeaderAt(kSecond + 86400),
                                  HeaderAt(kSecond + 2 * 86400 + 1), HeaderAt(kSecond - 86401)});
  EXPECT_EQ(summary["misplaced"], 3);
  EXPECT_EQ(summary["span"], 86400.);
}

TEST(RunSummaryTest, CountsClassesByValue) {
  std::vector<TStnEventHeader> headers(4);
  headers[0].SetEventClass(TStnEventHeader::kIsShower);
  headers[1].SetEventClass(TStnEventHeader::kIsMuon);
  headers[2].SetEventClass(TStnEventHeader::kIsShower);
  headers[3].SetEventClass(static_cast<TStnEventHeader::EEventClass>(1234));
  EXPECT_EQ(Summarise(headers)["classes"],
            Json::parse(R"([{"value":5,"name":"Muon","count":1},{"value":13,"name":"Shower","count":2},
                            {"value":99,"name":"Invalid event class","count":1}])"));
}

TEST(RunSummaryTest, CountsTypes) {
  std::vector<TStnEventHeader> headers(2);
  headers[0].SetEventType(TStnEventHeader::kCalibration);
  headers[1].SetEventType(static_cast<TStnEventHeader::EEventType>(77));
  EXPECT_EQ(Summarise(headers)["types"],
            Json::parse(R"([{"value":2,"name":"Calibration","count":1},{"value":9,"name":"Invalid","count":1}])"));
}

TEST(RunSummaryTest, CountsQualities) {
  EXPECT_EQ(Summarise({TStnEventHeader()})["qualities"], Json::parse(R"([{"value":-1,"name":"NotSet","count":1}])"));
}

TEST(RunSummaryTest, CountsT3s) {
  std::vector<TStnEventHeader> headers(3);
  headers[0].SetT3Id(5);
  headers[1].SetT3Id(6);
  headers[1].SetIsCKASVetoRejectedT3();
  EXPECT_EQ(Summarise(headers)["t3"], Json::parse(R"({"events":2,"rejected":1})"));
}

TEST(RunSummaryTest, CountersAreWhatTheyGrewBy) {
  std::vector<TStnEventHeader> headers(2);
  for (UInt_t i = 0; i < 2; ++i) {
    headers[i].SetMirrorDataPresent(3);
    headers[i].SetVetoTimeCounter(50000000 + i * 20000000);
    headers[i].SetStnDaqDeadTime(i * 5000000);
    headers[i].SetDeadTimeCounter(70000000 + i * 10000000, 3);
    headers[i].SetMirrorDaqDeadTime(i * 30000000, 3);
    headers[i].SetMirrorNSkippedTriggers(4 + i * 3, 3);
  }
  const Json summary = Summarise(headers);
  EXPECT_DOUBLE_EQ(summary["veto"], 2.);
  EXPECT_DOUBLE_EQ(summary["stationDaq"], 0.5);
  EXPECT_DOUBLE_EQ(summary["mirrors"].at(2)["dead"], 1.);
  EXPECT_DOUBLE_EQ(summary["mirrors"].at(2)["daq"], 3.);
  EXPECT_DOUBLE_EQ(summary["mirrors"].at(2)["skipped"], 3.);
  EXPECT_TRUE(summary["mirrors"].at(0)["dead"].is_null());
}

TEST(RunSummaryTest, ACounterThatFellTellsNothing) {
  std::vector<TStnEventHeader> headers(3);
  headers[0].SetVetoTimeCounter(5);
  headers[2].SetVetoTimeCounter(9);
  EXPECT_TRUE(Summarise(headers)["veto"].is_null());
}

TEST(RunSummaryTest, CountsMirrorsAndTheirLabels) {
  std::vector<TStnEventHeader> headers(2);
  headers[0].SetMirrorPresent(1);
  headers[0].SetMirrorDataPresent(1);
  headers[0].SetMirrorEventLabel(TMirrorEventHeader::kMuonEvent, 1);
  headers[1].SetMirrorPresent(1);
  const Json mirror = Summarise(headers)["mirrors"].at(0);
  EXPECT_EQ(mirror["mirror"], 1);
  EXPECT_EQ(mirror["events"], 1);
  EXPECT_EQ(mirror["status"], 2);
  EXPECT_EQ(mirror["labels"], Json::parse(R"({"MuonEvent":1})"));
}

TEST(RunSummaryTest, OffsetsAreThoseOfTheLaterMirrors) {
  TStnEventHeader header;
  AddMirror(header, 2, 1000);
  AddMirror(header, 5, 1330);
  const Json mirrors = Summarise({header})["mirrors"];
  EXPECT_EQ(mirrors.at(1)["earliest"], 1);
  EXPECT_TRUE(mirrors.at(1)["offset"]["mean"].is_null());
  EXPECT_EQ(mirrors.at(4)["earliest"], 0);
  EXPECT_EQ(mirrors.at(4)["offset"]["mean"], 330.);
  EXPECT_EQ(mirrors.at(4)["offset"]["width"], 10);
  EXPECT_EQ(mirrors.at(4)["offset"]["counts"].at(33), 1);
}

TEST(RunSummaryTest, OfEqualTimesTheFirstMirrorIsTheEarliest) {
  TStnEventHeader header;
  AddMirror(header, 2, 1000);
  AddMirror(header, 5, 1000);
  EXPECT_EQ(Summarise({header})["mirrors"].at(1)["earliest"], 1);
}

TEST(RunSummaryTest, AnOffsetOfASecondIsFar) {
  TStnEventHeader header;
  AddMirror(header, 1, 0);
  AddMirror(header, 2, 1000000000);
  const Json offset = Summarise({header})["mirrors"].at(1)["offset"];
  EXPECT_EQ(offset["far"], 1);
  EXPECT_TRUE(offset["mean"].is_null());
}

TEST(RunSummaryTest, CountsPixels) {
  RunSummary summary;
  TStnPixelList list;
  _VdPixelNumber pixel;
  const UInt_t station = list.GetStnNo();
  for (UInt_t number : {1U, 2880U}) {
    VdUtil::Vd::SetPixelNo(&pixel, number);
    VdUtil::Vd::SetStnNo(&pixel, station);
    list.AddPixel(&pixel);
  }
  summary.AddPixels(list);
  summary.AddPixels(list);
  const Json occupancy = Json::parse(summary.FormatJson())["occupancy"];
  EXPECT_EQ(occupancy["events"], 2);
  EXPECT_EQ(occupancy["counts"].at(0), 2);
  EXPECT_EQ(occupancy["counts"].at(1), 0);
  EXPECT_EQ(occupancy["counts"].at(2879), 2);
}

TEST(RunSummaryTest, TellsTheFirstReasonWhyAnEventIsMissing) {
  RunSummary summary;
  EXPECT_FALSE(summary.HasUnreadable());
  summary.AddUnreadable("bad \xff");
  summary.AddUnreadable("worse");
  EXPECT_TRUE(summary.HasUnreadable());
  const Json json = Json::parse(summary.FormatJson());
  EXPECT_EQ(json["unreadable"], 2);
  EXPECT_EQ(json["reason"], "bad \xEF\xBF\xBD");
}
