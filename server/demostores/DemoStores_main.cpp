// DemoStores DIR: writes the stores that the Java host's scenarios and the
// demo list in RONDO_UNITTEST_STORES, as packed store files in DIR:
//
//   line12.store  seismic 2d line: 6 traces of 8 samples (4 ms), keys CDP
//                 and OFFSET, a static and an RMS amplitude per trace;
//                 sample j (0-based) of trace i (1-based) is i * 10 + j / 2
//   tops.store    map data: 4 points with XVAL, YVAL and DEPTH, chosen for
//                 the map by the property XYZ_PLOT_ATTRIBUTES
//   slices.store  seismic time slice: slices at 100 and 104 ms over
//                 crosslines 10 and 11, along 3 inlines from 200 by 2
//
// The values are small and exact in float, so that sums of them are too.

#include <cstdio>
#include <string>

#include "attribute/KeyList.h"
#include "attribute/Property.h"
#include "filestore/memory/InMemoryStore.h"
#include "foundation/UtlExcept.h"
#include "project/Project.h"
#include "server/UnitTestStoreFile.h"

namespace {

void line12(vString const& file) {
  InMemoryStore store{vHandle<Project>()};
  KeyList keys;
  keys.addKey(Attribute("CDP", "CDP", vINT32));
  keys.addKey(Attribute("OFFSET", "OFFSET", vINT32));
  store.create("line12", "seismic", "2d", keys, nullptr);
  store.addAttribute(Attribute("TRACE", "TRACE", vFLOAT32, 8, 4.0, 0.0));
  store.addAttribute(Attribute("STATIC", "", vFLOAT32));
  store.addAttribute(Attribute("AMP.RMS", "", vFLOAT64));
  unsigned int const n = 6;
  store.addInstances(n);
  for (unsigned int i = 1; i <= n; ++i) {
    *store.updateAttributeAndData("CDP").getInt32Pointer(i) = static_cast<int>(100 + i);
    *store.updateAttributeAndData("OFFSET").getInt32Pointer(i) = static_cast<int>(25 * i);
    *store.updateAttributeAndData("STATIC").getFloat32Pointer(i) = 1.5f * static_cast<float>(i) - 4.0f;
    *store.updateAttributeAndData("AMP.RMS").getFloat64Pointer(i) = 0.25 * i;
    float* trace = store.updateAttributeAndData("TRACE").getFloat32Pointer(i);
    for (int j = 0; j < 8; ++j) trace[j] = static_cast<float>(i * 10) + static_cast<float>(j) / 2.0f;
  }
  writeUnitTestStoreFile(store, file);
}

void tops(vString const& file) {
  InMemoryStore store{vHandle<Project>()};
  store.create("tops", "mapdata", "scattered", KeyList(), nullptr);
  store.addAttribute(Attribute("XVAL", "", vFLOAT64));
  store.addAttribute(Attribute("YVAL", "", vFLOAT64));
  store.addAttribute(Attribute("DEPTH", "", vFLOAT32));
  store.addInstances(4);
  for (unsigned int i = 1; i <= 4; ++i) {
    *store.updateAttributeAndData("XVAL").getFloat64Pointer(i) = 1000.0 + 50.0 * i;
    *store.updateAttributeAndData("YVAL").getFloat64Pointer(i) = 2000.0 - 25.0 * i;
    *store.updateAttributeAndData("DEPTH").getFloat32Pointer(i) = 1200.0f + 7.5f * static_cast<float>(i);
  }
  vString const names[3] = {"XVAL", "YVAL", "DEPTH"};
  store.addProperty(Property("XYZ_PLOT_ATTRIBUTES", 3u, names));
  writeUnitTestStoreFile(store, file);
}

void slices(vString const& file) {
  InMemoryStore store{vHandle<Project>()};
  store.create("slices", "seismic", "timeslice", KeyList(), nullptr);
  store.addAttribute(Attribute("CROSSLINE", "", vINT32));
  store.addAttribute(Attribute("SLICE.TIME", "", vFLOAT32));
  store.addAttribute(Attribute("TRACE", "TRACE", vFLOAT32, 3, 2.0, 200.0));
  store.addInstances(4);
  for (unsigned int s = 0; s < 2; ++s) {
    for (unsigned int c = 0; c < 2; ++c) {
      unsigned int const i = s * 2 + c + 1;
      *store.updateAttributeAndData("CROSSLINE").getInt32Pointer(i) = static_cast<int>(10 + c);
      *store.updateAttributeAndData("SLICE.TIME").getFloat32Pointer(i) = 100.0f + 4.0f * static_cast<float>(s);
      float* trace = store.updateAttributeAndData("TRACE").getFloat32Pointer(i);
      for (unsigned int q = 0; q < 3; ++q) trace[q] = static_cast<float>(s * 100 + c * 10 + q);
    }
  }
  writeUnitTestStoreFile(store, file);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: DemoStores DIR\n");
    return 2;
  }
  std::string const dir = argv[1];
  try {
    line12(vString((dir + "/line12.store").c_str()));
    tops(vString((dir + "/tops.store").c_str()));
    slices(vString((dir + "/slices.store").c_str()));
  } catch (UtlExcept const& e) {
    std::fprintf(stderr, "DemoStores: %s\n", e.toString("%M: %R").c_str());
    return 1;
  }
  return 0;
}
