#ifndef GEOMETRY_COORDINATEPROJECTIONPUBLISHER_H
#define GEOMETRY_COORDINATEPROJECTIONPUBLISHER_H

// CoordinateProjectionPublisher: keeps the subscribers of a coordinate
// system and tells them, in the order they came, when it changes. It does
// not own them: a subscriber detaches itself before it goes. Copies start
// with no subscribers.

#include <list>

class CoordinateProjectionSubscriber;

class CoordinateProjectionPublisher {
 public:
  CoordinateProjectionPublisher() = default;
  CoordinateProjectionPublisher(CoordinateProjectionPublisher const&) {}
  CoordinateProjectionPublisher& operator=(CoordinateProjectionPublisher const&) { return *this; }
  virtual ~CoordinateProjectionPublisher() = default;

  void attach(CoordinateProjectionSubscriber* subscriber);
  void detach(CoordinateProjectionSubscriber* subscriber);
  void notify();

 private:
  std::list<CoordinateProjectionSubscriber*> m_subscribers;
};

#endif
