#ifndef MrEvent_MiPixelList_h
#define MrEvent_MiPixelList_h

#include <VdUtil/VdNumbering.h>

#include <Rtypes.h>
#include <TObject.h>

#include <iostream>

class MrRecordReader;

/// The pixels of one mirror that took part in an event, in the order in which they were added.
class TMirrorPixelList : public TObject {
 public:
  /// The data: the count, and room for fCapacity entries.
  struct _MirrorPixelListRec {
    /// Number of entries, number of entries that there is room for, and where they are.
    UInt_t fNumPixels;
    UInt_t fCapacity;
    _PixelNumber* fPixels;
  };

  /// An empty list.
  TMirrorPixelList();
  TMirrorPixelList(const TMirrorPixelList& rhs);
  /// Deep copy of the list; the TObject part stays.
  TMirrorPixelList& operator=(const TMirrorPixelList& rhs);
  ~TMirrorPixelList() override;

  /// Appends a copy of the number; a null pointer is ignored. Addresses that GetPixel gave before become invalid.
  virtual void AddPixel(_PixelNumber* pixel);

  /// Number of pixels in the list.
  UInt_t GetNumPixels() const { return fRecord->fNumPixels; }

  /// The entry itself, so that the caller can write into it, for an index from 0; at and beyond the end a pixel word
  /// of zero, which stands for no pixel and is good until the next call on this thread.
  _PixelNumber* GetPixel(UInt_t index) const;

  /// Takes every pixel out.
  void Clear(Option_t* option = "") override;
  /// Prints the count, and station, mirror, pixel, column and row of each entry.
  void Show(std::ostream& ostr = std::cout) const;

 private:
  void Reserve(UInt_t capacity);
  void WriteRecord(TBuffer& b);
  void ReadRecord(TBuffer& b);
  void ReadCurrentVersion(MrRecordReader& reader);
  void Unpack(const UInt_t* words);

  _MirrorPixelListRec fData;     //!
  _MirrorPixelListRec* fRecord;  //!

  // Form on file, in use during streaming only.
  Int_t fNPixels = 0;            // number of pixels
  UInt_t* fPixelWord = nullptr;  //[fNPixels] pixel numbers

  ClassDefOverride(TMirrorPixelList, 1)
};

#endif
