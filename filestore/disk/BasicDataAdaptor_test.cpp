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

namespace {

// The reference content of the store suite, once in a store and once in an
// attribute file.
class BasicDataAdaptorTest : public ::testing::Test {
 protected:
  BasicDataAdaptorTest()
      : m_store(vHandle<Project>()), m_volume(std::make_shared<MemoryVolume>()), m_example(m_volume, "mem") {
    m_store.create("line3", "seismic", "2d", StoreConformance::referenceKeys(), nullptr);
    StoreConformance::populate(m_store);

    std::vector<Attribute> definitions;
    for (char const* name : {"CDP", "OFFSET", "ELEV", "TRACE"})
      definitions.push_back(StoreConformance::referenceDefinition(name));
    m_volume->makeFile("/d/line3.mem", definitions, StoreConformance::kNInstances);
    AttributeFile::OpenOptions update;
    update.setUpdate(true);
    m_file.reset(m_example.makeNew("/d/line3.mem", Attribute(), update));
    for (char const* name : {"CDP", "OFFSET", "ELEV", "TRACE"}) {
      Attribute a(StoreConformance::referenceDefinition(name));
      a.copyData(StoreConformance::referenceAttribute(name));
      m_file->writeRange(a, 1, StoreConformance::kNInstances);
    }
  }

  void expectReference(BasicDataAdaptor const& adaptor) {
    EXPECT_EQ(4u, adaptor.getNAttributes());
    Attribute trace = adaptor.getAttribute("TRACE");
    adaptor.read(trace, 4, 6);
    ASSERT_EQ(3u, trace.getNInstances());
    for (unsigned int i = 1; i <= 3; ++i)
      for (int k = 1; k <= 5; ++k)
        EXPECT_EQ(StoreConformance::referenceValue("TRACE", i + 3, k), trace.getValue(i, k));
  }

  TestMemoryStore m_store;
  std::shared_ptr<MemoryVolume> m_volume;
  MemoryAttributeFile m_example;
  std::unique_ptr<AttributeFile> m_file;
};

}  // namespace

// Over a set and over a file alike; failures are the source's own.
TEST_F(BasicDataAdaptorTest, OverAnAttributeSetOrAFile) {
  BasicDataAdaptor overSet(&m_store);
  BasicDataAdaptor overFile(m_file.get());
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
    expectReference(c.adaptor);
    EXPECT_EQ(c.name, std::string(c.adaptor.getName().c_str()));
    Attribute unknown("NOPE", "", vINT32);
    expectFailure([&] { c.adaptor.read(unknown, 1, 1); }, c.label, c.text);
  }
  expectFailure([] { BasicDataAdaptor(static_cast<AttributeSet const*>(nullptr)); },
                "BasicDataAdaptor::BasicDataAdaptor", "The AttributeSet given was null.");
  expectFailure([] { BasicDataAdaptor(static_cast<AttributeFile*>(nullptr)); }, "BasicDataAdaptor::BasicDataAdaptor",
                "The AttributeFile given was null.");
}
