// Every header column against `ReadEventHeader`, for files of every age.

#include <StnFrame/HeaderColumns.h>

#include <StnEvent/StnEventFile.h>
#include <old/Fields.h>

#include <TBranch.h>
#include <TFile.h>
#include <TROOT.h>
#include <TStreamerElement.h>
#include <TTree.h>
#include <TVirtualStreamerInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

using ROOT::RVec;
using ROOT::RDF::RNode;
using Strings = std::vector<std::string>;

namespace {

Strings GetFiles() {
  Strings files{FILES "/golden/run.root"};
  for (const char* name : {"header-4", "header-5", "header-6", "header-7", "header-8", "header-9", "event-5"})
    files.push_back(std::string(FILES "/old/golden/") + name + ".root");
  return files;
}

// ---- Rows as texts, "name=value" for each field

const std::set<std::string> kTimes = {"fTimeStamp", "fRawMirrorTime", "fT3TimeAtGround"};

std::string TimeText(Long64_t ns) {
  if (ns == StnEvent::RDF::kNoTime) return "-";
  return old_files::Text(ns / 1000000000) + "." + old_files::Text(ns % 1000000000);
}

template <typename T>
std::string ValueText(const std::string& name, const T& value) {
  return kTimes.count(name) ? TimeText(Long64_t(value)) : old_files::Text(value);
}

template <typename T>
std::string ValueText(const std::string& name, const RVec<T>& values) {
  return old_files::Join(values.size(), [&](unsigned i) { return ValueText(name, values[i]); });
}

Strings ReadRows(const Strings& files) {
  Strings rows;
  for (const auto& name : files) {
    TStnEventFile file(name.c_str());
    TStnEventHeader* header = nullptr;
    for (UInt_t left = file.GetNEvents(); left > 0; --left) {
      EXPECT_TRUE(file.ReadEventHeader(&header));
      std::string row;
      for (const auto& field : old_files::GetHeaderFields())
        row += field.fName + "=" + field.fRead(*header) + "\n";
      rows.push_back(row);
    }
  }
  return rows;
}

/// Has one column read, as texts for the rows; `T` must be its type.
using BookedColumn = std::function<std::string(size_t)>;

template <typename T>
BookedColumn Book(RNode node, const std::string& name) {
  return [taken = node.Take<T>(name), name](size_t row) mutable {
    return name + "=" + ValueText(name, taken->at(row)) + "\n";
  };
}

std::vector<BookedColumn> BookAll(RNode node) {
  return {
      Book<UInt_t>(node, "fEventNumber"),
      Book<UInt_t>(node, "fStnNumber"),
      Book<Int_t>(node, "fEventClass"),
      Book<Int_t>(node, "fEventType"),
      Book<UInt_t>(node, "fMirrorDataBits"),
      Book<UInt_t>(node, "fMirrorStatus"),
      Book<UInt_t>(node, "fRunNo"),
      Book<RVec<UInt_t>>(node, "fTriggerSource"),
      Book<UInt_t>(node, "fStatusBits"),
      Book<Long64_t>(node, "fTimeStamp"),
      Book<Int_t>(node, "fTimeCorrectionQuality"),
      Book<Float_t>(node, "fT10Mhz"),
      Book<Float_t>(node, "fOffset"),
      Book<RVec<UInt_t>>(node, "fMirrorTimeOffset"),
      Book<RVec<Long64_t>>(node, "fRawMirrorTime"),
      Book<RVec<UInt_t>>(node, "fTriggerTimeStamp"),
      Book<RVec<ULong64_t>>(node, "fDeadTimeCounter"),
      Book<ULong64_t>(node, "fVetoTimeCounter"),
      Book<RVec<ULong64_t>>(node, "fRunTimeCounter"),
      Book<ULong64_t>(node, "fStnDaqDeadTime"),
      Book<RVec<ULong64_t>>(node, "fMirrorDaqDeadTime"),
      Book<RVec<UInt_t>>(node, "fMirrorNSkippedTriggers"),
      Book<RVec<Int_t>>(node, "fMirrorEventLabel"),
      Book<UShort_t>(node, "fT3Id"),
      Book<Long64_t>(node, "fT3TimeAtGround"),
      Book<UInt_t>(node, "fNRejectedT3"),
      Book<Float_t>(node, "fTotalT3DeadTime"),
  };
}

Strings FrameRows(RNode node) {
  auto columns = BookAll(node);
  Strings rows(*node.Count());
  for (size_t row = 0; row < rows.size(); ++row)
    for (auto& column : columns)
      rows[row] += column(row);
  return rows;
}

RNode MakeFrame(const Strings& files) { return StnEvent::RDF::HeaderColumns(ROOT::RDataFrame("StnEventTree", files)); }

Strings Sorted(Strings rows) {
  std::sort(rows.begin(), rows.end());
  return rows;
}

/// Two threads for implicit multi-threading while it lives.
struct TwoThreads {
  TwoThreads() { ROOT::EnableImplicitMT(2); }
  ~TwoThreads() { ROOT::DisableImplicitMT(); }
};

}  // namespace

TEST(HeaderColumns, AreThePersistentMembersOfTheHeader) {
  Strings members;
  for (const TObject* element : *TStnEventHeader::Class()->GetStreamerInfo()->GetElements())
    if (!static_cast<const TStreamerElement*>(element)->IsBase()) members.push_back(element->GetName());
  EXPECT_THAT(MakeFrame(GetFiles()).GetDefinedColumnNames(), testing::ElementsAreArray(members));
}

TEST(HeaderColumns, GiveWhatReadEventHeaderGivesInEveryFile) {
  for (const auto& file : GetFiles()) {
    SCOPED_TRACE(file);
    EXPECT_EQ(FrameRows(MakeFrame({file})), ReadRows({file}));
  }
}

TEST(HeaderColumns, GiveTheSameOverAChainOfFilesOfEveryAge) {
  EXPECT_EQ(FrameRows(MakeFrame(GetFiles())), ReadRows(GetFiles()));
}

TEST(HeaderColumns, GiveTheSameRowsInTwoThreads) {
  const auto expected = Sorted(ReadRows(GetFiles()));
  TwoThreads threads;
  for (int round = 0; round < 3; ++round)
    EXPECT_EQ(Sorted(FrameRows(MakeFrame(GetFiles()))), expected);
}

TEST(HeaderColumns, CanBeUsedInExpressions) {
  auto frame = MakeFrame({FILES "/golden/run.root"});
  auto late = frame.Filter("fTimeStamp >= 1715964783859905908 && fRawMirrorTime[4] > fRawMirrorTime[0]").Count();
  auto run_time = frame.Filter("fEventNumber == 1").Max<RVec<ULong64_t>>("fRunTimeCounter");
  EXPECT_GT(*late, 0u);
  EXPECT_EQ(*run_time, 18599059u);
}

TEST(HeaderColumns, ReadNoBasketsButThoseOfHeaders) {
  TFile file(FILES "/golden/run.root");
  auto* tree = file.Get<TTree>("StnEventTree");
  auto sum = StnEvent::RDF::HeaderColumns(ROOT::RDataFrame(*tree)).Sum<UInt_t>("fEventNumber");
  const auto before = file.GetBytesRead();
  EXPECT_EQ(*sum, 15u);
  EXPECT_EQ(file.GetBytesRead() - before, tree->GetBranch("fEventHeader")->GetZipBytes());
}

TEST(HeaderColumns, RefuseAFrameWithoutHeaders) {
  EXPECT_THROW(StnEvent::RDF::HeaderColumns(ROOT::RDataFrame(3)), std::runtime_error);
}
