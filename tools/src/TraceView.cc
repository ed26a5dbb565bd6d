#include "TraceView.h"

#include <algorithm>

namespace StnTools {
namespace {

// Samples that lie farther from the median belong to a pulse: noise does not get there.
const int kPedestalWidth = 16;

std::string EncodeBase64(const std::vector<unsigned char>& bytes) {
  static const char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (size_t i = 0; i < bytes.size(); i += 3) {
    UInt_t group = 0;
    for (size_t k = 0; k < 3; ++k)
      group = group << 8 | (i + k < bytes.size() ? bytes[i + k] : 0U);
    for (int shift = 18; shift >= 0; shift -= 6)
      text += digits[group >> shift & 63];
  }
  if (bytes.size() % 3 != 0) text.replace(text.size() - (3 - bytes.size() % 3), 2, bytes.size() % 3 == 1 ? "==" : "=");
  return text;
}

}  // namespace

TraceView::TraceView(const TFADCData& trace) : fFirst(trace.GetStartBin()) {
  UInt_t end = std::min(trace.GetEndBin() + 1, TFADCData::kNFADCWords);
  const auto* words = trace.GetRecord()->fFadcData;
  if (fFirst < end) fWords.assign(words + fFirst, words + end);
  FindFlags();
  FindPedestal();
}

void TraceView::FindFlags() {
  for (UInt_t i = 0; i < fWords.size(); ++i) {
    UInt_t bin = fFirst + i;
    if (fWords[i].fThresholdChanged) fThresholdChanges.push_back(bin);
    if (!fWords[i].fPixelTrigger) continue;
    if (fTriggers.empty() || fTriggers.back().second + 1 != bin) fTriggers.emplace_back(bin, bin);
    fTriggers.back().second = bin;
  }
}

void TraceView::FindPedestal() {
  if (fWords.empty()) return;
  std::vector<int> samples;
  for (const auto& word : fWords)
    samples.push_back(word.fData);
  auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
  std::nth_element(samples.begin(), middle, samples.end());
  const int median = *middle;
  auto is_pulse = [median](int sample) { return std::abs(sample - median) > kPedestalWidth; };
  samples.erase(std::remove_if(samples.begin(), samples.end(), is_pulse), samples.end());
  double sum = 0.;
  for (int sample : samples)
    sum += sample;
  fPedestal = sum / static_cast<double>(samples.size());
}

double TraceView::GetSignal() const {
  UInt_t begin = 0;
  UInt_t end = GetSize();
  if (!fTriggers.empty()) {
    UInt_t first = fTriggers.front().first - fFirst;
    begin = first - std::min(first, kMargin);
    end = std::min(end, fTriggers.back().second - fFirst + kMargin + 1);
  }
  double sum = 0.;
  for (UInt_t i = begin; i < end; ++i)
    sum += fWords[i].fData - fPedestal;
  return sum;
}

std::string TraceView::EncodeSamples() const {
  std::vector<unsigned char> bytes;
  int before = 0;
  for (const auto& word : fWords) {
    const int sample = word.fData;
    const int difference = sample - before;
    if (std::abs(difference) <= 127) {
      bytes.push_back(static_cast<unsigned char>(difference & 0xFF));
    } else {
      bytes.insert(bytes.end(),
                   {0x80, static_cast<unsigned char>(sample & 0xFF), static_cast<unsigned char>(sample >> 8)});
    }
    before = sample;
  }
  return EncodeBase64(bytes);
}

}  // namespace StnTools
