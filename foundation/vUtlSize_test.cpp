#include "foundation/vUtlSize.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "foundation/TestFailure.h"

TEST(vUtlSize, BlocksBeyondTheAddressSpaceAreRefused) {
  long long const max = static_cast<long long>(vUtl::maxBlockBytes());
  bool const wide = sizeof(void*) == 8;
  struct Case {
    long long count, size;
    bool fits;
  } const cases[] = {
      {0, 8, true}, {max / 8, 8, true}, {max / 8 + 1, 8, false}, {-1, 4, false},
      {LLONG_MAX, 2, false},           // wraps in 64 bits
      {(1LL << 32) + 16, 1, wide},     // wraps to 16 in a 32-bit size_t
  };
  for (Case const& c : cases) {
    std::string const what = std::to_string(c.count) + " items of " + std::to_string(c.size) + " bytes";
    SCOPED_TRACE(what);
    if (c.fits)
      EXPECT_EQ(static_cast<unsigned long long>(c.count * c.size), vUtl::checkedBytes("Reader::read", c.count, c.size));
    else
      expectFailure([&] { vUtl::checkedBytes("Reader::read", c.count, c.size); }, "Reader::read",
                    "Cannot hold " + what + ": more than the " + std::to_string(max) +
                        " bytes this machine can address in one block.");
  }
}
