#ifndef old_Rule_h
#define old_Rule_h

#include <Rtypes.h>

#include <bitset>
#include <map>
#include <string>
#include <vector>

/// What the writers put into their files. Whoever reads such a file can tell from this alone what must come back,
/// without knowing the classes of old.
///
/// Every persistent member has a value that follows from its name, the event's number and the place in an array: a
/// number of 64 bits, cut to the member's own type, or an eighth of its low 16 bits for a real number. For most members
/// that is a hash; those whose values mean something have a line of their own. A file can be told to differ from the
/// rule: "TStnPixelList::fStnNo=3" gives that member this value everywhere, "station=5" makes it a file of that station.
class Rule {
 public:
  /// Events in each file.
  static constexpr unsigned kNEvents = 3;

  /// Where in a file a value stands. The slot is the mirror id of pixel data, or the index of a trace; otherwise 0.
  struct Place {
    unsigned fEvent = 0;
    unsigned fSlot = 0;
  };

  explicit Rule(const std::vector<std::string>& changes = {}) {
    for (const auto& change : changes)
      Add(change);
  }

  unsigned GetStation() const { return fStation; }

  /// The value of a member ("TStnEventHeader::fRunNo"), before it is cut to the member's type.
  ULong64_t Value(const std::string& member, Place place, unsigned index = 0) const {
    const auto change = fChanges.find(member);
    if (change != fChanges.end()) return change->second;
    const auto meaning = Meanings().find(member);
    return meaning == Meanings().end() ? Hash(member, place, index) : meaning->second(*this, place, index);
  }
  /// The same, cut to the member's type.
  template <typename T>
  T As(const std::string& member, Place place, unsigned index = 0) const {
    return Cut(Value(member, place, index), T());
  }
  /// Unix seconds and nanoseconds of a time stamp.
  Int_t Seconds(const std::string& member, Place place, unsigned index = 0) const {
    return 1000000000 + Int_t(Value(member, place, index) % 700000000);
  }
  Int_t NanoSeconds(const std::string& member, Place place, unsigned index = 0) const {
    return Int_t((Value(member, place, index) >> 32) % 1000000000);
  }

  /// Whether an event has a sub-object that its class knows: a T3 result and geometry are in the first two events only,
  /// and a value of 0 for the pointer in a file's changes leaves it out everywhere.
  bool IsPresent(const std::string& member, Place place) const {
    if (fChanges.count(member)) return false;
    const bool optional = member == "TStnEvent::fT3Data" || member == "TStnEvent::fGeometryData";
    return !optional || place.fEvent < 2;
  }
  /// The mirrors in an event, a bit for each: all, then 1 and 3, then 2 only.
  static unsigned MirrorBits(unsigned event) { return event == 0 ? 0x3F : event == 1 ? 0x05 : 0x02; }

  /// Traces of an event: the station pixels that have one, by index.
  static constexpr unsigned kNTraces = 2;
  static unsigned TracePixel(unsigned slot) { return 1 + slot * 1337; }

 private:
  using Meaning = ULong64_t (*)(const Rule&, Place, unsigned);

  static ULong64_t Cut(ULong64_t value, Double_t) { return value; }
  template <typename T>
  static T Cut(ULong64_t value, T) {
    return static_cast<T>(value);
  }
  static Float_t Cut(ULong64_t value, Float_t) { return static_cast<Float_t>(value & 0xFFFF) / 8; }

  void Add(const std::string& change) {
    const auto equals = change.find('=');
    const auto value = std::stoull(change.substr(equals + 1), nullptr, 0);
    if (change.substr(0, equals) == "station") {
      fStation = static_cast<unsigned>(value);
    } else {
      fChanges[change.substr(0, equals)] = value;
    }
  }

  /// FNV-1a over name, event, slot and index.
  static ULong64_t Hash(const std::string& member, Place place, unsigned index) {
    ULong64_t hash = 14695981039346656037u;
    auto add = [&hash](unsigned byte) { hash = (hash ^ (byte & 0xFF)) * 1099511628211u; };
    for (const char c : member)
      add(static_cast<unsigned char>(c));
    add(place.fEvent);
    add(place.fSlot);
    add(index);
    return hash;
  }

  UInt_t CountPixels(Place place) const {
    size_t n = 0;
    for (unsigned word = 0; word < As<UInt_t>("TStnPixelList::fPixelVectorSize", place); ++word)
      n += std::bitset<32>(As<UInt_t>("TStnPixelList::fPixelVector", place, word)).count();
    return static_cast<UInt_t>(n);
  }

  static const std::map<std::string, Meaning>& Meanings() {
    using R = const Rule&;
    using P = Place;
    static const std::map<std::string, Meaning> kMeanings = {
        {"TStnRunHeader::fStnNumber", [](R rule, P, unsigned) { return ULong64_t(rule.fStation); }},

        {"TStnEventHeader::fStnNumber", [](R rule, P, unsigned) { return ULong64_t(rule.fStation); }},
        {"TStnEventHeader::fEventClass", [](R, P place, unsigned) { return ULong64_t(11 + place.fEvent); }},
        {"TStnEventHeader::fEventType", [](R, P place, unsigned) { return ULong64_t(1 + place.fEvent); }},
        {"TStnEventHeader::fMirrorDataBits", [](R, P place, unsigned) { return ULong64_t(MirrorBits(place.fEvent)); }},
        {"TStnEventHeader::fTriggerSource", [](R, P, unsigned index) { return 1ULL << index % 5; }},
        {"TStnEventHeader::fStatusBits", [](R, P place, unsigned) { return ULong64_t(5 + place.fEvent); }},
        // Real numbers count in eighths: 100, not set, 100.125.
        {"TStnEventHeader::fT10Mhz",
         [](R, P place, unsigned) { return ULong64_t(place.fEvent == 1 ? 0 : 800 + place.fEvent / 2); }},
        {"TStnEventHeader::fTimeCorrectionQuality", [](R, P place, unsigned) { return ULong64_t(place.fEvent); }},

        {"TStnPixelList::fStnNo", [](R rule, P, unsigned) { return ULong64_t(rule.fStation - 1); }},
        {"TStnPixelList::fNPixels", [](R rule, P place, unsigned) { return ULong64_t(rule.CountPixels(place)); }},
        {"TStnPixelList::fPixelVectorSize", [](R, P, unsigned) { return 90ULL; }},
        {"TStnPixelList::fPixelVector",
         [](R, P place, unsigned index) { return index % 16 == place.fEvent ? Hash("pixels", place, index) : 0; }},

        {"TMirrorPixelData::fMirrorNumber",
         [](R rule, P place, unsigned) {
           return ULong64_t(rule.fStation << 5 | ((rule.fStation - 1) * 6 + place.fSlot));
         }},
        {"TMirrorPixelData::fNTriggered", [](R, P, unsigned) { return 2ULL; }},
        {"TMirrorPixelData::fNTriggerWords", [](R, P, unsigned) { return 8ULL; }},
        {"TMirrorPixelData::fPixelNo", [](R, P place, unsigned index) { return ULong64_t(place.fSlot + 100 * index); }},
        // A pixel has 100 slices in four words.
        {"TMirrorPixelData::fTriggerWord",
         [](R, P place, unsigned index) { return Hash("slices", place, index) & (index % 4 == 3 ? 0xF : 0xFFFFFFFF); }},

        {"TStnFADCData::fNTraces", [](R, P, unsigned) { return ULong64_t(kNTraces); }},
        {"TFADCData::fPixelWord",
         [](R rule, P place, unsigned) {
           const unsigned pixel = TracePixel(place.fSlot) - 1;
           return ULong64_t((pixel % 480 + 1) | (pixel / 480 + 1) << 9 | rule.fStation << 12);
         }},
        // Bins 100 to 131 of 1000.
        {"TFADCData::fTraceInfo", [](R, P, unsigned) { return 100ULL | 131ULL << 12; }},
        {"TFADCData::fFirstLow", [](R, P, unsigned) { return 100ULL; }},
        {"TFADCData::fNLow", [](R, P, unsigned) { return 32ULL; }},
        // Some words do not fit a byte.
        {"TFADCData::fFirstHigh", [](R, P, unsigned) { return 110ULL; }},
        {"TFADCData::fNHigh", [](R, P, unsigned) { return 3ULL; }},
        {"TFADCData::fHigh", [](R, P, unsigned index) { return ULong64_t(1 + index); }},
        {"TFADCData::fBase", [](R, P, unsigned) { return 180ULL; }},
    };
    return kMeanings;
  }

  unsigned fStation = 2;
  std::map<std::string, ULong64_t> fChanges;
};

#endif
