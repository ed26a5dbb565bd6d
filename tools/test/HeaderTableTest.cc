#include "HeaderTable.h"

#include <gtest/gtest.h>

namespace {

using StnTools::FormatTableHead;
using StnTools::FormatTableRow;

std::string GetCell(const TStnEventHeader& header, const std::string& column, size_t width) {
  std::string head = FormatTableHead();
  std::string row = FormatTableRow(3, header) + std::string(200, ' ');
  return row.substr(head.find(column), width);
}

}  // namespace

TEST(HeaderTableTest, NamesItsColumns) {
  EXPECT_EQ(
      FormatTableHead(),
      "  entry     event     GPS sec         ns  UTC                             type          class"
      "                mirrors     T3  quality   offset 1  offset 2  offset 3  offset 4  offset 5  offset 6\n"
      "-------  --------  ----------  ---------  ------------------------------  ------------  -------------------"
      "  -------  -----  --------  --------  --------  --------  --------  --------  --------\n");
}

TEST(HeaderTableTest, ShowsAHeader) {
  TStnEventHeader header;
  header.SetEventNo(17);
  header.SetEventType(TStnEventHeader::kPhysics);
  header.SetEventClass(TStnEventHeader::kMuonAndNoise);
  header.SetMirrorDataPresent(2);
  header.SetMirrorDataPresent(5);
  header.SetT3Id(812);
  header.SetTimeCorrectionParameters(100.F, 0.F);
  header.SetRawMirrorTime(2, VdRoot::TTimeStamp(VdRoot::TTimeStamp::FromGPS(1400000000, 400)));
  header.SetRawMirrorTime(5, VdRoot::TTimeStamp(VdRoot::TTimeStamp::FromGPS(1400000000, 1900)));
  header.AdjustMirrorTimes();
  EXPECT_EQ(FormatTableRow(16, header),
            "     16        17  1400000000        400  2024-05-17T16:53:02.000000400Z  Physics       Muon + Noise"
            "         -2--5-     812  Averaged         -         0         -         -      1500         -\n");
}

TEST(HeaderTableTest, ShowsAnEmptyHeader) {
  EXPECT_EQ(FormatTableRow(0, TStnEventHeader()),
            "      0         0           0          0  1980-01-06T00:00:00.000000000Z  Unknown       Unclassified"
            "         ------       -  NotSet           -         -         -         -         -         -\n");
}

TEST(HeaderTableTest, ShowsValuesThatHaveNoName) {
  TStnEventHeader header;
  header.SetEventType(static_cast<TStnEventHeader::EEventType>(42));
  header.SetEventClass(static_cast<TStnEventHeader::EEventClass>(42));
  EXPECT_EQ(GetCell(header, "type", 12), "Invalid Type");
  EXPECT_EQ(GetCell(header, "class", 19), "Invalid event class");
}
