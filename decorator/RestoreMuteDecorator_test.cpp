#include "decorator/RestoreMuteDecorator.h"

#include <gtest/gtest.h>

#include "decorator/DecoratorTesting.h"
#include "decorator/StoreDecoratorFactory.h"
#include "filestore/memory/InMemoryStore.h"
#include "foundation/TestReleaseTree.h"

using namespace decorator_testing;

namespace {

// Two traces recorded from 200 ms to 1000 ms at 4 ms: 201 samples each.
vHandle<Store> mutedStore() {
  vHandle<InMemoryStore> store(new InMemoryStore(vHandle<Project>()));
  KeyList keys;
  keys.addKey(Attribute("CDP", "CDP", vINT32));
  store->create("muted", "seismic", "3d", keys, nullptr);
  store->addInstances(2);
  Attribute trace("TRACE", "TRACE", vFLOAT32, 201, 4.0, 200.0);
  store->addAttribute(trace);
  trace.resize(2);
  for (unsigned int i = 1; i <= 2; ++i)
    for (int s = 0; s < 201; ++s) trace.getFloat32Pointer(i)[s] = static_cast<float>(1000 * i + s + 1);
  store->write(trace, 1, 2);
  Attribute cdp("CDP", "CDP", vINT32);
  cdp.resize(2);
  cdp.setInt32(1, 7);
  cdp.setInt32(2, 8);
  store->write(cdp, 1, 2);
  return vHandle_cast<Store>(store);
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
