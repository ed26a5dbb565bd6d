// ToolTestFiles KIND OUT [IN]: writes a file of a kind that the programs must be able to refuse or to live with.

#include "InputFile.h"
#include "OutputFile.h"
#include "Simulation.h"

#include <TNamed.h>
#include <TTree.h>

#include <unistd.h>

#include <iostream>
#include <map>

namespace {

using namespace StnTools;

using Writer = void (*)(const char* out, const char* in);

SimulationSettings GetSmallSettings() {
  SimulationSettings settings = SimulationSettings::Light();
  settings.fPixels = 2;
  return settings;
}

void WriteForeign(const char* out, const char*) {
  TFile file(out, "RECREATE");
  TNamed("something", "else").Write();
}

// Known names, but of other classes.
void WriteDisguised(const char* out, const char*) {
  TFile file(out, "RECREATE");
  for (const char* name : {"StnEventTree", "RunHeader", "RunTrailer"})
    TNamed(name, "not it").Write();
}

// Five events, of which the first three were saved, and then the writer dies.
void WriteUnclosed(const char* out, const char*) {
  Simulation simulation(GetSmallSettings());
  auto* file = new TStnEventFile(out, "RECREATE");
  auto* event = new TStnEvent;
  for (UInt_t trigger = 1; trigger <= 5; ++trigger) {
    simulation.Simulate(trigger);
    simulation.Build(*event);
    file->WriteEvent(&event);
    if (trigger == 3) file->Get<TTree>("StnEventTree")->AutoSave();
  }
  file->Flush();
  _exit(0);
}

// A run that was neither begun nor ended: three events and nothing else.
void WriteBare(const char* out, const char*) {
  Simulation simulation(GetSmallSettings());
  OutputFile file(out, true, 1);
  for (UInt_t trigger = 1; trigger <= 3; ++trigger) {
    simulation.Simulate(trigger);
    simulation.Build(file.GetEvent());
    file.WriteEvent();
  }
  file.Finish();
}

// The same events, but for one count in one sample of the second event.
void WriteAltered(const char* out, const char* in) {
  InputFile input("ToolTestFiles", in);
  OutputFile output(out, true, 1);
  for (UInt_t entry = 0; entry < input.GetNEvents(); ++entry) {
    output.GetEvent() = *input.ReadEvent(entry);
    std::unique_ptr<TIterator> next(output.GetEvent().GetFADCData()->GetIterator());
    if (entry == 1) ++static_cast<TFADCData*>(next->Next())->GetRecord()->fFadcData[500].fWord;
    output.WriteEvent();
  }
  output.Finish();
}

// A run that is being written, as told by the standard input: "e" writes an event, anything else saves the tree with that
// option of ROOT's. Each step is answered by a line. At the end of the input the file is closed.
void WriteGrowing(const char* out, const char*) {
  Simulation simulation(GetSmallSettings());
  auto* file = new TStnEventFile(out, "CREATE");
  auto* event = new TStnEvent;
  TStnRunHeader header;
  simulation.FillRunHeader(header);
  file->WriteRunHeader(&header);
  UInt_t trigger = 0;
  for (std::string step; std::getline(std::cin, step); std::cout << "done" << std::endl) {
    if (step != "e") {
      file->Get<TTree>("StnEventTree")->AutoSave(step.c_str());
      continue;
    }
    simulation.Simulate(++trigger);
    simulation.Build(*event);
    file->WriteEvent(&event);
  }
  file->Close();
}

void AddEvents(TStnEventFile& file, TStnEvent*& event, UInt_t run, UInt_t n_events) {
  SimulationSettings settings = GetSmallSettings();
  settings.fRun = run;
  Simulation simulation(settings);
  for (UInt_t trigger = 1; trigger <= n_events; ++trigger) {
    simulation.Simulate(trigger);
    simulation.Build(*event);
    file.WriteEvent(&event);
  }
}

// Three events of one run and two of another in one tree, and a trailer that tells of six.
void WriteMixed(const char* out, const char*) {
  TStnEvent the_event;
  TStnEvent* event = &the_event;
  TStnEventFile file(out, "RECREATE");
  AddEvents(file, event, 1, 3);
  AddEvents(file, event, 2, 2);
  TStnRunTrailer trailer;
  trailer.SetNEvents(6);
  file.WriteRunTrailer(&trailer);
}

// Three events of one run, and then a new tree with two of another. The first tree is only taken off the list of keys.
void WriteTwice(const char* out, const char*) {
  TStnEvent the_event;
  TStnEvent* event = &the_event;
  {
    TStnEventFile file(out, "RECREATE");
    AddEvents(file, event, 1, 3);
  }
  TStnEventFile file(out, "UPDATE");
  AddEvents(file, event, 2, 2);
}

}  // namespace

int main(int argc, char** argv) {
  const std::map<std::string, Writer> writers = {
      {"foreign", WriteForeign}, {"disguised", WriteDisguised}, {"unclosed", WriteUnclosed}, {"bare", WriteBare},
      {"altered", WriteAltered}, {"growing", WriteGrowing},     {"mixed", WriteMixed},       {"twice", WriteTwice}};
  if (argc < 3 || writers.count(argv[1]) == 0) return 2;
  writers.at(argv[1])(argv[2], argc > 3 ? argv[3] : "");
  return 0;
}
