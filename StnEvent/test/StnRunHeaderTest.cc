#include <StnEvent/StnRunHeader.h>

#include <HostOfStation4.h>
#include <Members.h>
#include <MrEvent/MrEventVersion.h>
#include <StnEvent/StnEventVersion.h>

#include <TBufferFile.h>
#include <TClass.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using VdRoot::TTimeStamp;

static_assert(kStnEventVersion == 2 && kStnEventSubVersion == 1 && kStnEventSubSubVersion == 100);
static_assert(kMrEventVersion == 4 && kMrEventSubVersion == 1 && kMrEventSubSubVersion == 5);

/// Opens the text of a version code to tests.
class OpenRunHeader : public TStnRunHeader {
 public:
  using TStnRunHeader::GetVersionCodeVerbosely;
};

void Fill(TStnRunHeader* header) {
  header->SetStnNo(3);
  header->SetMirrorStatus(0x15);
  header->SetRunNo(4711);
  header->SetStartTime(TTimeStamp(1500000000, 25));
  header->SetUserName("observer");
  header->SetComment("clear night");
  header->SetEvbVersion(0x10203);
  header->SetReadoutVersion(0x20304);
  // What a header has that another version of the library wrote.
  Member<UInt_t>(*header, "fStnEventVersion") = 0x30405;
  Member<UInt_t>(*header, "fMrEventVersion") = 0x40506;
}

void ExpectFilled(const TStnRunHeader& header) {
  EXPECT_EQ(header.GetStnNo(), 3U);
  EXPECT_EQ(header.GetMirrorStatus(), 0x15U);
  EXPECT_EQ(header.GetRunNo(), 4711U);
  EXPECT_EQ(header.GetStartTime().GetSec(), 1500000000);
  EXPECT_EQ(header.GetStartTime().GetNanoSec(), 25);
  EXPECT_EQ(header.GetUserName(), "observer");
  EXPECT_EQ(header.GetUserComment(), "clear night");
  EXPECT_EQ(header.GetEvbVersion(), 0x10203U);
  EXPECT_EQ(header.GetReadoutVersion(), 0x20304U);
  EXPECT_EQ(header.GetStnEventVersion(), 0x30405U);
  EXPECT_EQ(header.GetMrEventVersion(), 0x40506U);
}

void ExpectCleared(const TStnRunHeader& header) {
  EXPECT_EQ(header.GetStnNo(), 4U);
  EXPECT_EQ(header.GetMirrorStatus(), 0U);
  EXPECT_EQ(header.GetRunNo(), 0U);
  EXPECT_EQ(header.GetStartTime().GetSec(), 0);
  EXPECT_EQ(header.GetStartTime().GetNanoSec(), 0);
  EXPECT_EQ(header.GetUserName(), "default");
  EXPECT_EQ(header.GetUserComment(), "not set");
  EXPECT_EQ(header.GetEvbVersion(), 0U);
  EXPECT_EQ(header.GetReadoutVersion(), 0U);
  EXPECT_EQ(header.GetStnEventVersion(), 0x20164U);
  EXPECT_EQ(header.GetMrEventVersion(), 0x40105U);
}

/// What plain ROOT reads from what it wrote.
void RoundTrip(TStnRunHeader* from, TStnRunHeader* to) {
  TBufferFile buffer(TBuffer::kWrite);
  from->Streamer(buffer);
  buffer.SetReadMode();
  buffer.SetBufferOffset(0);
  to->Streamer(buffer);
}

TEST(StnEventVersion, HasATextOfTheSameNumbers) {
  EXPECT_STREQ(kStnEventVersionString, "StnEvent 2.1.100");
  EXPECT_STREQ(kMrEventVersionString, "MrEvent 4.1.5");
}

TEST(StnRunHeader, IsClearedWhenItIsNew) { ExpectCleared(TStnRunHeader()); }

TEST(StnRunHeader, ClearSetsEveryField) {
  TStnRunHeader header;
  Fill(&header);
  header.Clear("option");
  ExpectCleared(header);
}

TEST(StnRunHeader, KeepsWhatIsSet) {
  TStnRunHeader header;
  Fill(&header);
  ExpectFilled(header);
}

TEST(StnRunHeader, StoresTheLowEightBitsOfStationAndStatus) {
  TStnRunHeader header;
  header.SetStnNo(0x105);
  header.SetMirrorStatus(0x203);
  EXPECT_EQ(header.GetStnNo(), 5U);
  EXPECT_EQ(header.GetMirrorStatus(), 3U);
}

TEST(StnRunHeader, AssignmentCopiesEveryField) {
  TStnRunHeader source;
  Fill(&source);
  TStnRunHeader header;
  header = source;
  ExpectFilled(header);
}

TEST(StnRunHeader, AssignmentToItselfChangesNothing) {
  TStnRunHeader header;
  Fill(&header);
  const TStnRunHeader& self = header;
  header = self;
  ExpectFilled(header);
}

TEST(StnRunHeader, CopyHasEveryField) {
  TStnRunHeader source;
  Fill(&source);
  const TStnRunHeader copy(source);
  ExpectFilled(copy);
}

TEST(StnRunHeader, VersionInformationResetsTheProgramVersions) {
  TStnRunHeader header;
  Fill(&header);
  header.SetVersionInformation();
  EXPECT_EQ(header.GetReadoutVersion(), 0U);
  EXPECT_EQ(header.GetEvbVersion(), 0U);
  EXPECT_EQ(header.GetMrEventVersion(), 0x40105U);
  EXPECT_EQ(header.GetStnEventVersion(), 0x20164U);
  EXPECT_EQ(header.GetRunNo(), 4711U);
}

TEST(StnRunHeader, SaysThatEveryMirrorIsPresent) {
  TStnRunHeader header;
  EXPECT_TRUE(header.IsMirrorPresent(3));
  EXPECT_TRUE(header.IsMirrorPresent(0));
  EXPECT_TRUE(header.IsMirrorPresent(100));
}

TEST(StnRunHeader, MarksMirrorsAsPresent) {
  TStnRunHeader header;
  header.SetMirrorPresent(1);
  header.SetMirrorPresent(6);
  EXPECT_EQ(header.GetMirrorStatus(), 0x21U);
}

TEST(StnRunHeader, DropsMirrorsThatCannotBeSilently) {
  TStnRunHeader header;
  header.SetMirrorStatus(0x04);
  testing::internal::CaptureStderr();
  header.SetMirrorPresent(0);
  header.SetMirrorPresent(7);
  header.SetMirrorPresent(33);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(header.GetMirrorStatus(), 0x04U);
}

TEST(StnRunHeader, WritesVersionCodesAsThreeNumbers) {
  EXPECT_EQ(OpenRunHeader::GetVersionCodeVerbosely(0), "'unknown'");
  EXPECT_EQ(OpenRunHeader::GetVersionCodeVerbosely(0x20164), "2.1.100");
  EXPECT_EQ(OpenRunHeader::GetVersionCodeVerbosely(0xff020164), "2.1.100");
  EXPECT_EQ(OpenRunHeader::GetVersionCodeVerbosely(0xfffefd), "255.254.253");
  EXPECT_EQ(OpenRunHeader::GetVersionCodeVerbosely(0xff000000), "0.0.0");
}

std::string ShowText(TStnRunHeader* header) {
  std::ostringstream text;
  header->Show(text);
  return text.str();
}

TEST(StnRunHeader, ShowsAllOfAFilledHeader) {
  TStnRunHeader header;
  Fill(&header);
  EXPECT_EQ(ShowText(&header), std::string("--- TStnRunHeader for Stn 3 ---\n"
                                           " RUN started at  : ") +
                                   TTimeStamp(1500000000, 25).AsString("") +
                                   "\n"
                                   " RUN id          : 4711\n"
                                   " Mirrors present : 1 3 5 \n"
                                   " Users name      : observer\n"
                                   " RUN comment     : clear night\n"
                                   " Software versions used: \n"
                                   "  - MrEvent 4.5.6\n"
                                   "  - StnEvent 3.4.5\n"
                                   "  - MiReadout 2.3.4\n"
                                   "  - Evb/MiApps 1.2.3\n");
}

TEST(StnRunHeader, ShowsTheVersionsOfThisLibraryAndSixMirrorsOnly) {
  TStnRunHeader header;
  Fill(&header);
  header.SetVersionInformation();
  header.SetMirrorStatus(0xff);
  const std::string text = ShowText(&header);
  EXPECT_NE(text.find(" Mirrors present : 1 2 3 4 5 6 \n"), std::string::npos) << text;
  EXPECT_NE(text.find("  - MrEvent 4.1.5\n  - StnEvent 2.1.100\n  - MiReadout 'unknown'\n  - Evb/MiApps 'unknown'\n"),
            std::string::npos)
      << text;
}

TEST(StnRunHeader, ComesBackFromABuffer) {
  TStnRunHeader header;
  Fill(&header);
  TStnRunHeader read;
  RoundTrip(&header, &read);
  ExpectFilled(read);
}

TEST(StnRunHeader, HasTheDescribedMembers) {
  EXPECT_EQ(TStnRunHeader::Class()->GetClassVersion(), 2);
  EXPECT_EQ(DescribedMembers(TStnRunHeader::Class()),
            Descriptions({{"fStnNumber", "Stn number (1..4)"},
                          {"fMirrorStatus", "bit for each mirror in DAQ: bit (id - 1) for mirror id"},
                          {"fRunNo", "run number of current RUN"},
                          {"fStartTime", "time when the RUN was started"},
                          {"fUserName", "name of the user who did DAQ"},
                          {"fComment", "RUN specific comment string"},
                          {"fEvbVersion", "version of the event builder"},
                          {"fStnEventVersion", "version of this library's data format"},
                          {"fMrEventVersion", "version of the MrEvent data fmt."},
                          {"fReadoutVersion", "version of the readout program"}}));
}

}  // namespace
