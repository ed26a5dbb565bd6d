// Writes a run of one event and reads it back, through the installed headers and libraries alone.
#include <MrEvent/MrEvent.h>
#include <StnEvent/StnEvent.h>
#include <StnEvent/StnEventFile.h>
#include <VdRoot/TTimeStamp.h>
#include <VdUtil/VdNumbering.h>

#include <iostream>

int main() {
  TMirrorEvent mirror;
  mirror.GetEventHeader()->SetStnNo(2);
  mirror.GetEventHeader()->SetMirrorNo(3);
  mirror.GetEventHeader()->SetNextPageTime(1000000000);

  TStnEvent event;
  TStnEvent* written = &event;
  written->AddEvent(&mirror);
  written->GetEventHeader()->SetEventNo(77);
  {
    TStnEventFile file("consumer.root", "RECREATE");
    if (!file.WriteEvent(&written)) return 1;
    file.Close();
  }
  TStnEventFile file("consumer.root");
  TStnEvent* read = nullptr;
  if (!file.ReadEvent(&read)) return 2;
  auto* header = read->GetEventHeader();
  std::cout << "station " << header->GetStnNo() << ", event " << header->GetEventNo() << ", mirror bits "
            << header->GetMirrorDataBits() << ", GPS second " << header->GetTimeStamp()->GetGPSSec() << ", last pixel "
            << VdUtil::Vd::kSTN_NEXTPIXELS << std::endl;
  delete read;
  return 0;
}
