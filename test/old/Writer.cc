// The one main program of all writers of old files. It knows no class: those that it is linked with decide what it
// writes, and their descriptions tell it where each member is.

#include "Rule.h"

#include <TClass.h>
#include <TError.h>
#include <TFile.h>
#include <TInterpreter.h>
#include <TObjArray.h>
#include <TStreamerElement.h>
#include <TStreamerInfo.h>
#include <TString.h>
#include <TSystem.h>
#include <TTree.h>

#include <cstring>
#include <iostream>
#include <string>
#include <type_traits>
#include <vector>

namespace {

/// Calls `use` with a value of the basic type that a description's type code names.
template <typename Use>
void WithType(int type, Use use) {
  switch (type) {
    case TVirtualStreamerInfo::kUChar:
      return use(UChar_t());
    case TVirtualStreamerInfo::kShort:
      return use(Short_t());
    case TVirtualStreamerInfo::kUShort:
      return use(UShort_t());
    case TVirtualStreamerInfo::kInt:
    case TVirtualStreamerInfo::kCounter:
      return use(Int_t());
    case TVirtualStreamerInfo::kUInt:
      return use(UInt_t());
    case TVirtualStreamerInfo::kULong64:
      return use(ULong64_t());
    case TVirtualStreamerInfo::kFloat:
      return use(Float_t());
    case TVirtualStreamerInfo::kDouble:
      return use(Double_t());
  }
  Fatal("WithType", "no rule for members of type %d", type);
}

/// Makes objects and fills them by the rule. They live as long as the process, which writes one file.
class Maker {
 public:
  explicit Maker(const Rule& rule) : fRule(rule) {}

  TObject* Make(const char* class_name, Rule::Place place) {
    TClass* description = TClass::GetClass(class_name);
    if (!description || !description->HasDictionary()) Fatal("Maker", "no class %s", class_name);
    auto* object = static_cast<TObject*>(description->New());
    Fill(reinterpret_cast<char*>(object), description, place);
    return object;
  }

 private:
  void Fill(char* object, TClass* description, Rule::Place place) {
    for (auto* entry : *description->GetStreamerInfo()->GetElements()) {
      auto& element = *static_cast<TStreamerElement*>(entry);
      if (element.IsBase()) continue;
      const std::string name = std::string(description->GetName()) + "::" + element.GetName();
      FillMember(object + element.GetOffset(), name, element, place);
    }
  }

  void FillMember(char* member, const std::string& name, TStreamerElement& element, Rule::Place place) {
    const int length = std::max(1, element.GetArrayLength());
    if (element.InheritsFrom(TStreamerBasicPointer::Class())) {
      const std::string owner = name.substr(0, name.rfind(':') + 1);
      const auto count = fRule.As<Int_t>(owner + static_cast<TStreamerBasicPointer&>(element).GetCountName(), place);
      *reinterpret_cast<char**>(member) = new char[count * sizeof(Double_t)];
      FillNumbers(*reinterpret_cast<char**>(member), name, element.GetType() % 20, count, place);
    } else if (element.InheritsFrom(TStreamerBasicType::Class())) {
      FillNumbers(member, name, element.GetType() % 20, length, place);
    } else if (element.InheritsFrom(TStreamerString::Class())) {
      *reinterpret_cast<TString*>(member) = name;
    } else if (!element.IsaPointer()) {
      FillTimes(member, name, element, length, place);
    } else {
      FillPointers(reinterpret_cast<TObject**>(member), name, element, length, place);
    }
  }

  void FillNumbers(char* member, const std::string& name, int type, int length, Rule::Place place) {
    WithType(type, [&](auto zero) {
      using T = decltype(zero);
      for (int i = 0; i < length; ++i)
        reinterpret_cast<T*>(member)[i] = fRule.As<T>(name, place, i);
    });
  }

  /// The only objects that lie inside others are time stamps.
  void FillTimes(char* member, const std::string& name, TStreamerElement& element, int length, Rule::Place place) {
    TClass* stamp = element.GetClassPointer();
    const Long_t sec = stamp->GetDataMemberOffset("fSec");
    const Long_t nano_sec = stamp->GetDataMemberOffset("fNanoSec");
    for (int i = 0; i < length; ++i, member += stamp->Size()) {
      *reinterpret_cast<Int_t*>(member + sec) = fRule.Seconds(name, place, i);
      *reinterpret_cast<Int_t*>(member + nano_sec) = fRule.NanoSeconds(name, place, i);
    }
  }

  /// Pointers come alone, or one for each mirror.
  void FillPointers(TObject** member, const std::string& name, TStreamerElement& element, int length,
                    Rule::Place place) {
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
  file.WriteTObject(maker.Make("TStnRunHeader", {}), "RunHeader");
  file.WriteTObject(maker.Make("TStnRunTrailer", {}), "RunTrailer");
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
  }
  tree->ResetBranchAddresses();
  file.Write(nullptr, TObject::kOverwrite);
  file.Close();
}

}  // namespace

int main(int argc, char** argv) {
  // Nothing but the classes linked in, whatever else lies in the library path.
  gInterpreter->SetClassAutoloading(false);
  if (std::strstr(gSystem->GetLibraries(), "libStnEvent.")) Fatal("main", "today's classes are linked in");
  if (argc < 2) {
    std::cerr << "usage: " << argv[0] << " FILE [station=N] [Class::member=value]...\n";
    return 2;
  }
  const Rule rule(std::vector<std::string>(argv + 2, argv + argc));
  Maker maker(rule);
  TFile file(argv[1], "RECREATE");
  if (file.IsZombie()) return 1;
  WriteFile(file, maker);
  return file.TestBit(TFile::kWriteError) ? 1 : 0;
}
