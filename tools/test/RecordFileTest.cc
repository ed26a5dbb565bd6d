#include "RecordFile.h"

#include <TFile.h>
#include <TNamed.h>
#include <TTree.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>

namespace {

using namespace StnTools;

const char* const kName = "records.root";

std::string ReadWhole(const char* name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void Write(const std::string& bytes) { std::ofstream(kName, std::ios::binary) << bytes; }

// Two objects under their names, and a tree "tree" with one branch "number" in several baskets.
void WriteFile(int compression) {
  TFile file(kName, "RECREATE", "", compression);
  TNamed("first", std::string(1000, 'x').c_str()).Write();
  TNamed("second", std::string(1000, 'y').c_str()).Write();
  auto* tree = new TTree("tree", "");
  int number = 0;
  tree->Branch("number", &number, 1000, 0);
  for (; number < 600; ++number)
    tree->Fill();
  file.Write();
}

const Record* Find(const RecordFile& file, const std::string& name) {
  auto record = std::find_if(file.GetRecords().begin(), file.GetRecords().end(),
                             [&name](const Record& candidate) { return candidate.fName == name; });
  return record == file.GetRecords().end() ? nullptr : &*record;
}

class RecordFileTest : public testing::TestWithParam<int> {
 protected:
  void SetUp() override { WriteFile(GetParam()); }
};

TEST_P(RecordFileTest, FindsRecordsByTheirKeys) {
  RecordFile file(kName);
  const Record* record = Find(file, "first");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->fClass, "TNamed");
  EXPECT_EQ(record->fCycle, 1);
  EXPECT_TRUE(record->fIsWhole);
  EXPECT_FALSE(record->IsBasket());
  EXPECT_TRUE(file.GetLost().empty());
}

TEST_P(RecordFileTest, FindsBaskets) {
  RecordFile file(kName);
  std::uint32_t n_entries = 0;
  int number = 0;
  for (const Record& record : file.GetRecords()) {
    if (!record.IsBasket()) continue;
    EXPECT_EQ(record.fName, "number");
    EXPECT_EQ(record.fTitle, "tree");
    EXPECT_EQ(record.fCycle, number++);
    n_entries += record.fNEntries;
  }
  EXPECT_GT(number, 1);
  EXPECT_EQ(n_entries, 600u);
}

TEST_P(RecordFileTest, UnpacksARecord) {
  RecordFile file(kName);
  auto bytes = file.Read(*Find(file, "first"));
  ASSERT_TRUE(bytes);
  EXPECT_NE(std::string(bytes->begin(), bytes->end()).find(std::string(1000, 'x')), std::string::npos);
}

TEST_P(RecordFileTest, LeavesFreeSpaceOut) {
  TFile("records.root", "UPDATE").Delete("first;1");
  RecordFile file(kName);
  EXPECT_EQ(Find(file, "first"), nullptr);
  EXPECT_NE(Find(file, "second"), nullptr);
  EXPECT_TRUE(file.GetLost().empty());
}

TEST_P(RecordFileTest, KnowsARecordThatIsCut) {
  std::string bytes = ReadWhole(kName);
  const Record cut = *Find(RecordFile(kName), "second");
  Write(bytes.substr(0, cut.GetEnd() - 1));
  RecordFile file(kName);
  const Record* record = Find(file, "second");
  ASSERT_NE(record, nullptr);
  EXPECT_FALSE(record->fIsWhole);
  EXPECT_FALSE(file.Read(*record));
  EXPECT_TRUE(file.Read(*Find(file, "first")));
}

TEST_P(RecordFileTest, GoesOnBehindADamagedKey) {
  std::string bytes = ReadWhole(kName);
  const Record damaged = *Find(RecordFile(kName), "first");
  bytes[damaged.fSeek + 20] ^= 1;  // its own place
  Write(bytes);
  RecordFile file(kName);
  EXPECT_EQ(Find(file, "first"), nullptr);
  EXPECT_NE(Find(file, "second"), nullptr);
  ASSERT_EQ(file.GetLost().size(), 1u);
  EXPECT_EQ(file.GetLost()[0].fBegin, damaged.fSeek);
  EXPECT_EQ(file.GetLost()[0].fEnd, damaged.GetEnd());
}

TEST_P(RecordFileTest, PassesOverNoRecordBehindAWrongSize) {
  std::string bytes = ReadWhole(kName);
  bytes[Find(RecordFile(kName), "first")->fSeek + 2] ^= 0x10;
  Write(bytes);
  RecordFile file(kName);
  const Record* damaged = Find(file, "first");
  ASSERT_NE(damaged, nullptr);
  EXPECT_FALSE(file.Read(*damaged));
  ASSERT_NE(Find(file, "second"), nullptr);
  EXPECT_TRUE(file.Read(*Find(file, "second")));
}

TEST_P(RecordFileTest, FindsRecordsBehindAHole) {
  std::string bytes = ReadWhole(kName);
  const Record lost = *Find(RecordFile(kName), "first");
  std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(lost.fSeek), lost.fSize, '\0');
  Write(bytes);
  EXPECT_NE(Find(RecordFile(kName), "second"), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Compressions, RecordFileTest, testing::Values(0, 1, 404, 505));

TEST(RecordFile, NoticesDamageInWhatIsCompressed) {
  WriteFile(1);
  std::string bytes = ReadWhole(kName);
  const Record record = *Find(RecordFile(kName), "first");
  bytes[record.fSeek + record.fKeySize + 15] ^= 1;
  Write(bytes);
  testing::internal::CaptureStderr();  // ROOT's unpacking has a word of its own
  RecordFile file(kName);
  EXPECT_FALSE(file.Read(*Find(file, "first")));
  testing::internal::GetCapturedStderr();
}

TEST(RecordFile, NoticesAWrongSizeOfWhatIsUnpacked) {
  WriteFile(1);
  std::string bytes = ReadWhole(kName);
  bytes[Find(RecordFile(kName), "first")->fSeek + 7] ^= 1;
  Write(bytes);
  RecordFile file(kName);
  EXPECT_FALSE(file.Read(*Find(file, "first")));
}

TEST(RecordFile, FindsPlacesBeyondTheFirstGigabytes) {
  WriteFile(1);
  std::string bytes = ReadWhole(kName);
  const Record record = *Find(RecordFile(kName), "number");
  const std::uint64_t place = (5ULL << 30) + 17;
  std::string moved = bytes.substr(record.fSeek, record.fSize);
  for (int i = 0; i < 8; ++i)
    moved[18 + i] = static_cast<char>(place >> (56 - 8 * i));
  {
    std::ofstream file(kName, std::ios::binary);
    file << bytes.substr(0, 100);
    file.seekp(static_cast<std::streamoff>(place));
    file << moved;
  }
  RecordFile file(kName);
  std::remove(kName);
  ASSERT_EQ(file.GetRecords().size(), 1u);
  EXPECT_EQ(file.GetRecords()[0].fSeek, place);
  EXPECT_TRUE(file.Read(file.GetRecords()[0]));
}

}  // namespace
