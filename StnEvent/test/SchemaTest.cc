#include "EventFiles.h"

#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>

#include <TBranch.h>
#include <TDataMember.h>
#include <TKey.h>
#include <TList.h>
#include <TNamed.h>
#include <TStreamerElement.h>
#include <TStreamerInfo.h>
#include <TTree.h>
#include <TVirtualStreamerInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

// Guards what files are made of. Names, versions and shapes are a contract with every file on disk: a change here needs
// a new class version, and the old form stays readable.

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

struct ClassRow {
  const char* fName;
  Version_t fVersion;
  const char* fHeader;
  bool fHasOwnStreamer;
};

const ClassRow kClasses[] = {
    {"TStnRunHeader", 2, "StnEvent/StnRunHeader.h", false},
    {"TStnRunTrailer", 3, "StnEvent/StnRunTrailer.h", false},
    {"TStnEventHeader", 10, "StnEvent/StnEventHeader.h", true},
    {"TStnFADCData", 1, "StnEvent/StnFadcData.h", false},
    {"TStnGeometryData", 1, "StnEvent/StnGeometryData.h", false},
    {"TStnPixelList", 4, "StnEvent/StnPixelList.h", true},
    {"TStnPixelData", 2, "StnEvent/StnPixelData.h", false},
    {"TStnTriggerData", 1, "StnEvent/StnTriggerData.h", false},
    {"TStnT3Data", 3, "StnEvent/StnT3Data.h", false},
    {"TStnEvent", 5, "StnEvent/StnEvent.h", true},
    {"TStnEventFile", 0, "StnEvent/StnEventFile.h", true},
};

class ClassTest : public testing::TestWithParam<ClassRow> {
 protected:
  TClass* fClass = TClass::GetClass(GetParam().fName);
};

std::string NameOf(const testing::TestParamInfo<ClassRow>& row) { return row.param.fName; }
INSTANTIATE_TEST_SUITE_P(Classes, ClassTest, testing::ValuesIn(kClasses), NameOf);

TEST_P(ClassTest, HasItsVersion) { EXPECT_EQ(fClass->GetClassVersion(), GetParam().fVersion); }

TEST_P(ClassTest, IsDeclaredInItsHeader) { EXPECT_STREQ(fClass->GetDeclFileName(), GetParam().fHeader); }

TEST_P(ClassTest, HasItsKindOfStreamer) { EXPECT_EQ(fClass->GetStreamerFunc() != nullptr, GetParam().fHasOwnStreamer); }

TEST_P(ClassTest, CanBeMadeAndDeletedByName) {
  EXPECT_TRUE(fClass->GetNew());
  EXPECT_TRUE(fClass->GetNewArray());
  EXPECT_TRUE(fClass->GetDelete());
  EXPECT_TRUE(fClass->GetDeleteArray());
  EXPECT_TRUE(fClass->GetDestructor());
}

TEST_P(ClassTest, IsResetAfterAMergeIfItIsAFile) {
  EXPECT_EQ(fClass->GetResetAfterMerge() != nullptr, GetParam().fName == std::string("TStnEventFile"));
}

TEST_P(ClassTest, ObjectsKnowTheirClass) {
  std::unique_ptr<TObject> object(static_cast<TObject*>(fClass->New()));
  EXPECT_EQ(object->IsA(), fClass);
}

TEST(FileClassTest, StaticsHaveTheirTypes) {
  TClass* file_class = TStnEventFile::Class();
  EXPECT_STREQ(file_class->GetDataMember("fgFileList")->GetTypeName(), "list<TStnEventFile*>");
  EXPECT_STREQ(file_class->GetDataMember("fgSignalHandlerList")->GetTypeName(), "list<TStnEventFileSignalHandler*>");
  EXPECT_EQ(TStnEventFile::Class_Version(), 0);
  EXPECT_EQ(TClass::GetClass("TStnEventFileSignalHandler", false, true), nullptr);
}

TEST(TransientTest, MembersHaveTheirComments) {
  const struct {
    const char* fClass;
    const char* fMember;
    const char* fComment;
  } kRows[] = {
      {"TStnEvent", "fStreamerVersion", "! version read from file"},
      {"TStnEvent", "fgPrintLevel", "! print/verbosity level for TStn* classes"},
      {"TStnEventHeader", "fStreamerVersion", "! version read from file"},
      {"TStnEventHeader", "fSecStartOffset", "! Shift of second start"},
      {"TStnEventHeader", "fSecEndOffset", "! Shift of second end"},
      {"TStnEventHeader", "fTicksPerSecond", "! 80 MHz ticks per second"},
      {"TStnEventHeader", "fPPSPhase", "! Delay between PPS and SecondStrobe"},
      {"TStnPixelList", "fStreamerVersion", "! version read from file"},
      {"TStnPixelList", "fPixelNumber", "! pixel number to return"},
      {"TStnPixelData", "fStreamerVersion", "! version read from file"},
      {"TStnFADCData", "fStreamerVersion", "! version read from file"},
  };
  for (const auto& row : kRows) {
    const TDataMember* member = TClass::GetClass(row.fClass)->GetDataMember(row.fMember);
    ASSERT_TRUE(member) << row.fClass << "::" << row.fMember;
    EXPECT_STREQ(member->GetTitle(), row.fComment);
    EXPECT_FALSE(member->IsPersistent());
  }
}

TEST(TransientTest, DictionaryDoesNotKnowTheExpandedPixelList) {
  EXPECT_EQ(TClass::GetClass("TStnPixelList")->GetDataMember("fPixelList"), nullptr);
}

// The description of each class that is stored: name, type with dimensions, comment.
const std::map<std::string, std::vector<std::string>> kStored = {
    {"TStnRunHeader",
     {"TObject BASE: Basic ROOT object", "fStnNumber unsigned char: Stn number (1..4)",
      "fMirrorStatus unsigned char: bit for each mirror in DAQ: bit (id - 1) for mirror id",
      "fRunNo unsigned int: run number of current RUN", "fStartTime VdRoot::TTimeStamp: time when the RUN was started",
      "fUserName TString: name of the user who did DAQ", "fComment TString: RUN specific comment string",
      "fEvbVersion unsigned int: version of the event builder",
      "fStnEventVersion unsigned int: version of this library's data format",
      "fMrEventVersion unsigned int: version of the MrEvent data fmt.",
      "fReadoutVersion unsigned int: version of the readout program"}},
    {"TStnRunTrailer",
     {"TObject BASE: Basic ROOT object",
      "fMirrorStatus unsigned char: bit for each mirror in DAQ: bit (id - 1) for mirror id",
      "fNEvents unsigned int: number of events in the file", "fVetoTimeCounter ULong64_t: accumulated VETO time",
      "fDeadTimeCounter ULong64_t[6]: accumulated, individual DEAD time, in units of 100 ns",
      "fLifeTimeCounter unsigned int[6]: accumulated, individual life time [sec]",
      "fMirrorDaqDeadTime ULong64_t[6]: acc. DAQ dead times, in units of 100 ns",
      "fMirrorNSkippedTriggers unsigned int[6]: triggers skipped, per mirror",
      "fStnDaqDeadTime ULong64_t: DAQ dead time of the station, in units of 100 ns",
      "fNT3 unsigned int: total number of T3, incl. rejected",
      "fNRejectedT3 unsigned int: number of T3 rejected by T3-CKAS VETO",
      "fTotalT3DeadTime float: acc. deadtime by T3-CKAS VETO, in seconds",
      "fStartTime VdRoot::TTimeStamp: timestamp when the RUN was started",
      "fStopTime VdRoot::TTimeStamp: timestamp when the RUN was stopped",
      "fTotalTime unsigned int: total number of seconds of the RUN"}},
    {"TStnEventHeader",
     {"TObject BASE: Basic ROOT object",
      "fEventNumber unsigned int: the internal number of the event",
      "fStnNumber unsigned char: official station number",
      "fEventClass int: T3 class assigned to this event",
      "fEventType int: type of event, assigned by the trigger",
      "fMirrorDataBits unsigned char: one bit for each mirror present in the event",
      "fMirrorStatus unsigned char: one bit for each mirror in the DAQ",
      "fRunNo unsigned int: the number of this run",
      "fTriggerSource unsigned char[6]: mirrors' actual trigger sources",
      "fStatusBits unsigned int: status bits, EHeaderStatusBits",
      "fTimeStamp VdRoot::TTimeStamp: time and date of the event, corrected",
      "fTimeCorrectionQuality int: quality of the time correction",
      "fT10Mhz float: average duration of a 10 MHz cycle",
      "fOffset float: offset between second strobe and real second",
      "fMirrorTimeOffset unsigned int[6]: adjusted offsets of the mirrors against fTimeStamp",
      "fRawMirrorTime VdRoot::TTimeStamp[6]: uncorrected mirror times",
      "fTriggerTimeStamp unsigned int[6]: the hardware's trigger time stamp, as it came",
      "fDeadTimeCounter unsigned int[2][6]: per mirror dead time, in units of 100 ns",
      "fVetoTimeCounter unsigned int[2][1]: accumulated veto time of the station, in units of 100 ns",
      "fRunTimeCounter ULong64_t[6]: per mirror run time, in units of 100 ns",
      "fStnDaqDeadTime ULong64_t: dead time of the station's DAQ, in units of 100 ns",
      "fMirrorDaqDeadTime ULong64_t[6]: per mirror DAQ dead time, in units of 100 ns",
      "fMirrorNSkippedTriggers unsigned int[6]: triggers skipped by each mirror",
      "fMirrorEventLabel int[6]: label of each mirror's event",
      "fT3Id unsigned short: T3 id, assigned by the T3 process; 0 means no T3",
      "fT3TimeAtGround VdRoot::TTimeStamp: T3 time at ground",
      "fNRejectedT3 unsigned int: number of T3s rejected so far",
      "fTotalT3DeadTime float: total T3 dead time, in seconds"}},
    {"TStnFADCData",
     {"TObject BASE: Basic ROOT object", "fNTraces unsigned int: Number of FADC traces stored",
      "fFADCData TObjArray*: Container to store the FADC traces"}},
    {"TStnGeometryData",
     {"TObject BASE: Basic ROOT object", "fAxisAzimuth float[6]: axis azimuth values",
      "fAxisElevation float[6]: axis elevation values"}},
    {"TStnPixelList",
     {"TObject BASE: Basic ROOT object", "fStnNo unsigned int: Stn number (0..3)",
      "fNPixels unsigned int: number of pixels in list", "fPixelVectorSize unsigned int: size of the pixel bit vector",
      "fPixelVector unsigned int*: [fPixelVectorSize]"}},
    {"TStnPixelData",
     {"TObject BASE: Basic ROOT object", "fPixelData TMirrorPixelData*[6]: Pointers to PixelData obj."}},
    {"TStnTriggerData", {"TObject BASE: Basic ROOT object"}},
    {"TStnT3Data",
     {"TObject BASE: Basic ROOT object", "fNPixels int: count", "fSDPTheta float: radian", "fSDPPhi float: radian",
      "fAzimuthAtGround float: radian", "fTimeAtGround int: nanosecond", "fTotalSignal float: "}},
    {"TStnEvent",
     {"TObject BASE: Basic ROOT object", "fEventHeader TStnEventHeader*: station event header",
      "fFADCData TStnFADCData*: container of FADC traces", "fPixelList TStnPixelList*: (compressed) list of pixels",
      "fPixelData TStnPixelData*: container of TMirrorPixelData",
      "fTriggerData TStnTriggerData*: trigger info (unused)", "fT3Data TStnT3Data*: T3 info (used)",
      "fGeometryData TStnGeometryData*: geometry information"}},
};

std::string Describe(const TStreamerElement& element) {
  std::string text = std::string(element.GetName()) + " " + element.GetTypeName();
  for (Int_t i = 0; i < element.GetArrayDim(); ++i)
    text += "[" + std::to_string(element.GetMaxIndex(i)) + "]";
  return text + ": " + element.GetTitle();
}

/// A file with every kind of object that a station file holds.
class StoredTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    TStnEventFile file("schema.root", "RECREATE");
    TStnEvent event;
    TStnEvent* address = &event;
    FillEvent(event, 0);
    event.GetT3Data();
    event.GetTriggerData();
    file.WriteEvent(&address);
    TStnRunHeader header;
    file.WriteRunHeader(&header);
    TStnRunTrailer trailer;
    file.WriteRunTrailer(&trailer);
  }

  TTree* GetTree() { return fFile.Get<TTree>("StnEventTree"); }

  TFile fFile{"schema.root"};
};

TEST_F(StoredTest, FileDescribesItsClasses) {
  std::unique_ptr<TList> infos(fFile.GetStreamerInfoList());
  infos->SetOwner();
  for (const auto& [name, elements] : kStored) {
    const auto info = dynamic_cast<TStreamerInfo*>(infos->FindObject(name.c_str()));
    ASSERT_TRUE(info) << name;
    std::vector<std::string> described;
    for (const TObject* element : *info->GetElements())
      described.push_back(Describe(*static_cast<const TStreamerElement*>(element)));
    EXPECT_THAT(described, ElementsAreArray(elements)) << name;
    EXPECT_EQ(info->GetClassVersion(), TClass::GetClass(name.c_str())->GetClassVersion());
  }
}

TEST_F(StoredTest, FileHoldsTheThreeObjects) {
  std::vector<std::string> objects;
  for (const TObject* key : *fFile.GetListOfKeys())
    objects.push_back(static_cast<const TKey*>(key)->GetClassName() + std::string(" ") + key->GetName());
  EXPECT_THAT(objects, testing::UnorderedElementsAre("TTree StnEventTree", "TStnRunHeader RunHeader",
                                                     "TStnRunTrailer RunTrailer"));
}

TEST_F(StoredTest, TreeHasItsProperties) {
  EXPECT_STREQ(GetTree()->GetTitle(), "TStnEvent tree");
  EXPECT_EQ(GetTree()->GetAutoSave(), 20000);
  EXPECT_EQ(GetTree()->GetListOfBranches()->GetEntries(), 1);
}

TEST_F(StoredTest, BranchIsSplitIntoTheMembersOfTheEvent) {
  TBranch* branch = GetTree()->GetBranch("StnEvent");
  ASSERT_TRUE(branch);
  EXPECT_STREQ(branch->GetClassName(), "TStnEvent");
  EXPECT_EQ(branch->GetSplitLevel(), 1);
  std::vector<std::string> names;
  for (const TObject* sub_branch : *branch->GetListOfBranches())
    names.push_back(sub_branch->GetName());
  EXPECT_THAT(names, ElementsAre("TObject", "fEventHeader", "fFADCData", "fPixelList", "fPixelData", "fTriggerData",
                                 "fT3Data", "fGeometryData"));
}

TEST_F(StoredTest, SubObjectsAreStoredWhole) {
  for (TObject* sub_branch : *GetTree()->GetBranch("StnEvent")->GetListOfBranches())
    EXPECT_EQ(static_cast<TBranch*>(sub_branch)->GetListOfBranches()->GetEntries(), 0) << sub_branch->GetName();
}

TEST_F(StoredTest, BasketsHaveTheirSizes) {
  // ROOT makes more of 500, the size that the others are made with.
  TNamed object;
  TTree plain("plain", "");
  const Int_t usual_size = plain.Branch("object", &object, 500, 0)->GetBasketSize();
  const std::map<std::string, Int_t> kSizes = {{"fFADCData", 500000}, {"fPixelData", 50000}, {"fPixelList", 5000}};
  for (TObject* sub_branch : *GetTree()->GetBranch("StnEvent")->GetListOfBranches()) {
    const auto size = kSizes.find(sub_branch->GetName());
    EXPECT_EQ(static_cast<TBranch*>(sub_branch)->GetBasketSize(), size == kSizes.end() ? usual_size : size->second)
        << sub_branch->GetName();
  }
}

TEST(RunTrailerSchemaTest, EveryFieldComesBack) {
  TStnRunTrailer written;
  for (UInt_t mirror = 1; mirror <= 6; ++mirror) {
    written.SetMirrorPresent(mirror);
    written.SetDeadTimeCounter(0x100000000ULL + mirror, mirror);
    written.SetLifeTimeCounter(10 + mirror, mirror);
    written.SetMirrorDaqDeadTime(0x200000000ULL + mirror, mirror);
    written.SetMirrorNSkippedTriggers(20 + mirror, mirror);
  }
  written.SetNEvents(1);
  written.SetVetoTimeCounter(0x300000000ULL);
  written.SetStnDaqDeadTime(0x400000000ULL);
  written.SetNumberOfT3(30);
  written.SetNumberOfRejectedT3(31);
  written.SetTotalT3DeadTime(0.5);
  written.SetStartTime(VdRoot::TTimeStamp(100, 1));
  written.SetStopTime(VdRoot::TTimeStamp(200, 2));
  written.SetTotalTime(0);
  {
    TStnEventFile file("trailer.root", "RECREATE");
    file.WriteRunTrailer(&written);
  }
  TStnEventFile file("trailer.root");
  TStnRunTrailer* read = nullptr;
  ASSERT_TRUE(file.ReadRunTrailer(&read));
  EXPECT_EQ(read->GetMirrorStatus(), 0x3fu);
  EXPECT_EQ(read->GetNEvents(), 1u);
  EXPECT_EQ(read->GetVetoTimeCounter(), 0x300000000ULL);
  EXPECT_EQ(read->GetStnDaqDeadTime(), 0x400000000ULL);
  EXPECT_EQ(read->GetNumberOfT3(), 30u);
  EXPECT_EQ(read->GetNumberOfRejectedT3(), 31u);
  EXPECT_EQ(read->GetTotalT3DeadTime(), 0.5f);
  EXPECT_EQ(read->GetStartTime().GetSec(), 100);
  EXPECT_EQ(read->GetStartTime().GetNanoSec(), 1);
  EXPECT_EQ(read->GetStopTime().GetSec(), 200);
  EXPECT_EQ(read->GetStopTime().GetNanoSec(), 2);
  EXPECT_EQ(read->GetTotalTime(), 100u);
  for (UInt_t mirror = 1; mirror <= 6; ++mirror) {
    EXPECT_EQ(read->GetDeadTimeCounter(mirror), 0x100000000ULL + mirror);
    EXPECT_EQ(read->GetLifeTimeCounter(mirror), 10 + mirror);
    EXPECT_EQ(read->GetMirrorDaqDeadTime(mirror), 0x200000000ULL + mirror);
    EXPECT_EQ(read->GetMirrorNSkippedTriggers(mirror), 20 + mirror);
  }
  delete read;
}

// When this fails, the layout of a class has changed: give it a new version, keep the old form readable, and only then
// enter the new row.
TEST(ChecksumTest, LayoutsChangeOnlyWithTheVersion) {
  const struct {
    const char* fClass;
    Version_t fVersion;
    UInt_t fChecksum;
  } kLayouts[] = {
      {"TStnRunHeader", 2, 0xec98a907},
      {"TStnRunTrailer", 3, 0xa97df384},
      {"TStnEventHeader", 10, 0x45658c42},
      {"TStnFADCData", 1, 0x2d05249d},
      {"TStnGeometryData", 1, 0x957e9e0e},
      {"TStnPixelList", 4, 0x00f840ad},
      {"TStnPixelData", 2, 0x043cae38},
      {"TStnTriggerData", 1, 0xf6d77d2b},
      {"TStnT3Data", 3, 0x8105443d},
      {"TStnEvent", 5, 0x31bdeaee},
      {"TStnEventFile", 0, 0x30db12cc},
      {"VdRoot::TTimeStamp", 1, 0xb38f6d4e},
      {"TMirrorEventHeader", 1, 0xf874f115},
      {"TMirrorPixelData", 1, 0x9122fbd3},
      {"TMirrorPixelList", 1, 0xd0d05c1e},
      {"TFADCData", 2, 0x8f2b4118},
      {"TMirrorFADCData", 1, 0x4ff9134f},
      {"TMirrorEvent", 1, 0x4f335125},
      {"TMirrorRunTrailer", 1, 0x84ba432a},
      {"TMirrorEventHeader::_MirrorEventHeaderRec", 2, 0xa79a5cda},
      {"TMirrorRunTrailer::_MirrorRunTrailerRec", 2, 0x95239e27},
  };
  for (const auto& layout : kLayouts) {
    TClass* description = TClass::GetClass(layout.fClass);
    ASSERT_TRUE(description) << layout.fClass;
    EXPECT_EQ(description->GetClassVersion(), layout.fVersion) << layout.fClass;
    EXPECT_EQ(description->GetCheckSum(), layout.fChecksum)
        << layout.fClass << " is now 0x" << std::hex << description->GetCheckSum();
  }
}

}  // namespace
