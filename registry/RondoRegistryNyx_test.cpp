// Nyx files through the store factory: the finder picks the mapping file
// that fits a file by its name and its traces, the factory opens the file
// through it, and "cst" files are made by the factory.

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "filestore/nyx/NyxDiskStore.h"
#include "filestore/nyx/NyxFormat.h"
#include "filestore/nyx/NyxTesting.h"
#include "foundation/TestReleaseTree.h"
#include "project/StoreFactory.h"
#include "registry/RondoRegistry.h"
#include "syslayer/FSTesting.h"

namespace {

TEST(RondoRegistryNyx, TheFinderPicksTheMappingThatGivesGroups) {
  registerRondoClasses();
  TestReleaseTree tree;  // the mapping files lie in the release of the checkout
  tree.setEnv("VREL", RONDO_TEST_SOURCE_DIR "/release/");
  fs_testing::TempDir dir;
  struct Case {
    char const* name;
    char const* spec;
    char const* key;
    char const* traces;
  } const cases[] = {{"line2d.cst", "2dCMPGathers", "CDP", "12"},
                     {"line2dstk.cst", "2dStack", "CDP", "12 5 stack"},
                     {"area3dSTK.cst", "3dInlineStacks", "INLINE", "12"},
                     {"area3d.nyx", "3dCMPGathers", "INLINE", "12"},
                     {"plain.cst", "", "", "12"},
                     {"single2d.cst", "", "", "1"}};
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    std::string const path = dir / c.name;
    nyx_testing::writeFixture("cst", path, ">", 5, c.traces);
    StoreDescription description{vFilename(path.c_str())};
    EXPECT_EQ(std::string(c.spec), NyxFormat::getSpecification(description).c_str());
    StoreOpenOptions options;
    options.setAutoSpecifyCSTFiles(true);
    vHandle<Store> store = StoreFactory::openStore(description, "", &options);
    if (*c.spec == '\0') {
      EXPECT_NE(nullptr, dynamic_cast<NyxDiskStore*>(store.get()));
      continue;
    }
    KeyList const keys = store->getKeyList();
    ASSERT_LT(0u, keys.getNKeys());
    EXPECT_EQ(vUCString(c.key), keys.begin()->getName());
    // Trace 4: CMP 11 (13 in a stack, one trace a CMP), word 19 (the inline) 2.
    bool const stack = std::strstr(c.traces, "stack") != nullptr;
    Attribute key(c.key, "", vINT32);
    store->read(key, 3, 4);
    EXPECT_EQ(c.key[0] == 'C' ? (stack ? 13 : nyx_testing::cmp(4)) : 2, key.getInt32(2));
  }
  StoreDescription shots{vFilename((dir / "line2d.cst").c_str())};
  EXPECT_TRUE(NyxFormat::mySpecProducesGroups(shots, "2dShotGathers"));
  EXPECT_EQ(vString(), shots.getFormatSpec());
  EXPECT_FALSE(NyxFormat::mySpecProducesGroups(shots, "noSuchSpec"));
}

TEST(RondoRegistryNyx, CstFilesAreMadeByTheFactory) {
  registerRondoClasses();
  fs_testing::TempDir dir;
  std::string const path = dir / "made.cst";
  vHandle<Store> made = StoreFactory::createStore(StoreDescription(vFilename(path.c_str())), "", KeyList(), nullptr);
  ASSERT_NE(nullptr, dynamic_cast<NyxDiskStore*>(made.get()));
  Attribute trace("TRACE", "", vFLOAT32, 2, 4.0);
  made->addAttribute(trace);
  trace.resize(3);
  for (unsigned int i = 1; i <= 3; ++i) trace.getFloat32Pointer(i)[1] = 0.5f * i;
  made->write(trace, 1, 3);
  made->close();
  vHandle<Store> store = StoreFactory::openStore(StoreDescription(vFilename(path.c_str())), "", nullptr);
  Attribute back("TRACE", "", vFLOAT32);
  store->read(back, 3, 3);
  EXPECT_EQ(1.5f, back.getFloat32Pointer(1)[1]);
}

}  // namespace
