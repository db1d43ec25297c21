#include "decorator/RestoreMuteDecorator.h"

#include <gtest/gtest.h>

#include "decorator/JoinTesting.h"
#include "decorator/StoreDecoratorFactory.h"
#include "foundation/TestReleaseTree.h"

using namespace join_testing;

namespace {

// Two traces recorded from 200 ms to 1000 ms at 4 ms: 201 samples each.
vHandle<Store> mutedStore() {
  std::vector<double> samples;
  for (int i = 1; i <= 2; ++i)
    for (int s = 0; s < 201; ++s) samples.push_back(1000 * i + s + 1);
  Column trace{Attribute("TRACE", "TRACE", vFLOAT32, 201, 4.0, 200.0), samples};
  return simpleStore("muted", {"CDP"}, {column("CDP", vINT32, {7, 8}), trace});
}

TEST(RestoreMuteDecorator, TracesStartAtTimeZero) {
  vHandle<Store> view = StoreDecoratorFactory::addRestoreMute(mutedStore());
  Attribute shown = view->getAttribute("TRACE");
  EXPECT_EQ(251, shown.getLength());
  EXPECT_EQ(0.0, shown.getFirstTime());
  view->read(shown, std::vector<unsigned int>{2, 1});
  std::vector<float> expected(50, 0.0f);
  for (int s = 0; s < 201; ++s) expected.push_back(static_cast<float>(2000 + s + 1));
  float const* second = shown.getFloat32Pointer(1);
  EXPECT_EQ(expected, std::vector<float>(second, second + 251));
  EXPECT_EQ(1001.0f, shown.getFloat32Pointer(2)[50]);
  // Writes are refused as the suite checks; so are updates and new stores.
  expectFatal([&] { view->update("muted", 0, "", "", nullptr); }, "RestoreMuteDecorator::update(storename)",
              "Not Supported.");
  expectFatal([&] { view->create("x", "", "", KeyList(), nullptr); }, "RestoreMuteDecorator::create(storename)",
              "Not Supported.");
}

}  // namespace
