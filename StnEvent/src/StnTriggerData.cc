#include <StnEvent/StnTriggerData.h>

#include <VdUtil/ErrorLogger.h>

ClassImp(TStnTriggerData);

TStnTriggerData::TStnTriggerData() = default;

TStnTriggerData::TStnTriggerData(const TStnTriggerData& rhs) : TObject(rhs) { *this = rhs; }

TStnTriggerData::~TStnTriggerData() = default;

TStnTriggerData& TStnTriggerData::operator=(const TStnTriggerData&) { return *this; }

void TStnTriggerData::Show(std::ostream&) const {
  VD_WARNING << "TStnTriggerData::Show() is not implemented !" << std::endl;
}
