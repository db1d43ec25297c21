// New offload files: written here, read by the Python reader (testdata/)
// and by the store.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <tuple>
#include <vector>

#include "filestore/offload/OffloadAttributeFile.h"
#include "filestore/offload/OffloadDiskStore.h"
#include "filestore/offload/OffloadTesting.h"
#include "syslayer/FSTesting.h"

using namespace offload_testing;

namespace {

// New table names go through the Rondo translation table of the release
// tree; every test of this program that writes needs it.
struct ReleaseTree {
  ReleaseTree() { ::setenv("VREL", RONDO_TEST_SOURCE_DIR "/release/", 0); }
} const releaseTree;

float traceSample(unsigned int bin, int s) { return static_cast<float>(bin) * 10.0f - static_cast<float>(s) * 1.5f; }

}  // namespace

TEST(OffloadWrite, NewFilesReadByThePythonReaderAndTheStore) {
  for (auto const& [packed, first] : {std::pair{0, 100.0}, std::pair{1, 100.5}}) {
    SCOPED_TRACE("packed " + std::to_string(packed));
    fs_testing::TempDir dir;
    std::string const name = dir / "new.offload";
    {
      OffloadAttributeFile file;
      file.create(vFilename(name.c_str()));
      expectFailure([&] { file.create(vFilename(name.c_str())); }, "OffloadAttributeFile::create",
                    "Cannot add things to an existing file." + name);
      for (Attribute const& a : {Attribute("INLINE", "", vINT32), Attribute("CROSSLINE", "", vINT32),
                                 Attribute("TRACE", "", vFLOAT32, 5, 4.0, 8.0), Attribute("CDP", "", vINT32),
                                 Attribute("ELEV", "", vFLOAT32)})
        file.addAttribute(a);
      file.setGrid(CMPBasicGrid(1, 1, 10, 2, 3, 100, 1, 4, vCoordinate(), 25.0f, 12.5f, 0.0));
      if (packed) file.setCompression(OffloadAttributeFile::INT16);
      expectFailure([&] { file.setCompression(static_cast<OffloadAttributeFile::CompressionType>(7)); },
                    "OffloadAttributeFile::setCompression", "Unexpected CompressionType 7.");
      char const* const setOffset = "OffloadAttributeFile::setOffset";
      expectFailure([&] { file.setOffset(first, 50, 0, 1); }, setOffset, "Number of offsets must be >=1, got 0.");
      expectFailure([&] { file.setOffset(first, 50, 3, 4); }, setOffset, "Offset sequence 4 must be >0 and <=3.");
      file.setOffset(first, 50, 3, 2);
      Attribute trace("TRACE", "", vFLOAT32, 5, 4.0, 8.0), cdp("CDP", "", vINT32), elev("ELEV", "", vFLOAT64);
      trace.resize(10), cdp.resize(10), elev.resize(10);
      for (unsigned int b = 2; b <= 11; ++b) {
        for (int s = 0; s < 5; ++s) trace.getFloat32Pointer(b - 1)[s] = traceSample(b, s);
        cdp.setInt32(b - 1, static_cast<int>(7 * b));
        elev.setFloat64(b - 1, 0.25 * b);
      }
      for (Attribute* a : {&trace, &cdp, &elev}) file.writeRange(*a, 2, 11);
      Attribute two("ELEV", "", vFLOAT64);
      two.resize(2);
      two.setFloat64(1, 0.25 * 11), two.setFloat64(2, 0.25 * 2);
      file.writeList(two, {11, 2});
      expectFailure([&] { file.addAttribute(Attribute("X", "", vINT32)); }, "OffloadAttributeFile::addAttribute",
                    "File " + name + " cannot be extended once data has been written to it.");
      file.flush();
    }
    std::vector<std::string> const lines = pythonRead(name);
    ASSERT_EQ(13u, lines.size()) << "python3 with numpy is needed";
    std::vector<double> const h = numbers(lines[0]);
    // version, samples, mute, interval, compression, grid, offset, sequence, count
    EXPECT_EQ((std::vector<double>{first == 100.0 ? 1.0 : 2.0, 7, 2, 4000, double(packed), 4, 3, 100, 10, 1, 2,
                                   first + 50, 2, 3}),
              std::vector<double>(h.begin(), h.begin() + 14));
    EXPECT_NE(std::string::npos, lines[0].find("SUBLINE INLINE CROSSLINE CDP ELEV"));
    EXPECT_EQ("0", lines[1]);
    EXPECT_EQ("0", lines[12]);
    for (unsigned int b = 2; b <= 11; ++b) {
      std::vector<double> const row = numbers(lines[b]);
      ASSERT_EQ(1u + 5 + 5, row.size()) << lines[b];
      EXPECT_EQ(1, row[0]);
      EXPECT_EQ(7.0 * b, row[4]);
      EXPECT_FLOAT_EQ(0.25f * b, static_cast<float>(row[5]));
      for (int s = 0; s < 5; ++s) EXPECT_NEAR(traceSample(b, s), row[6 + s], packed ? 0.01 : 0.0) << b << " " << s;
    }
    // Without generated attributes the keys come from the records, where
    // nothing was written to them.
    fs_testing::Env recorded("SP_OFFLOAD_USEGENERATEDATTRS", "false");
    OffloadDiskStore plain;
    plain.open(vFilename(name.c_str()));
    Attribute il("INLINE", "", vINT32);
    plain.read(il, 11, 11);
    EXPECT_EQ(0, il.getInt32(1));
  }
}

TEST(OffloadWrite, AStoreCreatesAHeaderAndOneFilePerOffset) {
  fs_testing::TempDir dir;
  std::string const base = dir / "store";
  StoreCreationOptions options;
  std::string const prefix = "Creation of a seismic/offloadheader Store requires that ";
  auto refused = [&](char const* subClass, std::string const& what) {
    expectFailure([&] { OffloadDiskStore().create("s", "seismic", subClass, KeyList(), &options); },
                  "OffloadDiskStore::create", prefix + what);
  };
  refused("segy", "subClass is offloadhesder.");
  options.setGrid(10, 2, 3, 100, 1, 4, 25.0f, 12.5f);
  options.setOffsets(100, 200, 3);
  options.setFilename(vFilename((base + ".hdr").c_str()));
  std::list<Attribute> attributes{Attribute("CDP", "", vINT32), Attribute("INLINE", "", vFLOAT32),
                                  Attribute("CROSSLINE", "", vFLOAT32)};
  options.setAttributeList(attributes);
  refused("offloadheader", "StoreCreationOptions AttributeList has a TRACE Attribute.");
  attributes.push_back(Attribute("TRACE", "", vFLOAT32, 4, 2.0));
  options.setAttributeList(attributes);
  options.setCompressed();
  {
    OffloadDiskStore store;
    store.create("s", "seismic", "offloadheader", KeyList(), &options);
    expectFailure([&] { store.addAttribute(Attribute("X", "", vINT32)); }, "OffloadDiskStore::addAttribute",
                  "Cannot add attribute to created store");
    Store::AttributeSetList sets;
    store.getAttributeSetList(sets);
    ASSERT_EQ(3u, sets.size());
    store.openAttributeSet(sets.back());
    Attribute cdp("CDP", "", vINT32);
    cdp.resize(12);
    for (unsigned int i = 1; i <= 12; ++i) cdp.setInt32(i, static_cast<int>(i) * 3);
    store.write(cdp, 1, 12);
    store.close();
  }
  OffloadDiskStore store;
  store.open(vFilename((base + ".hdr").c_str()));
  store.openAttributeSet(vLCString((base.substr(base.rfind('/') + 1) + "_3").c_str()));
  Attribute cdp("CDP", "", vINT32), bin("OFFSET.BIN", "", vFLOAT64), fold("CMP.FOLD", "", vINT32);
  store.read(cdp, 12, 12), store.read(bin, 1, 1), store.read(fold, 1, 1);
  EXPECT_EQ((std::vector<double>{36, 200, 1}),
            (std::vector<double>{cdp.getValue(1), bin.getValue(1), fold.getValue(1)}));
  EXPECT_EQ(vString("yes"), store.getFile().getProperties().findProperty(vUCString("COMPRESSED"))->getString());
  expectFailure([&] { store.open(vFilename((base + ".hdr").c_str())); }, "OffloadDiskStore::open",
                "OffloadDiskStore is already open as '" + base + ".hdr'.");
  store.close();
}

// Files of the Python writer (3 inlines of 4 crosslines, bins 1, 6 and 12
// dead, 7 stored samples), updated in place and read back by its reader.
TEST(OffloadWrite, ExistingFilesUpdatedInPlaceAndReadByThePythonReader) {
  for (auto const& [order, version, shape, packed] : {std::tuple{"<", 1, 991, 0}, std::tuple{">", 2, 995, 1}}) {
    SCOPED_TRACE(std::string(order) + std::to_string(shape));
    fs_testing::TempDir dir;
    std::string const name = dir / "update.offload";
    writeFixture(name, dir / "update.txt", order, version, shape, packed);
    std::vector<std::string> const before = pythonRead(name);
    ASSERT_EQ(13u, before.size());
    {
      OffloadDiskStore store;
      store.update(vFilename(name.c_str()));
      Attribute cdp("CDP", "", vINT32), trace("TRACE", "", vFLOAT32, 7), extra("EXTRA", "", vFLOAT32);
      cdp.resize(12);
      for (unsigned int b = 1; b <= 12; ++b) cdp.setInt32(b, static_cast<int>(500 + b));
      store.write(cdp, 1, 12);
      trace.resize(1);
      for (int s = 0; s < 7; ++s) trace.getFloat32Pointer(1)[s] = traceSample(6, s);
      store.write(trace, 6, 6);  // a dead bin
      expectFailure([&] { store.addInstances(3); }, "OffloadAttributeFile::addInstances",
                    "Instances are added by whole inlines of 4 crosslines to '" + name + "', not 3.");
      store.addInstances(4);
      store.addAttribute(extra);
      EXPECT_EQ(16u, store.getNInstances());
      extra.resize(2);
      extra.setFloat32(1, 2.5f), extra.setFloat32(2, -7.25f);
      store.write(extra, std::vector<unsigned int>{2, 15});
      Attribute il("INLINE", "", vINT32);
      store.read(il, 16, 16);
      EXPECT_EQ(16, il.getInt32(1));
      store.close();
    }
    std::vector<std::string> const lines = pythonRead(name);
    ASSERT_EQ(17u, lines.size());
    std::vector<double> const h = numbers(lines[0]);
    EXPECT_EQ(4, h[6]) << lines[0];  // inlines
    EXPECT_NE(std::string::npos, lines[0].find("SUBLINE CDP ELEV EXTRA")) << lines[0];
    for (unsigned int b = 1; b <= 16; ++b) {
      std::vector<double> const row = numbers(lines[b]), old = b <= 12 ? numbers(before[b]) : std::vector<double>{0};
      bool const written = b <= 12 || b == 15;
      ASSERT_EQ(written ? 1u + 4 + 7 : 1u, row.size()) << b << ": " << lines[b];
      if (!written) continue;
      EXPECT_EQ(old[0] != 0 ? old[0] : 1, row[0]) << "fold of bin " << b;
      EXPECT_EQ(b <= 12 ? 500.0 + b : 0.0, row[2]) << b;
      EXPECT_EQ(b == 2 ? 2.5 : b == 15 ? -7.25 : 0.0, row[4]) << b;
      for (int s = 0; s < 7; ++s) {
        double const want = b == 6 ? traceSample(6, s) : old[0] != 0 ? old[4 + s] : 0.0;
        EXPECT_NEAR(want, row[5 + s], packed && b == 6 ? 0.01 : 0.0) << b << " " << s;
      }
      EXPECT_EQ(old[0] != 0 ? old[1] : 0.0, row[1]) << "SUBLINE of bin " << b;
    }
  }
}

// Table names are the older system's: a caller's name with a translation
// gets the translated one, a "RONDO." name loses the prefix. The file that
// made them answers under the caller's names until closed.
TEST(OffloadWrite, TableNamesTranslatedToTheOlderSystems) {
  fs_testing::TempDir dir;
  std::string const name = dir / "names.offload";
  {
    OffloadAttributeFile file;
    file.create(vFilename(name.c_str()));
    for (Attribute const& a : {Attribute("INLINE", "", vINT32), Attribute("CROSSLINE", "", vINT32),
                               Attribute("TRACE", "", vFLOAT32, 2, 4.0, 0.0), Attribute("SHOT_X", "SOURCE_X", vFLOAT32),
                               Attribute("RONDO.STATIC", "", vFLOAT32), Attribute("FFID", "FIELD_RECORD", vINT32)})
      file.addAttribute(a);
    file.setGrid(CMPBasicGrid(1, 1, 10, 1, 1, 100, 1, 2, vCoordinate(7000, 9000), 25.0f, 12.5f, 0.3, 0,
                              vCoordinate(500, 250)));
    file.setOffset(100, 50, 1, 1);
    Attribute x("SHOT_X", "SOURCE_X", vFLOAT64), ffid("FFID", "FIELD_RECORD", vINT32);
    x.resize(2), ffid.resize(2);
    x.setFloat64(1, 1234.5), x.setFloat64(2, -2.25), ffid.setInt32(1, 7), ffid.setInt32(2, 8);
    file.writeRange(x, 1, 2);
    file.writeRange(ffid, 1, 2);
    // The grid's origins and rotation as properties; storage biases, which
    // grid readers refuse unless 0, are 0.
    PropertyList const& p = file.getProperties();
    auto value = [&p](char const* n) { return p.findProperty(vUCString(n))->getFloat64(); };
    EXPECT_EQ((std::vector<double>{0, 0, 500, 250, 7000, 9000, 0.3}),
              (std::vector<double>{value("X_STORAGE_BIAS"), value("Y_STORAGE_BIAS"), value("X_SURVEY_ORIGIN"),
                                   value("Y_SURVEY_ORIGIN"), value("X_REALWORLD_ORIGIN"), value("Y_REALWORLD_ORIGIN"),
                                   value("ROTATION_ANGLE")}));
    EXPECT_TRUE(file.hasAttribute("SHOT_X"));
    EXPECT_FALSE(file.hasAttribute("SOURCE_X"));
    file.flush();
  }
  std::vector<std::string> const lines = pythonRead(name);
  ASSERT_EQ(3u, lines.size()) << "python3 with numpy is needed";
  EXPECT_NE(std::string::npos, lines[0].find(" SUBLINE INLINE CROSSLINE SOURCE_X STATIC FIELD_RECORD")) << lines[0];
  EXPECT_EQ((std::vector<double>{1, 0, 0, 0, -2.25, 0, 8, 0, 0}), numbers(lines[2]));
  OffloadDiskStore store;
  store.open(vFilename(name.c_str()));
  EXPECT_TRUE(store.hasAttribute("SOURCE_X"));
  EXPECT_FALSE(store.hasAttribute("SHOT_X"));
  Attribute ffid("FIELD_RECORD", "", vINT32);
  store.read(ffid, 1, 1);
  EXPECT_EQ(7, ffid.getInt32(1));
  store.close();
}
