// The header file: its text read as written, written and read back, and a
// header set opened as a store over data files from the Python writer.

#include "filestore/offload/OffloadHeaderFile.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>

#include "filestore/offload/OffloadDiskStore.h"
#include "filestore/offload/OffloadTesting.h"
#include "syslayer/FSTesting.h"

namespace {

std::string cwd() {
  char buffer[4096];
  return ::getcwd(buffer, sizeof buffer);
}

}  // namespace

TEST(OffloadHeaderFile, TextsReadAsWritten) {
  OffloadHeaderFile h;
  expectFailure([&] { h.getVersion(); }, "OffloadHeaderFile::getVersion",
                "Version is not known at this point. Application should open or create OffloadHeader file first.");
  std::string const v1 = "Sun Mar  3 10:00:00 1996\nmoffld_job7 extra\n100 50 3\n  1500 /d/a.offload\tb\n0 2500.5\n";
  h.parse(vFilename("h1"), v1.data(), v1.size());
  EXPECT_EQ(1, h.getVersion().getVersion());
  EXPECT_EQ(vString("moffld_job7"), h.getJobName());
  EXPECT_EQ(50.0, h.getOffsetIncrement());
  EXPECT_EQ((std::vector<double>{1500, 2500.5}), h.getOffsetLimits());
  // A bare "b" and the limit 0 are file names, in the current directory.
  ASSERT_EQ(3u, h.getDataFilenames().size());
  EXPECT_EQ(vString("/d/a.offload"), h.getDataFilenames()[0].getFilename());
  EXPECT_EQ(vString((cwd() + "/b.offload").c_str()), h.getDataFilenames()[1].getFilename());
  EXPECT_EQ(vString((cwd() + "/0.offload").c_str()), h.getDataFilenames()[2].getFilename());

  // Version 2 by the "." of the third line; the same text word-swapped.
  std::string v2 = "Tue Mar  5 10:00:00 1996\njob\n12.5 25 4\nx\n";
  while (v2.size() % 4) v2 += ' ';
  std::string swapped = v2;
  for (std::size_t k = 0; k < swapped.size(); k += 4) std::reverse(swapped.begin() + k, swapped.begin() + k + 4);
  ASSERT_EQ(" euT", swapped.substr(0, 4));
  for (std::string const& text : {v2, swapped}) {
    OffloadHeaderFile w;
    w.parse(vFilename("h2"), text.data(), text.size());
    EXPECT_EQ(2, w.getVersion().getVersion());
    EXPECT_EQ(12.5, w.getFirstOffset());
    EXPECT_EQ(4, w.getNOffsets());
    ASSERT_EQ(1u, w.getDataFilenames().size());
    EXPECT_EQ(vString("x"), w.getDataFilenames()[0].getRoot());
  }
  // The first words of a data file, in either order.
  for (std::string const& data :
       {std::string("\x64\0\0\0\xa7\x2e\x01\0", 8), std::string("\0\0\0\x64\0\x01\x2e\xa7", 8)})
    expectFailure([&] { h.parse(vFilename("d"), data.data(), data.size()); }, "OffloadHeaderFile::open",
                  "File 'd' does not appear to be a header file");
}

TEST(OffloadHeaderFile, SavedAndOpenedAgain) {
  fs_testing::TempDir dir;
  for (int version : {1, 2}) {
    std::string const name = dir / ("saved" + std::to_string(version) + ".hdr");
    OffloadHeaderFile h;
    h.create(vFilename(name.c_str()), version, 100.25, 50, 3);
    h.setDataFilenames({vFilename("/data/o1.offload"), vFilename("/data/o2.offload")});
    h.save();
    OffloadHeaderFile back(vFilename(name.c_str()));
    EXPECT_EQ(version, back.getVersion().getVersion());
    EXPECT_EQ(version == 2 ? 100.25 : 100.0, back.getFirstOffset());
    EXPECT_EQ(h.getCreatedDate(), back.getCreatedDate());
    ASSERT_EQ(2u, back.getDataFilenames().size());
    EXPECT_EQ(vString("/data/o2.offload"), back.getDataFilenames()[1].getFilename());
    std::ifstream in(name);
    std::string line;
    for (int k = 0; k < 3; ++k) std::getline(in, line);
    EXPECT_EQ(version == 2 ? "100.25 50.00 3" : "100 50 3", line);
  }
}

TEST(OffloadHeaderFile, AHeaderSetOpensAsAStoreOfOneSetPerFile) {
  fs_testing::TempDir dir;
  std::string const base = dir / "set";
  std::string files;
  for (char const* order : {"<", ">"}) {
    std::string const data = base + (order[0] == '<' ? "_le" : "_be") + ".offload";
    offload_testing::writeFixture(data, base + ".txt", order, 1, 991, 0);
    files += data + "\n";
  }
  auto header = [&](char const* offsets) {
    std::ofstream(base + ".hdr") << "Sun Mar  3 10:00:00 1996\njob\n" << offsets << "\n" << files;
  };
  header("100 50 3");
  OffloadDiskStore store;
  store.open(vFilename((base + ".hdr").c_str()));
  Store::AttributeSetList sets;
  store.getAttributeSetList(sets);
  ASSERT_EQ(2u, sets.size());
  store.openAttributeSet(sets.back());
  Attribute cdp("CDP", "", vINT32);
  store.read(cdp, 2, 2);
  EXPECT_EQ(14, cdp.getInt32(1));
  EXPECT_EQ(base + "_be.offload", store.getCurrentFilename().c_str());
  store.close();
  header("100 50 4");
  expectFailure([&] { OffloadDiskStore().open(vFilename((base + ".hdr").c_str())); }, "OffloadDiskStore::open",
                "Data file '" + base + "_le.offload' does not belong to the offsets of header file '" + base +
                    ".hdr'.");
}
