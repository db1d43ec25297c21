#ifndef TOOLS_TOOLRANGESELECT_H
#define TOOLS_TOOLRANGESELECT_H

// ToolRangeSelect: the select operator behind "--view select:ATTR,MIN,MAX":
// an instance is kept when the first value of ATTR lies within MIN and MAX,
// both included. Select operators are the application's; this is the
// tool's only one.

#include <list>

#include "decorator/SelectOperatorBase.h"

class ToolRangeSelect : public SelectOperatorBase {
 public:
  ToolRangeSelect(vUCString const& attribute, double minimum, double maximum);
  void doEvaluate(std::list<Attribute> const& batchAttributes, unsigned int nInstances, unsigned char* mask,
                  unsigned int first, unsigned int last) override;

 private:
  vUCString m_attribute;
  double m_minimum;
  double m_maximum;
};

#endif
