#include <StnEvent/StnEvent.h>
#include <StnEvent/StnRunHeader.h>
#include <StnEvent/StnRunTrailer.h>

#include <TClass.h>
#include <TList.h>
#include <TMethod.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

// Guards what programs and Python sessions call: every operation with its result, argument names and default values, as
// the dictionary knows it.

namespace {

struct InterfaceRow {
  TClass* (*fClass)();
  std::vector<std::string> fOperations;
};

const InterfaceRow kInterfaces[] = {
    {TStnPixelList::Class,
     {"TStnPixelList()", "TStnPixelList(const TStnPixelList& rhs)",
      "TStnPixelList& operator=(const TStnPixelList& rhs)", "virtual ~TStnPixelList()",
      "bool operator==(const TStnPixelList& rhs) const", "void AddPixel(_VdPixelNumber* pixel)",
      "void AddPixel(_PixelNumber* pixel)", "void AddPixelList(TMirrorPixelList* list)",
      "void RemovePixel(_VdPixelNumber* pixel)", "void RemovePixel(_PixelNumber* pixel)",
      "virtual void Clear(Option_t* option = \"\")", "void Show(ostream& ostr = std::cout)", "UInt_t GetStnNo() const",
      "UInt_t GetNumPixels() const", "_VdPixelNumber* GetPixel(unsigned int i)",
      "bool TestPixel(_VdPixelNumber* pixel)",
      "protected void GetPosition(_VdPixelNumber* pixel, UInt_t* element, UInt_t* bit) const",
      "protected void ConstructPixelList()", "protected void SetStnNo(unsigned int stn_no)"}},
    {TStnPixelData::Class,
     {"TStnPixelData()", "TStnPixelData(const TStnPixelData& rhs)",
      "TStnPixelData& operator=(const TStnPixelData& rhs)", "virtual ~TStnPixelData()",
      "bool operator==(const TStnPixelData& rhs) const",
      "bool AddPixelData(TMirrorPixelData* pixel_data, UInt_t mirror_id, bool is_owner = false)",
      "virtual void Clear(Option_t* option = \"\")", "void Show(ostream& ostr = std::cout)",
      "int GetFirstTriggeredTimeBin(_VdPixelNumber* vdpixel, UInt_t first_bin = 0, UInt_t last_bin = "
      "VdUtil::Vd::kMI_NSLT_BINS - 1) const",
      "UInt_t GetNumberOfTriggeredPixels(UInt_t start_slice = 0, UInt_t end_slice = "
      "VdUtil::Vd::kMI_NSLT_BINS - 1) const",
      "UInt_t GetNumberOfTriggeredPixels(UInt_t mirror_id, UInt_t start_slice, UInt_t end_slice) const",
      "TMirrorPixelData* GetPixelData(UInt_t mirror_id) const"}},
    {TStnFADCData::Class,
     {"TStnFADCData(Int_t num_fadc = VdUtil::Vd::kSTN_NEXTPIXELS)", "TStnFADCData(const TStnFADCData& rhs)",
      "TStnFADCData& operator=(const TStnFADCData& rhs)", "virtual ~TStnFADCData()",
      "bool operator==(const TStnFADCData& rhs) const", "void AddFADCData(TFADCData* fadc, bool is_owner = false)",
      "const TFADCData* GetFADCData(_VdPixelNumber* pixel) const",
      "const TFADCData* GetFADCData(_PixelNumber* pixel) const",
      "TIterator* GetIterator(Bool_t dir = kIterForward) const", "UInt_t GetNTraces() const",
      "void RemoveFADCData(const TFADCData* fadc)", "virtual void Clear(Option_t* option = \"\")",
      "virtual void Show(ostream& ostr = std::cout) const"}},
    {TStnGeometryData::Class,
     {"TStnGeometryData()", "TStnGeometryData(unsigned int stn_no)", "TStnGeometryData(const TStnGeometryData&)",
      "TStnGeometryData& operator=(const TStnGeometryData&)", "virtual ~TStnGeometryData()",
      "virtual void GetAxisDirection(unsigned int telescope_id, float& azimuth, float& elevation)",
      "virtual void GetAxisDirection(unsigned int telescope_id, VdUtil::VdGeometry::_CameraPointingRec& pointing)",
      "virtual void Reset()", "virtual void SetAxisDirection()", "virtual void SetAxisDirection(unsigned int stn_id)",
      "virtual void SetAxisDirection(unsigned int telescope_id, float azimuth, float elevation)",
      "virtual void Show(ostream& ostr = std::cout, unsigned int stn_no = VdUtil::Vd::kVD_FIRST_STN)"}},
    {TStnT3Data::Class,
     {"TStnT3Data()", "TStnT3Data(const TStnT3Data&)", "TStnT3Data& operator=(const TStnT3Data&)",
      "virtual ~TStnT3Data()", "virtual void Reset()", "unsigned int GetNPixels() const", "float GetSDPTheta() const",
      "float GetSDPPhi() const", "float GetAzimuthAtGround() const", "int GetTimeAtGround() const",
      "float GetTotalSignal() const", "void SetNPixels(int npixels)", "void SetSDPTheta(float theta)",
      "void SetSDPPhi(float phi)", "void SetAzimuthAtGround(float azimuth)", "void SetTimeAtGround(unsigned int time)",
      "void SetTotalSignal(float signal)", "void Show(ostream& ostr = std::cout)"}},
    {TStnTriggerData::Class,
     {"TStnTriggerData()", "TStnTriggerData(const TStnTriggerData& rhs)",
      "TStnTriggerData& operator=(const TStnTriggerData& rhs)", "virtual ~TStnTriggerData()",
      "void Show(ostream& ostr = std::cout) const"}},
    {TStnEvent::Class,
     {"TStnEvent()",
      "TStnEvent(const TStnEvent& rhs)",
      "TStnEvent& operator=(const TStnEvent& rhs)",
      "virtual ~TStnEvent()",
      "bool operator==(const TStnEvent& rhs) const",
      "virtual void Clear(Option_t* option = \"\")",
      "virtual bool AddEvent(TMirrorEvent* event, bool force = false)",
      "virtual TStnEventHeader* GetEventHeader()",
      "virtual TStnFADCData* GetFADCData()",
      "virtual TStnGeometryData* GetGeometryData()",
      "virtual TMirrorFADCData* GetMirrorFADCData(UInt_t mirror_id)",
      "virtual TStnPixelData* GetPixelData()",
      "virtual TStnPixelList* GetPixelList()",
      "virtual TStnTriggerData* GetTriggerData()",
      "virtual TStnT3Data* GetT3Data()",
      "virtual bool RemoveEvent(UInt_t mirror_id, TMirrorEvent** evptr = nullptr)",
      "virtual void Reset()",
      "virtual void SetGeometryData(TStnGeometryData* data)",
      "virtual void SetTriggerData(TStnTriggerData* data)",
      "virtual void SetT3Data(TStnT3Data* data)",
      "bool IsEnabledPixelData()",
      "void Show(ostream& ostr = std::cout)",
      "static void DoCorrections(TStnEvent* event)",
      "static void SetPrintLevel(UInt_t level = 1)"}},
    {TStnRunHeader::Class,
     {"TStnRunHeader()",
      "TStnRunHeader(const TStnRunHeader& rhs)",
      "TStnRunHeader& operator=(const TStnRunHeader& rhs)",
      "virtual ~TStnRunHeader()",
      "virtual void Clear(Option_t* option = \"\")",
      "virtual void Show(ostream& ostr = std::cout)",
      "Bool_t IsMirrorPresent(UInt_t mirror_id)",
      "void SetMirrorPresent(UInt_t mirror_id)",
      "void SetVersionInformation()",
      "void SetStnNo(UInt_t stn_no)",
      "UInt_t GetStnNo() const",
      "void SetMirrorStatus(UInt_t status)",
      "UInt_t GetMirrorStatus() const",
      "void SetRunNo(UInt_t run_no)",
      "UInt_t GetRunNo() const",
      "void SetStartTime(const VdRoot::TTimeStamp& t)",
      "const VdRoot::TTimeStamp& GetStartTime() const",
      "void SetUserName(const TString& user)",
      "const TString& GetUserName() const",
      "void SetComment(const TString& comment)",
      "const TString& GetUserComment() const",
      "void SetEvbVersion(UInt_t eversion)",
      "UInt_t GetEvbVersion() const",
      "void SetReadoutVersion(UInt_t rversion)",
      "UInt_t GetReadoutVersion() const",
      "UInt_t GetStnEventVersion() const",
      "UInt_t GetMrEventVersion() const",
      "protected static const string GetVersionCodeVerbosely(UInt_t code)"}},
    {TStnRunTrailer::Class,
     {"TStnRunTrailer()",
      "TStnRunTrailer(const TStnRunTrailer& rhs)",
      "TStnRunTrailer& operator=(const TStnRunTrailer& rhs)",
      "virtual ~TStnRunTrailer()",
      "virtual void Clear(Option_t* option = \"\")",
      "void Show(ostream& ostr = std::cout) const",
      "void AddMirrorRunTrailer(const TMirrorRunTrailer* trailer, unsigned int mirror_id)",
      "void AddToLifeTimeCounter(int seconds, unsigned int mirror_id)",
      "Bool_t IsMirrorPresent(unsigned int mirror_id) const",
      "void SetMirrorPresent(unsigned int mirror_id)",
      "void SetStartTime()",
      "void SetStopTime()",
      "void SetStartTime(const VdRoot::TTimeStamp& t)",
      "void SetStopTime(const VdRoot::TTimeStamp& t)",
      "const VdRoot::TTimeStamp& GetStartTime() const",
      "const VdRoot::TTimeStamp& GetStopTime() const",
      "void SetTotalTime(unsigned int total_time = 0)",
      "UInt_t GetTotalTime() const",
      "void SetDeadTimeCounter(ULong64_t dead_time, unsigned int mirror_id)",
      "ULong64_t GetDeadTimeCounter(unsigned int mirror_id) const",
      "void SetLifeTimeCounter(unsigned int life_time, unsigned int mirror_id)",
      "UInt_t GetLifeTimeCounter(unsigned int mirror_id) const",
      "void SetMirrorDaqDeadTime(ULong64_t dead_time, unsigned int mirror_id)",
      "ULong64_t GetMirrorDaqDeadTime(unsigned int mirror_id) const",
      "void SetMirrorNSkippedTriggers(unsigned int n, unsigned int mirror_id)",
      "UInt_t GetMirrorNSkippedTriggers(unsigned int mirror_id) const",
      "void SetNEvents(UInt_t n)",
      "UInt_t GetNEvents() const",
      "void SetMirrorStatus(UInt_t status)",
      "UInt_t GetMirrorStatus() const",
      "void SetVetoTimeCounter(ULong64_t veto_time)",
      "ULong64_t GetVetoTimeCounter() const",
      "void SetStnDaqDeadTime(ULong64_t dead_time)",
      "ULong64_t GetStnDaqDeadTime() const",
      "void SetNumberOfT3(UInt_t n)",
      "UInt_t GetNumberOfT3() const",
      "void SetNumberOfRejectedT3(UInt_t n)",
      "UInt_t GetNumberOfRejectedT3() const",
      "void SetTotalT3DeadTime(Float_t dead_time)",
      "Float_t GetTotalT3DeadTime() const"}},
};

class InterfaceTest : public testing::TestWithParam<InterfaceRow> {};

std::string NameOf(const testing::TestParamInfo<InterfaceRow>& row) { return row.param.fClass()->GetName(); }
INSTANTIATE_TEST_SUITE_P(Classes, InterfaceTest, testing::ValuesIn(kInterfaces), NameOf);

std::string Describe(TMethod& method) {
  const bool is_named_by_class = method.ExtraProperty() & (kIsConstructor | kIsDestructor);
  return std::string(method.Property() & kIsProtected ? "protected " : "") +
         (method.Property() & kIsStatic ? "static " : "") + (method.Property() & kIsVirtual ? "virtual " : "") +
         (is_named_by_class ? "" : std::string(method.GetReturnTypeName()) + " ") + method.GetName() +
         method.GetSignature();
}

/// What the header declares before the operations that ROOT adds to every class, of which this is the first.
const std::string kFirstOfRoot = "CheckTObjectHashConsistency";

TEST_P(InterfaceTest, HasItsOperations) {
  std::vector<std::string> operations;
  for (TObject* object : *GetParam().fClass()->GetListOfMethods()) {
    if (object->GetName() == kFirstOfRoot) break;
    auto& method = *static_cast<TMethod*>(object);
    if (!(method.Property() & kIsPrivate)) operations.push_back(Describe(method));
  }
  EXPECT_THAT(operations, testing::ElementsAreArray(GetParam().fOperations));
}

}  // namespace
