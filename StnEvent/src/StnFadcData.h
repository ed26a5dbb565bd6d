#ifndef StnEvent_StnFadcData_h
#define StnEvent_StnFadcData_h

#include <MrEvent/FadcData.h>
#include <VdUtil/VdNumbering.h>

#include <TObjArray.h>
#include <TObject.h>

#include <iostream>

/// The FADC traces of a station event, addressed by station pixel number (1 to 2880). The traces belong to this object.
class TStnFADCData : public TObject {
 public:
  /// An empty container with `num_fadc` slots. It grows to a whole station when the first trace is added.
  TStnFADCData(Int_t num_fadc = VdUtil::Vd::kSTN_NEXTPIXELS);
  /// Deep copy.
  TStnFADCData(const TStnFADCData& rhs);
  /// Deep copy of the traces and their count; the streamer version stays.
  TStnFADCData& operator=(const TStnFADCData& rhs);
  ~TStnFADCData() override;

  /// Declared for the interface's sake only: it is not defined, so a comparison does not link.
  bool operator==(const TStnFADCData& rhs) const;

  /// Stores a copy of the trace, or with `is_owner` the object itself, at the pixel that the trace names. A mirror pixel
  /// outside 1 to 480, a mirror outside 1 to 6 and a pixel that has a trace are refused with a message; the refused
  /// object stays the caller's in every case. Null does nothing.
  void AddFADCData(TFADCData* fadc, bool is_owner = false);

  /// The trace of a pixel, which stays the container's, or null if there is none. A null `pixel` is an assertion.
  const TFADCData* GetFADCData(_VdPixelNumber* pixel) const;
  /// The same for a pixel by mirror.
  const TFADCData* GetFADCData(_PixelNumber* pixel) const;
  /// A new iterator over the traces by ascending station pixel number, which the caller deletes.
  TIterator* GetIterator(Bool_t dir = kIterForward) const { return GetArray().MakeIterator(dir); }
  /// The count of traces. It is kept by hand: `Clear` leaves it, and `RemoveFADCData` lowers it by 2 for a trace.
  UInt_t GetNTraces() const { return fNTraces; }

  /// Takes a stored trace out of the container without deleting it: it is the caller's then. Lowers the count by 2. Null
  /// and a trace that is not stored here do nothing.
  void RemoveFADCData(const TFADCData* fadc);

  /// Deletes all traces. The count stays.
  void Clear(Option_t* option = "") override;
  /// Prints count and versions to `ostr`, and length and number of bins of the first trace to `std::cout`.
  virtual void Show(std::ostream& ostr = std::cout) const;

 private:
  const TObjArray& GetArray() const;
  Int_t GetCapacity() const { return GetArray().GetSize(); }
  void Reserve(Int_t capacity);
  TFADCData* GetTrace(UInt_t stn_pixel) const;

  Version_t fStreamerVersion;  //! version read from file
  UInt_t fNTraces;             // Number of FADC traces stored
  TObjArray* fFADCData;        // Container to store the FADC traces

  ClassDefOverride(TStnFADCData, 1)  // FADC traces of a station event
};

#endif
