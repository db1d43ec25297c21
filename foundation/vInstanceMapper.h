#ifndef FOUNDATION_VINSTANCEMAPPER_H
#define FOUNDATION_VINSTANCEMAPPER_H

// vInstanceMapper<T>: maps instance numbers to positions of type T (record
// numbers, byte offsets...) for one kind of store.

#include <vector>

#include "foundation/vInstanceMapperBase.h"

template <class T>
class vInstanceMapper : public vInstanceMapperBase {
 public:
  ~vInstanceMapper() override {}

  // Positions of the instances first..last, inclusive.
  virtual std::vector<T> convert(unsigned int first, unsigned int last) = 0;
  // Positions of the given instances, in their order.
  virtual std::vector<T> convert(std::vector<unsigned int> const& instances) = 0;
};

#endif
