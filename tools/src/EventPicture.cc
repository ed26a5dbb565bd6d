#include "EventPicture.h"

#include "HeaderRecord.h"
#include "TraceView.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <set>

namespace StnTools {
namespace {

using Json = nlohmann::ordered_json;
using VdUtil::Vd;
using Slices = std::vector<TraceView::Range>;

Json GetLabels(const TStnEventHeader& header) {
  Json labels = Json::array();
  for (UInt_t mirror = 1; mirror <= Vd::kSTN_NMIRRORS; ++mirror) {
    auto label = static_cast<TMirrorEventHeader::EMrEventLabel>(header.GetMirrorEventLabel(mirror));
    labels.push_back(TMirrorEventHeader::GetVerboseEventLabel(label));
  }
  return labels;
}

_PixelNumber MakePixelNumber(UInt_t stn_pixel) {
  _PixelNumber pixel;
  pixel.fPixelNumber = 0;
  Vd::SetMirrorNo(&pixel, (stn_pixel - 1) / Vd::kMI_NEXTPIXELS + 1);
  Vd::SetPixelNo(&pixel, (stn_pixel - 1) % Vd::kMI_NEXTPIXELS + 1);
  return pixel;
}

std::set<UInt_t> GetListedPixels(TStnPixelList& list) {
  std::set<UInt_t> pixels;
  for (UInt_t i = 0; i < list.GetNumPixels(); ++i)
    pixels.insert(Vd::GetStnPixelNo(list.GetPixel(i)));
  return pixels;
}

Slices GetSlices(const TMirrorPixelData* data, UInt_t pixel_no) {
  Slices slices;
  if (data == nullptr) return slices;
  const UInt_t* words = data->GetRecord()->fTrigger[pixel_no - 1];
  for (UInt_t slice = 0; slice < Vd::kMI_NSLT_BINS; ++slice) {
    if ((words[slice / 32] >> slice % 32 & 1) == 0) continue;
    if (slices.empty() || slices.back().second + 1 != slice) slices.emplace_back(slice, slice);
    slices.back().second = slice;
  }
  return slices;
}

// Of the first trigger bin, in ns of GPS time. Beyond the bins of its resolution a trace has no times.
Json GetTriggerTime(TStnEventHeader& header, const TFADCData& trace, const TraceView& view) {
  if (view.GetTriggerRanges().empty()) return nullptr;
  UInt_t bin = view.GetTriggerRanges().front().first;
  if (bin >= trace.GetNFADCBins()) return nullptr;
  return header.GetFADCBinTime(&trace, bin) * Long64_t(1000000000) + header.GetFADCBinNanoTime(&trace, bin);
}

Json GetTrace(TStnEventHeader& header, const TFADCData* trace) {
  if (trace == nullptr) return nullptr;
  const TraceView view(*trace);
  return {{"first", view.GetFirst()},
          {"size", view.GetSize()},
          {"bins", trace->GetNFADCBins()},
          {"triggers", view.GetTriggerRanges()},
          {"changes", view.GetThresholdChanges()},
          {"pedestal", std::round(100. * view.GetPedestal()) / 100.},
          {"signal", std::round(view.GetSignal())},
          {"time", GetTriggerTime(header, *trace, view)},
          {"samples", view.EncodeSamples()}};
}

Json GetPixels(TStnEvent& event) {
  const std::set<UInt_t> listed = GetListedPixels(*event.GetPixelList());
  Json pixels = Json::array();
  for (UInt_t number = 1; number <= Vd::kSTN_NEXTPIXELS; ++number) {
    _PixelNumber pixel = MakePixelNumber(number);
    const TFADCData* trace = event.GetFADCData()->GetFADCData(&pixel);
    const Slices slices =
        GetSlices(event.GetPixelData()->GetPixelData(Vd::GetMirrorNo(&pixel)), Vd::GetPixelNo(&pixel));
    if (trace == nullptr && slices.empty() && listed.count(number) == 0) continue;
    pixels.push_back({{"number", number},
                      {"mirror", Vd::GetMirrorNo(&pixel)},
                      {"pixel", Vd::GetPixelNo(&pixel)},
                      {"column", Vd::GetColumnNo(&pixel)},
                      {"row", Vd::GetRowNo(&pixel)},
                      {"listed", listed.count(number) != 0},
                      {"slices", slices},
                      {"trace", GetTrace(*event.GetEventHeader(), trace)}});
  }
  return pixels;
}

// From times of the clock to times after the first of them.
void SetZero(Json& pixels) {
  Json first = nullptr;
  for (const Json& pixel : pixels) {
    if (!pixel["trace"].is_object() || pixel["trace"]["time"].is_null()) continue;
    if (first.is_null() || pixel["trace"]["time"] < first) first = pixel["trace"]["time"];
  }
  for (Json& pixel : pixels) {
    if (!pixel["trace"].is_object() || pixel["trace"]["time"].is_null()) continue;
    pixel["trace"]["time"] = pixel["trace"]["time"].get<Long64_t>() - first.get<Long64_t>();
  }
}

}  // namespace

std::string FormatPicture(UInt_t entry, TStnEvent& event) {
  const TStnEventHeader& header = *event.GetEventHeader();
  Json pixels = GetPixels(event);
  SetZero(pixels);
  Json picture = {{"entry", entry},
                  {"header", Json::parse(FormatJsonLine(entry, header))},
                  {"labels", GetLabels(header)},
                  {"pixels", pixels}};
  return picture.dump();
}

}  // namespace StnTools
