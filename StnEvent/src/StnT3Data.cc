#include <StnEvent/StnT3Data.h>

ClassImp(TStnT3Data);

/// `Reset` leaves the total signal alone, so it gets its start here.
TStnT3Data::TStnT3Data() : fTotalSignal(0) { TStnT3Data::Reset(); }

TStnT3Data::~TStnT3Data() = default;

void TStnT3Data::Reset() {
  fNPixels = 0;
  fSDPTheta = kInvalidValue;
  fSDPPhi = kInvalidValue;
  fAzimuthAtGround = kInvalidValue;
  fTimeAtGround = static_cast<Int_t>(kInvalidValue);
}

void TStnT3Data::Show(std::ostream& ostr) {
  ostr << "--- TStnT3Data ---" << std::endl;
  ostr << " NPixels=        " << fNPixels << std::endl;
  ostr << " SDP-Theta=      " << fSDPTheta << " [rad]" << std::endl;
  ostr << " SDP-PHI=        " << fSDPPhi << " [rad]" << std::endl;
  ostr << " AZ-at-Ground=   " << fAzimuthAtGround << " [rad]" << std::endl;
  ostr << " Time-at-Ground= " << fTimeAtGround << " [nsec]" << std::endl;
  ostr << "------------------" << std::endl;
}
