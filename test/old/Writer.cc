// The one main program of all writers of old files. It knows no class: those that it is linked with decide what it
// writes, and their descriptions tell it where each member is.

#include "Members.h"
#include "Rule.h"

#include <TClass.h>
#include <TFile.h>
#include <TString.h>
#include <TTree.h>

#include <iostream>
#include <string>
#include <vector>

using namespace old_files;

namespace {

/// Makes objects and fills them by the rule, with all that they point at.
class Maker {
 public:
  explicit Maker(const Rule& rule) : fRule(rule) {}

  TObject* Make(const char* class_name, Rule::Place place) {
    TClass* description = TClass::GetClass(class_name);
    if (!description || !description->HasDictionary()) Fatal("Maker", "no class %s", class_name);
    auto* object = static_cast<TObject*>(description->New());
    ForEachMember(description, object, [&](const std::string& name, char* member, TStreamerElement& element) {
      FillMember(member, name, element, place);
    });
    return object;
  }

 private:
  void FillMember(char* member, const std::string& name, TStreamerElement& element, Rule::Place place) {
    if (element.InheritsFrom(TStreamerBasicPointer::Class())) {
      const std::string owner = name.substr(0, name.rfind(':') + 1);
      const auto count = fRule.As<Int_t>(owner + static_cast<TStreamerBasicPointer&>(element).GetCountName(), place);
      auto*& array = *reinterpret_cast<char**>(member);
      array = new char[count * sizeof(Double_t)];
      FillNumbers(array, name, element, count, place);
    } else if (element.InheritsFrom(TStreamerBasicType::Class())) {
      FillNumbers(member, name, element, GetLength(element), place);
    } else if (element.InheritsFrom(TStreamerString::Class())) {
      *reinterpret_cast<TString*>(member) = name;
    } else if (!element.IsaPointer()) {
      FillTimes(member, name, element, place);
    } else {
      FillPointers(reinterpret_cast<TObject**>(member), name, element, place);
    }
  }

  void FillNumbers(char* member, const std::string& name, TStreamerElement& element, int length, Rule::Place place) {
    WithType(element, [&](auto zero) {
      using T = decltype(zero);
      for (int i = 0; i < length; ++i)
        reinterpret_cast<T*>(member)[i] = fRule.As<T>(name, place, i);
    });
  }

  void FillTimes(char* member, const std::string& name, TStreamerElement& element, Rule::Place place) {
    for (int i = 0; i < GetLength(element); ++i) {
      const TimeMembers time(element, member, i);
      *time.fSec = fRule.Seconds(name, place, i);
      *time.fNanoSec = fRule.NanoSeconds(name, place, i);
    }
  }

  /// Pointers come alone, or one for each mirror.
  void FillPointers(TObject** member, const std::string& name, TStreamerElement& element, Rule::Place place) {
    const int length = GetLength(element);
    if (element.GetClassPointer() == TObjArray::Class()) {
      *member = MakeTraces(place);
    } else if (length == 1) {
      if (fRule.IsPresent(name, place)) *member = Make(element.GetClassPointer()->GetName(), place);
    } else {
      for (unsigned i = 0; i < unsigned(length); ++i)
        if (Rule::MirrorBits(place.fEvent) >> i & 1)
          member[i] = Make(element.GetClassPointer()->GetName(), {place.fEvent, i + 1});
    }
  }

  TObjArray* MakeTraces(Rule::Place place) {
    auto* traces = new TObjArray(2880, 1);
    for (unsigned i = 0; i < Rule::kNTraces; ++i)
      traces->AddAt(Make("TFADCData", {place.fEvent, i}), Rule::TracePixel(i));
    return traces;
  }

  const Rule& fRule;
};

TObject* GetSubObject(TObject* event, const char* member) {
  const Long_t offset = event->IsA()->GetDataMemberOffset(member);
  return offset == 0 ? nullptr : *reinterpret_cast<TObject**>(reinterpret_cast<char*>(event) + offset);
}

/// A station file, and beside its tree the same objects one by one, in the folder "objects".
void WriteFile(TFile& file, Maker& maker) {
  for (const char* name : {"RunHeader", "RunTrailer"}) {
    TObject* record = maker.Make(Form("TStn%s", name), {});
    file.WriteTObject(record, name);
    DeleteAll(record);
  }
  TDirectory* objects = file.mkdir("objects");
  auto* tree = new TTree("StnEventTree", "TStnEvent tree", 99, &file);
  tree->SetAutoSave(20000);
  TObject* event = nullptr;
  for (unsigned i = 0; i < Rule::kNEvents; ++i) {
    event = maker.Make("TStnEvent", {i});
    if (i == 0) {
      tree->Branch("StnEvent", "TStnEvent", &event, 500, 1);
      tree->SetBasketSize("fFADCData", 500000);
      tree->SetBasketSize("fPixelData", 50000);
      tree->SetBasketSize("fPixelList", 5000);
    }
    tree->Fill();
    objects->WriteTObject(event, Form("Event%u", i));
    for (const char* member : {"fEventHeader", "fPixelList", "fPixelData"})
      if (TObject* object = GetSubObject(event, member)) objects->WriteTObject(object, Form("%s%u", member, i));
    DeleteAll(event);
  }
  tree->ResetBranchAddresses();
  file.Write(nullptr, TObject::kOverwrite);
  file.Close();
}

}  // namespace

int main(int argc, char** argv) {
  UseLinkedClassesOnly();
  if (argc < 2) {
    std::cerr << "usage: " << argv[0] << " FILE [station=N] [Class::member=value]...\n";
    return 2;
  }
  const Rule rule(std::vector<std::string>(argv + 2, argv + argc));
  Maker maker(rule);
  TFile file(argv[1], "RECREATE", "", 109);
  if (file.IsZombie()) return 1;
  WriteFile(file, maker);
  return file.TestBit(TFile::kWriteError) ? 1 : 0;
}
