#include <MrEvent/MrRecordCheck.h>

#include <MrEvent/FadcData.h>
#include <VdUtil/ErrorLogger.h>

#include <TClass.h>
#include <TDataType.h>
#include <TObjArray.h>
#include <TStreamerElement.h>
#include <TVirtualRWMutex.h>
#include <TVirtualStreamerInfo.h>

#include <algorithm>
#include <cctype>
#include <map>

namespace {

typedef TVirtualStreamerInfo Info;

// How ROOT marks what stands in front of an object. A tag is a position in the buffer, plus an offset.
constexpr UInt_t kByteCountMask = 0x40000000;
constexpr UInt_t kByteCountVMask = 0x4000;  // the same mark in the first two bytes
constexpr UInt_t kNullTag = 0;
constexpr UInt_t kNewClassTag = 0xFFFFFFFF;
constexpr UInt_t kClassMask = 0x80000000;
constexpr UInt_t kMapOffset = 2;
constexpr UInt_t kMaxClassName = 80;  // with its zero; ROOT reads no more

constexpr UInt_t kArrayVersion = 3;  // of TObjArray, since long before the first of our files
constexpr UInt_t kMaxLowerBound = 1;

/// Bytes on file of a number of this type; 0 for what takes other room there than in memory, and for no number.
UInt_t GetNumberSize(Int_t type) {
  if (type == Info::kCounter) return sizeof(Int_t);
  const bool is_packed = type == Info::kCharStar || type == Info::kDouble32 || type == Info::kFloat16;
  if (type <= Info::kBase || type >= Info::kOffsetL || is_packed || type == Info::kBits) return 0;
  const TDataType* number = TDataType::GetDataType(static_cast<EDataType>(type));
  return number ? number->Size() : 0;
}

bool ChecksItself(const TClass* cl) { return cl->GetStreamerFunc() || cl->HasCustomStreamerMember(); }

/// Words joined by pairs of colons: ROOT's own parser of names throws on some others.
bool IsClassName(const std::string& name) {
  if (name[0] == ':') return false;
  int n_colons = 0;
  for (const UChar_t c : name) {
    if (c != ':' && n_colons == 1) return false;
    if (c != ':' && c != '_' && !std::isalnum(c)) return false;
    n_colons = c == ':' ? n_colons + 1 : 0;
    if (n_colons > 2) return false;
  }
  return n_colons == 0;
}

/// A variable has another value for as long as this lives.
template <class T>
class During {
 public:
  During(T& variable, T value) : fPlace(variable), fOld(variable) { variable = value; }
  ~During() { fPlace = fOld; }
  During(const During&) = delete;
  During& operator=(const During&) = delete;

 private:
  T& fPlace;
  T fOld;
};

}  // namespace

/// One member as it stands on file.
struct MrRecordCheck::Member {
  enum EKind { kUnknown, kObject, kNumbers, kCount, kArray, kString, kRecords, kPointers };
  EKind fKind = kUnknown;
  std::string fName;
  UInt_t fLength = 1;        // of an array of fixed length
  UInt_t fSize = 0;          // of a number
  TClass* fClass = nullptr;  // of an object
  size_t fCount = 0;         // the place in the list of the length of an array
};

MrRecordCheck::MrRecordCheck(TBuffer& buffer, UInt_t end, TClass* cl)
    : fBuffer(buffer), fPosition(buffer.Length()), fEnd(std::min<UInt_t>(end, buffer.BufferSize())), fClass(cl) {}

bool MrRecordCheck::Refuse(const TClass* cl, const std::string& field, const std::string& found,
                           const std::string& expected) {
  VD_ERROR << cl->GetName() << "::Streamer() - " << field << ": found " << found << ", expected " << expected
           << ", record skipped" << std::endl;
  return false;
}

bool MrRecordCheck::Refuse(const char* field, UInt_t found, const std::string& expected) const {
  return Refuse(fClass, field, std::to_string(found), expected);
}

// ---- Descriptions

const TVirtualStreamerInfo* MrRecordCheck::FindDescription(TClass* cl, Version_t version) {
  const Info* const todays = cl->GetStreamerInfo();
  if (version == cl->GetClassVersion()) return todays;
  // Another thread may be opening a file with a version of its own, which makes the table longer.
  R__READ_LOCKGUARD(ROOT::gCoreMutex);
  const TObjArray* descriptions = cl->GetStreamerInfos();
  const bool has_place = version >= 1 && version < descriptions->LowerBound() + descriptions->GetSize();
  const auto* description = has_place ? static_cast<const Info*>(descriptions->At(version)) : nullptr;
  // A first version that nothing describes is read as if it were today's.
  return description || version != 1 ? description : todays;
}

MrRecordCheck::Member MrRecordCheck::DescribeMember(const TStreamerElement& element) {
  static const std::map<Int_t, Member::EKind> kObjects = {
      {Info::kTObject, Member::kObject}, {Info::kTString, Member::kString},  {Info::kAny, Member::kRecords},
      {Info::kObject, Member::kRecords}, {Info::kAnyp, Member::kRecords},    {Info::kObjectp, Member::kRecords},
      {Info::kAnyP, Member::kPointers},  {Info::kObjectP, Member::kPointers}};
  Member member;
  member.fName = element.GetName();
  member.fLength = std::max(element.GetArrayLength(), 1);
  member.fClass = element.GetClassPointer();
  // An array has the type of its elements plus an offset, but ROOT leaves the offset out for arrays of pointers.
  const Int_t type = element.GetType();
  const bool is_counted = type >= Info::kOffsetP && type < Info::kOffsetP + Info::kOffsetL;
  const bool is_fixed = type >= Info::kOffsetL && !is_counted && !kObjects.count(type);
  const Int_t single = type - (is_counted ? Info::kOffsetP : is_fixed ? Info::kOffsetL : 0);
  member.fSize = GetNumberSize(single);
  if (member.fSize > 0) {
    member.fKind = is_counted ? Member::kArray : Member::kNumbers;
  } else if (!is_counted && kObjects.count(single)) {
    member.fKind = kObjects.at(single);
  }
  return member;
}

/// Finds the length of an array, the last of the members, among those before it.
void MrRecordCheck::FindCount(const TStreamerElement& element, Members& members) {
  Member& array = members.back();
  const auto* pointer = dynamic_cast<const TStreamerBasicPointer*>(&element);
  const std::string name = pointer ? pointer->GetCountName() : "";
  const auto last = members.end() - 1;
  const auto count = std::find_if(members.begin(), last, [&](const Member& member) { return member.fName == name; });
  if (count == last || count->fSize != sizeof(Int_t) || count->fLength != 1) {
    array.fKind = Member::kUnknown;
    return;
  }
  count->fKind = Member::kCount;
  array.fCount = count - members.begin();
}

MrRecordCheck::Members MrRecordCheck::Describe(const TVirtualStreamerInfo& description) {
  Members members;
  R__READ_LOCKGUARD(ROOT::gCoreMutex);
  for (const TObject* object : *description.GetElements()) {
    const auto& element = *static_cast<const TStreamerElement*>(object);
    // What a read rule makes is not on file, and what it is given is there once.
    if (element.IsA() == TStreamerArtificial::Class() || element.TestBit(TStreamerElement::kRepeat)) continue;
    members.push_back(DescribeMember(element));
    if (members.back().fKind == Member::kArray) FindCount(element, members);
  }
  return members;
}

/// Worked out once for each description. ROOT may put another one in the place of one that it gave up.
const MrRecordCheck::Members& MrRecordCheck::GetMembers(const TVirtualStreamerInfo& description) {
  struct Known {
    UInt_t fCheckSum = 0;
    Members fMembers;
  };
  // Never given back: exit handlers may read.
  static thread_local auto& all_known = *new std::map<const TVirtualStreamerInfo*, Known>;
  Known& known = all_known[&description];
  if (known.fMembers.empty() || known.fCheckSum != description.GetCheckSum())
    known = {description.GetCheckSum(), Describe(description)};
  return known.fMembers;
}

// ---- Bytes

// Most significant byte first, as ROOT writes numbers, and at any address.
bool MrRecordCheck::Has(const char* field, ULong64_t n_bytes) const {
  const UInt_t left = fEnd > fPosition ? fEnd - fPosition : 0;
  if (n_bytes <= left) return true;
  return Refuse(fClass, field, std::to_string(left) + " bytes", "at least " + std::to_string(n_bytes));
}

bool MrRecordCheck::Skip(const char* field, ULong64_t n_bytes) {
  if (!Has(field, n_bytes)) return false;
  fPosition += n_bytes;
  return true;
}

// ---- Members

/// ROOT compares a version with the length of its table alone, which begins below 0: it would read behind the end.
bool MrRecordCheck::CanLookUp(Version_t version) const {
  R__READ_LOCKGUARD(ROOT::gCoreMutex);
  const TObjArray* descriptions = fClass->GetStreamerInfos();
  const Int_t end = descriptions->LowerBound() + descriptions->GetSize();
  if (version < end || version >= descriptions->GetSize()) return true;
  return Refuse("version", version, "at most " + std::to_string(end - 1));
}

bool MrRecordCheck::SkipMembers(Version_t version) {
  const Info* description = FindDescription(fClass, version);
  if (!description) return CanLookUp(version);
  const Members& members = GetMembers(*description);
  std::vector<Count> counts;
  for (const Member& member : members) {
    if (member.fKind == Member::kUnknown) return true;
    if (!SkipMember(member, members, counts)) return false;
  }
  return true;
}

bool MrRecordCheck::SkipMember(const Member& member, const Members& members, std::vector<Count>& counts) {
  const char* name = member.fName.c_str();
  const auto is_length = [&](const auto& count) { return count.first == &members[member.fCount]; };
  switch (member.fKind) {
    case Member::kUnknown:
      return true;
    case Member::kObject:
      return SkipObject();
    case Member::kNumbers:
      return Skip(name, ULong64_t(member.fLength) * member.fSize);
    case Member::kCount:
      counts.emplace_back(&member, 0);
      return SkipNumber(name, &counts.back().second);
    case Member::kArray:
      return SkipArray(member, *std::find_if(counts.begin(), counts.end(), is_length));
    case Member::kString:
      return SkipString(name);
    case Member::kRecords:
      for (UInt_t i = 0; i < member.fLength; ++i)
        if (!SkipRecord(member.fClass)) return false;
      return true;
    case Member::kPointers:
      for (UInt_t i = 0; i < member.fLength; ++i)
        if (!SkipPointer(member.fClass)) return false;
      return true;
  }
  return true;
}

/// What `TObject::Streamer` reads: a version, perhaps with a byte count, the unique id, the flag word, and the process
/// id if the flag word says that the object is referenced.
bool MrRecordCheck::SkipObject() {
  if (!Has("TObject", 10)) return false;
  const UInt_t frame = Peek<UShort_t>(fPosition) & kByteCountVMask ? 6 : 2;
  if (!Has("TObject", frame + 8)) return false;
  const bool is_referenced = Peek<UInt_t>(fPosition + frame + 4) & TObject::kIsReferenced;
  return Skip("TObject", frame + 8 + (is_referenced ? 2 : 0));
}

bool MrRecordCheck::SkipNumber(const char* field, UInt_t* value) {
  if (!Skip(field, 4)) return false;
  *value = Peek<UInt_t>(fPosition - 4);
  return true;
}

bool MrRecordCheck::SkipItems(const char* field, UInt_t count, UInt_t item_size) {
  const UInt_t most = (fEnd - fPosition) / item_size;
  if (count > most) return Refuse(field, count, "at most " + std::to_string(most));
  return Skip(field, ULong64_t(count) * item_size);
}

/// A counted array begins with a byte that tells whether there is one.
bool MrRecordCheck::SkipArray(const Member& member, const Count& count) {
  if (!Skip(member.fName.c_str(), 1)) return false;
  if (count.second > 0 && fBuffer.Buffer()[fPosition - 1] == 0) return Refuse(member.fName.c_str(), 0, "1");
  return SkipItems(count.first->fName.c_str(), count.second, member.fSize * member.fLength);
}

/// A length of one byte, or of four behind a byte of 255, and the characters.
bool MrRecordCheck::SkipString(const char* field) {
  if (!Skip(field, 1)) return false;
  UInt_t length = UChar_t(fBuffer.Buffer()[fPosition - 1]);
  if (length == 255 && !SkipNumber(field, &length)) return false;
  return SkipItems(field, length, 1);
}

// ---- Objects

bool MrRecordCheck::SkipRecord(TClass* cl) {
  const During<TClass*> record(fClass, cl);
  return SkipRecord();
}

/// Byte count, version and members. What the byte count covers beyond them ROOT passes over.
bool MrRecordCheck::SkipRecord() {
  if (!Has("frame", 6)) return false;
  const UInt_t count = Peek<UInt_t>(fPosition) ^ kByteCountMask;
  const UInt_t most = fEnd - fPosition - 4;
  if (count < 2 || count > most) return Refuse("byte count", count, "2 to " + std::to_string(most));
  const UInt_t end = fPosition + 4 + count;
  if (!ChecksItself(fClass)) {
    const During<UInt_t> record(fEnd, end);
    const auto version = static_cast<Version_t>(Peek<UShort_t>(fPosition + 4));
    if (version < 1) return Refuse(fClass, "version", std::to_string(version), "at least 1");
    fPosition += 6;
    if (!SkipMembers(version)) return false;
  }
  fPosition = end;
  return true;
}

/// The four zeros of a pointer to nothing, which most slots of an array of traces hold.
bool MrRecordCheck::SkipNull() {
  const bool is_null = fPosition + 4 <= fEnd && Peek<UInt_t>(fPosition) == kNullTag;
  if (is_null) fPosition += 4;
  return is_null;
}

/// Byte count, class, and the object itself; or four zeros.
bool MrRecordCheck::SkipPointer(TClass* cl) {
  const During<TClass*> object(fClass, cl);
  if (!Has("object", 4)) return false;
  if (SkipNull()) return true;
  if (!Has("object", 8)) return false;
  const UInt_t count = Peek<UInt_t>(fPosition) ^ kByteCountMask;
  const UInt_t most = fEnd - fPosition - 4;
  if (count < 4 || count > most) return Refuse("byte count of object", count, "4 to " + std::to_string(most));
  const UInt_t end = fPosition + 4 + count;
  const During<UInt_t> content(fEnd, end);
  fPosition += 4;
  TClass* actual = ReadClass();
  const bool is_whole = actual && (actual == TObjArray::Class() ? SkipTraces() : SkipRecord(actual));
  fPosition = end;
  return is_whole;
}

/// The class of an object, which stands there by its name or by where its name stood before; null if it can't be there.
TClass* MrRecordCheck::ReadClass() {
  const UInt_t tag = Peek<UInt_t>(fPosition);
  if (tag == kNewClassTag) return ReadNewClass();
  TClass* cl = tag & kClassMask ? FindSeenClass((tag & ~kClassMask) + fBuffer.GetBufferDisplacement()) : nullptr;
  if (!cl || !cl->InheritsFrom(fClass)) {
    Refuse("class tag", tag, std::string("that of ") + fClass->GetName());
    return nullptr;
  }
  fPosition += 4;
  return cl;
}

TClass* MrRecordCheck::ReadNewClass() {
  const char* begin = fBuffer.Buffer() + fPosition + 4;
  const char* limit = begin + std::min(fEnd - fPosition - 4, kMaxClassName);
  const std::string name(begin, std::find(begin, limit, '\0'));
  const bool is_name = begin + name.size() < limit && IsClassName(name);
  // ROOT's other arrays read themselves, and trust what they read.
  const bool may_differ = is_name && fClass != TObjArray::Class();
  TClass* cl = name == fClass->GetName() ? fClass : may_differ ? TClass::GetClass(name.c_str(), kTRUE, kTRUE) : nullptr;
  if (!is_name || !cl || !cl->InheritsFrom(fClass)) {
    Refuse(fClass, "class", is_name ? name : "no name", fClass->GetName());
    return nullptr;
  }
  fSeenClasses.emplace_back(fPosition + kMapOffset, cl);
  fPosition += 4 + name.size() + 1;
  return cl;
}

/// Of this record, or of what was read from the buffer before it.
TClass* MrRecordCheck::FindSeenClass(UInt_t tag) const {
  for (const auto& seen : fSeenClasses)
    if (seen.first == tag) return seen.second;
  if (fBuffer.GetMapCount() == 0) return nullptr;  // it may have no map at all, which ROOT does not look for
  void* object = nullptr;
  TClass* cl = nullptr;
  fBuffer.GetMappedObject(tag, object, cl);
  return cl == TClass::Class() ? static_cast<TClass*>(object) : nullptr;
}

/// What `TObjArray::Streamer` reads.
bool MrRecordCheck::SkipTraces() {
  const During<TClass*> array(fClass, TObjArray::Class());
  if (!Has("frame", 6)) return false;
  const UInt_t version = Peek<UInt_t>(fPosition) & kByteCountMask ? Peek<UShort_t>(fPosition + 4) : 0;
  if (version != kArrayVersion) return Refuse("version", version, std::to_string(kArrayVersion));
  fPosition += 6;
  UInt_t size = 0;
  UInt_t lower_bound = 0;
  if (!SkipObject() || !SkipString("fName") || !SkipNumber("fSize", &size) || !SkipNumber("fLowerBound", &lower_bound))
    return false;
  if (lower_bound > kMaxLowerBound) return Refuse("fLowerBound", lower_bound, "0 or 1");
  for (UInt_t i = 0; i < size; ++i)
    if (!SkipNull() && !SkipPointer(TFADCData::Class())) return false;
  return true;
}
