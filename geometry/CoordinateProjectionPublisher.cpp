#include "geometry/CoordinateProjectionPublisher.h"

#include "geometry/CoordinateProjectionSubscriber.h"

void CoordinateProjectionPublisher::attach(CoordinateProjectionSubscriber* subscriber) {
  m_subscribers.push_back(subscriber);
}

void CoordinateProjectionPublisher::detach(CoordinateProjectionSubscriber* subscriber) {
  m_subscribers.remove(subscriber);
}

void CoordinateProjectionPublisher::notify() {
  // A copy, so that a subscriber may detach while it is told.
  std::list<CoordinateProjectionSubscriber*> const subscribers(m_subscribers);
  for (CoordinateProjectionSubscriber* s : subscribers) s->update();
}
