#include "filestore/disk/BasicDataAdaptor.h"

#include <gtest/gtest.h>

#include "filestore/disk/AttributeFileTesting.h"
#include "project/Project.h"
#include "project/StoreTesting.h"
#include "testing/StoreConformance.h"
#include "testing/TestMemoryStore.h"

using disk_testing::MemoryAttributeFile;
using disk_testing::MemoryVolume;
using store_testing::expectFailure;

// Over a set and over a file holding the reference content of the store
// suite alike; failures are the source's own.
TEST(BasicDataAdaptor, OverAnAttributeSetOrAFile) {
  TestMemoryStore set{vHandle<Project>()};
  set.create("line3", "seismic", "2d", StoreConformance::referenceKeys(), nullptr);
  StoreConformance::populate(set);
  auto volume = std::make_shared<MemoryVolume>();
  std::vector<Attribute> definitions;
  for (char const* name : {"CDP", "OFFSET", "ELEV", "TRACE"})
    definitions.push_back(StoreConformance::referenceDefinition(name));
  volume->makeFile("/d/line3.mem", definitions, StoreConformance::kNInstances);
  AttributeFile::OpenOptions update;
  update.setUpdate(true);
  std::unique_ptr<AttributeFile> file(MemoryAttributeFile(volume, "mem").makeNew("/d/line3.mem", Attribute(), update));
  for (char const* name : {"CDP", "OFFSET", "ELEV", "TRACE"}) {
    Attribute a(StoreConformance::referenceDefinition(name));
    a.copyData(StoreConformance::referenceAttribute(name));
    file->writeRange(a, 1, StoreConformance::kNInstances);
  }

  BasicDataAdaptor overSet(&set);
  BasicDataAdaptor overFile(file.get());
  struct Case {
    BasicDataAdaptor const& adaptor;
    char const* name;
    char const* label;
    char const* text;
  } const cases[] = {
      {overSet, "line3", "TestMemoryAttributeSet::read(range)", "Attribute NOPE is not in the AttributeSet line3."},
      {overFile, "/d/line3.mem", "MemoryAttributeFile::readRange",
       "Attribute NOPE is not in the AttributeFile /d/line3.mem."},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.name, std::string(c.adaptor.getName().c_str()));
    EXPECT_EQ(4u, c.adaptor.getNAttributes());
    Attribute trace = c.adaptor.getAttribute("TRACE");
    c.adaptor.read(trace, 4, 6);
    ASSERT_EQ(3u, trace.getNInstances());
    for (unsigned int i = 1; i <= 3; ++i)
      for (int k = 1; k <= 5; ++k)
        EXPECT_EQ(StoreConformance::referenceValue("TRACE", i + 3, k), trace.getValue(i, k));
    Attribute unknown("NOPE", "", vINT32);
    expectFailure([&] { c.adaptor.read(unknown, 1, 1); }, c.label, c.text);
  }
  expectFailure([] { BasicDataAdaptor(static_cast<AttributeSet const*>(nullptr)); },
                "BasicDataAdaptor::BasicDataAdaptor", "The AttributeSet given was null.");
  expectFailure([] { BasicDataAdaptor(static_cast<AttributeFile*>(nullptr)); }, "BasicDataAdaptor::BasicDataAdaptor",
                "The AttributeFile given was null.");
}
