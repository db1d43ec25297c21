#include "foundation/vInstanceMapper.h"

#include <gtest/gtest.h>

namespace {

typedef vInstanceMapperBase::RangeList Ranges;

Ranges compress(std::vector<unsigned int> const& v) {
  Ranges r;
  r.push_back(std::make_pair(99u, 99u));  // must be cleared
  vInstanceMapperBase::compressInstancesToRanges(v, r);
  return r;
}

Ranges ranges(std::initializer_list<std::pair<unsigned int, unsigned int> > l) { return Ranges(l); }

}  // namespace

TEST(vInstanceMapper, OnlyAscendingUnitStepsMerge) {
  EXPECT_EQ(ranges({{4, 9}}), compress({4, 5, 6, 7, 8, 9}));
  EXPECT_TRUE(compress({}).empty());
  EXPECT_EQ(ranges({{1, 3}, {7, 8}, {10, 10}}), compress({1, 2, 3, 7, 8, 10}));
  EXPECT_EQ(ranges({{1, 2}, {2, 3}}), compress({1, 2, 2, 3}));
  EXPECT_EQ(ranges({{5, 5}, {4, 4}, {3, 3}}), compress({5, 4, 3}));
  EXPECT_EQ(ranges({{0xFFFFFFFEu, 0xFFFFFFFFu}, {0, 0}}), compress({0xFFFFFFFEu, 0xFFFFFFFFu, 0}));
  Ranges r;
  r.push_back(std::make_pair(1u, 1u));
  vInstanceMapperBase::compressInstancesToRanges(3, 12, r);
  EXPECT_EQ(ranges({{3, 12}}), r);
}
