#ifndef old_GeometryData1_h
#define old_GeometryData1_h

#include <TObject.h>

// Axes of a station's telescopes.
class TStnGeometryData : public TObject {
 public:
  float fAxisAzimuth[6] = {};    // axis azimuth values
  float fAxisElevation[6] = {};  // axis elevation values

  ClassDefOverride(TStnGeometryData, 1)
};

#endif
