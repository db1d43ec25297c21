// The FDM header, reader and store over files of the Python fixture in both
// byte orders, on good and broken disks.

#include "filestore/fdm/FdmDiskStore.h"

#include <gtest/gtest.h>

#include "filestore/fdm/FdmTesting.h"
#include "syslayer/FSTesting.h"

using fdm_testing::value;

namespace {

char const* const kOrders[] = {"<", ">"};

}  // namespace

TEST(FdmBinaryHeader, BothByteOrdersGiveTheSameHeaderAndTheSameRefusals) {
  fs_testing::TempDir dir;
  for (char const* order : kOrders) {
    SCOPED_TRACE(order);
    std::string const path = dir / "v.fdm";
    fdm_testing::writeFixture(path, order);
    FdmDiskReader reader;
    vFilename file(path.c_str());
    reader.setFile(file);
    FdmBinaryHeader const& h = reader.getHeader();
    ASSERT_TRUE(h.isValidHeader());
    EXPECT_EQ(order[0] == '>', h.wasEndianChanged());
    // A float and an int of the main header, and of the extended one.
    EXPECT_EQ(12.5f, h.getSpatialInlineIncrement());
    EXPECT_EQ(3, h.getNInline());
    EXPECT_EQ(2, h.getVersion());
    EXPECT_EQ(30.0f, h.getRotation());
    // Sections come out in this machine's order: X [y][z], Z [y][x].
    std::vector<float> x(15), z(12);
    reader.readXSection(2, reinterpret_cast<char*>(x.data()));
    reader.readZSection(4, reinterpret_cast<char*>(z.data()));
    EXPECT_EQ(value(2, 1, 3), x[1 * 5 + 3]);
    EXPECT_EQ(value(3, 2, 4), z[2 * 4 + 3]);
    // A fractional count, or no mark.
    fdm_testing::writeFixture(path, order, "--ncrossline 1.5");
    reader.setFile(file);
    EXPECT_FALSE(reader.getHeader().isValidHeader());
    EXPECT_FALSE(reader.isValid());
    fs_testing::expectFailure([&] { FdmDiskStore().open(vFilename(path.c_str())); }, "FdmDiskStore::open",
                              "The file '" + path + "' is not an FDM file: its header is invalid.");
    fdm_testing::writeFixture(path, order, "--plain");
    reader.setFile(file);
    EXPECT_TRUE(reader.getHeader().isValidHeader());
    EXPECT_EQ(-1, reader.getHeader().getVersion());
  }
  FdmBinaryHeader const shortHeader("VFDM", 4);
  EXPECT_FALSE(shortHeader.isValidHeader());
}

// A volume linear in each index is reproduced exactly by bilinear loading
// anywhere inside it, and by the linear loads onto an axis.
TEST(FdmDiskReader, InterpolatedLoadsOfALinearVolume) {
  fs_testing::TempDir dir;
  std::string const path = dir / "v.fdm";
  fdm_testing::writeFixture(path, ">");
  FdmDiskReader reader;
  vFilename file(path.c_str());
  reader.setFile(file);
  float trace[3];
  // Crossline index 1.5, inline index 0.4, from Z index 1.25.
  reader.biLinearLoadOntoY(500.0f + 1.5f * 25.0f, 1000.0f + 0.4f * 12.5f, 5.0f, 3, trace);
  for (int k = 0; k < 3; ++k) EXPECT_NEAR(1000.0f + 40.0f + 15.0f + 1.25f + k, trace[k], 1e-3) << k;
  float const *lower = nullptr, *upper = nullptr;
  EXPECT_FLOAT_EQ(0.5f, reader.loadEitherSideOfZ(10.0f, lower, upper));
  EXPECT_EQ(value(1, 2, 2), lower[2 * 4 + 1]);
  EXPECT_EQ(value(1, 2, 3), upper[2 * 4 + 1]);
  EXPECT_FLOAT_EQ(value(3, 1, 0) + 0.5f, reader.loadOntoZ(2.0f)[1 * 4 + 3]);
  EXPECT_EQ(value(3, 0, 4), reader.loadNearestToX(600.0f)[4]);
  // Off the volume: the edge.
  EXPECT_EQ(value(0, 2, 0), reader.loadNearestToY(5000.0f)[0]);
  reader.setYOrigin(0.0f);
  reader.setYIncrement(1.0f);
  EXPECT_EQ(value(0, 1, 0), reader.loadOntoY(1.0f)[0]);
}

TEST(FdmDiskStore, SpecPicksAttributeSubclassAndInterpolation) {
  fs_testing::TempDir dir;
  std::string const path = dir / "vel.fdm";
  struct Case {
    char const* spec;
    char const* attribute;
    char const* subClass;
    bool interpolating;
  };
  for (char const* order : kOrders)
    for (Case const& c : {Case{"gridded_time_rms/intrp/3", "VELTRACE.RMS", "gridded_time_rms", true},
                          Case{"time_interval/asis", "VELTRACE.INTERVAL", "time_interval", false},
                          Case{"gridded_time_foc/intrp/x", "VELTRACE.FOCONSTANTS", "gridded_time_foc", false},
                          Case{"", "VELTRACE.DEFAULT", "gridded_default", false}}) {
      SCOPED_TRACE(std::string(order) + c.spec);
      fdm_testing::writeFixture(path, order);
      FdmDiskStore store;
      StoreDescription described{vFilename(path.c_str())};
      described.setFileFormat("fdm");
      described.setFormatSpec(c.spec);
      store.open(described);
      EXPECT_EQ(c.interpolating, store.isInterpolating());
      EXPECT_EQ(vLCString(c.subClass), store.getSubClass());
      ASSERT_EQ(12u, store.getNInstances());
      Attribute trace(c.attribute, "", vFLOAT32);
      store.read(trace, 1, 12);
      Attribute crossline("CROSSLINE", "", vINT32), inlines("INLINE", "", vFLOAT64);
      store.read(crossline, std::vector<unsigned int>{7, 2});
      store.read(inlines, 5, 0);
      EXPECT_EQ((std::vector<int>{104, 102}), (std::vector<int>{crossline.getInt32(1), crossline.getInt32(2)}));
      EXPECT_EQ((std::vector<double>{21, 22}), (std::vector<double>{inlines.getFloat64(1), inlines.getFloat64(8)}));
      ASSERT_EQ(5, trace.getLength());
      for (unsigned int i = 1; i <= 12; ++i)
        for (int z = 0; z < 5; ++z)
          ASSERT_FLOAT_EQ(value((i - 1) % 4, (i - 1) / 4, z), trace.getFloat32Pointer(i)[z]) << i << " " << z;
      // Groups through the indexing table.
      Attribute unique("INLINE", "", vINT32);
      store.getUnique(unique, vUtlSort::SortOrder::ASCENDING);
      ASSERT_EQ(3u, unique.getNInstances());
      EXPECT_EQ(22, unique.getInt32(3));
    }
}

TEST(FdmDiskStore, FailuresAndBrokenDisks) {
  fs_testing::TempDir dir;
  std::string const path = dir / "vel.fdm";
  fdm_testing::writeFixture(path, ">");
  FdmDiskStore store;
  Attribute trace("VELTRACE.DEFAULT", "", vFLOAT32);
  StoreDescription notFlat;
  fs_testing::expectFailure([&] { store.open(notFlat); }, "FdmDiskStore::open(StoreDescription)",
                            "StoreDescription must contain a flat file.");
  {
    fs_testing::Fault shortReads(path, FS_FAULT_SHORTREAD, 7);
    store.open(vFilename(path.c_str()));
    store.read(trace, 9, 12);
    EXPECT_EQ(value(3, 2, 4), trace.getFloat32Pointer(4)[4]);
  }
  {
    // Inline index 1 (bins 5 to 8) cannot be read: its section is 80 bytes
    // from byte 592.
    fs_testing::Fault failing(path, FS_FAULT_FAILREAD, 600);
    fs_testing::expectFailure([&] { store.read(trace, 6, 6); }, "FdmDiskReader::readSection",
                              "Request to read 80 bytes from file offset 592 failed");
    store.read(trace, 1, 4);
    EXPECT_EQ(value(1, 0, 2), trace.getFloat32Pointer(2)[2]);
  }
  fs_testing::expectFailure([&] { store.read(trace, 3, 13); }, "FdmDiskStore::read",
                            "Instance range 3, 13 is incorrect, NInstances is 12");
  fs_testing::expectFailure([&] { store.read(trace, std::vector<unsigned int>{2, 13}); }, "FdmDiskStore::read",
                            "Instance 13 is beyond end of Store, which has 12 instances.");
  fs_testing::expectFailure([&] { store.read(trace, std::vector<unsigned int>{}); }, "FdmDiskStore::read",
                            "List is empty - nothing to do");
  Attribute rms("VELTRACE.RMS", "", vFLOAT32);
  fs_testing::expectFailure([&] { store.read(rms, 1, 1); }, "FdmDiskStore::read",
                            "Reading of attribute name <VELTRACE.RMS> is not supported by FdmDiskStore");
  store.openAttributeSet("vel");
  fs_testing::expectFailure([&] { store.openAttributeSet("other"); }, "FdmDiskStore::openAttributeSet",
                            "Invalid attribute set name 'other', only blank or 'vel' acceptable!");
  store.close();
  fdm_testing::writeFixture(path, ">", "--cut 700");
  fs_testing::expectFailure([&] { store.open(vFilename(path.c_str())); }, "FdmDiskStore::open",
                            "The FDM file '" + path + "' holds 700 bytes, fewer than the 752 its header needs.");
}
