#ifndef MrEvent_MrRecordCheck_h
#define MrEvent_MrRecordCheck_h

#include <MrEvent/MrNumber.h>

#include <Rtypes.h>
#include <TBuffer.h>

#include <string>
#include <utility>
#include <vector>

class TClass;
class TStreamerElement;
class TVirtualStreamerInfo;

/// Looks over a record in a buffer before ROOT reads it by its description: ROOT trusts the counts, byte counts and tags
/// that it finds, and reads on beyond the end. Nothing is built, and the buffer is not moved. The first thing that does
/// not fit is reported with an error message.
///
/// Objects of classes with a streamer of their own are passed over by their byte counts, as those streamers check what
/// they read. Members of kinds that no class of ours has end the look at their record. An object may stand in a record
/// only once, and an array of objects may hold traces only.
class MrRecordCheck {
 public:
  /// For a record of the class `cl` in what stands in the buffer from here to before `end`.
  MrRecordCheck(TBuffer& buffer, UInt_t end, TClass* cl);

  /// What follows the frame of a record of this version. True as well for a version that nothing describes, as ROOT skips
  /// such a record; false for one that ROOT would look up behind its table of descriptions.
  bool HasMembers(Version_t version) { return SkipMembers(version); }
  /// A record with its frame.
  bool HasRecord() { return SkipRecord(); }
  /// What ROOT writes for a pointer to the class: null, or an object of it or of a class derived from it.
  bool HasPointer() { return SkipPointer(fClass); }

  /// Pieces of a record that is read by hand, one behind the other: the TObject part, a number of 32 bits, and so many
  /// items of so many bytes each.
  bool SkipObject();
  bool SkipNumber(const char* field, UInt_t* value);
  bool SkipItems(const char* field, UInt_t count, UInt_t item_size);

  /// The description by which ROOT reads a version, of which a file brings those of old versions along; null if it reads
  /// none.
  static const TVirtualStreamerInfo* FindDescription(TClass* cl, Version_t version);

  /// Reports what does not fit in a record of the class, as all readers of ours do. Always false.
  static bool Refuse(const TClass* cl, const std::string& field, const std::string& found, const std::string& expected);

 private:
  struct Member;
  typedef std::vector<Member> Members;
  typedef std::pair<const Member*, UInt_t> Count;

  static Member DescribeMember(const TStreamerElement& element);
  static void FindCount(const TStreamerElement& element, Members& members);
  static Members Describe(const TVirtualStreamerInfo& description);
  static const Members& GetMembers(const TVirtualStreamerInfo& description);

  template <class T>
  T Peek(UInt_t position) const {
    const char* bytes = fBuffer.Buffer() + position;
    T value;
    TakeNumber(bytes, value);
    return value;
  }
  bool Has(const char* field, ULong64_t n_bytes) const;
  bool Skip(const char* field, ULong64_t n_bytes);
  bool Refuse(const char* field, UInt_t found, const std::string& expected) const;

  bool CanLookUp(Version_t version) const;
  bool SkipMembers(Version_t version);
  bool SkipMember(const Member& member, const Members& members, std::vector<Count>& counts);
  bool SkipArray(const Member& member, const Count& count);
  bool SkipString(const char* field);
  bool SkipRecord();
  bool SkipRecord(TClass* cl);
  bool SkipNull();
  bool SkipPointer(TClass* cl);
  bool SkipTraces();
  TClass* ReadClass();
  TClass* ReadNewClass();
  TClass* FindSeenClass(UInt_t tag) const;

  TBuffer& fBuffer;
  UInt_t fPosition;
  UInt_t fEnd;
  TClass* fClass;                                        // whose record is looked at
  std::vector<std::pair<UInt_t, TClass*>> fSeenClasses;  // by the tag that later objects have for it
};

#endif
