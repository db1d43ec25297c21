// The CMP grid in `rondo info`: a rotated grid of an in-memory store, and the
// grid of an offload file of the independent Python fixture.

#include <cmath>
#include <cstdio>
#include <vector>

#include <gtest/gtest.h>

#include "attribute/KeyList.h"
#include "attribute/Property.h"
#include "filestore/memory/InMemoryStore.h"
#include "foundation/Packer.h"
#include "geometry/BinPos.h"
#include "geometry/CMPGrid.h"
#include "project/Project.h"
#include "tools/ToolTesting.h"

namespace {

using namespace tool_testing;

// A packed in-memory store holding the grid and one more property.
void writeGridStore(CMPGrid const& grid, Property const& extra, std::string const& file) {
  InMemoryStore store{vHandle<Project>()};
  store.create("survey", "grid", "cmp", KeyList(), nullptr);
  grid.addToStore(store);
  store.addProperty(extra);
  Packer packer;
  packer.pack(store);
  unsigned char const* bytes = nullptr;
  int size = 0;
  packer.getBuffer(&bytes, size, 0);
  fs_testing::writeFile(file, std::string(reinterpret_cast<char const*>(bytes), static_cast<std::size_t>(size)));
}

TEST(RondoGrid, RotatedGridOfAnInMemoryStoreAndTheOffloadFixturesGrid) {
  fs_testing::TempDir dir;
  CMPGrid const grid(101, 3, 2000, 2, 30, 400, -1, 70, vCoordinate(612345.125, 5712345.875), -25.0f, 12.5f, 0.4321);
  writeGridStore(grid, Property(vUCString("COORDINATE_SYSTEM"), "EPSG:32631"), dir / "survey.store");
  Outcome const text = tool(dir, "info survey.store");
  ASSERT_EQ(0, text.status) << text.err;
  // Corners in world coordinates: the last inline is 2000 + 29 * 2, the
  // last crossline 400 - 69.
  vCoordinate const far = grid.convertSurveyToRW(grid.convertBinToSurvey(BinPos(2058, 331)));
  for (std::string const& line : std::vector<std::string>
       {"grid        inlines 2000 to 2058 by 2 (30), crosslines 400 to 331 by -1 (70)\n",
        "grid        CMPs from 101 by 3, along inlines\n",
        "grid        corner 2058/331 at " + g9(far.getX()) + " " + g9(far.getY()) + "\n",
        "grid        projection EPSG:32631 (WGS 84 / UTM zone 31N)\n"})
    EXPECT_NE(std::string::npos, text.out.find(line)) << line << text.out;
  // Inline and crossline axes stand at right angles, turned by the rotation.
  double inlineAzimuth = 0, crosslineAzimuth = 0;
  ASSERT_EQ(2, std::sscanf(text.out.substr(text.out.find("inline azimuth")).c_str(),
                           "inline azimuth %lf, crossline azimuth %lf", &inlineAzimuth, &crosslineAzimuth));
  EXPECT_NEAR(90.0, std::fmod(inlineAzimuth - crosslineAzimuth + 360.0, 180.0), 1e-6);

  Outcome const json = tool(dir, "info survey.store --json");
  ASSERT_EQ(0, json.status) << json.err;
  for (std::string const& part : std::vector<std::string>
       {"\"crosslineIncrement\":-1,\"crosslines\":70,\"inlineInterval\":-25,\"crosslineInterval\":12.5,",
        "{\"inline\":2058,\"crossline\":331,\"x\":" + g9(far.getX()) + ",\"y\":" + g9(far.getY()) + "}",
        ",\"projection\":\"EPSG:32631 (WGS 84 / UTM zone 31N)\"}}\n"})
    EXPECT_NE(std::string::npos, json.out.find(part)) << part << json.out;

  // A grid the geometry refuses leaves the rest of the report standing.
  writeGridStore(grid, Property(vUCString("X_STORAGE_BIAS"), 5.0), dir / "old.store");
  Outcome const old = tool(dir, "info old.store");
  EXPECT_EQ(0, old.status) << old.err;
  EXPECT_NE(std::string::npos,
            old.out.find("grid        not shown: The X & Y storageBias in grid stores is obsolete. Do not use!!!\n"
                         "property    CMPLINE_INCREMENT = 210\n"))
      << old.out;

  // The grid of an offload file of the Python fixture: inlines 10, 12, 14 at
  // 12.5, crosslines 100 to 103 at 25, no rotation, origin at 0 0, no projection.
  ASSERT_EQ(0, shell(dir, std::string(kPython) + " " RONDO_TEST_SOURCE_DIR
                          "/filestore/offload/testdata/offload_fixture.py f.offload f.txt '>' 2 995 1").status)
      << "the offload fixture needs numpy for " << kPython;
  Outcome const info = tool(dir, "info f.offload");
  EXPECT_EQ(0, info.status) << info.err;
  for (char const* line : {"grid        inlines 10 to 14 by 2 (3), crosslines 100 to 103 by 1 (4)\n",
                           "grid        origin 0 0, rotation 0 rad, inline azimuth 0, crossline azimuth 90\n",
                           "grid        corner 10/103 at 75 0\n"})
    EXPECT_NE(std::string::npos, info.out.find(line)) << line << info.out;
  Outcome const offload = tool(dir, "info f.offload --json");
  EXPECT_NE(std::string::npos,
            offload.out.find("{\"inline\":14,\"crossline\":100,\"x\":0,\"y\":25}],\"projection\":null}}\n"))
      << offload.out;
}

}  // namespace
