// An analysis program that was built when some classes were older than those of the file that it reads. It prints every
// member that its classes have: "0 TStnT3Data::fNPixels 17" for the first event, "run TStnRunTrailer::fNEvents 3".

#include "Members.h"

#include <TFile.h>
#include <TString.h>
#include <TTree.h>

#include <iostream>
#include <string>

using namespace old_files;

namespace {

void PrintNumbers(const char* member, const TStreamerElement& element) {
  WithType(element, [&](auto zero) {
    for (int i = 0; i < GetLength(element); ++i)
      std::cout << " " << +reinterpret_cast<const decltype(zero)*>(member)[i];
  });
}

void PrintTimes(char* member, const TStreamerElement& element) {
  for (int i = 0; i < GetLength(element); ++i) {
    const TimeMembers time(element, member, i);
    std::cout << " " << *time.fSec << "." << *time.fNanoSec;
  }
}

/// Follows pointers to single objects, and leaves arrays of them and traces out.
void PrintObject(const std::string& prefix, TClass* description, void* object) {
  ForEachMember(description, object, [&](const std::string& name, char* member, TStreamerElement& element) {
    std::cout << prefix << " " << name;
    void* target = nullptr;
    if (element.InheritsFrom(TStreamerBasicType::Class())) {
      PrintNumbers(member, element);
    } else if (element.InheritsFrom(TStreamerString::Class())) {
      std::cout << " " << *reinterpret_cast<TString*>(member);
    } else if (!element.IsaPointer()) {
      PrintTimes(member, element);
    } else if (element.InheritsFrom(TStreamerObjectPointer::Class()) && GetLength(element) == 1) {
      target = *reinterpret_cast<void**>(member);
      std::cout << (target ? " there" : " null");
    }
    std::cout << "\n";
    if (target && element.GetClassPointer() != TObjArray::Class())
      PrintObject(prefix, element.GetClassPointer(), target);
  });
}

}  // namespace

int main(int argc, char** argv) {
  UseLinkedClassesOnly();
  if (argc != 2) {
    std::cerr << "usage: " << argv[0] << " FILE\n";
    return 2;
  }
  std::cout.precision(17);
  TFile file(argv[1]);
  auto* tree = file.Get<TTree>("StnEventTree");
  if (!tree) return 1;
  for (const char* name : {"RunHeader", "RunTrailer"}) {
    auto* record = file.Get<TObject>(name);
    PrintObject("run", record->IsA(), record);
    DeleteAll(record);
  }
  for (Long64_t i = 0; i < tree->GetEntries(); ++i) {
    TObject* event = nullptr;
    tree->SetBranchAddress("StnEvent", static_cast<void*>(&event));
    tree->GetEntry(i);
    PrintObject(std::to_string(i), event->IsA(), event);
    DeleteAll(event);
  }
  tree->ResetBranchAddresses();
  return 0;
}
