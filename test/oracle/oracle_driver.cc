// Does to the library what it is told, and tells what came of it: for each line of standard input, a JSON list of
// commands, one line of standard output with the list of answers. An answer has the result of the call, the log, what went
// to std::cout, and the whole event afterwards, members that no operation shows included.
#include <MrEvent/MrEvent.h>
#include <StnEvent/StnEvent.h>
#include <StnEvent/StnEventHeader.h>
#include <StnEvent/StnFadcData.h>
#include <StnEvent/StnPixelData.h>
#include <StnEvent/StnPixelList.h>

#include <LogCapture.h>
#include <TBufferFile.h>
#include <TClass.h>
#include <TDataMember.h>
#include <TDataType.h>
#include <TError.h>
#include <TList.h>
#include <TObjArray.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <memory>

using nlohmann::json;
using Commands = std::map<std::string, std::function<json(const json&)>>;
using VdRoot::TTimeStamp;
using VdUtil::Vd;

namespace {

std::unique_ptr<TStnEvent> gEvent;

// ---- what is in the event

template <class T>
T Load(const char* address) {
  T value;
  std::memcpy(&value, address, sizeof(T));
  return value;
}

// Floating point numbers travel as their bits, which also tell one zero from the other.
json LoadBasic(const char* address, int type) {
  switch (type) {
    case kUChar_t:
      return Load<UChar_t>(address);
    case kShort_t:
      return Load<Short_t>(address);
    case kUShort_t:
      return Load<UShort_t>(address);
    case kInt_t:
      return Load<Int_t>(address);
    case kULong64_t:
      return Load<ULong64_t>(address);
    default:
      return Load<UInt_t>(address);
  }
}

json LoadValue(const char* address, TDataMember* member) {
  if (member->IsBasic()) return LoadBasic(address, member->GetDataType()->GetType());
  const auto* stamp = reinterpret_cast<const TTimeStamp*>(address);
  return {stamp->GetSec(), stamp->GetNanoSec()};
}

json LoadMember(const TObject* object, TDataMember* member) {
  const char* address = reinterpret_cast<const char*>(object) + object->IsA()->GetDataMemberOffset(member->GetName());
  if (member->GetArrayDim() == 0) return LoadValue(address, member);
  int length = 1;
  for (int i = 0; i < member->GetArrayDim(); ++i)
    length *= member->GetMaxIndex(i);
  json values = json::array();
  for (int i = 0; i < length; ++i)
    values.push_back(LoadValue(address + i * member->GetUnitSize(), member));
  return values;
}

template <class T>
T Member(const TObject* object, const char* name) {
  return Load<T>(reinterpret_cast<const char*>(object) + object->IsA()->GetDataMemberOffset(name));
}

json State(const TStnEventHeader* header) {
  if (!header) return nullptr;
  json fields;
  for (TObject* entry : *header->IsA()->GetListOfDataMembers()) {
    auto* member = static_cast<TDataMember*>(entry);
    if (!(member->Property() & kIsStatic)) fields[member->GetName()] = LoadMember(header, member);
  }
  fields["fUniqueID"] = header->GetUniqueID();
  return fields;
}

json State(const TStnPixelList* list) {
  if (!list) return nullptr;
  json words = json::array();
  const auto* vector = Member<const UInt_t*>(list, "fPixelVector");
  for (UInt_t i = 0; i < Member<UInt_t>(list, "fPixelVectorSize"); ++i)
    words.push_back(vector[i]);
  return {{"fStreamerVersion", Member<Version_t>(list, "fStreamerVersion")},
          {"fStnNo", Member<UInt_t>(list, "fStnNo")},
          {"fNPixels", Member<UInt_t>(list, "fNPixels")},
          {"fPixelVector", words}};
}

json State(const TMirrorPixelData* data) {
  if (!data) return nullptr;
  json words = json::array();
  for (UInt_t pixel = 1; pixel <= Vd::kMI_NEXTPIXELS; ++pixel) {
    for (UInt_t i = 0; i < TMirrorPixelData::kNWords; ++i) {
      const UInt_t word = data->GetRecord()->fTrigger[pixel - 1][i];
      if (word) words.push_back({pixel, i, word});
    }
  }
  return {{"mirror", data->GetRecord()->fMirrorNumber.fMirrorNumber}, {"triggers", words}};
}

json State(const TStnPixelData* data) {
  if (!data) return nullptr;
  json slots = json::array();
  for (UInt_t mirror = 1; mirror <= Vd::kSTN_NMIRRORS; ++mirror)
    slots.push_back(State(data->GetPixelData(mirror)));
  return slots;
}

json State(const TFADCData* trace) {
  json samples = json::array();
  const auto& record = *trace->GetRecord();
  for (UInt_t bin = 0; bin < TFADCData::kNFADCWords; ++bin)
    if (record.fFadcData[bin].fWord) samples.push_back({bin, record.fFadcData[bin].fWord});
  return {{"word", record.fPixelNumber.fPixelNumber},
          {"info", record.fTraceInfo.fWord},
          {"start", Load<UInt_t>(reinterpret_cast<const char*>(&record.fTraceStartTime))},
          {"samples", samples}};
}

json State(const TStnFADCData* data) {
  if (!data) return nullptr;
  json traces = json::object();
  const auto* array = Member<const TObjArray*>(data, "fFADCData");
  for (Int_t i = array->LowerBound(); i <= array->GetLast(); ++i)
    if (array->At(i)) traces[std::to_string(i)] = State(static_cast<const TFADCData*>(array->At(i)));
  return {{"fNTraces", data->GetNTraces()}, {"traces", traces}};
}

template <class T>
const T* Part(const char* name) {
  return Member<const T*>(gEvent.get(), name);
}

json State() {
  return {{"header", State(Part<TStnEventHeader>("fEventHeader"))},
          {"pixel_list", State(Part<TStnPixelList>("fPixelList"))},
          {"pixel_data", State(Part<TStnPixelData>("fPixelData"))},
          {"fadc", State(Part<TStnFADCData>("fFADCData"))},
          {"others", Part<TObject>("fTriggerData") || Part<TObject>("fT3Data") || Part<TObject>("fGeometryData")}};
}

// ---- what is put in

Float_t FloatOf(const json& bits) {
  const UInt_t word = bits;
  return Load<Float_t>(reinterpret_cast<const char*>(&word));
}

void FillTrace(TFADCData::_FADCDataRec& record, const json& from) {
  record.fPixelNumber.fPixelNumber = from["word"];
  record.fTraceInfo.fWord = from["info"];
  record.fTraceStartTime = FloatOf(from["start"]);
  for (const json& sample : from["samples"])
    record.fFadcData[UInt_t(sample[0])].fWord = sample[1];
}

void FillHeader(TMirrorEventHeader& header, const json& from) {
  header.SetVersion(from["version"]);
  header.GetMirrorNumber()->fMirrorNumber = from["mirror"];
  header.SetEventLabel(TMirrorEventHeader::EMrEventLabel(Int_t(from["label"])));
  header.SetEventType(TMirrorEventHeader::EMrEventType(Int_t(from["type"])));
  header.SetTriggerSource(TMirrorEventHeader::EMiTriggerSource(Int_t(from["source"])));
  header.SetTriggerTimeStamp(from["trigger_time"]);
  header.SetNextPageTime(from["sec"]);
  header.SetNextPageNanoTime(from["nsec"]);
  header.SetDeadTimeCounter(from["dead"]);
  header.SetRunTimeCounter(from["run"]);
  header.SetVetoTimeCounter(from["veto"]);
  header.SetDaqDeadTime(from["daq"]);
  header.SetNumSkippedTriggers(from["skipped"]);
}

void FillPixels(TMirrorEvent& mirror, const json& from) {
  auto* record = mirror.GetPixelData()->GetRecord();
  record->fMirrorNumber.fMirrorNumber = from["data_mirror"];
  for (const json& trigger : from["triggers"])
    record->fTrigger[UInt_t(trigger[0]) - 1][UInt_t(trigger[1])] = trigger[2];
  for (int word : from["pixels"]) {
    _PixelNumber pixel;
    pixel.fPixelNumber = word;
    mirror.GetPixelList()->AddPixel(&pixel);
  }
  for (const json& trace : from["traces"]) {
    _PixelNumber pixel;
    pixel.fPixelNumber = trace["pixel"];
    mirror.GetFADCData()->SetPixelFADCData(&pixel, std::make_unique<TFADCData>().get());
    FillTrace(*mirror.GetFADCData()->GetFADCData(Vd::GetColumnNo(&pixel), Vd::GetRowNo(&pixel)), trace);
  }
}

json Add(const json& command) {
  const json& from = command["event"];
  TMirrorEvent mirror;
  FillHeader(*mirror.GetEventHeader(), from);
  FillPixels(mirror, from);

  json result = {{"added", gEvent->AddEvent(&mirror, command["force"])}, {"pixels", json::array()}};
  for (UInt_t i = 0; i < mirror.GetPixelList()->GetNumPixels(); ++i)
    result["pixels"].push_back(mirror.GetPixelList()->GetPixel(i)->fPixelNumber);
  result["data_mirror"] = mirror.GetPixelData()->GetRecord()->fMirrorNumber.fMirrorNumber;
  return result;
}

// ---- the header's operations

TStnEventHeader& Header() { return *gEvent->GetEventHeader(); }

using Setters = std::map<std::string, void (*)(TStnEventHeader&, ULong64_t, UInt_t)>;
const Setters kSetters = {
    {"SetMirrorPresent", [](auto& h, ULong64_t, UInt_t id) { h.SetMirrorPresent(id); }},
    {"SetMirrorDataPresent", [](auto& h, ULong64_t, UInt_t id) { h.SetMirrorDataPresent(id); }},
    {"SetMirrorNSkippedTriggers", [](auto& h, ULong64_t v, UInt_t id) { h.SetMirrorNSkippedTriggers(v, id); }},
    {"SetMirrorEventLabel", [](auto& h, ULong64_t v, UInt_t id) { h.SetMirrorEventLabel(v, id); }},
    {"SetMirrorDaqDeadTime", [](auto& h, ULong64_t v, UInt_t id) { h.SetMirrorDaqDeadTime(v, id); }},
    {"SetDeadTimeCounter", [](auto& h, ULong64_t v, UInt_t id) { h.SetDeadTimeCounter(v, id); }},
    {"SetRunTimeCounter", [](auto& h, ULong64_t v, UInt_t id) { h.SetRunTimeCounter(v, id); }},
    {"SetTriggerSource",
     [](auto& h, ULong64_t v, UInt_t id) { h.SetTriggerSource(TMirrorEventHeader::EMiTriggerSource(Int_t(v)), id); }},
    {"SetTriggerTimeStamp", [](auto& h, ULong64_t v, UInt_t id) { h.SetTriggerTimeStamp(v, id); }},
};

json FromStamp(const TTimeStamp* stamp) {
  if (!stamp) return nullptr;
  return {stamp->GetSec(), stamp->GetNanoSec()};
}

using Getters = std::map<std::string, json (*)(const TStnEventHeader&, UInt_t)>;
const Getters kGetters = {
    {"GetDeadTimeCounter", [](auto& h, UInt_t id) { return json(h.GetDeadTimeCounter(id)); }},
    {"GetRunTimeCounter", [](auto& h, UInt_t id) { return json(h.GetRunTimeCounter(id)); }},
    {"GetTriggerTimeStamp", [](auto& h, UInt_t id) { return json(h.GetTriggerTimeStamp(id)); }},
    {"GetTriggerSource", [](auto& h, UInt_t id) { return json(Int_t(h.GetTriggerSource(id))); }},
    {"GetRawMirrorTimeStamp", [](auto& h, UInt_t id) { return FromStamp(h.GetRawMirrorTimeStamp(id)); }},
    {"GetMirrorTimeOffset", [](auto& h, UInt_t id) { return json(h.GetMirrorTimeOffset(id)); }},
    {"GetMirrorNSkippedTriggers", [](auto& h, UInt_t id) { return json(h.GetMirrorNSkippedTriggers(id)); }},
    {"GetMirrorEventLabel", [](auto& h, UInt_t id) { return json(h.GetMirrorEventLabel(id)); }},
    {"GetMirrorDaqDeadTime", [](auto& h, UInt_t id) { return json(h.GetMirrorDaqDeadTime(id)); }},
    {"IsMirrorPresent", [](auto& h, UInt_t id) { return json(h.IsMirrorPresent(id)); }},
    {"IsMirrorDataPresent", [](auto& h, UInt_t id) { return json(h.IsMirrorDataPresent(id)); }},
};

json Correct(const json& command) {
  UInt_t sec = 0, nsec = 0;
  const bool corrected = Header().DoTimeCorrection(command["sec"], command["nsec"], &sec, &nsec);
  return {corrected, sec, nsec};
}

json BinTime(const json& command) {
  TFADCData trace;
  trace.GetRecord()->fPixelNumber.fPixelNumber = command["word"];
  trace.GetRecord()->fTraceInfo.fWord = command["info"];
  const UInt_t sec = Header().GetFADCBinTime(&trace, command["bin"]);
  return {sec, Header().GetFADCBinNanoTime(&trace, command["bin"])};
}

json Verbose(const json& command) {
  const Int_t value = command["value"];
  return {TStnEventHeader::GetVerboseEventClass(TStnEventHeader::EEventClass(value)),
          TStnEventHeader::GetVerboseEventType(TStnEventHeader::EEventType(value)),
          TStnEventHeader::GetVerboseTimeCorrectionQuality(TStnEventHeader::ETimeCorrectionQuality(value)),
          Int_t(TStnEventHeader::GetMirrorEventType(TStnEventHeader::EEventType(value)))};
}

// ---- files

std::vector<char> FromHex(const std::string& text) {
  std::vector<char> bytes;
  for (size_t i = 0; i + 1 < text.size(); i += 2)
    bytes.push_back(static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16)));
  return bytes;
}

std::string ToHex(const TBuffer& buffer) {
  std::ostringstream text;
  text << std::hex << std::setfill('0');
  for (int i = 0; i < buffer.Length(); ++i)
    text << std::setw(2) << int(static_cast<UChar_t>(buffer.Buffer()[i]));
  return text.str();
}

// Gives where the buffer stands afterwards, counted from the beginning of the record.
json Read(TObject* object, const json& command) {
  std::vector<char> bytes = FromHex(command["bytes"]);
  TBufferFile buffer(TBuffer::kRead, bytes.size(), bytes.data(), kFALSE);
  const int offset = command["offset"];
  buffer.SetBufferOffset(offset);
  object->Streamer(buffer);
  return buffer.Length() - offset;
}

json WriteHeader(const json&) {
  TBufferFile buffer(TBuffer::kWrite);
  Header().Streamer(buffer);
  return ToHex(buffer);
}

_VdPixelNumber PixelOf(const json& command) {
  _VdPixelNumber pixel;
  pixel.fPixelNumber = command["pixel"];
  return pixel;
}

json AddPixel(const json& command) {
  _VdPixelNumber pixel = PixelOf(command);
  gEvent->GetPixelList()->AddPixel(&pixel);
  return nullptr;
}

json RemovePixel(const json& command) {
  _VdPixelNumber pixel = PixelOf(command);
  gEvent->GetPixelList()->RemovePixel(&pixel);
  return nullptr;
}

json TestPixel(const json& command) {
  _VdPixelNumber pixel = PixelOf(command);
  return gEvent->GetPixelList()->TestPixel(&pixel);
}

json Walk(const json&) {
  json numbers = json::array();
  TStnPixelList* list = gEvent->GetPixelList();
  const UInt_t last = std::min(list->GetNumPixels(), Vd::kSTN_NEXTPIXELS);
  for (UInt_t i = 0; i <= last; ++i) {
    _VdPixelNumber* pixel = list->GetPixel(i);
    numbers.push_back(pixel ? json(pixel->fPixelNumber) : json());
  }
  return numbers;
}

// ---- commands

json New(const json& command) {
  TStnEvent::SetPrintLevel(0);
  gEvent.reset();
  TStnEvent::SetPrintLevel(command["level"]);
  gEvent = std::make_unique<TStnEvent>();
  return nullptr;
}

template <class Call>
std::function<json(const json&)> Silently(Call call) {
  return [call](const json& command) {
    call(command);
    return json();
  };
}

const Commands kCommands = {
    {"new", New},
    {"level", Silently([](const json& c) { TStnEvent::SetPrintLevel(c["level"]); })},
    {"add", Add},
    {"set", Silently([](const json& c) { kSetters.at(c["name"])(Header(), c["value"], c["id"]); })},
    {"get", [](const json& c) { return kGetters.at(c["name"])(Header(), c["id"]); }},
    {"set_raw_time", Silently([](const json& c) {
       Header().SetRawMirrorTime(c["id"], TTimeStamp(time_t(c["sec"]), Int_t(c["nsec"])));
     })},
    {"set_time", Silently([](const json& c) { Header().SetTimeStamp(UInt_t(c["sec"]), c["nsec"]); })},
    {"set_t3_time", Silently([](const json& c) { Header().SetT3TimeStamp(UInt_t(c["sec"]), c["nsec"]); })},
    {"set_type",
     Silently([](const json& c) { Header().SetEventType(TStnEventHeader::EEventType(Int_t(c["value"]))); })},
    {"set_class",
     Silently([](const json& c) { Header().SetEventClass(TStnEventHeader::EEventClass(Int_t(c["value"]))); })},
    {"measured", Silently([](const json& c) {
       Header().SetTimeCorrectionParameters(c["start"], c["end"], c["ticks"], c["phase"]);
     })},
    {"derived",
     Silently([](const json& c) { Header().SetTimeCorrectionParameters(FloatOf(c["t10"]), FloatOf(c["offset"])); })},
    {"is_set", [](const json&) { return json(bool(Header().IsTimeCorrectionSet())); }},
    {"correct", Correct},
    {"adjust", Silently([](const json&) { Header().AdjustMirrorTimes(); })},
    {"bin_time", BinTime},
    {"verbose", Verbose},
    {"read_header", [](const json& c) { return Read(&Header(), c); }},
    {"read_list", [](const json& c) { return Read(gEvent->GetPixelList(), c); }},
    {"write_header", WriteHeader},
    {"walk", Walk},
    {"add_pixel", AddPixel},
    {"remove_pixel", RemovePixel},
    {"test_pixel", TestPixel},
};

json Run(const json& command, LogCapture& log, std::ostringstream& out) {
  json answer = {{"result", kCommands.at(command["op"])(command)}};
  answer["log"] = log.Take();
  answer["out"] = out.str();
  out.str("");
  answer["state"] = State();
  return answer;
}

}  // namespace

int main() {
  std::ostringstream out;
  std::ostream answers(std::cout.rdbuf(out.rdbuf()));
  gErrorIgnoreLevel = kFatal;  // byte counts that don't fit are meant
  LogCapture log;
  New({{"level", 0}});
  for (std::string line; std::getline(std::cin, line);) {
    json list = json::array();
    for (const json& command : json::parse(line))
      list.push_back(Run(command, log, out));
    answers << list << std::endl;
  }
  std::cout.rdbuf(answers.rdbuf());
  gEvent.reset();
}
