#include "tools/ToolRangeSelect.h"

#include "foundation/Message.h"

ToolRangeSelect::ToolRangeSelect(vUCString const& attribute, double minimum, double maximum)
    : SelectOperatorBase(vString("range"), 1, EvaluatingOperator),
      m_attribute(attribute),
      m_minimum(minimum),
      m_maximum(maximum) {
  addAttribute(attribute);
}

void ToolRangeSelect::doEvaluate(std::list<Attribute> const& batchAttributes, unsigned int nInstances,
                                 unsigned char* mask, unsigned int, unsigned int) {
  for (Attribute const& column : batchAttributes) {
    if (column.getName() != m_attribute) continue;
    for (unsigned int i = 0; i < nInstances; ++i) {
      double const v = column.getValue(i + 1);
      mask[i] = v >= m_minimum && v <= m_maximum ? 1 : 0;
    }
    return;
  }
  Message::fatal("ToolRangeSelect::doEvaluate", 0, "The attribute '%s' was not read for the selection.",
                 m_attribute.c_str());
}
