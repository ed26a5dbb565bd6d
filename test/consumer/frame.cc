// Fills a histogram of one header column through the installed library for data frames.
#include <StnFrame/HeaderColumns.h>

#include <iostream>

int main() {
  auto frame = StnEvent::RDF::HeaderColumns(ROOT::RDataFrame("StnEventTree", "consumer.root"));
  auto histogram = frame.Filter("fMirrorDataBits == 4").Histo1D<UInt_t>("fEventNumber");
  std::cout << histogram->GetEntries() << " entries, mean event number " << histogram->GetMean() << std::endl;
  return 0;
}
