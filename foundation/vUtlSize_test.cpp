#include "foundation/vUtlSize.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "foundation/TestFailure.h"

namespace {

std::string tooBig(long long count, long long size) {
  return "Cannot hold " + std::to_string(count) + " items of " + std::to_string(size) +
         " bytes: more than the " + std::to_string(vUtl::maxBlockBytes()) +
         " bytes this machine can address in one block.";
}

}  // namespace

TEST(vUtlSize, BlocksBeyondTheAddressSpaceAreRefused) {
  bool const narrow = sizeof(void*) == 4;
  long long const max = static_cast<long long>(vUtl::maxBlockBytes());
  struct Case {
    long long count, size;
    bool fits;
  } const cases[] = {
      {0, 8, true},
      {7, 0, true},
      {max, 1, true},
      {max / 8, 8, true},
      {max / 8 + 1, 8, false},
      {-1, 4, false},
      {4, -1, false},
      {LLONG_MAX, 2, false},  // the product wraps in 64 bits
      {(1LL << 32) + 16, 1, !narrow},  // 4 GiB and a bit: wraps to 16 in a 32-bit size_t
      {1LL << 20, 5 << 10, !narrow},   // 5 GiB of records
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(std::to_string(c.count) + " x " + std::to_string(c.size));
    EXPECT_EQ(c.fits, vUtl::fitsInMemory(c.count, c.size));
    if (c.fits)
      EXPECT_EQ(static_cast<unsigned long long>(c.count) * static_cast<unsigned long long>(c.size),
                vUtl::checkedBytes("Reader::read", c.count, c.size));
    else
      expectFailure([&] { vUtl::checkedBytes("Reader::read", c.count, c.size); }, "Reader::read",
                    tooBig(c.count, c.size));
  }
}
