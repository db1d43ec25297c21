#include "decorator/SelectOperatorBase.h"

#include "foundation/Message.h"

SelectOperatorBase::SelectOperatorBase(vString const& name, int type, int operatorClass)
    : m_name(name), m_debug(false), m_tolerance(0.0), m_type(type), m_class(operatorClass) {}

SelectOperatorBase::~SelectOperatorBase() {}

void SelectOperatorBase::doNewTolerance(double, double) {}

vUCString const& SelectOperatorBase::getAttributeName(int index) const {
  if (index < 0 || index >= getNumAttributes())
    Message::fatal("SelectOperatorBase::getAttributeName", 0, "Operator %s has no attribute %d (it reads %d).",
                   m_name.c_str(), index, getNumAttributes());
  return m_attributeNames[static_cast<std::size_t>(index)];
}

void SelectOperatorBase::setTolerance(double tolerance) {
  doNewTolerance(m_tolerance, tolerance);
  m_tolerance = tolerance;
}
