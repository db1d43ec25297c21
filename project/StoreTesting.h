#ifndef PROJECT_STORETESTING_H
#define PROJECT_STORETESTING_H

// Test helpers of the store layer: the attribute model's failure checker and
// hand-written Packer byte builder, under the store tests' own namespace.

#include <string>

#include "attribute/AttributeTesting.h"

namespace store_testing {

using attribute_testing::bodyOf;
using attribute_testing::Bytes;
using attribute_testing::receive;

// Runs f, which must fail with UtlExcept with this method and reason.
template <class F>
void expectFailure(F f, std::string const& method, std::string const& reason) {
  attribute_testing::expectFailure(f, method.c_str(), reason);
}

}  // namespace store_testing

#endif
