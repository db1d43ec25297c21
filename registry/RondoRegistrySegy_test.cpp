// The store factory reaches the SEG-Y store through the registration point,
// for each of its tags.

#include <gtest/gtest.h>

#include <string>

#include "filestore/segy/SegyDiskStore.h"
#include "filestore/segy/SegyTesting.h"
#include "project/StoreFactory.h"
#include "registry/RondoRegistry.h"
#include "syslayer/FSTesting.h"

namespace {

TEST(RondoRegistrySegy, SegyFilesOpenAsSegyStoresByEveryTag) {
  registerRondoClasses();
  fs_testing::TempDir dir;
  segy_testing::SegyWriter w;
  w.dataTracesPerRecord = 3;
  std::string const plain = w.file(4);
  for (char const* name : {"a.sgy", "b.SGY", "c.segy", "d"}) {
    std::string const path = dir / name;
    fs_testing::writeFile(path, plain);
    StoreDescription description{vFilename(path.c_str())};
    if (std::string(name) == "d") description.setFileFormat("segy");
    vHandle<Store> store = StoreFactory::openStore(description, "", nullptr);
    ASSERT_NE(nullptr, dynamic_cast<SegyDiskStore*>(store.get())) << name;
    EXPECT_TRUE(store->isOpen());
    EXPECT_EQ(4u, store->getNInstances()) << name;
    Attribute cmp = store->getAttribute("CMP");
    store->read(cmp, 4, 4);
    EXPECT_EQ(segy_testing::goldenHeader(4, 20), cmp.getInt32(1));
  }
  // The blocked variant: two blocks of two traces.
  std::string const blocked = dir / "e.dsegy";
  fs_testing::writeFile(blocked, w.blockedFile(2));
  vHandle<Store> store = StoreFactory::openStore(StoreDescription(vFilename(blocked.c_str())), "", nullptr);
  ASSERT_NE(nullptr, dynamic_cast<SegyDiskStore*>(store.get()));
  EXPECT_EQ(4u, store->getNInstances());
  Attribute cmp = store->getAttribute("CMP");
  store->read(cmp, 3, 4);
  EXPECT_EQ(segy_testing::goldenHeader(3, 20), cmp.getInt32(1));
}

}  // namespace
