// ROOT's class table, with our libraries reachable by their rootmap files alone.
#include <TClass.h>

#include <iostream>

int main() {
  for (const char* name : {"TStnEvent", "TFADCData", "VdRoot::TTimeStamp"}) {
    const TClass* found = TClass::GetClass(name);
    std::cout << name << " " << (found && found->IsLoaded() ? found->GetClassVersion() : -1) << "; ";
  }
  std::cout << std::endl;
  return 0;
}
