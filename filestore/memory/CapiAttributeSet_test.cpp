// The checks of the common frame, through the in-memory set.

#include "filestore/memory/CapiAttributeSet.h"

#include <gtest/gtest.h>

#include <string>

#include "filestore/memory/InMemoryAttributeSet.h"
#include "foundation/Message.h"
#include "foundation/vUtl.h"
#include "project/Project.h"
#include "project/StoreTesting.h"

using store_testing::expectFailure;

namespace {

// An in-memory set that can fail its creation.
class ProbeSet : public InMemoryAttributeSet {
 public:
  enum Failure { NONE, UTL, OTHER };
  ProbeSet() : InMemoryAttributeSet(vHandle<Project>()) {}

  Failure failCreate = NONE;

  void checkGroups(Attribute const& a, unsigned int first, unsigned int last) const { myCheckGroups(a, first, last); }

 protected:
  void doPostCreate(vLCString const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
                    StoreCreationOptions const* options) override {
    InMemoryAttributeSet::doPostCreate(name, className, subClass, keys, options);
    if (failCreate == UTL) Message::fatal("ProbeSet::doPostCreate", 0, "no room");
    if (failCreate == OTHER) throw 42;
  }
};

KeyList cdpOffsetKeys(std::vector<int> const& cdps = {}, std::vector<int> const& offsets = {}) {
  KeyList keys;
  keys.addKey(Attribute("CDP", "CDP", vINT32));
  keys.addKey(Attribute("OFFSET", "OFFSET", vINT32));
  if (!cdps.empty()) keys.begin()->copyData(static_cast<unsigned int>(cdps.size()), cdps.data());
  if (!offsets.empty()) (keys.begin() + 1)->copyData(static_cast<unsigned int>(offsets.size()), offsets.data());
  return keys;
}

// Six instances: CDP 1 1 2 2 3 3, OFFSET 10 20 10 20 10 20, AMP 0.5 * instance.
void fill(ProbeSet& set) {
  set.create("line", "seismic", "2d", cdpOffsetKeys(), nullptr);
  set.addAttribute(Attribute("AMP", "", vFLOAT64));
  set.addInstances(6);
  for (auto const& column : {std::make_pair("CDP", std::vector<double>{1, 1, 2, 2, 3, 3}),
                             std::make_pair("OFFSET", std::vector<double>{10, 20, 10, 20, 10, 20}),
                             std::make_pair("AMP", std::vector<double>{0.5, 1.0, 1.5, 2.0, 2.5, 3.0})}) {
    Attribute a = set.getAttribute(column.first);
    a.resize(6);
    for (unsigned int i = 1; i <= 6; ++i) a.setValue(i, column.second[i - 1]);
    set.write(a, 1, 6);
  }
}

std::vector<double> valuesOf(Attribute const& a) {
  std::vector<double> v;
  for (unsigned int i = 1; i <= a.getNInstances(); ++i) v.push_back(a.getValue(i));
  return v;
}

}  // namespace

TEST(CapiAttributeSet, CreateChecksNamesAndClassesAndAFailedCreationLeavesTheSetClosed) {
  ProbeSet set;
  KeyList none;
  expectFailure([&] { set.create(" ", "seismic", "2d", none, nullptr); }, "CapiAttributeSet::create",
                "A blank AttributeSet name is not allowed.");
  expectFailure([&] { set.create("line", "", "2d", none, nullptr); }, "CapiAttributeSet::create",
                "For AttributeSet 'line': A subClass of '2d' cannot be specified without also giving a class.");
  expectFailure([&] { set.create("line", "", "", none, nullptr); }, "CapiAttributeSet::create",
                "When creating AttributeSet 'line', the class cannot be blank.");
  expectFailure([&] { set.create("line", "seismic", "", none, nullptr); }, "CapiAttributeSet::create",
                "When creating AttributeSet 'line', the subclass cannot be blank.");
  set.create("line", "seismic", "2d", cdpOffsetKeys(), nullptr);
  expectFailure([&] { set.create("other", "seismic", "2d", none, nullptr); },
                "CapiAttributeSet::myCheckNameAndClass()", "AttributeSet is already open as 'line'.");
  // A failed creation leaves the set closed.
  ProbeSet utl;
  utl.failCreate = ProbeSet::UTL;
  expectFailure([&] { utl.create("line", "seismic", "2d", KeyList(), nullptr); }, "ProbeSet::doPostCreate", "no room");
  EXPECT_FALSE(utl.isOpen());
  ProbeSet other;
  other.failCreate = ProbeSet::OTHER;
  expectFailure([&] { other.create("line", "seismic", "2d", KeyList(), nullptr); }, "CapiAttributeSet::create",
                "Unknown exception thrown during creation of AttributeSet 'line'.");
  EXPECT_FALSE(other.isOpen());
}

TEST(CapiAttributeSet, KeyChecksInTheirOrderGroupsAndTheirChecksAndANameAddedOnce) {
  ProbeSet set;
  fill(set);
  Attribute amp = set.getAttribute("AMP");
  char const* const label = "CapiAttributeSet::myKeysCheck()";
  expectFailure([&] { set.read(amp, KeyList()); }, label, "KeyList must have at lease one key Attribute.");
  KeyList stranger;
  stranger.addKey(Attribute("SHOT", "", vINT32));
  expectFailure([&] { set.read(amp, stranger); }, label,
                "Attribute SHOT of the KeyList is not a memeber of the AttributeSet line.");
  expectFailure([&] { set.read(amp, cdpOffsetKeys()); }, label,
                "Attribute CDP of the KeyList does not have any values with it.");
  expectFailure([&] { set.read(amp, cdpOffsetKeys({1, 2}, {1})); }, label,
                "Attribute OFFSET of the KeyList does not have 2 values.");
  set.read(amp, cdpOffsetKeys({3, 1}, {10, 20}));
  EXPECT_EQ((std::vector<double>{2.5, 1.0}), valuesOf(amp));

  expectFailure([&] { set.addAttribute(Attribute("AMP", "", vINT32)); }, "CapiAttributeSet::addAttribute",
                "The AttributeSet line already has an Attribute called AMP.");
  Attribute cdp = set.getAttribute("CDP");
  set.read(amp, cdp, 2, 0);
  EXPECT_EQ((std::vector<double>{1.5, 2.0, 2.5, 3.0}), valuesOf(amp));
  expectFailure([&] { set.read(cdp, cdp, 1, 1); }, "CapiAttributeSet::read(byGroups)",
                "The address of the Attrbiute 'CDP' being read, cannot be the same as the groups Attribute.");
  // The groups guard of the frame: a scalar Int32 and groups within its
  // instances.
  Attribute floats("AMP", "", vFLOAT64);
  expectFailure([&] { set.checkGroups(floats, 1, 1); }, "CapiAttributeSet::myCheckGroups",
                "Can only function with Int32 groups at the moment. Your Attribute AMP is of type " +
                    std::string(vUtl::dataTypeName(vFLOAT64).c_str()) + ".");
  Attribute pair("PAIR", "", vINT32, 2);
  expectFailure([&] { set.checkGroups(pair, 1, 1); }, "CapiAttributeSet::myCheckGroups",
                "Can only function with Attributes of length=1. Your Attribute PAIR has a length of 2.");
}

TEST(CapiAttributeSet, WritesThatDoNotFitLeaveTheDataAsTheyWere) {
  ProbeSet set;
  fill(set);
  Attribute amp = set.getAttribute("AMP");
  double const two[] = {-1, -2};
  amp.copyData(2, two);
  expectFailure([&] { set.write(amp, 1, 3); }, "CapiAttributeSet::write(range)",
                "The Attribute 'AMP' to be written has 2 instances, but last-first+1 is 3.");
  Attribute cdp = set.getAttribute("CDP");
  expectFailure([&] { set.write(amp, cdp, 1, 2); }, "CapiAttributeSet::write(byGroups)",
                "The number of instances (4) with groups CDP does not match the number of instances (2) for Attribute "
                "AMP being written.");
  expectFailure([&] { set.write(amp, cdpOffsetKeys({1, 9}, {10, 10})); }, "CapiAttributeSet::write(byKeys)",
                "Key list has duplicate or missing values in AttributeSet line. Wanted 2 value(s) but found 1.");
  Attribute back = set.getAttribute("AMP");
  set.read(back, 1, 6);
  EXPECT_EQ((std::vector<double>{0.5, 1.0, 1.5, 2.0, 2.5, 3.0}), valuesOf(back));

  // Groups and keys written; the group tables follow the changes.
  set.write(amp, cdp, 3, 3);
  Attribute newCdp = set.getAttribute("CDP");
  int const moved[] = {7, 7};
  newCdp.copyData(2, moved);
  set.write(newCdp, std::vector<unsigned int>{1, 2});
  Attribute unique = set.getAttribute("CDP");
  set.getUnique(unique, vUtlSort::SortOrder::ASCENDING);
  EXPECT_EQ((std::vector<double>{2, 3, 7}), valuesOf(unique));
  set.read(back, 1, 6);
  EXPECT_EQ((std::vector<double>{0.5, 1.0, 1.5, 2.0, -1, -2}), valuesOf(back));
}
