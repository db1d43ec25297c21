#include "foundation/vInstanceMapper.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

typedef vInstanceMapperBase::RangeList Ranges;

Ranges compress(std::vector<unsigned int> const& v) {
  Ranges r;
  r.push_back(std::make_pair(99u, 99u));  // must be cleared
  vInstanceMapperBase::compressInstancesToRanges(v, r);
  return r;
}

Ranges ranges(std::initializer_list<std::pair<unsigned int, unsigned int> > l) { return Ranges(l); }

// Fixed-length records after a header: instance n starts at
// header + (n - 1) * record bytes.
class FixedRecordMapper : public vInstanceMapper<int64_t> {
 public:
  FixedRecordMapper(int64_t header, int64_t record) : header_(header), record_(record) {}
  std::vector<int64_t> convert(unsigned int first, unsigned int last) override {
    std::vector<int64_t> out;
    for (unsigned int n = first; n <= last; ++n) out.push_back(header_ + (n - 1) * record_);
    return out;
  }
  std::vector<int64_t> convert(std::vector<unsigned int> const& instances) override {
    std::vector<int64_t> out;
    for (unsigned int n : instances) out.push_back(header_ + (n - 1) * record_);
    return out;
  }

 private:
  int64_t header_;
  int64_t record_;
};

}  // namespace

TEST(vInstanceMapper, OnlyAscendingUnitStepsMerge) {
  EXPECT_EQ(ranges({{4, 9}}), compress({4, 5, 6, 7, 8, 9}));
  EXPECT_TRUE(compress({}).empty());
  EXPECT_EQ(ranges({{1, 3}, {7, 8}, {10, 10}}), compress({1, 2, 3, 7, 8, 10}));
  EXPECT_EQ(ranges({{1, 2}, {2, 3}}), compress({1, 2, 2, 3}));
  EXPECT_EQ(ranges({{5, 5}, {4, 4}, {3, 3}}), compress({5, 4, 3}));
  EXPECT_EQ(ranges({{0xFFFFFFFEu, 0xFFFFFFFFu}, {0, 0}}), compress({0xFFFFFFFEu, 0xFFFFFFFFu, 0}));
  // The first-and-last form is one range.
  Ranges r;
  r.push_back(std::make_pair(1u, 1u));
  vInstanceMapperBase::compressInstancesToRanges(3, 12, r);
  EXPECT_EQ(ranges({{3, 12}}), r);
}

TEST(vInstanceMapper, ConcreteMapperUsesSixtyFourBitPositions) {
  FixedRecordMapper m(3600, 240 + 4 * 3000);
  std::vector<int64_t> const p = m.convert(1, 3);
  ASSERT_EQ(3u, p.size());
  EXPECT_EQ(3600 + 2 * 12240, p[2]);
  std::vector<int64_t> const far = m.convert(std::vector<unsigned int>{400000u});
  EXPECT_EQ(3600 + int64_t(399999) * 12240, far[0]);
  vInstanceMapperBase* base = &m;
  Ranges r;
  base->compressInstancesToRanges(std::vector<unsigned int>{2, 3}, r);
  EXPECT_EQ(ranges({{2, 3}}), r);
}
