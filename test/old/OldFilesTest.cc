// Reads the station files of every age and compares them with what was written, field by field, and with what has to
// stand in fields that a file of its age does not have.

#include "Fields.h"
#include "Rule.h"

#include <LogCapture.h>
#include <StnEvent/StnEvent.h>
#include <StnEvent/StnEventFile.h>
#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>
#include <VdUtil/VdConfig.h>
#include <VdUtil/VdGeometry.h>

#include <TClass.h>
#include <TError.h>
#include <TKey.h>
#include <TStreamerElement.h>
#include <TStreamerInfo.h>
#include <TSystem.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>

using old_files::Text;
using VdUtil::Vd;

namespace {

/// A file, and the versions of the classes that change.
struct OldFile {
  const char* fName;
  int fHeader;
  int fList;
  int fEvent;
  int fT3;
  int fTrailer;
  std::vector<std::string> fChanges;

  Rule GetRule() const { return Rule(fChanges); }
};

std::ostream& operator<<(std::ostream& stream, const OldFile& file) { return stream << file.fName; }

const OldFile kFiles[] = {
    {"header-4", 4, 2, 1, 2, 2, {}},
    {"header-5", 5, 2, 2, 2, 2, {}},
    {"header-6", 6, 3, 3, 2, 2, {}},
    {"header-7", 7, 3, 4, 2, 2, {}},
    {"header-8", 8, 4, 4, 3, 3, {}},
    {"header-8-station-5", 8, 4, 4, 3, 3, {"station=5"}},
    {"header-9", 9, 4, 5, 3, 3, {}},
    {"list-2", 10, 2, 5, 3, 3, {}},
    {"list-3", 10, 3, 5, 3, 3, {}},
    {"list-of-wrong-station", 10, 4, 5, 3, 3, {"TStnPixelList::fStnNo=3"}},
    {"list-2-of-80-words", 10, 2, 5, 3, 3, {"TStnPixelList::fPixelVectorSize=80"}},
    {"list-4-of-80-words", 10, 4, 5, 3, 3, {"TStnPixelList::fPixelVectorSize=80"}},
    {"event-1", 10, 4, 1, 3, 3, {}},
    {"event-2", 10, 4, 2, 3, 3, {}},
    {"event-3", 10, 4, 3, 3, 3, {}},
    {"event-4", 10, 4, 4, 3, 3, {}},
    {"event-5", 10, 4, 5, 3, 3, {}},
    {"event-6", 10, 4, 6, 3, 3, {}},
    {"mislabelled-pixel-data", 10, 4, 5, 3, 3, {"TMirrorPixelData::fMirrorNumber=0x23"}},
    {"mislabelled-pixel-data-event-6", 10, 4, 6, 3, 3, {"TMirrorPixelData::fMirrorNumber=0x23"}},
};

/// Since which version of `TStnEvent` there is each sub-object.
const struct {
  const char* fName;
  int fSince;
} kEventFields[] = {{"fEventHeader", 1}, {"fFADCData", 1}, {"fPixelList", 1},   {"fPixelData", 2},
                    {"fTriggerData", 3}, {"fT3Data", 4},   {"fGeometryData", 5}};

int GetSince(const std::string& event_field) {
  for (const auto& field : kEventFields)
    if (event_field == field.fName) return field.fSince;
  throw std::logic_error(event_field);
}

/// What the class of the file's age had, and the event has by the rule.
bool IsOnFile(const OldFile& file, const std::string& event_field, unsigned event) {
  return file.fEvent >= GetSince(event_field) && file.GetRule().IsPresent("TStnEvent::" + event_field, {event});
}

/// What ROOT complains about, in one string.
std::string gRootMessages;

void CollectRootMessage(int level, Bool_t, const char* location, const char* message) {
  if (level >= kWarning) gRootMessages += std::string(location) + ": " + message + "\n";
}

/// The sub-object itself, and not one that a getter makes because there is none.
template <typename T>
T* GetStored(TStnEvent& event, const char* field) {
  const auto* base = reinterpret_cast<const char*>(&event);
  return *reinterpret_cast<T* const*>(base + TStnEvent::Class()->GetDataMemberOffset(field));
}

template <typename T>
std::string Shown(T& object) {
  std::ostringstream stream;
  object.Show(stream);
  return stream.str();
}

// ---- The log at print level 1. Line numbers and positions in buffers are no concern of these tests.

std::string Normalized(const std::string& log) {
  const auto no_lines = std::regex_replace(log, std::regex("(DBG:[^:]*:)[0-9]+:"), "$1");
  return std::regex_replace(no_lines, std::regex("R__s= [0-9]+"), "R__s= *");
}

std::string HeaderLog(const OldFile& file, unsigned event, int level) {
  if (level == 0) return "";
  const std::string debug = "DBG:StnEvent/src/StnEventHeader.cc: TStnEventHeader::Streamer";
  std::string log = debug + "() - R__v= " + Text(file.fHeader) +
                    " R__s= * R__c= " + Text(old_files::GetHeaderByteCount(file.fHeader)) + "\n";
  if (file.fHeader <= 8) log += debug + "V" + Text(file.fHeader) + "() - \n";
  if (file.fHeader <= 5 && event == 1)
    log += "WRN:TStnEventHeader::IsTimeCorrectionSet() - raw time correction parameters are set to defaults !\n";
  return log;
}

std::string ListLog(const OldFile& file, int level) {
  return level > 0 && file.fList == 2 ? "INF:TStnPixelList::Streamer() - fix for version= 2 !\n" : "";
}

/// The number that pixel data of a mirror have on file.
UInt_t GetLabel(const OldFile& file, unsigned event, unsigned mirror) {
  return file.GetRule().As<UInt_t>("TMirrorPixelData::fMirrorNumber", {event, mirror});
}
UInt_t GetLabelledStation(UInt_t label) { return label >> 5; }
UInt_t GetLabelledMirror(UInt_t label) { return ((label & 0x1F) - 1) % 6 + 1; }

bool HasPixelData(const OldFile& file, unsigned event, unsigned mirror) {
  return file.fEvent >= GetSince("fPixelData") && (Rule::MirrorBits(event) >> (mirror - 1) & 1);
}

std::string CorrectionsLog(const OldFile& file, unsigned event, int level) {
  std::string log;
  const UInt_t station = file.GetRule().GetStation();
  for (unsigned mirror = 1; level > 0 && mirror <= 6; ++mirror) {
    const UInt_t label = GetLabel(file, event, mirror);
    const UInt_t was_station = GetLabelledStation(label), was_mirror = GetLabelledMirror(label);
    if (!HasPixelData(file, event, mirror) || (was_station == station && was_mirror == mirror)) continue;
    log += "WRN:TStnEvent::DoCorrections() - corrected TMirrorPixelData::(stn_id,mirror_id) from (" +
           Text(was_station) + "," + Text(was_mirror) + ") to (" + Text(station) + "," + Text(mirror) + ")!\n";
  }
  return log;
}

// ---- Comparisons

void ExpectHeader(const OldFile& file, TStnEventHeader& header, unsigned event) {
  for (const auto& field : old_files::GetHeaderFields()) {
    SCOPED_TRACE(field.fName);
    const bool is_narrow = file.fHeader == 9 && field.fName == "fMirrorNSkippedTriggers";
    const auto& written = is_narrow ? field.fWrittenIn9 : field.fWritten;
    EXPECT_EQ(field.fRead(header),
              file.fHeader >= field.fTrusted ? written(file.GetRule(), {event}) : field.fMissing({event}));
  }
  EXPECT_THAT(Shown(header), testing::HasSubstr("\n Streamer version: " + Text(file.fHeader) + "\n"));
}

/// Installation pixel numbers of the pixels on file.
std::vector<UInt_t> GetPixelsOnFile(const OldFile& file, unsigned event, UInt_t station) {
  const Rule rule = file.GetRule();
  std::vector<UInt_t> pixels;
  for (UInt_t bit = 0; bit < 32 * rule.As<UInt_t>("TStnPixelList::fPixelVectorSize", {event}); ++bit)
    if (rule.As<UInt_t>("TStnPixelList::fPixelVector", {event}, bit / 32) >> bit % 32 & 1)
      pixels.push_back((station - 1) * 2880 + bit + 1);
  return pixels;
}

void ExpectList(const OldFile& file, TStnPixelList& list, unsigned event, UInt_t station) {
  std::vector<UInt_t> pixels;
  for (UInt_t i = 0; i < list.GetNumPixels(); ++i)
    pixels.push_back(Vd::GetPixelNo(list.GetPixel(i)));
  EXPECT_EQ(pixels, GetPixelsOnFile(file, event, station));
  EXPECT_EQ(list.GetStnNo(), station);
  EXPECT_THAT(Shown(list), testing::HasSubstr("\n Streamer version: " + Text(file.fList) + "\n"));
}

/// Station of a list before the event has mended it.
UInt_t GetListStation(const OldFile& file, unsigned event) {
  if (file.fList < 4) return VdUtil::VdConfig::GetInstance().GetStnId();
  return file.GetRule().As<UInt_t>("TStnPixelList::fStnNo", {event}) + 1;
}

void ExpectTriggers(const Rule& rule, const TMirrorPixelData& data, Rule::Place place) {
  std::vector<UInt_t> expected(480 * 4, 0);
  for (unsigned i = 0; i < rule.As<UInt_t>("TMirrorPixelData::fNTriggerWords", place); ++i) {
    const auto pixel = rule.As<UShort_t>("TMirrorPixelData::fPixelNo", place, i / 4);
    expected[(pixel - 1) * 4 + i % 4] = rule.As<UInt_t>("TMirrorPixelData::fTriggerWord", place, i);
  }
  const auto& record = *data.GetRecord();
  const std::vector<UInt_t> found(&record.fTrigger[0][0], &record.fTrigger[0][0] + expected.size());
  EXPECT_EQ(found, expected);
  EXPECT_EQ(record.fUnused, rule.As<UInt_t>("TMirrorPixelData::fUnused", place));
}

void ExpectPixelData(const OldFile& file, TStnPixelData& data, unsigned event, bool is_corrected) {
  for (unsigned mirror = 1; mirror <= 6; ++mirror) {
    SCOPED_TRACE("pixel data of mirror " + Text(mirror));
    const TMirrorPixelData* found = data.GetPixelData(mirror);
    ASSERT_EQ(found != nullptr, HasPixelData(file, event, mirror));
    if (!found) continue;
    const UInt_t label = GetLabel(file, event, mirror);
    EXPECT_EQ(found->GetStnNo(), is_corrected ? file.GetRule().GetStation() : GetLabelledStation(label));
    EXPECT_EQ(found->GetMirrorNo(), is_corrected ? mirror : GetLabelledMirror(label));
    ExpectTriggers(file.GetRule(), *found, {event, mirror});
  }
}

std::vector<UShort_t> GetWordsOnFile(const Rule& rule, Rule::Place place) {
  std::vector<UShort_t> words(TFADCData::kNFADCWords, 0);
  const auto first = rule.As<UShort_t>("TFADCData::fFirstLow", place);
  const auto first_high = rule.As<UShort_t>("TFADCData::fFirstHigh", place);
  for (unsigned i = 0; i < rule.As<UInt_t>("TFADCData::fNLow", place); ++i)
    words[first + i] = rule.As<UShort_t>("TFADCData::fBase", place) + rule.As<UChar_t>("TFADCData::fLow", place, i);
  for (unsigned i = 0; i < rule.As<UInt_t>("TFADCData::fNHigh", place); ++i)
    words[first_high + i] += 256 * rule.As<UChar_t>("TFADCData::fHigh", place, i);
  return words;
}

void ExpectTrace(const Rule& rule, const TFADCData& trace, Rule::Place place) {
  const auto& record = *trace.GetRecord();
  const auto number = [&](const std::string& member) { return rule.As<UInt_t>("TFADCData::" + member, place); };
  EXPECT_EQ(Vd::GetStnPixelNo(trace.GetPixelNumber()), Rule::TracePixel(place.fSlot));
  EXPECT_EQ(UInt_t(record.fPixelNumber.fPixelNumber), number("fPixelWord"));
  EXPECT_EQ(record.fTraceInfo.fWord, number("fTraceInfo"));
  EXPECT_EQ(record.fMonitor.fPrevThreshold, number("fPrevThreshold"));
  EXPECT_EQ(record.fMonitor.fActualThreshold, number("fActualThreshold"));
  EXPECT_EQ(record.fMonitor.fActualRate, number("fActualRate"));
  EXPECT_EQ(record.fMonitor.fMean, rule.As<Double_t>("TFADCData::fMean", place));
  EXPECT_EQ(record.fMonitor.fVariance, rule.As<Double_t>("TFADCData::fVariance", place));
  EXPECT_EQ(record.fTraceStartTime, rule.As<Float_t>("TFADCData::fTraceStartTime", place));
  std::vector<UShort_t> words;
  for (const auto& word : record.fFadcData)
    words.push_back(word.fWord);
  EXPECT_EQ(words, GetWordsOnFile(rule, place));
}

void ExpectTraces(const OldFile& file, TStnFADCData& data, unsigned event) {
  EXPECT_EQ(data.GetNTraces(), Rule::kNTraces);
  const std::unique_ptr<TIterator> next(data.GetIterator());
  for (unsigned slot = 0; slot < Rule::kNTraces; ++slot) {
    SCOPED_TRACE("trace " + Text(slot));
    const auto* trace = static_cast<TFADCData*>(next->Next());
    ASSERT_NE(trace, nullptr);
    ExpectTrace(file.GetRule(), *trace, {event, slot});
  }
  EXPECT_EQ(next->Next(), nullptr);
}

void ExpectT3(const OldFile& file, TStnEvent& event, unsigned number) {
  const auto* t3 = GetStored<TStnT3Data>(event, "fT3Data");
  ASSERT_EQ(t3 != nullptr, IsOnFile(file, "fT3Data", number));
  if (!t3) return;
  const Rule rule = file.GetRule();
  EXPECT_EQ(t3->GetNPixels(), rule.As<UInt_t>("TStnT3Data::fNPixels", {number}));
  EXPECT_EQ(t3->GetSDPTheta(), rule.As<Float_t>("TStnT3Data::fSDPTheta", {number}));
  EXPECT_EQ(t3->GetSDPPhi(), rule.As<Float_t>("TStnT3Data::fSDPPhi", {number}));
  EXPECT_EQ(t3->GetAzimuthAtGround(), rule.As<Float_t>("TStnT3Data::fAzimuthAtGround", {number}));
  EXPECT_EQ(t3->GetTimeAtGround(), rule.As<Int_t>("TStnT3Data::fTimeAtGround", {number}));
  // Since version 3; before, it is that of a new object.
  EXPECT_EQ(t3->GetTotalSignal(),
            file.fT3 >= 3 ? rule.As<Float_t>("TStnT3Data::fTotalSignal", {number}) : TStnT3Data().GetTotalSignal());
}

/// Axes on file stay. Where there are none, the corrections fill the nominal ones in, but not for station 5.
void ExpectGeometry(const OldFile& file, TStnEvent& event, unsigned number, bool is_corrected) {
  const bool is_on_file = IsOnFile(file, "fGeometryData", number);
  const UInt_t station = file.GetRule().GetStation();
  auto* geometry = GetStored<TStnGeometryData>(event, "fGeometryData");
  ASSERT_EQ(geometry != nullptr, is_on_file || (is_corrected && station != 5));
  for (unsigned mirror = 1; geometry && mirror <= 6; ++mirror) {
    float azimuth = 0, elevation = 0;
    geometry->GetAxisDirection(mirror, azimuth, elevation);
    double nominal_azimuth = 0, nominal_elevation = 0;
    VdUtil::VdGeometry::GetTelescopeAxis(6 * (station - 1) + mirror, nominal_azimuth, nominal_elevation);
    const auto written = [&](const char* member) {
      return file.GetRule().As<Float_t>(std::string("TStnGeometryData::") + member, {number}, mirror - 1);
    };
    EXPECT_EQ(azimuth, is_on_file ? written("fAxisAzimuth") : static_cast<Float_t>(nominal_azimuth));
    EXPECT_EQ(elevation, is_on_file ? written("fAxisElevation") : static_cast<Float_t>(nominal_elevation));
  }
}

void ExpectEvent(const OldFile& file, TStnEvent& event, unsigned number, bool is_corrected) {
  ExpectT3(file, event, number);
  ExpectGeometry(file, event, number, is_corrected);
  EXPECT_EQ(GetStored<TStnTriggerData>(event, "fTriggerData") != nullptr, file.fEvent >= GetSince("fTriggerData"));
  EXPECT_EQ(GetStored<TStnPixelData>(event, "fPixelData") != nullptr,
            file.fEvent >= GetSince("fPixelData") || is_corrected);
  ExpectHeader(file, *event.GetEventHeader(), number);
  ExpectPixelData(file, *event.GetPixelData(), number, is_corrected);
  ExpectTraces(file, *event.GetFADCData(), number);
  ASSERT_NE(GetStored<TStnPixelList>(event, "fPixelList"), nullptr);
  EXPECT_EQ(GetStored<TStnPixelList>(event, "fPixelList")->GetStnNo(), GetListStation(file, number));
  ExpectList(file, *event.GetPixelList(), number, file.GetRule().GetStation());
}

// ---- The tests

struct Source {
  const char* fName;
  const char* fFolder;
};
std::ostream& operator<<(std::ostream& stream, const Source& source) { return stream << source.fName; }

const Source kSources[] = {{"fresh", OLD_FILES}, {"golden", OLD_GOLDEN_FILES}};

class OldFilesTest : public testing::TestWithParam<std::tuple<OldFile, Source, int>> {
 protected:
  OldFilesTest() {
    gRootMessages.clear();
    SetErrorHandler(CollectRootMessage);
    fFile = std::make_unique<TStnEventFile>((std::string(fSource.fFolder) + "/" + fOld.fName + ".root").c_str());
  }
  ~OldFilesTest() override {
    fFile.reset();
    SetErrorHandler(DefaultErrorHandler);
    EXPECT_EQ(gRootMessages, "");
  }

  /// What is logged at this test's print level by a read, which must succeed.
  template <typename Read>
  std::string LogOf(Read read) {
    LogCapture log;
    TStnEvent::SetPrintLevel(fLevel);
    EXPECT_TRUE(read());
    TStnEvent::SetPrintLevel(0);
    return Normalized(log.Take());
  }

  /// One of the objects that lie beside the tree, read by its own streamer.
  template <typename T>
  std::unique_ptr<T> Get(const char* name, unsigned event, std::string* log) {
    std::unique_ptr<T> object;
    *log = LogOf([&] {
      object.reset(fFile->Get<T>(("objects/" + std::string(name) + Text(event)).c_str()));
      return object != nullptr;
    });
    return object;
  }

  UInt_t GetByteCount(const char* name, unsigned event) {
    return fFile->GetDirectory("objects")->GetKey((name + Text(event)).c_str())->GetObjlen() - sizeof(UInt_t);
  }

  const OldFile& fOld = std::get<0>(GetParam());
  const Source& fSource = std::get<1>(GetParam());
  const int fLevel = std::get<2>(GetParam());
  std::unique_ptr<TStnEventFile> fFile;
};

TEST_P(OldFilesTest, ReadEventGivesWhatWasWrittenAndMendsIt) {
  TStnEvent event;
  TStnEvent* address = &event;
  for (unsigned i = 0; i < Rule::kNEvents; ++i) {
    SCOPED_TRACE("event " + Text(i));
    EXPECT_EQ(LogOf([&] { return fFile->ReadEvent(&address); }),
              HeaderLog(fOld, i, fLevel) + ListLog(fOld, fLevel) + CorrectionsLog(fOld, i, fLevel));
    ASSERT_EQ(address, &event);
    ExpectEvent(fOld, event, i, true);
  }
  EXPECT_EQ(fFile->GetNEvents(), Rule::kNEvents);
}

TEST_P(OldFilesTest, ReadEventHeaderGivesTheSameHeaders) {
  TStnEventHeader* header = nullptr;
  for (unsigned i = 0; i < Rule::kNEvents; ++i) {
    SCOPED_TRACE("event " + Text(i));
    EXPECT_EQ(LogOf([&] { return fFile->ReadEventHeader(&header); }), HeaderLog(fOld, i, fLevel));
    ExpectHeader(fOld, *header, i);
  }
}

TEST_P(OldFilesTest, AnEventByItselfIsMendedUpToVersion5) {
  const bool is_corrected = fOld.fEvent <= 5;
  for (unsigned i = 0; i < Rule::kNEvents; ++i) {
    SCOPED_TRACE("event " + Text(i));
    std::string log;
    const auto event = Get<TStnEvent>("Event", i, &log);
    ASSERT_NE(event, nullptr);
    const std::string frame = "DBG:StnEvent/src/StnEvent.cc: TStnEvent::Streamer() - R__v= " + Text(fOld.fEvent) +
                              " R__s= * R__c= " + Text(GetByteCount("Event", i)) + "\n";
    const std::string refusal = "WRN:TStnEvent::Streamer() - no corrections applied\n";
    EXPECT_EQ(log, (fLevel > 0 ? frame : "") + (is_corrected ? "" : refusal) + HeaderLog(fOld, i, fLevel) +
                       ListLog(fOld, fLevel) + (is_corrected ? CorrectionsLog(fOld, i, fLevel) : ""));
    ExpectEvent(fOld, *event, i, is_corrected);
    EXPECT_THAT(Shown(*event),
                testing::HasSubstr("\n Streamer version: " + Text(fOld.fEvent) + "\n Class version   : 5"));
  }
}

TEST_P(OldFilesTest, SubObjectsByThemselvesComeAsWritten) {
  for (unsigned i = 0; i < Rule::kNEvents; ++i) {
    SCOPED_TRACE("event " + Text(i));
    std::string log;
    const auto header = Get<TStnEventHeader>("fEventHeader", i, &log);
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(log, HeaderLog(fOld, i, fLevel));
    ExpectHeader(fOld, *header, i);

    const auto list = Get<TStnPixelList>("fPixelList", i, &log);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(log, ListLog(fOld, fLevel));
    ExpectList(fOld, *list, i, GetListStation(fOld, i));

    if (fOld.fEvent < GetSince("fPixelData")) continue;
    const auto data = Get<TStnPixelData>("fPixelData", i, &log);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(log, "");
    ExpectPixelData(fOld, *data, i, false);
  }
}

/// Nothing of the last header stays in the fields that a version lacks, but for the run time counters: nobody gave these
/// a value before they were stored.
TEST_P(OldFilesTest, AHeaderIsReadOverAnother) {
  TStnEventFile other(OLD_GOLDEN_FILES "/event-5.root");
  const std::unique_ptr<TStnEventHeader> used(other.Get<TStnEventHeader>("objects/fEventHeader0"));
  for (unsigned i = 0; i < Rule::kNEvents; ++i) {
    SCOPED_TRACE("event " + Text(i));
    TStnEventHeader header(*used);
    TKey* key = fFile->GetDirectory("objects")->GetKey(("fEventHeader" + Text(i)).c_str());
    EXPECT_EQ(LogOf([&] { return key->Read(&header) > 0; }), HeaderLog(fOld, i, fLevel));
    if (fOld.fHeader < 9) {
      for (unsigned mirror = 1; mirror <= 6; ++mirror) {
        EXPECT_EQ(header.GetRunTimeCounter(mirror), used->GetRunTimeCounter(mirror));
        header.SetRunTimeCounter(0, mirror);
      }
    }
    ExpectHeader(fOld, header, i);
  }
}

TEST_P(OldFilesTest, RunRecordsComeAsWritten) {
  const Rule rule = fOld.GetRule();
  TStnRunHeader* read_header = nullptr;
  EXPECT_EQ(LogOf([&] { return fFile->ReadRunHeader(&read_header); }), "");
  const std::unique_ptr<TStnRunHeader> header(read_header);
  EXPECT_EQ(old_files::GetRunHeader(*header), old_files::WrittenRunHeader(rule));

  TStnRunTrailer* read_trailer = nullptr;
  EXPECT_EQ(LogOf([&] { return fFile->ReadRunTrailer(&read_trailer); }), "");
  const std::unique_ptr<TStnRunTrailer> trailer(read_trailer);
  EXPECT_EQ(old_files::GetRunTrailer(*trailer), old_files::WrittenRunTrailer(rule, fOld.fTrailer));
}

TEST_P(OldFilesTest, DescriptionsInTheFileHaveTheFieldsOfTheirVersions) {
  const std::unique_ptr<TList> infos(fFile->GetStreamerInfoList());
  infos->SetOwner();
  const auto get_fields = [&](const char* name) {
    std::vector<std::string> fields;
    auto* info = static_cast<TStreamerInfo*>(infos->FindObject(name));
    for (auto* element : *info->GetElements())
      if (!static_cast<TStreamerElement*>(element)->IsBase()) fields.push_back(element->GetName());
    return fields;
  };
  std::vector<std::string> header_fields, event_fields;
  for (const auto& field : old_files::GetHeaderFields())
    if (field.fSince <= fOld.fHeader) header_fields.push_back(field.fName);
  for (const auto& field : kEventFields)
    if (field.fSince <= fOld.fEvent) event_fields.push_back(field.fName);
  if (fOld.fEvent == 6) event_fields.push_back("fWeatherBits");
  EXPECT_EQ(get_fields("TStnEventHeader"), header_fields);
  EXPECT_EQ(get_fields("TStnEvent"), event_fields);
}

std::string GetTestName(const testing::TestParamInfo<OldFilesTest::ParamType>& info) {
  const auto name = std::string(std::get<0>(info.param).fName) + "_" + std::get<1>(info.param).fName + "_print_level_" +
                    Text(std::get<2>(info.param));
  return std::regex_replace(name, std::regex("-"), "_");
}

INSTANTIATE_TEST_SUITE_P(EveryAge, OldFilesTest,
                         testing::Combine(testing::ValuesIn(kFiles), testing::ValuesIn(kSources),
                                          testing::Values(0, 1)),
                         GetTestName);

// ---- Old files written anew

/// All of an event as texts, but for the versions that it was read from.
std::vector<std::string> Describe(TStnEvent& event) {
  std::vector<std::string> texts;
  for (const auto& field : old_files::GetHeaderFields())
    texts.push_back(field.fName + ": " + field.fRead(*event.GetEventHeader()));
  TStnPixelList& list = *event.GetPixelList();
  for (UInt_t i = 0; i < list.GetNumPixels(); ++i)
    texts.push_back("pixel " + Text(Vd::GetPixelNo(list.GetPixel(i))));
  for (unsigned mirror = 1; mirror <= 6; ++mirror)
    if (auto* data = event.GetPixelData()->GetPixelData(mirror)) texts.push_back(Shown(*data));
  const std::unique_ptr<TIterator> next(event.GetFADCData()->GetIterator());
  while (auto* trace = static_cast<TFADCData*>(next->Next()))
    texts.push_back(Shown(*trace));
  for (const auto& field : kEventFields)
    if (!GetStored<TObject>(event, field.fName)) texts.push_back(std::string("no ") + field.fName);
  if (auto* t3 = GetStored<TStnT3Data>(event, "fT3Data")) texts.push_back(Shown(*t3));
  if (auto* geometry = GetStored<TStnGeometryData>(event, "fGeometryData")) texts.push_back(Shown(*geometry));
  return texts;
}

class RewrittenFileTest : public testing::TestWithParam<OldFile> {};

/// What was filled in and mended on the way in stays, and the versions are those of today.
TEST_P(RewrittenFileTest, IsAFileOfTodayWithTheSameContents) {
  std::vector<std::vector<std::string>> read;
  TStnEvent event;
  TStnEvent* address = &event;
  {
    TStnEventFile from((std::string(OLD_FILES "/") + GetParam().fName + ".root").c_str());
    TStnEventFile to("anew.root", "RECREATE");
    while (read.size() < Rule::kNEvents) {
      ASSERT_TRUE(from.ReadEvent(&address));
      read.push_back(Describe(event));
      ASSERT_TRUE(to.WriteEvent(&address));
    }
  }
  TStnEventFile file("anew.root");
  for (const auto& expected : read) {
    ASSERT_TRUE(file.ReadEvent(&address));
    EXPECT_EQ(Describe(event), expected);
    EXPECT_THAT(Shown(*event.GetEventHeader()), testing::HasSubstr("\n Streamer version: 10\n"));
    EXPECT_THAT(Shown(*event.GetPixelList()), testing::HasSubstr("\n Streamer version: 4\n"));
  }
}

INSTANTIATE_TEST_SUITE_P(EveryAge, RewrittenFileTest, testing::ValuesIn(kFiles), [](const auto& info) {
  return std::regex_replace(std::string(info.param.fName), std::regex("-"), "_");
});

// ---- What is not the same for every file

/// ROOT says nothing during its life.
struct QuietRoot {
  QuietRoot() {
    SetErrorHandler([](int, Bool_t, const char*, const char*) {});
  }
  ~QuietRoot() { SetErrorHandler(DefaultErrorHandler); }
};

/// Bytes of a number as a dump shows them.
std::string HexBytes(UInt_t number) {
  char text[16];
  std::snprintf(text, sizeof(text), " %02x %02x %02x %02x", number >> 24, number >> 16 & 0xFF, number >> 8 & 0xFF,
                number & 0xFF);
  return text;
}

class SpecialOldFileTest : public testing::TestWithParam<Source> {
 protected:
  ~SpecialOldFileTest() override { TStnEvent::SetPrintLevel(0); }
  std::string GetPath(const char* name) const { return std::string(GetParam().fFolder) + "/" + name + ".root"; }
};

/// In a process of its own, as the warning comes once in a process.
[[noreturn]] void TellStationRepair(const std::string& path) {
  gSystem->ResetSignals();
  TStnEventFile file(path.c_str());
  auto event = std::make_unique<TStnEvent>();
  auto* address = event.get();
  file.ReadEvent(&address);
  LogCapture log;
  event->GetPixelList();  // nothing at print level 0
  TStnEvent::SetPrintLevel(1);
  event->GetPixelList();
  event->GetPixelList();
  std::cerr << log.Take();
  _exit(0);
}

TEST_P(SpecialOldFileTest, TheRepairOfTheListsStationIsToldOnce) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  for (const char* name : {"list-2", "list-3", "list-of-wrong-station"}) {
    EXPECT_EXIT(TellStationRepair(GetPath(name)), testing::ExitedWithCode(0),
                "^WRN:TStnEvent::GetPixelList\\(\\) - using workaround for TStnPixelList::fStnNo,\n"
                "                          - setting fStnNo= 2 from event header !\n"
                "INF:TStnPixelList::SetStnNo\\(2\\)\n"
                "INF:TStnPixelList::SetStnNo\\(2\\)\n$");
  }
}

/// Its headers are one byte longer than version 5 can be: they are given up and dumped, and the rest is read.
TEST_P(SpecialOldFileTest, AVersion5HeaderOfTheWrongSizeCostsTheHeaderOnly) {
  const OldFile old = {"header-5-long", 5, 2, 2, 2, 2, {}};
  // Two different descriptions of one version, which the process has met by now, are worth a warning to ROOT.
  QuietRoot quiet;
  TStnEventFile file(GetPath(old.fName).c_str());
  TStnEvent event;
  TStnEvent* address = &event;
  for (unsigned i = 0; i < Rule::kNEvents; ++i) {
    LogCapture log;
    testing::internal::CaptureStdout();
    EXPECT_TRUE(file.ReadEvent(&address));
    const std::string dump = testing::internal::GetCapturedStdout();
    EXPECT_EQ(log.Take(),
              "FAT:TStnEventHeader::Streamer() - Error: R__c= 240 doesn't match for V5, reading aborted!\n");
    EXPECT_EQ(std::count(dump.begin(), dump.end(), '\n'), 15 + 1);
    // Version, id and flags of the object, the event's number and station.
    const auto number = old.GetRule().As<UInt_t>("TStnEventHeader::fEventNumber", {i});
    EXPECT_THAT(dump, testing::StartsWith(" 00 01 00 00 00 00 00 00 00 00" + HexBytes(number) + " 02 "));
    TStnEventHeader fresh;
    for (const auto& field : old_files::GetHeaderFields())
      EXPECT_EQ(field.fRead(*event.GetEventHeader()), field.fRead(fresh)) << field.fName;
    ExpectTraces(old, *event.GetFADCData(), i);
    ExpectList(old, *event.GetPixelList(), i, fresh.GetStnNo());
    for (unsigned mirror = 1; mirror <= 6; ++mirror)
      EXPECT_EQ(event.GetPixelData()->GetPixelData(mirror) != nullptr, HasPixelData(old, i, mirror));
  }
}

/// Where the tree's own record lies in a file, behind those of its baskets.
struct Record {
  Long64_t fStart;
  Long64_t fEnd;
};
Record GetTreeRecord(const std::string& path) {
  TFile file(path.c_str());
  const TKey* key = file.GetKey("StnEventTree");
  return {key->GetSeekKey(), key->GetSeekKey() + key->GetNbytes()};
}

/// Number of events that a file gives. Each must be whole.
unsigned CountWholeEvents(const OldFile& old, TStnEventFile& file) {
  LogCapture log;
  TStnEvent event;
  TStnEvent* address = &event;
  for (unsigned i = 0; i < Rule::kNEvents; ++i) {
    if (!file.ReadEvent(&address)) {
      EXPECT_EQ(log.Take(), "ERR:TStnEventFile::GetTree() - no Tree with name 'StnEventTree' found !\n");
      return i;
    }
    ExpectEvent(old, event, i, true);
  }
  EXPECT_EQ(log.Take(), "");
  return Rule::kNEvents;
}

/// A file that was not copied to its end: what ROOT finds again is right, and nothing is made up, least of all from the
/// part of a tree.
TEST_P(SpecialOldFileTest, AFileCutShortGivesWholeEventsOrNone) {
  QuietRoot quiet;
  const OldFile files[] = {{"header-4", 4, 2, 1, 2, 2, {}}, {"event-5", 10, 4, 5, 3, 3, {}}};
  const std::string cut = std::string("cut-") + GetParam().fName + ".root";
  for (const auto& old : files) {
    const auto tree = GetTreeRecord(GetPath(old.fName));
    const auto size = static_cast<Long64_t>(std::filesystem::file_size(GetPath(old.fName)));
    for (const Long64_t kept : {size / 20, size / 4, tree.fStart, tree.fStart + 100, (tree.fStart + tree.fEnd) / 2,
                                tree.fEnd - 1, tree.fEnd, (tree.fEnd + size) / 2, size - 1}) {
      SCOPED_TRACE(std::string(old.fName) + " up to byte " + Text(kept) + " of " + Text(size));
      std::filesystem::copy_file(GetPath(old.fName), cut, std::filesystem::copy_options::overwrite_existing);
      std::filesystem::resize_file(cut, kept);
      TStnEventFile file(cut.c_str());
      EXPECT_EQ(CountWholeEvents(old, file), kept < tree.fEnd ? 0 : Rule::kNEvents);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Special, SpecialOldFileTest, testing::ValuesIn(kSources),
                         [](const auto& info) { return std::string(info.param.fName); });

/// Readers take any other size for damage. It also says that a time stamp takes 14 bytes.
TEST(OldFiles, AVersion5HeaderTakes239Bytes) {
  TStnEventFile file(OLD_FILES "/header-5.root");
  const auto* key = file.GetDirectory("objects")->GetKey("fEventHeader0");
  EXPECT_EQ(key->GetObjlen(), 239 + int(sizeof(UInt_t)));
  EXPECT_EQ(old_files::GetHeaderByteCount(5), 239u);
}

/// The history of the fields, for people.
TEST(OldFiles, TellSinceWhenAFieldExists) {
  for (const auto& field : kEventFields)
    std::cout << "TStnEvent " << field.fName << ": since version " << field.fSince << "\n";
  for (const auto& field : old_files::GetHeaderFields()) {
    std::cout << "TStnEventHeader " << field.fName << ": since version " << field.fSince;
    if (field.fTrusted > field.fSince) std::cout << ", read since version " << field.fTrusted;
    std::cout << "\n";
    EXPECT_GE(field.fTrusted, field.fSince);
  }
}

}  // namespace
