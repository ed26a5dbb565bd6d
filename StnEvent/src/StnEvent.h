#ifndef StnEvent_StnEvent_h
#define StnEvent_StnEvent_h

#include <MrEvent/MrEventHeader.h>
#include <StnEvent/StnEventHeader.h>
#include <StnEvent/StnFadcData.h>
#include <StnEvent/StnGeometryData.h>
#include <StnEvent/StnPixelData.h>
#include <StnEvent/StnPixelList.h>
#include <StnEvent/StnT3Data.h>
#include <StnEvent/StnTriggerData.h>

#include <TObject.h>

#include <iostream>

class TMirrorEvent;
class TMirrorFADCData;

/// The data of one trigger of one station: up to seven sub-objects, each made when it is first asked for.
///
/// The event owns its sub-objects. A pointer from a getter is borrowed: it is good until the event is cleared, reset,
/// assigned to, read from a file or deleted, or, for the three records with a setter, until that setter is called.
/// One thread at a time may use an event; the getters change it.
class TStnEvent : public TObject {
 public:
  /// An event without sub-objects.
  TStnEvent();
  /// A deep copy of the sub-objects that `rhs` has; the copy counts as not read from a file.
  TStnEvent(const TStnEvent& rhs);
  /// Makes the contents those of `rhs`, in the sub-objects that are already here; those that `rhs` lacks are deleted.
  /// The `TObject` part and the version read from file stay.
  TStnEvent& operator=(const TStnEvent& rhs);
  ~TStnEvent() override;

  /// True only for this very object: contents are never compared.
  bool operator==(const TStnEvent& rhs) const { return this == &rhs; }

  /// Deletes all sub-objects; `option` is ignored. An event must be cleared before it takes the next trigger.
  void Clear(Option_t* option = "") override;

  /// Merges one mirror's event of the same trigger: header values, event class and type, times, pixel data, pixel list
  /// and traces. Everything is copied. The mirror's own pixel numbers and pixel data are first labelled with the
  /// station and mirror of its header.
  ///
  /// The first mirror fixes the station. False, with an error logged and nothing changed, for a mirror of another
  /// station, for one that is already here (unless `force` is set), and for a null `event`. With `force` a repeated
  /// mirror replaces its header values only: pixel data and traces stay as they were.
  virtual bool AddEvent(TMirrorEvent* event, bool force = false);

  /// The event header; made if it did not exist.
  virtual TStnEventHeader* GetEventHeader();
  /// The traces; made if they did not exist.
  virtual TStnFADCData* GetFADCData();
  /// The telescope directions; made (all zero) if they did not exist.
  virtual TStnGeometryData* GetGeometryData();
  /// Always null: the traces of all mirrors are in `GetFADCData()`. Logs an error for `mirror_id` outside 1 to 6.
  virtual TMirrorFADCData* GetMirrorFADCData(UInt_t mirror_id);
  /// The pixel data of the mirrors; made if they did not exist.
  virtual TStnPixelData* GetPixelData();
  /// The pixel list; made if it did not exist. A list that was read with a class version of 1 to 4 gets the station
  /// number of the event header at each call, since its own cannot be trusted.
  virtual TStnPixelList* GetPixelList();
  /// The (unused) trigger record; made if it did not exist.
  virtual TStnTriggerData* GetTriggerData();
  /// The T3 record; made if it did not exist.
  virtual TStnT3Data* GetT3Data();

  /// Takes the data of mirror `mirror_id` (1 to 6) out and fills them into the mirror event `*evptr`. The mirror's data
  /// must be here (`GetEventHeader()->IsMirrorDataPresent(mirror_id)`).
  ///
  /// Known limits, which callers count on: the result is always false; the mirror's record stays in the pixel data;
  /// its bit in the mirror status, the event class, the event type and the veto counter stay; the pixel list loses the
  /// neighbours of the mirror's pixels (see `TStnPixelList::RemovePixel`); the next page time is converted to GPS
  /// twice. With `*evptr` null the data go into an object that nobody receives and that stays allocated.
  virtual bool RemoveEvent(UInt_t mirror_id, TMirrorEvent** evptr = nullptr);

  /// The same as `Clear()`.
  virtual void Reset();

  /// Replace the record by a copy of `data`, which stays the caller's; null removes the record.
  virtual void SetGeometryData(TStnGeometryData* data);
  virtual void SetTriggerData(TStnTriggerData* data);
  virtual void SetT3Data(TStnT3Data* data);

  /// Always true: every event can hold pixel data.
  bool IsEnabledPixelData() { return true; }

  /// Writes the whole event for a person to read. Header, pixel data, pixel list and traces are made if need be.
  void Show(std::ostream& ostr = std::cout);

  /// Mends what old files got wrong: pixel data labelled with another station or mirror than their slot's, and missing
  /// telescope directions (but for station 5). `event` must not be null (assertion). `Streamer` and
  /// `TStnEventFile::ReadEvent` call it; a second call changes nothing more.
  static void DoCorrections(TStnEvent* event);

  /// Sets how much all `TStn*` classes but the file write to the log: 0 errors and warnings only, 1 also the normal
  /// course of operations, 2 and above also life-cycle traces and details.
  static void SetPrintLevel(UInt_t level = 1) { fgPrintLevel = level; }

  /// Read directly by the sub-objects, so that a message that is not wanted costs one comparison; set it with
  /// `SetPrintLevel`.
  static UInt_t fgPrintLevel;  //! print/verbosity level for TStn* classes

 private:
  friend class TStnEventFile;  // keeps one header object while it reads headers only

  struct MirrorPlace;

  bool AcceptMirror(const MirrorPlace& place, bool force);
  void AddHeaderValues(TMirrorEventHeader* from, UInt_t mirror);
  void AddEventType(TMirrorEventHeader* from);
  void AddEventLabel(TMirrorEventHeader* from, UInt_t mirror);
  void ConvertMirrorEventLabel(TMirrorEventHeader::EMrEventLabel label);
  void AddMirrorTime(TMirrorEventHeader* from, UInt_t mirror);
  void AddPixelData(TMirrorEvent* event, TMirrorEventHeader* from, UInt_t mirror);
  void AddPixels(TMirrorEvent* event, const MirrorPlace& place);

  void FillMirrorHeader(TMirrorEventHeader* to, UInt_t mirror);
  void ClearMirrorSlots(UInt_t mirror);
  void RemovePixelData(TMirrorEvent* event, UInt_t mirror);
  void RemovePixels(TMirrorEvent* event, UInt_t mirror);

  void ReadRecord(TBuffer& buffer);
  void AddNominalDirections();

  Version_t fStreamerVersion = 0;             //! version read from file
  TStnEventHeader* fEventHeader = nullptr;    // station event header
  TStnFADCData* fFADCData = nullptr;          // container of FADC traces
  TStnPixelList* fPixelList = nullptr;        // (compressed) list of pixels
  TStnPixelData* fPixelData = nullptr;        // container of TMirrorPixelData
  TStnTriggerData* fTriggerData = nullptr;    // trigger info (unused)
  TStnT3Data* fT3Data = nullptr;              // T3 info (used)
  TStnGeometryData* fGeometryData = nullptr;  // geometry information

  ClassDefOverride(TStnEvent, 5)
};

#endif
