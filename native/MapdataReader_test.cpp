// The map reader over real in-memory stores, and the time slice as a grid.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <list>
#include <string>
#include <vector>

#include "attribute/KeyList.h"
#include "attribute/Property.h"
#include "filestore/memory/InMemoryStore.h"
#include "foundation/TestReleaseTree.h"
#include "native/MapdataReader.h"
#include "native/TimesliceToMapdataDecorator.h"
#include "project/Project.h"
#include "project/StoreTesting.h"

using store_testing::expectFailure;

namespace {

struct Column {
  char const* name;
  DataType type;
};

// An open in-memory store of n instances; value i of a numeric column is
// its position in the list times 100 plus i, with a fraction for floats.
vHandle<Store> makeStore(char const* className, char const* subClass, std::vector<Column> const& columns,
                         unsigned int n = 3) {
  InMemoryStore* store = new InMemoryStore(vHandle<Project>());
  vHandle<Store> handle(store);
  store->create("s", className, subClass, KeyList(), nullptr);
  for (Column const& c : columns) store->addAttribute(Attribute(c.name, "", c.type));
  store->addInstances(n);
  double column = 0;
  for (Column const& c : columns) {
    double const fraction = c.type == vFLOAT32 || c.type == vFLOAT64 ? 0.25 : 0.0;
    ++column;
    for (unsigned int i = 1; c.type != vSTRING && i <= n; ++i)
      store->updateAttributeAndData(c.name).setValue(i, column * 100 + i + fraction);
  }
  return handle;
}

void setPlotProperty(vHandle<Store> const& store, char const* x, char const* y, char const* value) {
  vString const names[3] = {x, y, value};
  store->addProperty(Property("XYZ_PLOT_ATTRIBUTES", 3u, names));
}

// x, y, value, locator joined by blanks; "" for all four blank.
std::string names(MapdataReader const& reader) {
  vString x, y, v, l;
  reader.getNames(x, y, v, l);
  return std::string(x.c_str()) + " " + y.c_str() + " " + v.c_str() + " " + l.c_str();
}

TEST(MapdataReader, PropertiesBeatEveryNameAndUnusableChoicesAreInvalid) {
  vHandle<Store> store = makeStore(
      "seismic", "2d", {{"XVAL", vFLOAT64}, {"YVAL", vFLOAT64}, {"ATVAL", vFLOAT32}, {"E", vINT32}, {"N", vINT32},
                        {"AMP", vFLOAT32}, {"WELL", vINT32}});
  setPlotProperty(store, "E", "N", "AMP");
  EXPECT_EQ("E N AMP AMP", names(MapdataReader(store)));
  vString const locator[1] = {"WELL"};
  store->addProperty(Property("LOCATOR_ATTRIBUTE", 1u, locator));
  EXPECT_EQ("E N AMP WELL", names(MapdataReader(store)));

  // Another class without the property, text, 16 bits, a name not there, none.
  MapdataReader other(makeStore("horizon", "none", {{"XVAL", vFLOAT64}, {"YVAL", vFLOAT64}, {"ATVAL", vFLOAT32}}));
  EXPECT_TRUE(other.getNames().empty());
  MapdataReader text(makeStore("seismic", "none", {{"XVAL", vFLOAT64}, {"YVAL", vFLOAT64}, {"ATVAL", vSTRING}}));
  MapdataReader narrow(makeStore("seismic", "none", {{"XVAL", vFLOAT64}, {"YVAL", vFLOAT64}, {"ATVAL", vINT16}}));
  vHandle<Store> gone = makeStore("mapdata", "none", {{"XVAL", vFLOAT64}, {"YVAL", vFLOAT64}});
  setPlotProperty(gone, "XVAL", "YVAL", "GONE");
  MapdataReader missing(gone);
  MapdataReader noValue(makeStore("seismic", "none", {{"XVAL", vFLOAT64}, {"YVAL", vFLOAT64}}));
  for (MapdataReader const* reader : {&other, &text, &narrow, &missing, &noValue}) {
    EXPECT_FALSE(reader->isValid());
    EXPECT_EQ("   ", names(*reader));
  }
}

TEST(MapdataReader, ColumnsAreCopiedByTheirType) {
  vHandle<Store> store = makeStore("seismic", "none", {{"XCOORD", vINT64}, {"YCOORD", vFLOAT32}, {"DEPTH", vFLOAT64}});
  MapdataReader reader(store);
  ASSERT_TRUE(reader.isValid());
  std::vector<double> x, y;
  std::vector<float> value;
  reader.getData(x, y, value);
  EXPECT_EQ((std::vector<double>{101, 102, 103}), x);
  EXPECT_EQ((std::vector<double>{201.25, 202.25, 203.25}), y);
  EXPECT_EQ((std::vector<float>{301.25f, 302.25f, 303.25f}), value);

  // An invalid reader leaves the vectors as they were.
  MapdataReader invalid(makeStore("well", "none", {{"XCOORD", vINT64}}));
  std::vector<double> kept = {7.0};
  invalid.getData(kept, y, value);
  EXPECT_EQ(std::vector<double>{7.0}, kept);

  // Any columns by name, in the order asked; unknown names are passed over.
  std::list<Attribute> out;
  reader.getData({vUCString("DEPTH"), vUCString("NONE"), vUCString("XCOORD")}, out);
  ASSERT_EQ(2u, out.size());
  EXPECT_STREQ("DEPTH", out.front().getName().c_str());
  EXPECT_EQ(3u, out.front().getNInstances());
  EXPECT_EQ(302.25, out.front().getFloat64(2));
  EXPECT_EQ(103, out.back().getInt64(3));
}

// --- the time slice as a grid --------------------------------------------------

// Slices at the times given over the crosslines given (as "crossline", or
// as "inline" when asked), along nInlines inlines from first by step.
// Sample q of the trace of slice s and crossline c is s * 1000 + c * 10 + q.
vHandle<Store> makeSlices(std::vector<float> const& times, std::vector<int> const& crosslines, int nInlines,
                          double first, double step, bool asCrossline = true) {
  InMemoryStore* store = new InMemoryStore(vHandle<Project>());
  vHandle<Store> handle(store);
  char const* const across = asCrossline ? "crossline" : "inline";
  store->create("slices", "seismic", "timeslice", KeyList(), nullptr);
  store->addAttribute(Attribute(across, "", vINT32));
  store->addAttribute(Attribute("SLICE.TIME", "", vFLOAT32));
  store->addAttribute(Attribute("TRACE", "", vFLOAT32, nInlines, step, first));
  unsigned int const nCross = static_cast<unsigned int>(crosslines.size());
  store->addInstances(static_cast<unsigned int>(times.size()) * nCross);
  for (unsigned int s = 0; s < times.size(); ++s) {
    for (unsigned int c = 0; c < nCross; ++c) {
      unsigned int const i = s * nCross + c + 1;
      store->updateAttributeAndData(across).setInt32(i, crosslines[c]);
      store->updateAttributeAndData("SLICE.TIME").setFloat32(i, times[s]);
      float* trace = store->updateAttributeAndData("TRACE").getFloat32Pointer(i);
      for (int q = 0; q < nInlines; ++q) trace[q] = static_cast<float>(s * 1000 + c * 10 + q);
    }
  }
  return handle;
}

class Timeslice : public ::testing::Test {
 protected:
  void SetUp() override {
    // The grid's position attributes are defined by the vocabulary.
    std::stringstream text;
    text << std::ifstream(std::string(RONDO_TEST_SOURCE_DIR) + "/release/SystemFiles/AttributeDefTable4.txt").rdbuf();
    m_tree.writeSystemFile("AttributeDefTable4.txt", text.str());
  }

  static std::vector<double> column(Store const& store, char const* name, unsigned int first, unsigned int last) {
    Attribute a = store.getAttribute(name);
    store.read(a, first, last);
    std::vector<double> values;
    for (unsigned int i = 1; i <= a.getNInstances(); ++i) values.push_back(a.getValue(i));
    return values;
  }
  static std::string listed(Store const& store) {
    std::string out;
    for (Attribute const& a : store.getAttributeList()) out += std::string(a.getName().c_str()) + " ";
    return out;
  }

  TestReleaseTree m_tree;
};

TEST_F(Timeslice, AGridPointPerInlineAndCrosslineAsTheMapReaderSeesIt) {
  vHandle<Store> slices = makeSlices({100.0f, 104.0f}, {20, 21}, 3, 200.0, 2.0);
  TimesliceToMapdataDecorator grid(slices);
  EXPECT_EQ(6u, grid.getNInstances());
  EXPECT_EQ("CROSSLINE INLINE AMPLITUDE.000100 AMPLITUDE.000104 ", listed(grid));
  EXPECT_FALSE(grid.hasAttribute("TRACE"));

  // The crossline index moves fastest.
  EXPECT_EQ((std::vector<double>{20, 21, 20, 21, 20, 21}), column(grid, "CROSSLINE", 1, 6));
  EXPECT_EQ((std::vector<double>{200, 200, 202, 202, 204, 204}), column(grid, "INLINE", 1, 6));
  // Trace c of a slice holds crossline c along the inlines.
  EXPECT_EQ((std::vector<double>{0, 10, 1, 11, 2, 12}), column(grid, "AMPLITUDE.000100", 1, 6));
  EXPECT_EQ((std::vector<double>{1000, 1010, 1001, 1011, 1002, 1012}), column(grid, "AMPLITUDE.000104", 1, 6));
  EXPECT_EQ((std::vector<double>{1011, 1002}), column(grid, "AMPLITUDE.000104", 4, 5));
  // Slice names have six digits.
  EXPECT_EQ("CROSSLINE INLINE AMPLITUDE.000008 AMPLITUDE.000099 AMPLITUDE.001001 AMPLITUDE.123456 ",
            listed(TimesliceToMapdataDecorator(makeSlices({8.0f, 99.4f, 1000.5f, 123456.0f}, {1}, 1, 0.0, 1.0))));

  MapdataReader reader(slices);
  ASSERT_TRUE(reader.isValid());
  EXPECT_EQ("CROSSLINE INLINE AMPLITUDE.000100 AMPLITUDE.000100", names(reader));
  EXPECT_STREQ("gridded", reader.getStore()->getSubClass().c_str());
  std::vector<double> x, y;
  std::vector<float> value;
  reader.getData(x, y, value);
  EXPECT_EQ((std::vector<double>{20, 21, 20, 21, 20, 21}), x);
  EXPECT_EQ((std::vector<double>{200, 200, 202, 202, 204, 204}), y);
  EXPECT_EQ((std::vector<float>{0, 10, 1, 11, 2, 12}), value);
}

TEST_F(Timeslice, WithoutCrosslinesTheInlinesStandAcross) {
  TimesliceToMapdataDecorator grid(makeSlices({100.0f}, {5, 6}, 2, 40.0, 10.0, false));
  EXPECT_EQ("INLINE CROSSLINE AMPLITUDE.000100 ", listed(grid));
  // The store's inline numbers answer for INLINE, the trace axis for CROSSLINE.
  EXPECT_EQ((std::vector<double>{5, 6, 5, 6}), column(grid, "INLINE", 1, 4));
  EXPECT_EQ((std::vector<double>{40, 40, 50, 50}), column(grid, "CROSSLINE", 1, 4));
  // One slice: the step is the no-value, and every time reads slice 0.
  EXPECT_EQ((std::vector<double>{0, 10, 1, 11}), column(grid, "AMPLITUDE.000100", 1, 4));
  Attribute other("AMPLITUDE.999999", "", vFLOAT32);
  grid.read(other, 1, 2);
  EXPECT_EQ((std::vector<double>{0, 10}), (std::vector<double>{other.getValue(1), other.getValue(2)}));

  // A negative step: inlines from the last (290), samples from the end.
  TimesliceToMapdataDecorator reversed(makeSlices({100.0f}, {7}, 3, 300.0, -5.0));
  EXPECT_EQ((std::vector<double>{290, 295, 300}), column(reversed, "INLINE", 1, 3));
  EXPECT_EQ((std::vector<double>{2, 1, 0}), column(reversed, "AMPLITUDE.000100", 1, 3));
}

TEST_F(Timeslice, OtherReadsAndAssignmentAreRefused) {
  TimesliceToMapdataDecorator grid(makeSlices({100.0f}, {7}, 2, 0.0, 1.0));
  char const reason[] = "Programming problem--a non implemented method was used.";
  Attribute a = grid.getAttribute("INLINE");
  expectFailure([&] { grid.read(a, std::vector<unsigned int>{1}); },
                "TimesliceToMapdataDecorator::read(Attribute&, const vInstanceList&)const", reason);
  expectFailure([&] { grid.read(a, a, 1, 1); },
                "TimesliceToMapdataDecorator::read(Attribute&, const Attribute&, vInstance, vInstance)const", reason);
  expectFailure([&] { grid.read(a, KeyList()); }, "TimesliceToMapdataDecorator::read(Attribute&, const KeyList&)const",
                reason);
  PropertyI properties;
  expectFailure([&] { grid = properties; }, "TimesliceToMapdataDecorator::read(const PropertyI &rhs)const", reason);
  expectFailure([&] { grid.read(a, 2, 3); }, "TimesliceToMapdataDecorator::read",
                "Instances 2 to 3 of INLINE are outside the grid of 2 inlines by 1 crosslines.");
  expectFailure([&] { grid.read(a, 0, 1); }, "TimesliceToMapdataDecorator::read",
                "Instances 0 to 1 of INLINE are outside the grid of 2 inlines by 1 crosslines.");
  // A letter the view does not know reads nothing.
  Attribute unknown("ZED", "", vFLOAT32);
  grid.read(unknown, 1, 2);
  EXPECT_EQ(0u, unknown.getNInstances());
}

}  // namespace
