#include <StnEvent/StnEventHeader.h>

#include <LogCapture.h>

#include <TBufferFile.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

using VdRoot::TTimeStamp;

namespace {

std::string Show(const TStnEventHeader& header) {
  std::ostringstream text;
  header.Show(text);
  return text.str();
}

/// A new header of a station that doesn't depend on the host.
TStnEventHeader MakeHeader(UInt_t stn) {
  TStnEventHeader header;
  header.SetStnNo(stn);
  return header;
}

void FillMirror(TStnEventHeader& header, UInt_t id) {
  header.SetMirrorPresent(id);
  header.SetMirrorDataPresent(id);
  header.SetTriggerSource(TMirrorEventHeader::EMiTriggerSource(4 * id), id);
  header.SetRawMirrorTime(id, TTimeStamp(TTimeStamp::FromGPS(1000000000, 100 * id)));
  header.SetTriggerTimeStamp(0xabcde0 + id, id);
  header.SetDeadTimeCounter(0x100000000ull + id, id);
  header.SetRunTimeCounter(0x200000000ull + id, id);
}

/// The lines of the report from `first` to `last`, counted from 1.
std::string Lines(const std::string& text, int first, int last) {
  std::istringstream in(text);
  std::string line, lines;
  for (int i = 1; i <= last && std::getline(in, line); ++i)
    if (i >= first) lines += line + "\n";
  return lines;
}

}  // namespace

TEST(StnEventHeaderShow, PrintsANewHeader) {
  EXPECT_EQ(Show(MakeHeader(1)),
            "--- TStnEventHeader for Stn 1 ---\n"
            " Streamer version: 0\n"
            " Class version   : 10\n"
            " Recorded at     : 1980-01-06 00:00:00.000000000 UTC\n"
            " RUN number      : 0\n"
            " Timestamp       :          0 [s]          0 [ns] (corrected)\n"
            " Event number    :          0\n"
            " Status bits     : 0x00000000 = 00000000 00000000 00000000 00000000 \n"
            " Assigned T3 Id  :          0   (no T3 !)\n"
            " Event type      : 'Unknown'\n"
            " Event class     : 'Unclassified'\n"
            " TriggerSources  :  ---  ---  ---  ---  ---  --- \n"
            " accum VETO time:                    0 [* 100 ns]\n"
            " The following Mirrors participated in the DAQ  :\n"
            " The following Mirrors are present in this event:\n"
            "---------------------------------\n");
}

TEST(StnEventHeaderShow, PrintsAFullHeader) {
  TStnEventHeader header = MakeHeader(4);
  header.SetRunNo(1234);
  header.SetEventNo(56789);
  header.SetLidarIsTriggered();
  header.SetIsCKASRejectedT3();
  header.SetT3Id(321);
  header.SetT3TimeStamp(1000000001, 222);
  header.SetEventType(TStnEventHeader::kCalibration);
  header.SetEventClass(TStnEventHeader::kLongMuon);
  header.SetVetoTimeCounter(99);
  header.SetStnDaqDeadTime(77);
  FillMirror(header, 1);
  FillMirror(header, 6);
  header.SetMirrorPresent(2);
  header.SetMirrorDaqDeadTime(55, 6);
  header.SetMirrorNSkippedTriggers(44, 6);
  header.SetTimeCorrectionParameters(100.0f, 12.5f);
  header.SetNRejectedT3(3);
  header.SetTotalT3DeadTime(0.5f);
  header.AdjustMirrorTimes();
  EXPECT_EQ(Show(header),
            "--- TStnEventHeader for Stn 4 ---\n"
            " Streamer version: 0\n"
            " Class version   : 10\n"
            " Recorded at     : 2011-09-14 01:46:25.000000112 UTC\n"
            " RUN number      : 1234\n"
            " Timestamp       : 1000000000 [s]        112 [ns] (corrected)\n"
            " Event number    :      56789\n"
            " Status bits     : 0x00000009 = 00000000 00000000 00000000 00001001 \n"
            " Assigned T3 Id  :        321   (T3 !!!)\n"
            " TimeAtGround    : 1000000001 [s]        222 [ns] ((un)corrected ?)\n"
            " rejected by T3-CKAS VETO: YES\n"
            " Event type      : 'Calibration - Ext trigger'\n"
            " Event class     : 'Long Muon'\n"
            " TriggerSources  :  0x04 ---  ---  ---  ---  0x18\n"
            " accum VETO time:                   99 [* 100 ns]\n"
            " Stn DAQ Dead time :                   77 [* 100 ns]\n"
            " The following Mirrors participated in the DAQ  : 1 2 6\n"
            " The following Mirrors are present in this event: 1 6\n"
            " Time Offset[1]  :          0 [ns]\n"
            " Timestamp[1]    : 1000000000 [s]        100 [ns] (uncorrected)\n"
            " TrgTimeStamp[1] :     abcde1 hex\n"
            " Dead time[1]    :           4294967297 [* 100 ns]\n"
            "  Run time[1]    :           8589934593 [* 100 ns]\n"
            " Time Offset[6]  :        500 [ns]\n"
            " Timestamp[6]    : 1000000000 [s]        600 [ns] (uncorrected)\n"
            " TrgTimeStamp[6] :     abcde6 hex\n"
            " Dead time[6]    :           4294967302 [* 100 ns]\n"
            "  Run time[6]    :           8589934598 [* 100 ns]\n"
            " DaqDead time[6] :                   55 [* 100 ns]\n"
            " Skpd triggers[6]: 44\n"
            " Time correction quality: 'Averaged'\n"
            " T_10MHz        :        100 [ns]\n"
            " Sec_Offset     :       12.5 [ns]\n"
            " T3 rejected totally: 3 accumulated T3-CKAS dead time: 0.5 [s]\n"
            "---------------------------------\n");
}

TEST(StnEventHeaderShow, SaysNoToAT3ThatIsNotRejected) {
  TStnEventHeader header = MakeHeader(1);
  header.SetT3Id(1);
  EXPECT_EQ(Lines(Show(header), 9, 11),
            " Assigned T3 Id  :          1   (T3 !!!)\n"
            " TimeAtGround    :          0 [s]          0 [ns] ((un)corrected ?)\n"
            " rejected by T3-CKAS VETO: NO\n");
}

TEST(StnEventHeaderShow, PrintsAZeroRawTimeAs0) {
  TStnEventHeader header = MakeHeader(1);
  header.SetMirrorDataPresent(2);
  EXPECT_EQ(Lines(Show(header), 15, 21),
            " The following Mirrors are present in this event: 2\n"
            " Time Offset[2]  :          0 [ns]\n"
            " Timestamp[2]    :          0 [s]          0 [ns] (uncorrected)\n"
            " TrgTimeStamp[2] :          0 hex\n"
            " Dead time[2]    :                    0 [* 100 ns]\n"
            "  Run time[2]    :                    0 [* 100 ns]\n"
            "---------------------------------\n");
}

TEST(StnEventHeaderShow, PrintsOptionalLinesFromOneOn) {
  TStnEventHeader header = MakeHeader(1);
  header.SetMirrorDataPresent(2);
  header.SetStnDaqDeadTime(1);
  header.SetMirrorDaqDeadTime(1, 2);
  header.SetMirrorNSkippedTriggers(1, 2);
  header.SetNRejectedT3(1);
  const std::string text = Show(header);
  EXPECT_EQ(Lines(text, 14, 14), " Stn DAQ Dead time :                    1 [* 100 ns]\n");
  EXPECT_EQ(Lines(text, 22, 25),
            " DaqDead time[2] :                    1 [* 100 ns]\n"
            " Skpd triggers[2]: 1\n"
            " T3 rejected totally: 1 accumulated T3-CKAS dead time: 0 [s]\n"
            "---------------------------------\n");
}

class StnEventHeaderShowOfStation : public ::testing::TestWithParam<UInt_t> {};

TEST_P(StnEventHeaderShowOfStation, NeverMentionsMirrors4To6) {
  TStnEventHeader header = MakeHeader(GetParam());
  for (UInt_t id = 3; id <= 6; ++id)
    FillMirror(header, id);
  EXPECT_EQ(Lines(Show(header), 12, 21),
            " TriggerSources  :  ---  ---  0x0c\n"
            " accum VETO time:                    0 [* 100 ns]\n"
            " The following Mirrors participated in the DAQ  : 3\n"
            " The following Mirrors are present in this event: 3\n"
            " Time Offset[3]  :          0 [ns]\n"
            " Timestamp[3]    : 1000000000 [s]        300 [ns] (uncorrected)\n"
            " TrgTimeStamp[3] :     abcde3 hex\n"
            " Dead time[3]    :           4294967299 [* 100 ns]\n"
            "  Run time[3]    :           8589934595 [* 100 ns]\n"
            "---------------------------------\n");
}

INSTANTIATE_TEST_SUITE_P(FiveAndAbove, StnEventHeaderShowOfStation, ::testing::Values(5u, 6u, 255u));

TEST(StnEventHeaderShow, MentionsAllMirrorsOfStation0) {
  EXPECT_EQ(Lines(Show(MakeHeader(0)), 12, 12), " TriggerSources  :  ---  ---  ---  ---  ---  --- \n");
}

namespace {

/// A header with parameters and a quality that do not go together, as a file can hold them.
class OpenHeader : public TStnEventHeader {
 public:
  OpenHeader(Float_t t10, ETimeCorrectionQuality quality) {
    SetStnNo(1);
    SetTimeCorrectionParameters(t10, 0.0f);
    SetTimeCorrectionQuality(quality);
  }
};

}  // namespace

TEST(StnEventHeaderShow, PrintsTheQualityOfACycleJustAbove50) {
  EXPECT_EQ(Lines(Show(OpenHeader(50.5f, TStnEventHeader::kCorrectionNotSet)), 16, 16),
            " Time correction quality: 'NotSet'\n");
}

TEST(StnEventHeaderShow, LogsNothing) {
  LogCapture log;
  Show(MakeHeader(1));
  EXPECT_EQ(log.Take(), "");
}

TEST(StnEventHeaderShow, PrintsNoParametersOfACorrectionThatIsNotSet) {
  EXPECT_EQ(Lines(Show(OpenHeader(100.0f, TStnEventHeader::kCorrectionNotSet)), 16, 17),
            " Time correction quality: 'NotSet'\n"
            "---------------------------------\n");
}

TEST(StnEventHeaderShow, PrintsParametersOfAnUnknownQuality) {
  EXPECT_EQ(Lines(Show(OpenHeader(50.0f, TStnEventHeader::kUnknownQuality)), 16, 19),
            " Time correction quality: 'Unknown'\n"
            " T_10MHz        :         50 [ns]\n"
            " Sec_Offset     :          0 [ns]\n"
            "---------------------------------\n");
}

TEST(StnEventHeaderShow, PrintsNothingOfACorrectionAtTheBorder) {
  EXPECT_EQ(Lines(Show(OpenHeader(50.0f, TStnEventHeader::kCorrectionNotSet)), 16, 16),
            "---------------------------------\n");
}

TEST(StnEventHeaderShow, PrintsAllStatusBits) {
  TStnEventHeader header = MakeHeader(1);
  header.SetLidarIsTriggered();
  header.SetIsCKASVetoRejectedT3();
  header.SetIsDelayRejectedT3();
  header.SetIsCKASRejectedT3();
  EXPECT_EQ(Lines(Show(header), 8, 8), " Status bits     : 0x0000000f = 00000000 00000000 00000000 00001111 \n");
}

TEST(StnEventHeaderShow, LeavesTheStreamDecimalAndBlankFilled) {
  std::ostringstream text;
  MakeHeader(1).Show(text);
  EXPECT_EQ(text.flags() & std::ios::basefield, std::ios::dec);
  EXPECT_EQ(text.fill(), ' ');
}

TEST(StnEventHeaderShow, PrintsTheVersionReadFromFile) {
  TStnEventHeader header = MakeHeader(1), copy = MakeHeader(1);
  TBufferFile buffer(TBuffer::kWrite);
  header.Streamer(buffer);
  buffer.SetReadMode();
  buffer.SetBufferOffset(0);
  copy.Streamer(buffer);
  EXPECT_EQ(Lines(Show(copy), 2, 3), " Streamer version: 10\n Class version   : 10\n");
}

TEST(StnEventHeaderShow, WritesToStandardOutputByDefault) {
  ::testing::internal::CaptureStdout();
  MakeHeader(2).Show();
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), Show(MakeHeader(2)));
}
