#include "geometry/CoordinateProjector.h"

#include "geometry/OGRProjector.h"

CoordinateProjector::CoordinateProjector() : m_traceName("CoordinateProjector"), m_inForce(&m_projection) {
  m_inForce->attach(this);
}

CoordinateProjector::~CoordinateProjector() { m_inForce->detach(this); }

void CoordinateProjector::setProjection(CoordinateProjection* projection) {
  m_inForce->detach(this);
  m_inForce = projection ? projection : &m_projection;
  m_inForce->attach(this);
  update();
}

CoordinateProjector* CoordinateProjector::newInstance() { return new OGRProjector(); }
