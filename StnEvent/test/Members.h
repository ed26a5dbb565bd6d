#ifndef Members_h
#define Members_h

#include <TClass.h>
#include <TDataMember.h>
#include <TList.h>
#include <TObject.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

/// A data member of an object by its name, also one that no operation shows; `T` must be its type. For what must be
/// seen without being made, and for states that only a read from a file brings about. A member of a base class needs
/// the description of that class.
template <class T>
T& Member(const TObject& object, const char* name, TClass* description = nullptr) {
  if (!description) description = object.IsA();
  EXPECT_NE(description->GetDataMember(name), nullptr) << description->GetName() << "::" << name;
  const char* address = reinterpret_cast<const char*>(&object) + description->GetDataMemberOffset(name);
  return *reinterpret_cast<T*>(const_cast<char*>(address));
}

/// Data members by name, with their comments.
using Descriptions = std::vector<std::pair<std::string, std::string>>;

/// The data members of a class in the order of their declaration, without the one that ROOT adds.
inline Descriptions DescribedMembers(TClass* description) {
  Descriptions members;
  for (const TObject* member : *description->GetListOfDataMembers()) {
    if (std::string(member->GetName()) != "fgIsA") members.emplace_back(member->GetName(), member->GetTitle());
  }
  return members;
}

#endif
