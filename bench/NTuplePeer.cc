#include "NTuplePeer.h"

#include <ROOT/RField.hxx>
#include <ROOT/RNTupleModel.hxx>
#include <ROOT/RNTupleWriteOptions.hxx>

namespace StnBench {
namespace {

const char* const kNTupleName = "flat";

template <class Action>
void ForEachField(FlatEvent& event, Peer::Part part, Action action) {
  if (part == Peer::kHeaders)
    event.ForEachHeaderField(action);
  else
    event.ForEachField(action);
}

std::unique_ptr<ROOT::RNTupleModel> MakeModel(FlatEvent& event, Peer::Part part) {
  auto model = ROOT::RNTupleModel::CreateBare();
  ForEachField(event, part, [&model](const char* name, auto& value) {
    model->AddField(std::make_unique<ROOT::RField<std::decay_t<decltype(value)>>>(name));
  });
  return model;
}

void Bind(FlatEvent& event, Peer::Part part, ROOT::REntry& entry) {
  ForEachField(event, part, [&entry](const char* name, auto& value) { entry.BindRawPtr(name, &value); });
}

}  // namespace

NTupleWriter::NTupleWriter(const std::string& path, int compression) {
  ROOT::RNTupleWriteOptions options;
  options.SetCompression(compression);
  fWriter = ROOT::RNTupleWriter::Recreate(MakeModel(fEvent, Peer::kEvents), kNTupleName, path, options);
  fEntry = fWriter->CreateEntry();
  Bind(fEvent, Peer::kEvents, *fEntry);
}

NTupleReader::NTupleReader(const std::string& path, Peer::Part part)
    : fReader(ROOT::RNTupleReader::Open(MakeModel(fEvent, part), kNTupleName, path)),
      fEntry(fReader->GetModel().CreateBareEntry()) {
  Bind(fEvent, part, *fEntry);
}

ULong64_t NTupleReader::ReadEvent() {
  fReader->LoadEntry(fNext++, *fEntry);
  return fEvent.SumSamples();
}

UInt_t NTupleReader::ReadHeader() {
  fReader->LoadEntry(fNext++, *fEntry);
  return fEvent.GetEventNo();
}

}  // namespace StnBench
