#ifndef FOUNDATION_VINSTANCEMAPPERBASE_H
#define FOUNDATION_VINSTANCEMAPPERBASE_H

// vInstanceMapperBase: turns instance numbers (1-based, inclusive) into
// ranges so that stores can read runs of instances at once.

#include <list>
#include <utility>
#include <vector>

class vInstanceMapperBase {
 public:
  typedef std::list<std::pair<unsigned int, unsigned int> > RangeList;

  virtual ~vInstanceMapperBase();

  // The one range [first, last].
  static void compressInstancesToRanges(unsigned int first, unsigned int last, RangeList& ranges);
  // Runs of ascending unit steps become one range each; a repeated or
  // descending value starts a new range.
  static void compressInstancesToRanges(std::vector<unsigned int> const& instances, RangeList& ranges);
};

#endif
