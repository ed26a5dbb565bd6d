#ifndef MrEvent_FadcData_h
#define MrEvent_FadcData_h

#include <VdUtil/VdNumbering.h>

#include <Rtypes.h>
#include <TObject.h>

#include <iostream>

class MrRecordReader;
struct MrTraceCode;

/// The FADC trace of one pixel. The sample of bin b stands in word b of the record; bins of 2000 and above have no word.
class TFADCData : public TObject {
 public:
  /// Number of bins that a trace is digitised in. The underlying type is fixed, so that all two-bit values are values.
  enum FADCTraceResolution : Int_t {
    kFADC_RESOLUTION_1000_BINS = 0,
    kFADC_RESOLUTION_2000_BINS = 1,
    kFADC_RESOLUTION_4000_BINS = 2,
    kFADC_DEFAULT_RESOLUTION = 1
  };

  /// Words of a record.
  static constexpr UInt_t kNFADCWords = 2000;

  /// Monitoring values of the pixel.
  struct _PixelMonitorDataRec {
    /// Threshold before and now, trigger rate, mean and variance, in the mirror's own units.
    unsigned int fPrevThreshold;
    unsigned int fActualThreshold;
    unsigned int fActualRate;
    double fMean;
    double fVariance;
  };

  /// First and last bin, and an FADCTraceResolution. The fields can be reached directly or through fBits.
  union _FADCTraceInfoRec {
    /// The whole word.
    UInt_t fWord;

    /// The fields by name.
    struct {
      UInt_t fStartBin : 12;
      UInt_t fEndBin : 12;
      UInt_t fResolution : 2;
      UInt_t : 6;
    };
    struct {
      UInt_t fStartBin : 12;
      UInt_t fEndBin : 12;
      UInt_t fResolution : 2;
      UInt_t : 6;
    } fBits;
  };

  /// One sample and its flags. The fields can be reached directly or through fBits.
  union _FADCDataWordRec {
    /// The whole word.
    UShort_t fWord;

    /// The fields by name.
    struct {
      UShort_t fData : 12;
      UShort_t fUnused1 : 1;
      UShort_t fUnused2 : 1;
      UShort_t fThresholdChanged : 1;
      UShort_t fPixelTrigger : 1;
    };
    struct {
      UShort_t fData : 12;
      UShort_t fUnused1 : 1;
      UShort_t fUnused2 : 1;
      UShort_t fThresholdChanged : 1;
      UShort_t fPixelTrigger : 1;
    } fBits;
  };

  /// The data of a trace.
  struct _FADCDataRec {
    /// The pixel, its monitoring values, the bins that the trace has, its start as the mirror gave it, and the words of
    /// the bins.
    _PixelNumber fPixelNumber;
    _PixelMonitorDataRec fMonitor;
    _FADCTraceInfoRec fTraceInfo;
    Float_t fTraceStartTime;
    _FADCDataWordRec fFadcData[kNFADCWords];
  };

  /// Owns a record of zeros with the default resolution.
  TFADCData();
  /// Refers to the record, which must outlive the object, and neither copies nor deletes it: what is written through
  /// this object is written into the record. With null the same as the default constructor.
  explicit TFADCData(_FADCDataRec* record);
  /// Owns a deep copy of the record, whether or not the source owns its.
  TFADCData(const TFADCData& rhs);
  /// Copies the record into one that this object owns; a record that was only referred to stays as it was. The TObject
  /// part stays.
  TFADCData& operator=(const TFADCData& rhs);
  ~TFADCData() override;

  /// The data themselves.
  const _FADCDataRec* GetRecord() const { return fRecord; }
  _FADCDataRec* GetRecord() { return fRecord; }

  /// The pixel, inside the record.
  _PixelNumber* GetPixelNumber() const { return &fRecord->fPixelNumber; }

  /// First and last bin of the trace, 0 to 4095.
  UInt_t GetStartBin() const { return fRecord->fTraceInfo.fStartBin; }
  UInt_t GetEndBin() const { return fRecord->fTraceInfo.fEndBin; }
  /// Number of bins from the first to the last, in unsigned arithmetic: a very large number when the last lies further
  /// than one bin before the first. Not to be used as an index unchecked.
  UInt_t GetTraceLength() const { return GetEndBin() + 1 - GetStartBin(); }

  /// How finely the trace is digitised.
  FADCTraceResolution GetResolution() const {
    return static_cast<FADCTraceResolution>(UInt_t(fRecord->fTraceInfo.fResolution));
  }
  /// Number of bins that the trace's resolution stands for.
  UInt_t GetNFADCBins() const { return GetNFADCBins(GetResolution()); }
  /// 1000, 2000 or 4000 by the resolution's name; 0 for a value without a name.
  static UInt_t GetNFADCBins(FADCTraceResolution resolution);

  /// Start of the trace, as the mirror gave it.
  Float_t GetTraceStartTime() const { return fRecord->fTraceStartTime; }
  /// Sample of a bin, 12 bits without its flags; 0 for a bin that has no word.
  UInt_t GetSample(UInt_t bin) const { return bin < kNFADCWords ? UInt_t(fRecord->fFadcData[bin].fData) : 0; }

  /// Back to a new object.
  void Clear(Option_t* option = "") override;
  /// Prints pixel, bins, resolution, start time and monitoring values, and the samples of the trace.
  void Show(std::ostream& ostr = std::cout) const;

 private:
  void Own();
  void WriteRecord(TBuffer& b);
  void PackValues();
  void SetCode(const MrTraceCode& code);
  MrTraceCode GetCode() const;
  void ReadRecord(TBuffer& b);
  void ReadVersion1(MrRecordReader& reader);
  void ReadCurrentVersion(MrRecordReader& reader);
  void ReadLaterVersion(MrRecordReader& reader);
  bool CheckCounts(MrRecordReader& reader) const;
  bool CheckWords(MrRecordReader& reader) const;
  void UnpackValues();
  UShort_t* GetWords() { return &fRecord->fFadcData[0].fWord; }

  _FADCDataRec* fRecord;  //!
  bool fIsOwner;          //!

  // Form on file, in use during streaming only. The word of bin b, of fNWords bins from fFirst on, is fBase plus the
  // difference that the first of these gives which is not 15, modulo 65536; words outside are 0:
  //   57 + half byte b - fFirst of fNear;
  //   50 + the next half byte of fFar if that is below 7, and 65 + it otherwise;
  //   the next byte of fWideLow, and 256 * the byte of fWideHigh for it, which has those from fFirstWideHigh on.
  // Without fNear the words are all in fWideLow and fWideHigh.
  UInt_t fTraceInfo = 0;         // start bin in bits 0 to 11, end bin in bits 12 to 23, resolution in bits 24 and 25
  Double_t fVariance = 0;        // variance
  Float_t fTraceStartTime = 0;   // start of the trace
  UShort_t fFirst = 0;           // bin of the first word
  UShort_t fNWords = 0;          // number of words
  Int_t fNNear = 0;              // number of bytes with near words
  UShort_t fFirstWideHigh = 0;   // first wide word with a high byte
  Int_t fNWideHigh = 0;          // number of high bytes of wide words
  Int_t fNWide = 0;              // number of wide words
  Int_t fNFar = 0;               // number of bytes with far words
  UInt_t fPixelWord = 0;         // pixel number
  UInt_t fPrevThreshold = 0;     // previous threshold
  UInt_t fActualThreshold = 0;   // actual threshold
  UInt_t fActualRate = 0;        // actual rate
  Double_t fMean = 0;            // mean
  UShort_t fBase = 0;            // base value of the trace
  UChar_t* fWideHigh = nullptr;  //[fNWideHigh] high bytes of the wide words, from the first to the last that is not 0
  UChar_t* fWideLow = nullptr;   //[fNWide] their low bytes
  UChar_t* fFar = nullptr;       //[fNFar] two far words in a byte, the first in the low bits
  UChar_t* fNear = nullptr;      //[fNNear] two near words in a byte, the first in the low bits

  ClassDefOverride(TFADCData, 2)
};

#endif
