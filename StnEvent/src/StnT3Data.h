#ifndef StnEvent_StnT3Data_h
#define StnEvent_StnT3Data_h

#include <TObject.h>

#include <iostream>

/// What the third-level trigger found in an event. Callers set the values; nothing here computes them.
class TStnT3Data : public TObject {
 public:
  /// Value of what the trigger did not find.
  static constexpr Float_t kInvalidValue = 9999.0F;

  /// As after `Reset`, with a total signal of 0.
  TStnT3Data();
  TStnT3Data(const TStnT3Data&) = default;
  TStnT3Data& operator=(const TStnT3Data&) = default;
  ~TStnT3Data() override;

  /// No pixels, and `kInvalidValue` for everything else but the total signal, which stays.
  virtual void Reset();

  /// Number of pixels used.
  unsigned int GetNPixels() const { return fNPixels; }
  /// Theta of the shower-detector plane, in radian.
  float GetSDPTheta() const { return fSDPTheta; }
  /// Phi of the shower-detector plane, in radian.
  float GetSDPPhi() const { return fSDPPhi; }
  /// Azimuth of the shower at the ground, in radian.
  float GetAzimuthAtGround() const { return fAzimuthAtGround; }
  /// Time of the shower at the ground, in nanoseconds.
  int GetTimeAtGround() const { return fTimeAtGround; }
  /// Total signal, in the unit in which it was set.
  float GetTotalSignal() const { return fTotalSignal; }

  /// The counterparts of the getters; no value is checked.
  void SetNPixels(int npixels) { fNPixels = npixels; }
  void SetSDPTheta(float theta) { fSDPTheta = theta; }
  void SetSDPPhi(float phi) { fSDPPhi = phi; }
  void SetAzimuthAtGround(float azimuth) { fAzimuthAtGround = azimuth; }
  void SetTimeAtGround(unsigned int time) { fTimeAtGround = time; }
  void SetTotalSignal(float signal) { fTotalSignal = signal; }

  /// Prints everything but the total signal.
  void Show(std::ostream& ostr = std::cout);

 private:
  Int_t fNPixels;            // count
  Float_t fSDPTheta;         // radian
  Float_t fSDPPhi;           // radian
  Float_t fAzimuthAtGround;  // radian
  Int_t fTimeAtGround;       // nanosecond
  Float_t fTotalSignal;

  ClassDefOverride(TStnT3Data, 3)  // result of the third-level trigger
};

#endif
