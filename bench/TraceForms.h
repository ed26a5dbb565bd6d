#ifndef TraceForms_h
#define TraceForms_h

#include <Rtypes.h>
#include <TObject.h>

class TBuffer;

/// Forms of a trace on file that were compared with the one of TFADCData. All leave out zeros at both ends and read
/// their counted arrays by hand, as that does; fHead stands for the values beside the samples.
class TraceForm : public TObject {
 public:
  static constexpr Int_t kNWords = 2000;
  UShort_t fWord[kNWords] = {};  //! samples

 protected:
  Int_t Pack();

  UInt_t fHead[10] = {};  // pixel, bins, monitoring values
  UShort_t fBase = 0;     // base value
  UShort_t fFirst = 0;    // first bin

  ClassDefOverride(TraceForm, 1)
};

/// The words as they are.
class WordsForm : public TraceForm {
  Int_t fN = 0;                // number of words
  UShort_t* fWords = nullptr;  //[fN] words
  ClassDefOverride(WordsForm, 1)
};

/// A byte for each word, the difference to the base; words that do not fit stand in a list with their indices.
class ListForm : public TraceForm {
  Int_t fN = 0;                // number of bytes
  Int_t fNOther = 0;           // number of words that don't fit
  UChar_t* fByte = nullptr;    //[fN] differences
  UShort_t* fIndex = nullptr;  //[fNOther] their indices
  UShort_t* fOther = nullptr;  //[fNOther] words that don't fit
  ClassDefOverride(ListForm, 1)
};

/// The same, but a byte of 255 marks a word that does not fit, so that no index is needed.
class EscapeForm : public TraceForm {
  Int_t fN = 0;                // number of bytes
  Int_t fNOther = 0;           // number of words that don't fit
  UChar_t* fByte = nullptr;    //[fN] differences
  UShort_t* fOther = nullptr;  //[fNOther] words that don't fit
  ClassDefOverride(EscapeForm, 1)
};

/// A byte for each word, the difference to the word before; where it does not fit, 255 and the word in a list.
class DeltaForm : public TraceForm {
  Int_t fN = 0;                // number of bytes
  Int_t fNOther = 0;           // number of words that don't fit
  UChar_t* fByte = nullptr;    //[fN] differences
  UShort_t* fOther = nullptr;  //[fNOther] words that don't fit
  ClassDefOverride(DeltaForm, 1)
};

/// The low bytes of the differences to the base, and the high bytes from the first to the last that is not 0.
class LowHighForm : public TraceForm {
  UShort_t fFirstHigh = 0;   // index of the first high byte
  Int_t fNLow = 0;           // number of low bytes
  Int_t fNHigh = 0;          // number of high bytes
  UChar_t* fLow = nullptr;   //[fNLow] low bytes
  UChar_t* fHigh = nullptr;  //[fNHigh] high bytes
  ClassDefOverride(LowHighForm, 1)
};

#endif
