#include "decorator/InfillStoreDecorator.h"

#include <gtest/gtest.h>

#include "decorator/JoinTesting.h"
#include "decorator/StoreDecoratorFactory.h"

using namespace join_testing;

namespace {

// Keys GROUP and X with the given values, and VALUE = 100 * instance.
vHandle<Store> gridStore(std::vector<double> const& groups, std::vector<double> const& xs, DataType xType = vINT32) {
  std::vector<double> v;
  for (std::size_t i = 1; i <= groups.size(); ++i) v.push_back(100.0 * i);
  return simpleStore("grid", {"GROUP", "X"},
                     {column("GROUP", vINT32, groups), column("X", xType, xs), column("VALUE", vFLOAT64, v)});
}

TEST(InfillStoreDecorator, IncrementsPadLimitsAndBounds) {
  EXPECT_FALSE(InfillAttributeSetIndexingTable::boundsCheckOk(10.02, 0, 10));
  EXPECT_TRUE(InfillAttributeSetIndexingTable::boundsCheckOk(0.30000000000000004, 0.1, 0.1));

  // Floating keys on a 0.25 grid; each group over its own range.
  vHandle<Store> own(new InfillStoreDecorator(gridStore({1, 1, 2, 2}, {0.5, 1.25, 2, 2.25}, vFLOAT32), true));
  EXPECT_EQ((std::vector<double>{0.5, 0.75, 1, 1.25, 2, 2.25}), values(*own, "X"));

  // Pad limits widen the range; they must hold the values and lie on the grid.
  char const* const build = "InfillAttributeSetIndexingTable::myBuildInfillGroup";
  struct Case {
    double low, high;
    char const* fatal;
  } const cases[] = {
      {-10, 50, nullptr},
      {20, 50, "User set limit 20.000000 is less than attribute's lower value 10.000000"},
      {10, 30, "User set limit 30.000000 is less than attribute's upper value 40.000000"},
      {5, 50, "User set limit 5.000000 is not on a 10.000000 boundary"},
      {10, 55, "User set limit 55.000000 is not on a 10.000000 boundary. Determined end value <40.000000>"},
  };
  for (Case const& c : cases) {
    InfillStoreDecorator* infill = new InfillStoreDecorator(gridStore({1, 1, 1, 2, 2}, {10, 20, 40, 20, 30}), false);
    vHandle<Store> view(infill);
    infill->applyPaddingLimits(c.low, c.high, 10);
    if (c.fatal)
      expectFailure([&] { view->getNInstances(); }, build, c.fatal);
    else
      EXPECT_EQ(14u, view->getNInstances());
  }

  expectFailure([] { StoreDecoratorFactory::addInfill(gridStore({1, 1}, {10, 10}))->getNInstances(); }, build,
                "Duplicate sub-set value found in group <1.000000>\n");
  expectFailure([] { StoreDecoratorFactory::addInfill(gridStore({1, 1, 2}, {0, 4, 7}))->getNInstances(); }, build,
                "The minumum <0.000000> and maximum <7.000000> of the attribute's values are incompatable with the "
                "determined increment <4.000000>\n");
  // Texts are read through, invented ones empty.
  vHandle<Store> named = StoreDecoratorFactory::addInfill(simpleStore(
      "named", {"GROUP", "X"},
      {column("GROUP", vINT32, {1, 1, 2}), column("X", vINT32, {10, 20, 20}), column("NAME", vSTRING, {1, 2, 3})}));
  Attribute names("NAME", "", vSTRING);
  named->read(names, 1, 0);
  std::string said;
  for (unsigned int i = 1; i <= names.getNInstances(); ++i) said += std::string(names.getString(i).c_str()) + "|";
  EXPECT_EQ("s1|s2||s3|", said);
  // Key values come from the grid as numbers only.
  vHandle<Store> keyed = StoreDecoratorFactory::addInfill(gridStore({1, 2}, {10, 20}));
  Attribute text("X", "", vSTRING);
  expectFailure([&] { keyed->read(text, 1, 2); }, "InfillStoreDecorator::doTranslateInstList",
                "Can't handle the attribute's data type vSTRING ");
  Attribute groupsAsText("GROUP", "", vSTRING);
  std::vector<unsigned int> sizes;
  expectFailure([&] { keyed->getGroupsAndSizes(groupsAsText, sizes, vUtlSort::SortOrder::ASCENDING); },
                "InfillStoreDecorator::getGroupsAndSizes", "Can't handle this Attribute data type vSTRING");
  InfillStoreDecorator infill(gridStore({1}, {1}), false);
  infill.addKeyAttributes("GROUP", "X");
  expectFailure([&] { infill.addKeyAttributes("GROUP", "VALUE"); },
                "InfillAttributeSetIndexingTable::addKeyAttributes",
                "Can't reset infilled attribute name. Currently using attribute X");
}

// Groups {1: 10 20 40}, {2: 20 30}, {3: 40 0 20} (X on a step of 10,
// group 3 on its own step of 20), by pad type: the X of each group, and
// VALUE (100 * stored instance) zero where invented.
TEST(InfillStoreDecorator, EveryPadType) {
  using Table = InfillAttributeSetIndexingTable;
  struct Case {
    Table::AttrPadType type;
    std::vector<double> x, value;
  } const cases[] = {
      {Table::PadToCommonRange,
       {0, 10, 20, 30, 40, 0, 10, 20, 30, 40, 0, 10, 20, 30, 40},
       {0, 100, 200, 0, 300, 0, 0, 400, 500, 0, 700, 0, 800, 0, 600}},
      {Table::PadWithinGroup, {10, 20, 30, 40, 20, 30, 0, 10, 20, 30, 40}, {100, 200, 0, 300, 400, 500, 700, 0, 800, 0, 600}},
      {Table::PadNone, {10, 20, 40, 20, 30, 0, 20, 40}, {100, 200, 300, 400, 500, 700, 800, 600}},
      {Table::PadToCommonStart,
       {0, 10, 20, 30, 40, 0, 10, 20, 30, 0, 10, 20, 30, 40},
       {0, 100, 200, 0, 300, 0, 0, 400, 500, 700, 0, 800, 0, 600}},
      {Table::PadToCommonEnd,
       {10, 20, 30, 40, 20, 30, 40, 0, 10, 20, 30, 40},
       {100, 200, 0, 300, 400, 500, 0, 700, 0, 800, 0, 600}},
      {Table::PadWithinGroupOwnStep, {10, 20, 30, 40, 20, 30, 0, 20, 40}, {100, 200, 0, 300, 400, 500, 700, 800, 600}},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.type);
    vHandle<Store> view(new InfillStoreDecorator(gridStore({1, 1, 1, 2, 2, 3, 3, 3}, {10, 20, 40, 20, 30, 40, 0, 20}), c.type));
    EXPECT_EQ(c.x, values(*view, "X"));
    EXPECT_EQ(c.value, values(*view, "VALUE"));
  }
  // Pad limits on a group's own step; every type but PadNone takes them.
  InfillStoreDecorator* own = new InfillStoreDecorator(gridStore({1, 1, 2, 2}, {0, 10, 0, 20}), Table::PadWithinGroupOwnStep);
  vHandle<Store> view(own);
  own->applyPaddingLimits(-20, 40, 0);
  EXPECT_EQ((std::vector<double>{-20, -10, 0, 10, 20, 30, 40, -20, 0, 20, 40}), values(*view, "X"));
  InfillStoreDecorator* none = new InfillStoreDecorator(gridStore({1, 1}, {0, 20}), Table::PadNone);
  vHandle<Store> asIs(none);
  none->applyPaddingLimits(-20, 30, 0);
  EXPECT_EQ((std::vector<double>{0, 20}), values(*asIs, "X"));
  // A floating key within a thousandth of a step of a grid value stands
  // for it; one further off does not, and the grid value is invented beside.
  for (double off : {0.50018, 0.5006}) {
    vHandle<Store> floats(new InfillStoreDecorator(gridStore({1, 1, 1, 2, 2}, {0.5, 1.0, 1.25, 0.25, off}, vFLOAT64),
                                                   Table::PadToCommonEnd));
    std::vector<double> expected{0.5, 0.75, 1.0, 1.25, 0.25, off, 0.75, 1.0, 1.25};
    if (off > 0.5005) expected.insert(expected.begin() + 5, 0.5);
    EXPECT_EQ(expected, values(*floats, "X"));
  }
}

}  // namespace
