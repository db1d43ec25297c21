#include "foundation/vInstanceMapperBase.h"

#include "foundation/vUtl.h"

vInstanceMapperBase::~vInstanceMapperBase() {}

void vInstanceMapperBase::compressInstancesToRanges(unsigned int first, unsigned int last, RangeList& ranges) {
  ranges.clear();
  ranges.push_back(std::make_pair(first, last));
}

void vInstanceMapperBase::compressInstancesToRanges(std::vector<unsigned int> const& instances, RangeList& ranges) {
  ranges.clear();
  if (instances.empty()) return;
  if (vUtl::isListARange(instances)) {
    ranges.push_back(std::make_pair(instances.front(), instances.back()));
    return;
  }
  unsigned int first = instances[0];
  unsigned int previous = first;
  for (size_t i = 1; i < instances.size(); ++i) {
    unsigned int const v = instances[i];
    if (v == previous + 1 && v != 0) {
      previous = v;
      continue;
    }
    ranges.push_back(std::make_pair(first, previous));
    first = previous = v;
  }
  ranges.push_back(std::make_pair(first, previous));
}
