#ifndef GEOMETRY_NOPROJECTOR_H
#define GEOMETRY_NOPROJECTOR_H

// NoProjector: the projector of a build without a projection toolkit. It is
// never valid and every conversion reports that it cannot be done.

#include "geometry/CoordinateProjector.h"

class NoProjector : public CoordinateProjector {
 public:
  NoProjector();
  ~NoProjector() override;

  void update() override;
  bool isValid() const override;
  vString getDescription(int kind) override;
  bool convertLatLongToRW(int n, double* x, double* y, int flags) override;
  bool convertRWToLatLong(int n, double* x, double* y) override;
};

#endif
