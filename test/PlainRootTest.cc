// A station file in the hands of ROOT alone, without this library: the class descriptions in the file are enough.

#include <TClass.h>
#include <TFile.h>
#include <TInterpreter.h>
#include <TTree.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

class PlainRootTest : public testing::Test {
 protected:
  PlainRootTest() {
    gInterpreter->SetClassAutoLoading(false);
    fFile.reset(TFile::Open(GOLDEN_FILE));
    fTree = fFile->Get<TTree>("StnEventTree");
    std::ifstream(GOLDEN_JSON) >> fValues;
  }

  /// Values of an expression over the tree, entry by entry, with all instances of an entry.
  std::vector<std::vector<double>> Evaluate(const char* expression) {
    std::vector<std::vector<double>> values;
    for (Long64_t entry = 0; entry < fTree->GetEntries(); ++entry) {
      const Long64_t n = fTree->Draw(expression, "", "goff", 1, entry);
      values.emplace_back(fTree->GetV1(), fTree->GetV1() + n);
    }
    return values;
  }

  std::unique_ptr<TFile> fFile;
  TTree* fTree = nullptr;
  nlohmann::json fValues;
};

TEST_F(PlainRootTest, KnowsTheClassesFromTheFileAlone) {
  ASSERT_NE(fTree, nullptr);
  auto* header = TClass::GetClass("TStnEventHeader");
  ASSERT_NE(header, nullptr);
  EXPECT_FALSE(header->IsLoaded());
  EXPECT_EQ(fTree->GetEntries(), Long64_t(fValues["events"].size()));
}

TEST_F(PlainRootTest, ReadsHeaderValues) {
  for (const auto& [expression, name] : {std::pair("fEventNumber", "event"), std::pair("fStnNumber", "station"),
                                         std::pair("fEventClass", "class"), std::pair("fRunNo", "run")}) {
    const auto found = Evaluate((std::string("fEventHeader.") + expression).c_str());
    for (size_t entry = 0; entry < found.size(); ++entry)
      EXPECT_EQ(found[entry], std::vector<double>{fValues["events"][entry]["header"][name].get<double>()})
          << expression << " of entry " << entry;
  }
}

TEST_F(PlainRootTest, ReadsTheWordsOfThePixelList) {
  const auto words = Evaluate("fPixelList.fPixelVector");
  for (size_t entry = 0; entry < words.size(); ++entry) {
    std::vector<int> pixels;
    for (size_t bit = 0; bit < 32 * words[entry].size(); ++bit)
      if (unsigned(words[entry][bit / 32]) >> bit % 32 & 1) pixels.push_back(int(bit) + 1);
    EXPECT_EQ(pixels, fValues["events"][entry]["pixels"].get<std::vector<int>>()) << "entry " << entry;
  }
}

}  // namespace
