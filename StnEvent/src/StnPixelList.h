#ifndef StnEvent_StnPixelList_h
#define StnEvent_StnPixelList_h

#include <VdUtil/VdNumbering.h>

#include <TObject.h>

#include <iostream>
#include <vector>

class TBuffer;
class TMirrorPixelList;
class TStnEvent;

/// The pixels of one station that took part in an event.
///
/// The set is kept as one bit for each of the 2880 station pixels, which is what goes to file, and is expanded to a
/// list of installation pixel numbers at the first `GetPixel`. That makes `GetPixel` a change of the object: a list may
/// not be shared between threads, not even for reading.
class TStnPixelList : public TObject {
 public:
  /// An empty list of the station of this host (`VdUtil::VdConfig`).
  TStnPixelList();
  /// A list with the pixels, the streamer version and the station of `rhs`.
  TStnPixelList(const TStnPixelList& rhs);
  /// Takes over the pixels and the streamer version of `rhs`; the station stays.
  TStnPixelList& operator=(const TStnPixelList& rhs);
  ~TStnPixelList() override;

  /// True if both lists have the same bits, over the words of this list. Stations and counts are not compared.
  bool operator==(const TStnPixelList& rhs) const;

  /// Adds a pixel of this list's station. No pixel (null or number 0), a station pixel above 2880, a pixel of another
  /// station and one that is in the list already are refused with a warning. Pointers from `GetPixel` end here.
  void AddPixel(_VdPixelNumber* pixel);
  /// The same for a pixel by mirror.
  void AddPixel(_PixelNumber* pixel) { AddPixel(VdUtil::Vd::GetVdPixelNumber(pixel)); }
  /// Adds each pixel of a mirror's list; those that `AddPixel` refuses are left out. Null adds nothing.
  void AddPixelList(TMirrorPixelList* list);

  /// Clears the bit after the pixel's own, which is the bit of the next pixel, and lowers the count by one, also when
  /// the bit was clear. The expanded list stays as it is. No pixel (null or number 0), a station pixel above 2880 and,
  /// where it is noticed, a pixel that is not in the list are refused with a warning.
  void RemovePixel(_VdPixelNumber* pixel);
  /// The same for a pixel by mirror.
  void RemovePixel(_PixelNumber* pixel) { RemovePixel(VdUtil::Vd::GetVdPixelNumber(pixel)); }

  /// Takes all pixels out. The station stays.
  void Clear(Option_t* option = "") override;
  /// Prints station, count, versions and the installation pixel numbers, ten to a line. Can end the process as
  /// `GetPixel` can.
  void Show(std::ostream& ostr = std::cout);

  /// Station, 1 to 5.
  UInt_t GetStnNo() const { return fStnNo + 1; }
  /// Number of pixels in the list.
  UInt_t GetNumPixels() const { return fNPixels; }
  /// The pixel at index `i` (from 0, by ascending station pixel number), or null if there is none. The pointer is good
  /// until the list changes. Writes two fatal messages and ends the process with `exit(1)` if the bits do not match
  /// the count.
  _VdPixelNumber* GetPixel(unsigned int i);
  /// True if the bit after the pixel's own is set, that is, if the next pixel is in the list. False for no pixel.
  bool TestPixel(_VdPixelNumber* pixel);

 protected:
  /// Word (`element`) and bit in it at which `TestPixel` and `RemovePixel` look for the pixel: the station pixel number
  /// counted from 0, one position above the one that `AddPixel` sets.
  void GetPosition(_VdPixelNumber* pixel, UInt_t* element, UInt_t* bit) const;
  /// Builds the expanded list from the bits; ends the process if their number is not the count.
  void ConstructPixelList();
  /// Sets the station, 1 to 5; any other number is refused with a warning.
  void SetStnNo(unsigned int stn_no);

 private:
  friend class TStnEvent;  // mends the station of lists that were read from old files

  UInt_t GetNWords() const;
  UInt_t GetWord(UInt_t element) const;
  void ReplaceVector(UInt_t* words);
  void SetPixel(UInt_t stn_pixel);
  void ReadRecord(TBuffer& b);
  void ReadDescribed(TBuffer& b, Version_t version, UInt_t start, UInt_t count);
  void ReadVersion2(TBuffer& b, UInt_t start, UInt_t count);

  Version_t fStreamerVersion;  //! version read from file
  UInt_t fStnNo;               // Stn number (0..3)
  UInt_t fNPixels;             // number of pixels in list
  UInt_t fPixelVectorSize;     // size of the pixel bit vector
  UInt_t* fPixelVector;        //[fPixelVectorSize]
#ifndef __ROOTCLING__
  std::vector<_VdPixelNumber> fPixelList;  // pixels in ascending order, empty when not built
#else
  ULong64_t : 64;  // The dictionary has nothing to do with that list and sees unnamed room instead.
  ULong64_t : 64;
  ULong64_t : 64;
#endif
  VdPixelNumberRec fPixelNumber;  //! pixel number to return

  static_assert(sizeof(std::vector<_VdPixelNumber>) == 3 * sizeof(ULong64_t), "dictionary and code would disagree");

  ClassDefOverride(TStnPixelList, 4)  // pixels of one station that took part in an event
};

#endif
