#ifndef GEOMETRY_COORDINATEPROJECTIONSUBSCRIBER_H
#define GEOMETRY_COORDINATEPROJECTIONSUBSCRIBER_H

// CoordinateProjectionSubscriber: told when a coordinate system it watches
// changes.

class CoordinateProjectionSubscriber {
 public:
  virtual ~CoordinateProjectionSubscriber() = default;
  virtual void update() = 0;
};

#endif
