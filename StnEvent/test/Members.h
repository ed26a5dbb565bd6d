#ifndef Members_h
#define Members_h

#include <TClass.h>
#include <TObject.h>

#include <gtest/gtest.h>

/// A data member of an object by its name, also one that no operation shows; `T` must be its type. For what must be
/// seen without being made, and for states that only a read from a file brings about.
template <class T>
T& Member(const TObject& object, const char* name) {
  TClass* description = object.IsA();
  EXPECT_NE(description->GetDataMember(name), nullptr) << description->GetName() << "::" << name;
  const char* address = reinterpret_cast<const char*>(&object) + description->GetDataMemberOffset(name);
  return *reinterpret_cast<T*>(const_cast<char*>(address));
}

#endif
