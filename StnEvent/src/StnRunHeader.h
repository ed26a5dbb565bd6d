#ifndef StnEvent_StnRunHeader_h
#define StnEvent_StnRunHeader_h

#include <VdRoot/TTimeStamp.h>

#include <TObject.h>
#include <TString.h>

#include <iostream>
#include <string>

/// What describes a run of one station at its start; stored in the file as "RunHeader".
///
/// A version code packs three numbers: bits 16 to 23 the version, 8 to 15 the sub version, 0 to 7 the sub-sub version.
/// 0 is an unknown version.
class TStnRunHeader : public TObject {
 public:
  /// A header in the state after `Clear()`.
  TStnRunHeader();
  TStnRunHeader(const TStnRunHeader& rhs);
  /// Copies all fields but the `TObject` part.
  TStnRunHeader& operator=(const TStnRunHeader& rhs);
  ~TStnRunHeader() override = default;

  /// Sets the station of this computer, this library's versions, the texts "default" (user) and "not set" (comment), the
  /// start time Unix second 0, and everything else to 0; `option` is ignored.
  void Clear(Option_t* option = "") override;
  /// Writes the header for a person to read.
  virtual void Show(std::ostream& ostr = std::cout);

  /// Always true, whatever the mirror; the real bit is in `GetMirrorStatus()`.
  Bool_t IsMirrorPresent(UInt_t mirror_id);
  /// Marks mirror `mirror_id` (1 to 6) as taking part in the run; other ids are ignored silently.
  void SetMirrorPresent(UInt_t mirror_id);
  /// Sets the versions of the two data formats to those of this library and the two program versions to 0 (unknown).
  /// Who knows the program versions sets them afterwards.
  void SetVersionInformation();

  /// Station, 1 to 5; the low 8 bits are stored.
  void SetStnNo(UInt_t stn_no) { fStnNumber = stn_no; }
  UInt_t GetStnNo() const { return fStnNumber; }
  /// Mirrors that take part: bit (id - 1) for mirror id; the low 8 bits are stored.
  void SetMirrorStatus(UInt_t status) { fMirrorStatus = status; }
  UInt_t GetMirrorStatus() const { return fMirrorStatus; }
  /// Number of the run.
  void SetRunNo(UInt_t run_no) { fRunNo = run_no; }
  UInt_t GetRunNo() const { return fRunNo; }
  /// When the run was started.
  void SetStartTime(const VdRoot::TTimeStamp& t) { fStartTime = t; }
  const VdRoot::TTimeStamp& GetStartTime() const { return fStartTime; }
  /// Who ran the data acquisition.
  void SetUserName(const TString& user) { fUserName = user; }
  const TString& GetUserName() const { return fUserName; }
  /// Free text about the run.
  void SetComment(const TString& comment) { fComment = comment; }
  const TString& GetUserComment() const { return fComment; }
  /// Version code of the event builder.
  void SetEvbVersion(UInt_t eversion) { fEvbVersion = eversion; }
  UInt_t GetEvbVersion() const { return fEvbVersion; }
  /// Version code of the readout program.
  void SetReadoutVersion(UInt_t rversion) { fReadoutVersion = rversion; }
  UInt_t GetReadoutVersion() const { return fReadoutVersion; }
  /// Version codes of the data formats of station and mirror events; they always name the library that wrote the file.
  UInt_t GetStnEventVersion() const { return fStnEventVersion; }
  UInt_t GetMrEventVersion() const { return fMrEventVersion; }

 protected:
  /// A version code as "2.1.100", or "'unknown'" (with the quotes) for 0; bits 24 to 31 are ignored.
  static const std::string GetVersionCodeVerbosely(UInt_t code);

 private:
  UChar_t fStnNumber;             // Stn number (1..4)
  UChar_t fMirrorStatus;          // bit for each mirror in DAQ: bit (id - 1) for mirror id
  UInt_t fRunNo;                  // run number of current RUN
  VdRoot::TTimeStamp fStartTime;  // time when the RUN was started
  TString fUserName;              // name of the user who did DAQ
  TString fComment;               // RUN specific comment string
  UInt_t fEvbVersion;             // version of the event builder
  UInt_t fStnEventVersion;        // version of this library's data format
  UInt_t fMrEventVersion;         // version of the MrEvent data fmt.
  UInt_t fReadoutVersion;         // version of the readout program

  ClassDefOverride(TStnRunHeader, 2)
};

#endif
