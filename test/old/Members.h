#ifndef old_Members_h
#define old_Members_h

#include <TClass.h>
#include <TError.h>
#include <TInterpreter.h>
#include <TObjArray.h>
#include <TStreamerElement.h>
#include <TStreamerInfo.h>
#include <TSystem.h>

#include <algorithm>
#include <cstring>
#include <string>

/// Access to the members of objects whose classes this program does not know, by their descriptions.
namespace old_files {

/// Nothing but the classes linked in, whatever else lies in the library path.
inline void UseLinkedClassesOnly() {
  gInterpreter->SetClassAutoloading(false);
  if (std::strstr(gSystem->GetLibraries(), "libStnEvent.")) Fatal("main", "today's classes are linked in");
}

/// Calls `use` with a value of the basic type that an element of a description has, or points at.
template <typename Use>
void WithType(const TStreamerElement& element, Use use) {
  switch (element.GetType() % TVirtualStreamerInfo::kOffsetL) {
    case TVirtualStreamerInfo::kUChar:
      return use(UChar_t());
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
  Fatal("WithType", "member %s is of type %d", element.GetName(), element.GetType());
}

inline int GetLength(const TStreamerElement& element) { return std::max(1, element.GetArrayLength()); }

/// A time stamp inside an object, the only class whose objects lie inside others.
struct TimeMembers {
  TimeMembers(const TStreamerElement& element, char* member, int index) {
    TClass* stamp = element.GetClassPointer();
    char* start = member + index * stamp->Size();
    fSec = reinterpret_cast<Int_t*>(start + stamp->GetDataMemberOffset("fSec"));
    fNanoSec = reinterpret_cast<Int_t*>(start + stamp->GetDataMemberOffset("fNanoSec"));
  }
  Int_t* fSec;
  Int_t* fNanoSec;
};

/// Calls `use` with each member of an object that a class declares itself: its name with the class, its place and its
/// element.
template <typename Use>
void ForEachMember(TClass* description, void* object, Use use) {
  for (auto* entry : *description->GetStreamerInfo()->GetElements()) {
    auto& element = *static_cast<TStreamerElement*>(entry);
    if (element.IsBase()) continue;
    const std::string name = std::string(description->GetName()) + "::" + element.GetName();
    use(name, static_cast<char*>(object) + element.GetOffset(), element);
  }
}

/// Deletes an object with all that it points at; the classes of old have no destructors for that.
inline void DeleteAll(TObject* object) {
  if (!object) return;
  if (object->IsA() == TObjArray::Class()) {
    for (TObject* entry : *static_cast<TObjArray*>(object))
      DeleteAll(entry);
  } else {
    ForEachMember(object->IsA(), object, [](const std::string&, char* member, TStreamerElement& element) {
      if (element.InheritsFrom(TStreamerBasicPointer::Class())) delete[] * reinterpret_cast<char**>(member);
      if (!element.InheritsFrom(TStreamerObjectPointer::Class())) return;
      for (int i = 0; i < GetLength(element); ++i)
        DeleteAll(reinterpret_cast<TObject**>(member)[i]);
    });
  }
  delete object;
}

}  // namespace old_files

#endif
