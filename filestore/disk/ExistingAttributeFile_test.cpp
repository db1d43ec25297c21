#include "filestore/disk/ExistingAttributeFile.h"

#include <gtest/gtest.h>

#include "filestore/disk/AttributeFileTesting.h"
#include "project/StoreTesting.h"

using disk_testing::MemoryAttributeFile;
using disk_testing::MemoryVolume;
using store_testing::expectFailure;

namespace {

// The register is one per process: each test registers its own extension.
std::shared_ptr<MemoryVolume> registerVolume(char const* extension) {
  auto volume = std::make_shared<MemoryVolume>();
  ExistingAttributeFile::getInstance().registerExample(extension, new MemoryAttributeFile(volume, extension));
  return volume;
}

}  // namespace

TEST(ExistingAttributeFile, OpensAndDeletesAFileByTheExampleOfItsExtension) {
  auto volume = registerVolume("memopen");
  volume->makeFile("/data/line1.memopen", {Attribute("CDP", "CDP", vINT32)}, 4);
  ExistingAttributeFile& files = ExistingAttributeFile::getInstance();

  AttributeFile::OpenOptions update;
  update.setUpdate(true);
  update.setRestoreMute(true);
  vHandle<AttributeFile> file = files.open("/data/line1.memopen", Attribute(), update);
  EXPECT_EQ("/data/line1.memopen", std::string(file->getName().c_str()));
  EXPECT_TRUE(file->getRestoreMute());
  Attribute cdp = file->getAttribute("CDP");
  int const values[] = {9, 8};
  cdp.copyData(2, values);
  file->writeRange(cdp, 3, 4);
  file->flush();

  // A second file object sees what the first flushed.
  vHandle<AttributeFile> again = files.open("/data/line1.memopen", Attribute(), AttributeFile::OpenOptions());
  EXPECT_FALSE(again->getRestoreMute());
  Attribute back = again->getAttribute("CDP");
  again->readRange(back, 1, 4);
  EXPECT_EQ((std::vector<int>{9, 8}), (std::vector<int>{back.getInt32(3), back.getInt32(4)}));
  files.deleteFile("/data/line1.memopen");
  EXPECT_FALSE(volume->exists("/data/line1.memopen"));
}

TEST(ExistingAttributeFile, RefusesUnknownExtensionsNullExamplesAndSecondRegistrations) {
  registerVolume("memtwice");
  ExistingAttributeFile& files = ExistingAttributeFile::getInstance();
  expectFailure([&] { files.open("/x/y.nosuchkind", Attribute(), AttributeFile::OpenOptions()); },
                "ExistingAttributeFile::open", "Unknown file extension for file '/x/y.nosuchkind'.");
  expectFailure([&] { files.registerExample("memnull", nullptr); }, "ExistingAttributeFile::registerExample",
                "Example for extension memnull was null.");
  auto other = std::make_shared<MemoryVolume>();
  expectFailure([&] { files.registerExample("memtwice", new MemoryAttributeFile(other, "memtwice")); },
                "ExistingAttributeFile::registerExample", "Extension memtwice is already registered.");
  // Extensions compare exactly.
  EXPECT_FALSE(files.isRegistered("MEMTWICE"));
}
