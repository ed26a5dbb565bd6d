#include <StnEvent/StnEventHeader.h>

#include "PrintLevel.h"

#include <LogCapture.h>

#include <TBufferFile.h>
#include <TError.h>

#include <sys/mman.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using VdRoot::TTimeStamp;

namespace {

/// Collects ROOT's own messages during its life.
class RootMessages {
 public:
  RootMessages() : fBefore(SetErrorHandler(Collect)) { fgMessages.clear(); }
  ~RootMessages() { SetErrorHandler(fBefore); }
  const std::vector<std::string>& Get() const { return fgMessages; }

 private:
  static void Collect(int, Bool_t, const char*, const char* message) { fgMessages.push_back(message); }
  static std::vector<std::string> fgMessages;
  ErrorHandlerFunc_t fBefore;
};

std::vector<std::string> RootMessages::fgMessages;

/// Writes records by hand, value by value in the byte order of ROOT.
class Record {
 public:
  template <class T>
  Record& Add(T value, Int_t bytes = sizeof(T)) {
    for (Int_t shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
      fBytes += static_cast<char>(ULong64_t(value) >> shift);
    return *this;
  }
  Record& Add(Float_t value) {
    UInt_t word;
    std::memcpy(&word, &value, sizeof(word));
    return Add(word);
  }
  Record& AddStamp(UInt_t sec, UInt_t nsec) { return Add(0x4000000au).Add(UShort_t(1)).Add(sec).Add(nsec); }
  /// N values from `first` on, of so many bytes each.
  Record& AddArray(Int_t n, ULong64_t first, Int_t bytes) {
    for (Int_t i = 0; i < n; ++i)
      Add(first + i, bytes);
    return *this;
  }
  const std::string& GetBytes() const { return fBytes; }

 private:
  std::string fBytes;
};

std::string Frame(Version_t version, const std::string& rest) {
  return Record().Add(UInt_t(0x40000000u | (rest.size() + 2))).Add(UShort_t(version)).GetBytes() + rest;
}

/// What stands in an old record.
struct OldValues {
  Float_t fT10 = 100.5f;
  Int_t fNTriggerSources = 6;  // the four element counts, which only version 4 writes
  Int_t fNMirrorTimeOffsets = 6;
  Int_t fNDeadTimeCounters = 12;
  Int_t fNVetoTimeCounters = 2;
};

/// The fields of a record behind its frame.
std::string OldFields(Version_t v, const OldValues& values = OldValues()) {
  Record r;
  r.Add(UShort_t(1)).Add(4711u).Add(0x03000000u);  // object: version, unique id, bits
  r.Add(11u).Add(UChar_t(3)).Add(13).Add(3).Add(UChar_t(0xe5)).Add(UChar_t(0xff)).Add(12u);
  if (v == 4) r.Add(values.fNTriggerSources);
  r.AddArray(6, 1, 1);
  if (v >= 7) r.Add(5u);
  r.AddStamp(1000, 1001);
  if (v >= 6) r.Add(1);
  r.Add(values.fT10).Add(2.5f);
  if (v == 4) r.Add(values.fNMirrorTimeOffsets);
  r.AddArray(6, 100, 4);
  for (UInt_t i = 0; i < 6; ++i)
    r.AddStamp(2000 + i, 2100 + i);
  if (v >= 6) r.AddArray(6, 300, 4);
  if (v == 4) r.Add(values.fNDeadTimeCounters);
  r.AddArray(12, 400, 4);
  if (v == 4) r.Add(values.fNVetoTimeCounters);
  r.AddArray(2, 500, 4);
  if (v >= 7) r.Add(ULong64_t(0x100000258ull)).AddArray(6, 0x1000002bcull, 8).AddArray(6, 800, 4);
  if (v >= 8) r.AddArray(6, 900, 4);
  r.Add(UShort_t(77)).AddStamp(3000, 3001);
  if (v >= 7) r.Add(78u).Add(79.5f);
  return r.GetBytes();
}

std::string OldRecord(Version_t v, const OldValues& values = OldValues()) { return Frame(v, OldFields(v, values)); }

/// Bytes that end where the process may not read any more.
class GuardedBytes {
 public:
  explicit GuardedBytes(const std::string& bytes) : fPage(sysconf(_SC_PAGESIZE)) {
    fMemory = static_cast<char*>(mmap(nullptr, 2 * fPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    mprotect(fMemory + fPage, fPage, PROT_NONE);
    fBegin = fMemory + fPage - bytes.size();
    std::memcpy(fBegin, bytes.data(), bytes.size());
  }
  ~GuardedBytes() { munmap(fMemory, 2 * fPage); }
  GuardedBytes(const GuardedBytes&) = delete;
  GuardedBytes& operator=(const GuardedBytes&) = delete;
  char* Get() { return fBegin; }

 private:
  size_t fPage;
  char* fMemory;
  char* fBegin;
};

/// Reads a header from bytes; gives the position afterwards.
Int_t Read(TStnEventHeader& header, const std::string& bytes) {
  GuardedBytes guarded(bytes);
  TBufferFile buffer(TBuffer::kRead, bytes.size(), guarded.Get(), kFALSE);
  header.Streamer(buffer);
  return buffer.Length();
}

std::string Write(TStnEventHeader header) {
  TBufferFile buffer(TBuffer::kWrite);
  header.Streamer(buffer);
  return std::string(buffer.Buffer(), buffer.Length());
}

/// The version that the header was read with, as its print-out tells it.
Int_t GetStreamerVersion(const TStnEventHeader& header) {
  std::ostringstream text;
  header.Show(text);
  std::smatch match;
  const std::string all = text.str();
  std::regex_search(all, match, std::regex("Streamer version: (-?[0-9]+)"));
  return std::stoi(match[1]);
}

template <class T>
std::vector<ULong64_t> OfMirrors(const TStnEventHeader& header, T (TStnEventHeader::*get)(UInt_t) const) {
  std::vector<ULong64_t> values;
  for (UInt_t id = 1; id <= 6; ++id)
    values.push_back((header.*get)(id));
  return values;
}

/// A header in which every field on file differs from its default and from what the old records hold.
void Fill(TStnEventHeader& header) {
  header.SetEventNo(21);
  header.SetStnNo(2);
  header.SetEventClass(TStnEventHeader::kIsMuon);
  header.SetEventType(TStnEventHeader::kSimulated);
  header.SetRunNo(22);
  header.SetLidarIsTriggered();
  header.SetTimeCorrectionParameters(101.0f, 23.0f);
  header.SetVetoTimeCounter(24);
  header.SetStnDaqDeadTime(0x200000019ull);
  header.SetT3Id(26);
  header.SetT3TimeStamp(27, 28);
  header.SetNRejectedT3(29);
  header.SetTotalT3DeadTime(30.5f);
  for (UInt_t id = 1; id <= 6; ++id) {
    header.SetMirrorPresent(id);
    header.SetMirrorDataPresent(id);
    header.SetMirrorNSkippedTriggers(3100 + id, id);
    header.SetMirrorEventLabel(3200 + id, id);
    header.SetMirrorDaqDeadTime(3300 + id, id);
    header.SetDeadTimeCounter(0x300000000ull + id, id);
    header.SetRunTimeCounter(0x400000000ull + id, id);
    header.SetTriggerSource(TMirrorEventHeader::EMiTriggerSource(16 + id), id);
    header.SetTriggerTimeStamp(3600 + id, id);
    header.SetRawMirrorTime(id, TTimeStamp(1000000 + id, 3700 + id));
  }
  header.AdjustMirrorTimes();
}

constexpr ULong64_t Words(ULong64_t low) { return (low + 1) << 32 | low; }

}  // namespace

// ---- Today's version

TEST(StnEventHeaderVersion10, ComesBackWhole) {
  TStnEventHeader header, copy;
  Fill(header);
  const std::string bytes = Write(header);
  EXPECT_EQ(Read(copy, bytes), Int_t(bytes.size()));
  EXPECT_EQ(Write(copy), bytes);
}

TEST(StnEventHeaderVersion10, IsRememberedByTheReader) {
  TStnEventHeader copy;
  Read(copy, Write(TStnEventHeader()));
  EXPECT_EQ(GetStreamerVersion(copy), 10);
}

TEST(StnEventHeaderVersion10, IsWrittenWhateverWasRead) {
  TStnEventHeader header;
  Read(header, OldRecord(8));
  EXPECT_EQ(Write(header).substr(4, 2), std::string("\0\x0a", 2));
}

TEST(StnEventHeaderVersion10, IsNotCarriedOverByCopies) {
  TStnEventHeader header, copy;
  Read(header, Write(TStnEventHeader()));
  copy = header;
  EXPECT_EQ(GetStreamerVersion(copy), 0);
  EXPECT_EQ(GetStreamerVersion(TStnEventHeader(header)), 0);
}

TEST(StnEventHeaderVersion10, HasTheLowWordOfACounterFirst) {
  TStnEventHeader header;
  header.SetDeadTimeCounter(0xa0000000b0000000ull, 1);
  const std::string bytes = Write(header);
  EXPECT_NE(bytes.find(std::string("\xb0\0\0\0\xa0\0\0\0", 8)), std::string::npos);
}

TEST(StnEventHeaderVersion10, TakesTheBytesOfVersion8AndOfTheRunTimes) {
  EXPECT_EQ(Write(TStnEventHeader()).size(), OldRecord(8).size() + 48);
}

TEST(StnEventHeaderVersion10, KeepsTheTransientParameters) {
  TStnEventHeader header;
  header.SetTimeCorrectionParameters(7, 0, 80000000, 0);
  Read(header, Write(TStnEventHeader()));
  EXPECT_TRUE(header.IsTimeCorrectionSet());
}

TEST(StnEventHeaderVersion10, IsToldAtPrintLevel1) {
  const std::string bytes = Write(TStnEventHeader());
  PrintLevel level(1);
  LogCapture log;
  TStnEventHeader header;
  Read(header, bytes);
  EXPECT_EQ(WithoutLineNumbers(log.Take()),
            "DBG:StnEvent/src/StnEventHeader.cc:LINE: TStnEventHeader::Streamer() - R__v= 10 R__s= 0 R__c= " +
                std::to_string(bytes.size() - 4) + "\n");
}

TEST(StnEventHeaderVersion10, IsNotReadFromACutBuffer) {
  TStnEventHeader full;
  Fill(full);
  const std::string bytes = Write(full), fresh = Write(TStnEventHeader());
  for (size_t size = 6; size < bytes.size(); ++size) {
    TStnEventHeader header;
    LogCapture log;
    EXPECT_EQ(Read(header, bytes.substr(0, size)), Int_t(size));
    EXPECT_EQ(log.Take(), "ERR:TStnEventHeader::Streamer() - byte count: found " + std::to_string(size - 6) +
                              " bytes, expected " + std::to_string(bytes.size() - 6) + " !\n");
    EXPECT_EQ(Write(header), fresh);
  }
}

TEST(StnEventHeaderVersion10, IsNotReadFromARecordThatIsTooShort) {
  TStnEventHeader full, header;
  Fill(full);
  const std::string bytes = Write(full), fresh = Write(header);
  for (const auto& [size, complaint] :
       {std::pair(size_t(1), "TStnEventHeader::Streamer() - TObject: found 1 bytes, expected at least 10"),
        std::pair(size_t(100), "VdRoot::TTimeStamp::Streamer() - byte count: found 10, expected 2 to 7"),
        std::pair(bytes.size() - 6 - 1,
                  "TStnEventHeader::Streamer() - fTotalT3DeadTime: found 3 bytes, expected at least 4")}) {
    LogCapture log;
    RootMessages root;
    EXPECT_EQ(Read(header, Frame(10, bytes.substr(6, size)) + "more"), Int_t(6 + size));
    EXPECT_EQ(log.Take(), std::string("ERR:") + complaint + ", record skipped\n");
    EXPECT_THAT(root.Get(), IsEmpty());
    EXPECT_EQ(Write(header), fresh);
    EXPECT_EQ(GetStreamerVersion(header), 10);
  }
}

TEST(StnEventHeaderVersion10DeathTest, IsNotReadFromAShortRecordThatIsTheFirstOfAProcess) {
  // In a process of its own ROOT has not described the class yet.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        TStnEventHeader header;
        Read(header, Frame(10, "abc"));
        _exit(0);
      },
      ::testing::ExitedWithCode(0),
      "ERR:TStnEventHeader::Streamer\\(\\) - TObject: found 3 bytes, expected at least 10, record skipped\n");
}

TEST(StnEventHeaderVersion10, IsNotReadFromARecordShorterThanItsVersion) {
  LogCapture log;
  TStnEventHeader header;
  EXPECT_EQ(Read(header, Record().Add(0x40000001u).Add(UShort_t(10)).GetBytes() + "more"), 6);
  EXPECT_EQ(log.Take(),
            "ERR:TStnEventHeader::Streamer() - TObject: found 0 bytes, expected at least 10, record skipped\n");
}

TEST(StnEventHeaderVersion10, IsNotReadWithAByteCountOfMoreThan31Bits) {
  LogCapture log;
  TStnEventHeader header;
  EXPECT_EQ(Read(header, Record().Add(0xffffffffu).Add(UShort_t(10)).GetBytes() + "more"), 10);
  EXPECT_EQ(log.Take(), "ERR:TStnEventHeader::Streamer() - byte count: found 4 bytes, expected 3221225469 !\n");
}

TEST(StnEventHeaderVersion10, IsReadFromALongerRecord) {
  RootMessages root;
  LogCapture log;
  TStnEventHeader full, header;
  Fill(full);
  const std::string bytes = Write(full);
  EXPECT_EQ(Read(header, Frame(10, bytes.substr(6) + "more")), Int_t(bytes.size()) + 4);
  EXPECT_EQ(log.Take(), "");
  EXPECT_THAT(root.Get(), ElementsAre(::testing::HasSubstr("read too few bytes")));
  EXPECT_EQ(Write(header), bytes);
}

TEST(StnEventHeaderVersion10, NeedsNoByteCount) {
  LogCapture log;
  TStnEventHeader full, header;
  Fill(full);
  const std::string bytes = Write(full);
  EXPECT_EQ(Read(header, bytes.substr(4)), Int_t(bytes.size()) - 4);
  EXPECT_EQ(log.Take(), "");
  EXPECT_EQ(Write(header), bytes);
}

TEST(StnEventHeaderVersion10, IsNotReadWithoutAByteCountFromACutBuffer) {
  LogCapture log;
  TStnEventHeader header;
  EXPECT_EQ(Read(header, Record().Add(UShort_t(10)).GetBytes() + "more"), 6);
  EXPECT_EQ(log.Take(),
            "ERR:TStnEventHeader::Streamer() - TObject: found 4 bytes, expected at least 10, record skipped\n");
}

class StnEventHeaderUnknownVersion : public ::testing::TestWithParam<Int_t> {};

TEST_P(StnEventHeaderUnknownVersion, IsLeftToRoot) {
  RootMessages root;
  LogCapture log;
  TStnEventHeader header;
  const std::string fresh = Write(header);
  EXPECT_EQ(Read(header, Frame(GetParam(), "abc") + "more"), 9);
  EXPECT_EQ(log.Take(), "");
  EXPECT_THAT(root.Get(), ElementsAre(::testing::HasSubstr("object skipped"), ::testing::HasSubstr("too few bytes")));
  EXPECT_EQ(Write(header), fresh);
}

TEST_P(StnEventHeaderUnknownVersion, IsLeftToRootAlsoWhenTheRecordIsEmpty) {
  RootMessages root;
  LogCapture log;
  TStnEventHeader header;
  EXPECT_EQ(Read(header, Frame(GetParam(), "")), 6);
  EXPECT_EQ(log.Take(), "");
}

INSTANTIATE_TEST_SUITE_P(All, StnEventHeaderUnknownVersion, ::testing::Values(9, 11, 100, 32767));

TEST(StnEventHeaderFrame, IsNotReadFromACutBuffer) {
  for (Int_t size = 0; size < 6; ++size) {
    TStnEventHeader header;
    LogCapture log;
    EXPECT_EQ(Read(header, OldRecord(8).substr(0, size)), size);
    EXPECT_EQ(log.Take(),
              "ERR:TStnEventHeader::Streamer() - frame: found " + std::to_string(size) + " bytes, expected 6 !\n");
    EXPECT_EQ(GetStreamerVersion(header), 0);
  }
}

// ---- Versions 4 to 8

class StnEventHeaderOldVersion : public ::testing::TestWithParam<Int_t> {
 protected:
  void SetUp() override {
    const std::string bytes = OldRecord(GetParam());
    fSize = bytes.size();
    fPosition = Read(fHeader, bytes);
    fMessages = fRoot.Get();
  }
  bool Has(Int_t since) const { return GetParam() >= since; }

  LogCapture fLog;
  RootMessages fRoot;
  std::vector<std::string> fMessages;
  TStnEventHeader fHeader;
  Int_t fSize = 0;
  Int_t fPosition = 0;
};

TEST_P(StnEventHeaderOldVersion, IsReadToItsEnd) { EXPECT_EQ(fPosition, fSize); }

TEST_P(StnEventHeaderOldVersion, IsReadWithoutComplaint) {
  EXPECT_EQ(fLog.Take(), "");
  EXPECT_THAT(fMessages, IsEmpty());
}

TEST_P(StnEventHeaderOldVersion, IsRemembered) { EXPECT_EQ(GetStreamerVersion(fHeader), GetParam()); }

TEST_P(StnEventHeaderOldVersion, HasItsObjectPart) { EXPECT_EQ(fHeader.GetUniqueID(), 4711u); }

TEST_P(StnEventHeaderOldVersion, HasTheFieldsOfAllVersions) {
  EXPECT_EQ(fHeader.GetEventNo(), 11u);
  EXPECT_EQ(fHeader.GetStnNo(), 3u);
  EXPECT_EQ(fHeader.GetEventClass(), TStnEventHeader::kIsShower);
  EXPECT_EQ(fHeader.GetEventType(), TStnEventHeader::kSimulated);
  EXPECT_EQ(fHeader.GetMirrorDataBits(), 0xe5u);
  EXPECT_EQ(fHeader.GetMirrorStatusBits(), 0xffu);
  EXPECT_EQ(fHeader.GetRunNo(), 12u);
  EXPECT_THAT(OfMirrors(fHeader, &TStnEventHeader::GetTriggerSource), ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_EQ(fHeader.GetTimeStamp()->GetSec(), 1000);
  EXPECT_EQ(fHeader.GetTimeStamp()->GetNanoSec(), 1001);
  EXPECT_THAT(OfMirrors(fHeader, &TStnEventHeader::GetMirrorTimeOffset), ElementsAre(100, 101, 102, 103, 104, 105));
}

TEST_P(StnEventHeaderOldVersion, HasTheTimeCorrection) {
  Float_t t10 = 0, offset = 0;
  fHeader.GetTimeCorrectionParameters(&t10, &offset);
  EXPECT_EQ(t10, 100.5f);
  EXPECT_EQ(offset, 2.5f);
}

TEST_P(StnEventHeaderOldVersion, HasTheRawMirrorTimes) {
  for (UInt_t id : {1u, 3u, 6u}) {
    ASSERT_NE(fHeader.GetRawMirrorTimeStamp(id), nullptr);
    EXPECT_EQ(fHeader.GetRawMirrorTimeStamp(id)->GetSec(), 2000 + id - 1);
    EXPECT_EQ(fHeader.GetRawMirrorTimeStamp(id)->GetNanoSec(), Int_t(2100 + id - 1));
  }
}

TEST_P(StnEventHeaderOldVersion, HasCountersOfTwoWordsEach) {
  EXPECT_THAT(OfMirrors(fHeader, &TStnEventHeader::GetDeadTimeCounter),
              ElementsAre(Words(400), Words(402), Words(404), Words(406), Words(408), Words(410)));
  EXPECT_EQ(fHeader.GetVetoTimeCounter(), Words(500));
}

TEST_P(StnEventHeaderOldVersion, HasNoRunTimes) {
  EXPECT_THAT(OfMirrors(fHeader, &TStnEventHeader::GetRunTimeCounter), ElementsAre(0, 0, 0, 0, 0, 0));
}

TEST_P(StnEventHeaderOldVersion, AnswersForTheSpareMirrorBits) {
  EXPECT_TRUE(fHeader.IsMirrorDataPresent(7));
  EXPECT_TRUE(fHeader.IsMirrorPresent(8));
  EXPECT_FALSE(fHeader.IsMirrorPresent(9));
}

TEST_P(StnEventHeaderOldVersion, HasAQualitySinceVersion6) {
  EXPECT_EQ(fHeader.GetTimeCorrectionQuality(),
            Has(6) ? TStnEventHeader::kAveragedPeriod : TStnEventHeader::kFullQuality);
}

TEST_P(StnEventHeaderOldVersion, HasTriggerTimeStampsSinceVersion6) {
  const UInt_t first = Has(6) ? 300 : 0, step = Has(6) ? 1 : 0;
  for (UInt_t id = 1; id <= 6; ++id)
    EXPECT_EQ(fHeader.GetTriggerTimeStamp(id), first + (id - 1) * step);
}

TEST_P(StnEventHeaderOldVersion, HasStatusBitsSinceVersion7) { EXPECT_EQ(fHeader.GetStatusBits(), Has(7) ? 5u : 0u); }

TEST_P(StnEventHeaderOldVersion, HasDaqDeadTimesSinceVersion7) {
  EXPECT_EQ(fHeader.GetStnDaqDeadTime(), Has(7) ? 0x100000258ull : 0ull);
  for (UInt_t id = 1; id <= 6; ++id)
    EXPECT_EQ(fHeader.GetMirrorDaqDeadTime(id), Has(7) ? 0x1000002bcull + id - 1 : 0ull);
}

TEST_P(StnEventHeaderOldVersion, HasSkippedTriggersSinceVersion7) {
  for (UInt_t id = 1; id <= 6; ++id)
    EXPECT_EQ(fHeader.GetMirrorNSkippedTriggers(id), Has(7) ? 800 + id - 1 : 0u);
}

TEST_P(StnEventHeaderOldVersion, HasT3StatisticsSinceVersion7) {
  EXPECT_EQ(fHeader.GetNRejectedT3(), Has(7) ? 78u : 0u);
  EXPECT_EQ(fHeader.GetTotalT3DeadTime(), Has(7) ? 79.5f : 0.0f);
}

TEST_P(StnEventHeaderOldVersion, GivesUpTheT3OfFilesBeforeVersion7) {
  EXPECT_EQ(fHeader.GetT3Id(), Has(7) ? 77 : 0);
  EXPECT_EQ(fHeader.GetT3TimeStamp()->GetSec(), Has(7) ? 3000 : 315964800);
  EXPECT_EQ(fHeader.GetT3TimeStamp()->GetNanoSec(), Has(7) ? 3001 : 0);
}

TEST_P(StnEventHeaderOldVersion, HasLabelsSinceVersion8) {
  for (UInt_t id = 1; id <= 6; ++id)
    EXPECT_EQ(fHeader.GetMirrorEventLabel(id), Has(8) ? Int_t(900 + id - 1) : 0);
}

TEST_P(StnEventHeaderOldVersion, ReplacesWhatTheHeaderHeld) {
  TStnEventHeader header;
  Fill(header);
  for (UInt_t id = 1; id <= 6; ++id)
    header.SetRunTimeCounter(0, id);
  Read(header, OldRecord(GetParam()));
  EXPECT_EQ(Write(header), Write(fHeader));
}

TEST_P(StnEventHeaderOldVersion, KeepsTheRunTimesThatTheHeaderHeld) {
  TStnEventHeader header;
  header.SetRunTimeCounter(5, 6);
  Read(header, OldRecord(GetParam()));
  EXPECT_EQ(header.GetRunTimeCounter(6), 5u);
}

TEST_P(StnEventHeaderOldVersion, IsToldAtPrintLevel1) {
  PrintLevel level(1);
  TStnEventHeader header;
  Read(header, OldRecord(GetParam()));
  const std::string v = std::to_string(GetParam());
  EXPECT_EQ(WithoutLineNumbers(fLog.Take()),
            "DBG:StnEvent/src/StnEventHeader.cc:LINE: TStnEventHeader::Streamer() - R__v= " + v +
                " R__s= 0 R__c= " + std::to_string(fSize - 4) +
                "\nDBG:StnEvent/src/StnEventHeader.cc:LINE: TStnEventHeader::StreamerV" + v + "() - \n");
}

TEST_P(StnEventHeaderOldVersion, LogsOneErrorWhenTheBufferEndsEarly) {
  const std::string bytes = OldRecord(GetParam());
  const std::regex error("ERR:TStnEventHeader::StreamerV" + std::to_string(GetParam()) +
                         "\\(\\) - [A-Za-z0-9]+: found [0-9]+ bytes, expected [0-9]+ !\n");
  for (size_t size = 6; size < bytes.size(); ++size) {
    TStnEventHeader header;
    EXPECT_EQ(Read(header, bytes.substr(0, size)), Int_t(size));
    const std::string log = fLog.Take();
    EXPECT_TRUE(std::regex_match(log, error)) << size << ": " << log;
  }
}

TEST_P(StnEventHeaderOldVersion, KeepsTheFieldsInFrontOfTheEarlyEnd) {
  // Behind frame, object and event number.
  TStnEventHeader header;
  Fill(header);
  Read(header, OldRecord(GetParam()).substr(0, 6 + 10 + 6));
  EXPECT_EQ(fLog.Take(), "ERR:TStnEventHeader::StreamerV" + std::to_string(GetParam()) +
                             "() - fEventClass: found 1 bytes, expected 4 !\n");
  EXPECT_EQ(header.GetEventNo(), 11u);
  EXPECT_EQ(header.GetStnNo(), 3u);
  EXPECT_EQ(header.GetEventClass(), TStnEventHeader::kIsMuon);
  EXPECT_EQ(header.GetRunNo(), 22u);
}

TEST_P(StnEventHeaderOldVersion, SurvivesAnyByteThatIsWrong) {
  const std::string bytes = OldRecord(GetParam());
  std::ostringstream dump;
  std::streambuf* const before = std::cout.rdbuf(dump.rdbuf());
  for (size_t i = 0; i < bytes.size(); ++i) {
    // A wrong object part is ROOT's to judge: its reference table grows with the unique id.
    if (i >= 6 && i < 16) continue;
    for (char wrong : {'\x00', '\x7f', '\x80', '\xff'}) {
      std::string damaged = bytes;
      damaged[i] = wrong;
      TStnEventHeader header;
      EXPECT_LE(Read(header, damaged), Int_t(damaged.size()));
    }
  }
  std::cout.rdbuf(before);
}

INSTANTIATE_TEST_SUITE_P(All, StnEventHeaderOldVersion, ::testing::Range(4, 9));

TEST(StnEventHeaderVersion8, NamesTheFieldAtWhichTheBufferEnds) {
  const std::vector<std::pair<std::string, Int_t>> fields = {{"fEventNumber", 4},
                                                             {"fStnNumber", 1},
                                                             {"fEventClass", 4},
                                                             {"fEventType", 4},
                                                             {"fMirrorDataBits", 1},
                                                             {"fMirrorStatus", 1},
                                                             {"fRunNo", 4},
                                                             {"fTriggerSource", 6},
                                                             {"fStatusBits", 4},
                                                             {"fTimeStamp", 14},
                                                             {"fTimeCorrectionQuality", 4},
                                                             {"fT10Mhz", 4},
                                                             {"fOffset", 4},
                                                             {"fMirrorTimeOffset", 24},
                                                             {"fRawMirrorTime", 14},
                                                             {"fRawMirrorTime", 14},
                                                             {"fRawMirrorTime", 14},
                                                             {"fRawMirrorTime", 14},
                                                             {"fRawMirrorTime", 14},
                                                             {"fRawMirrorTime", 14},
                                                             {"fTriggerTimeStamp", 24},
                                                             {"fDeadTimeCounter", 48},
                                                             {"fVetoTimeCounter", 8},
                                                             {"fStnDaqDeadTime", 8},
                                                             {"fMirrorDaqDeadTime", 48},
                                                             {"fMirrorNSkippedTriggers", 24},
                                                             {"fMirrorEventLabel", 24},
                                                             {"fT3Id", 2},
                                                             {"fT3TimeAtGround", 14},
                                                             {"fNRejectedT3", 4},
                                                             {"fTotalT3DeadTime", 4}};
  // An object part with a byte count, so that what follows is longer than any object part.
  const std::string object = Record().Add(0x4000000au).Add(UShort_t(1)).Add(ULong64_t(0)).GetBytes();
  const std::string content = object + OldFields(8).substr(10);
  size_t end = object.size();
  LogCapture log;
  for (const auto& [name, size] : fields) {
    end += size;
    TStnEventHeader header;
    Read(header, Frame(8, content).substr(0, 6 + end - 1));
    EXPECT_EQ(log.Take(), "ERR:TStnEventHeader::StreamerV8() - " + name + ": found " + std::to_string(size - 1) +
                              " bytes, expected " + std::to_string(size) + " !\n");
  }
  EXPECT_EQ(end, content.size());
}

TEST(StnEventHeaderVersion8, NeedsRoomForTheLongestObjectPart) {
  TStnEventHeader header;
  LogCapture log;
  Read(header, OldRecord(8).substr(0, 6 + 15));
  EXPECT_EQ(log.Take(), "ERR:TStnEventHeader::StreamerV8() - TObject: found 15 bytes, expected 16 !\n");
}

TEST(StnEventHeaderVersion5, Has239Bytes) { EXPECT_EQ(OldRecord(5).size() - 4, 239u); }

TEST(StnEventHeaderOldVersions, LeaveAByteCountThatIsTooLargeToRoot) {
  RootMessages root;
  TStnEventHeader header;
  const std::string bytes = Frame(6, OldFields(6) + "abc");
  EXPECT_EQ(Read(header, bytes), Int_t(bytes.size()));
  EXPECT_THAT(root.Get(), ElementsAre(::testing::HasSubstr("read too few bytes")));
  EXPECT_EQ(header.GetEventNo(), 11u);
  EXPECT_EQ(header.GetVetoTimeCounter(), Words(500));
}

TEST(StnEventHeaderOldVersions, LeaveAByteCountThatIsTooSmallToRoot) {
  RootMessages root;
  TStnEventHeader header;
  std::string bytes = OldRecord(7);
  bytes[3] -= 10;
  EXPECT_EQ(Read(header, bytes), Int_t(bytes.size()) - 10);
  ASSERT_FALSE(root.Get().empty());
  EXPECT_THAT(root.Get()[0], ::testing::HasSubstr("read too many bytes"));
  EXPECT_EQ(header.GetNRejectedT3(), 78u);
}

TEST(StnEventHeaderOldVersions, AreReadBehindOtherRecords) {
  TStnEventHeader header;
  const std::string bytes = OldRecord(5) + OldRecord(8);
  GuardedBytes guarded(bytes);
  TBufferFile buffer(TBuffer::kRead, bytes.size(), guarded.Get(), kFALSE);
  header.Streamer(buffer);
  header.Streamer(buffer);
  EXPECT_EQ(buffer.Length(), Int_t(bytes.size()));
  EXPECT_EQ(header.GetMirrorEventLabel(1), 900);
}

// ---- Quality before version 6

class StnEventHeaderOldQuality : public ::testing::TestWithParam<Int_t> {
 protected:
  static TStnEventHeader::ETimeCorrectionQuality ReadQuality(TStnEventHeader& header, Float_t t10) {
    OldValues values;
    values.fT10 = t10;
    Read(header, OldRecord(GetParam(), values));
    return header.GetTimeCorrectionQuality();
  }
};

TEST_P(StnEventHeaderOldQuality, IsFullWithAPlausibleCycle) {
  TStnEventHeader header;
  EXPECT_EQ(ReadQuality(header, 100.0f), TStnEventHeader::kFullQuality);
}

TEST_P(StnEventHeaderOldQuality, IsNotSetWithoutACycle) {
  LogCapture log;
  TStnEventHeader header;
  EXPECT_EQ(ReadQuality(header, 0.0f), TStnEventHeader::kCorrectionNotSet);
  EXPECT_EQ(log.Take(), "");
}

TEST_P(StnEventHeaderOldQuality, IsWarnedAboutAtPrintLevel1) {
  PrintLevel level(1);
  LogCapture log;
  TStnEventHeader header;
  ReadQuality(header, 0.0f);
  EXPECT_THAT(log.Take(), ::testing::EndsWith("\nWRN:TStnEventHeader::IsTimeCorrectionSet() - raw time correction "
                                              "parameters are set to defaults !\n"));
}

TEST_P(StnEventHeaderOldQuality, IsFullWithAMeasurementInTheHeader) {
  TStnEventHeader header;
  header.SetTimeCorrectionParameters(1, 0, 80000000, 0);
  EXPECT_EQ(ReadQuality(header, 0.0f), TStnEventHeader::kFullQuality);
}

INSTANTIATE_TEST_SUITE_P(All, StnEventHeaderOldQuality, ::testing::Values(4, 5));

// ---- Counts of version 4

struct CountCase {
  const char* fField;
  Int_t OldValues::*fCount;
  Int_t fExpected;
};

void PrintTo(const CountCase& c, std::ostream* ostr) { *ostr << c.fField; }

class StnEventHeaderCount : public ::testing::TestWithParam<std::tuple<CountCase, Int_t>> {};

TEST_P(StnEventHeaderCount, IsRefused) {
  const auto& [c, count] = GetParam();
  OldValues values;
  values.*c.fCount = count;
  const std::string bytes = OldRecord(4, values);
  RootMessages root;
  LogCapture log;
  TStnEventHeader header;
  EXPECT_EQ(Read(header, bytes), Int_t(bytes.size())) << "the record is left at its end";
  EXPECT_EQ(log.Take(), "ERR:TStnEventHeader::StreamerV4() - " + std::string(c.fField) + ": found " +
                            std::to_string(count) + " elements, expected " + std::to_string(c.fExpected) + " !\n");
  EXPECT_EQ(header.GetRunNo(), 12u) << "what was read before stays";
}

INSTANTIATE_TEST_SUITE_P(
    All, StnEventHeaderCount,
    ::testing::Combine(::testing::Values(CountCase{"fTriggerSource", &OldValues::fNTriggerSources, 6},
                                         CountCase{"fMirrorTimeOffset", &OldValues::fNMirrorTimeOffsets, 6},
                                         CountCase{"fDeadTimeCounter", &OldValues::fNDeadTimeCounters, 12},
                                         CountCase{"fVetoTimeCounter", &OldValues::fNVetoTimeCounters, 2}),
                       ::testing::Values(-1, 0, 5, 7, 13, 2147483647)));

TEST(StnEventHeaderCount, StopsTheReading) {
  OldValues values;
  values.fNMirrorTimeOffsets = 7;
  RootMessages root;
  LogCapture log;
  TStnEventHeader header;
  Fill(header);
  const UInt_t offset = header.GetMirrorTimeOffset(2);
  Read(header, OldRecord(4, values));
  EXPECT_EQ(header.GetTimeStamp()->GetSec(), 1000);
  EXPECT_EQ(header.GetMirrorTimeOffset(2), offset);
  EXPECT_EQ(header.GetVetoTimeCounter(), 24u);
}

// ---- Versions that are refused

class StnEventHeaderRefusedVersion : public ::testing::TestWithParam<Int_t> {};

TEST_P(StnEventHeaderRefusedVersion, IsLogged) {
  LogCapture log;
  TStnEventHeader header;
  Read(header, Frame(GetParam(), OldFields(8)));
  EXPECT_EQ(log.Take(),
            "ERR:TStnEventHeader::Streamer() - version " + std::to_string(GetParam()) + " not streamable !\n");
  EXPECT_EQ(GetStreamerVersion(header), GetParam());
}

TEST_P(StnEventHeaderRefusedVersion, LeavesTheOtherFields) {
  LogCapture log;
  TStnEventHeader header;
  Fill(header);
  Read(header, Frame(GetParam(), OldFields(8)));
  EXPECT_EQ(header.GetEventNo(), 21u);
  EXPECT_EQ(header.GetVetoTimeCounter(), 24u);
  EXPECT_EQ(header.GetRunTimeCounter(1), 0x400000001ull);
}

TEST_P(StnEventHeaderRefusedVersion, ClearsTheFieldsThatCameLater) {
  LogCapture log;
  TStnEventHeader header;
  Fill(header);
  Read(header, Frame(GetParam(), OldFields(8)));
  EXPECT_EQ(header.GetTimeCorrectionQuality(), TStnEventHeader::kFullQuality);
  EXPECT_EQ(header.GetTriggerTimeStamp(1), 0u);
  EXPECT_EQ(header.GetStatusBits(), 0u);
  EXPECT_EQ(header.GetStnDaqDeadTime(), 0u);
  EXPECT_EQ(header.GetMirrorDaqDeadTime(6), 0u);
  EXPECT_EQ(header.GetMirrorNSkippedTriggers(6), 0u);
  EXPECT_EQ(header.GetT3Id(), 0);
  EXPECT_EQ(header.GetT3TimeStamp()->GetGPSSec(), 0);
  EXPECT_EQ(header.GetNRejectedT3(), 0u);
  EXPECT_EQ(header.GetTotalT3DeadTime(), 0.0f);
  EXPECT_EQ(header.GetMirrorEventLabel(6), 0);
}

INSTANTIATE_TEST_SUITE_P(All, StnEventHeaderRefusedVersion, ::testing::Values(3, 2, 1, 0, -1));

TEST(StnEventHeaderVersion3, DoesNotMoveTheBuffer) {
  LogCapture log;
  TStnEventHeader header;
  EXPECT_EQ(Read(header, Frame(3, OldFields(8))), 6);
}

TEST(StnEventHeaderVersion3, NeedsNothingBehindItsFrame) {
  LogCapture log;
  TStnEventHeader header;
  EXPECT_EQ(Read(header, Frame(3, "")), 6);
  EXPECT_EQ(log.Take(), "ERR:TStnEventHeader::Streamer() - version 3 not streamable !\n");
}

TEST(StnEventHeaderVersion0, IsNotReadWithoutItsChecksum) {
  LogCapture log;
  TStnEventHeader header;
  EXPECT_EQ(Read(header, Frame(0, "")), 6);
  EXPECT_EQ(log.Take(), "ERR:TStnEventHeader::Streamer() - frame: found 6 bytes, expected 10 !\n");
  EXPECT_EQ(Read(header, Frame(0, "abc")), 9);
  EXPECT_EQ(log.Take(), "ERR:TStnEventHeader::Streamer() - frame: found 9 bytes, expected 10 !\n");
}

// ---- A bad version 5

namespace {

/// What reading the bytes prints to the standard output.
std::string ReadAndGetDump(TStnEventHeader& header, const std::string& bytes, Int_t* position = nullptr) {
  std::ostringstream dump;
  std::streambuf* const before = std::cout.rdbuf(dump.rdbuf());
  const Int_t end = Read(header, bytes);
  std::cout.rdbuf(before);
  if (position) *position = end;
  return dump.str();
}

std::string FatalLine(UInt_t count) {
  return "FAT:TStnEventHeader::Streamer() - Error: R__c= " + std::to_string(count) +
         " doesn't match for V5, reading aborted!\n";
}

}  // namespace

TEST(StnEventHeaderBadVersion5, IsDumped) {
  LogCapture log;
  TStnEventHeader header;
  const std::string rest("Header \x00\x01\x7f\x80\xff.~ 0123", 19);
  EXPECT_EQ(ReadAndGetDump(header, Frame(5, rest)),
            " 48 65 61 64 65 72 20 00 01 7f 80 ff 2e 7e 20 30   Header ......~ 0\n"
            " 31 32 33                                          123\n"
            "\n");
  EXPECT_EQ(log.Take(), FatalLine(21));
}

TEST(StnEventHeaderBadVersion5, OfFullLinesIsDumpedWithoutABlankOne) {
  LogCapture log;
  TStnEventHeader header;
  EXPECT_EQ(ReadAndGetDump(header, Frame(5, "0123456789abcdef")),
            " 30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66   0123456789abcdef\n\n");
}

TEST(StnEventHeaderBadVersion5, OfOneByteMoreIsDumpedIn15Lines) {
  LogCapture log;
  TStnEventHeader header;
  Fill(header);
  const std::string before = Write(header), bytes = Frame(5, OldFields(5) + "x");
  Int_t position = 0;
  const std::string dump = ReadAndGetDump(header, bytes, &position);
  EXPECT_EQ(log.Take(), FatalLine(240));
  EXPECT_EQ(std::count(dump.begin(), dump.end(), '\n'), 16);
  EXPECT_THAT(dump, ::testing::EndsWith("\n\n"));
  EXPECT_EQ(position, Int_t(bytes.size()));
  EXPECT_EQ(Write(header), before);
}

TEST(StnEventHeaderBadVersion5, IsRemembered) {
  LogCapture log;
  TStnEventHeader header;
  ReadAndGetDump(header, Frame(5, "abc"));
  EXPECT_EQ(GetStreamerVersion(header), 5);
}

TEST(StnEventHeaderBadVersion5, LeavesTheBufferAtItsEnd) {
  LogCapture log;
  TStnEventHeader header;
  Int_t position = 0;
  ReadAndGetDump(header, Frame(5, "abc") + "more", &position);
  EXPECT_EQ(position, 9);
}

TEST(StnEventHeaderBadVersion5, IsDumpedToTheEndOfTheBufferOnly) {
  LogCapture log;
  TStnEventHeader header;
  Int_t position = 0;
  const std::string bytes = Record().Add(0x7fffffffu).Add(UShort_t(5)).GetBytes() + "abc";
  EXPECT_EQ(ReadAndGetDump(header, bytes, &position), " 61 62 63                                          abc\n\n");
  EXPECT_EQ(log.Take(), FatalLine(0x3fffffff));
  EXPECT_EQ(position, 9);
}

TEST(StnEventHeaderBadVersion5, LeavesTheOutputDecimalAndBlankFilled) {
  LogCapture log;
  TStnEventHeader header;
  ReadAndGetDump(header, Frame(5, "abc"));
  EXPECT_EQ(std::cout.flags() & std::ios::basefield, std::ios::dec);
  EXPECT_EQ(std::cout.fill(), ' ');
}

TEST(StnEventHeaderBadVersion5, WithoutAByteCountIsDumpedAsAnEmptyOne) {
  LogCapture log;
  TStnEventHeader header;
  Int_t position = 0;
  EXPECT_EQ(ReadAndGetDump(header, Record().Add(UShort_t(5)).GetBytes() + "more", &position), "\n");
  EXPECT_EQ(log.Take(), FatalLine(0));
  EXPECT_EQ(position, 2);
}
