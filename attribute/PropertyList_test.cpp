// PropertyList and the lazily made list behind PropertyI.

#include "attribute/PropertyList.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "attribute/AttributeTesting.h"
#include "attribute/PropertyI.h"
#include "foundation/Packer.h"

using attribute_testing::Bytes;
using attribute_testing::bodyOf;
using attribute_testing::expectFailure;
using attribute_testing::receive;

namespace {

std::vector<std::string> namesOf(PropertyList const& l) {
  std::vector<std::string> out;
  for (PropertyList::const_iterator i = l.beginProperty(); i != l.endProperty(); ++i)
    out.push_back(i->getName().c_str());
  return out;
}

}  // namespace

TEST(PropertyList, OnePropertyPerNameInNameOrderReplacedRemovedAndMerged) {
  PropertyList l;
  l.addProperty(Property(vUCString("zeta"), 1));
  l.addProperty(Property(vUCString("alpha"), "a"));
  l.addProperty(Property(vUCString("mid"), 2.0));
  EXPECT_EQ((std::vector<std::string>{"ALPHA", "MID", "ZETA"}), namesOf(l));
  EXPECT_TRUE(l.hasProperty(Property(vUCString("Mid"), 0)));
  PropertyList const& c = l;
  EXPECT_EQ(c.endProperty(), c.findProperty(Property(vUCString("absent"), 0)));

  // Names fold, so a second property differing only in case is refused.
  expectFailure([&] { l.addProperty(Property(vUCString("Alpha"), 5)); }, "PropertyList::addProperty()",
                "Error trying to add property ALPHA. Already exists.");
  EXPECT_STREQ("a", l.findProperty(vUCString("alpha"))->getString().c_str());
  expectFailure([&] { l.addProperty(Property()); }, "PropertyList::addProperty()",
                "Error trying to add an uninitialized property");

  l.addOrReplaceProperty(Property(vUCString("zeta"), 2));
  l.addOrReplaceProperty(*l.findProperty(vUCString("zeta")));  // itself
  EXPECT_EQ(2, l.findProperty(vUCString("zeta"))->getInt32());
  PropertyList m;
  m.addProperty(Property(vUCString("c"), 4));
  m.addProperty(Property(vUCString("mid"), 30));
  l.addOrReplaceProperties(m);
  EXPECT_EQ((std::vector<std::string>{"ALPHA", "C", "MID", "ZETA"}), namesOf(l));
  EXPECT_EQ(30, l.findProperty(vUCString("mid"))->getInt32());
  l.removeProperty(vUCString("mid"));
  l.removeProperty(l.findProperty(vUCString("zeta")));
  l.removeProperty(vUCString("alpha"));
  EXPECT_EQ((std::vector<std::string>{"C"}), namesOf(l));
  expectFailure([&] { l.removeProperty(vUCString("b")); }, "PropertyList::removeProperty()",
                "Error trying to remove a Property that doesn't exist");
  PropertyList copy(l);
  l.clearProperties();
  EXPECT_EQ(1u, copy.getNProperties());
  l.addProperties(copy);
  EXPECT_EQ(1u, l.getNProperties());
}

TEST(PropertyList, PackedFormByteExact) {
  PropertyList l;
  l.addProperty(Property(vUCString("b"), 2));
  l.addProperty(Property(vUCString("a"), "x"));
  Packer p(0);
  l.pack(p);
  PropertyList().pack(p);

  Bytes b;
  b.frame(5629, 1).frame(67, 1).int32(2);
  b.frame(1301, 1).text("A").int32(vSTRING).int32(1).text("x").end();
  b.frame(1301, 1).text("B").int32(vINT32).int32(1).array<int32_t>(vINT32, {2}).end();
  b.end().end();
  b.frame(5629, 1).frame(67, 1).int32(0).end().end();
  EXPECT_EQ(b.body(), bodyOf(p));

  std::unique_ptr<Packer> r = receive(p);
  PropertyList back;
  back.addProperty(Property(vUCString("stale"), 1));
  back.unpack(*r);
  EXPECT_EQ((std::vector<std::string>{"A", "B"}), namesOf(back));
  EXPECT_TRUE(back.findProperty(vUCString("b"))->compare(Property(vUCString("b"), 2)));
  PropertyList empty;
  empty.unpack(*r);
  EXPECT_EQ(0u, empty.getNProperties());
}

TEST(PropertyI, TheListIsMadeWhenFirstNeededAndSharedByCopies) {
  PropertyI i;
  EXPECT_FALSE(i.hasProperty(vUCString("x")));
  i.clearProperties();
  EXPECT_FALSE(i.isSet());
  expectFailure([&] { i.removeProperty(vUCString("x")); }, "PropertyI::removeProperty",
                "No Property List has been set yet.");
  EXPECT_EQ(i.beginProperty(), i.endProperty());  // iteration needs a list
  EXPECT_TRUE(i.isSet());

  PropertyI a;
  a.addProperty(Property(vUCString("shared"), 1));
  PropertyI b(a);
  PropertyI c;
  c = a;
  PropertyI d;
  d.setPropertyList(a);
  b.addProperty(Property(vUCString("more"), 2));
  EXPECT_EQ(2u, c.getNProperties());
  // addProperties copies into this interface's own list.
  PropertyI f;
  f.addProperties(b);
  f.addProperty(Property(vUCString("f"), 6));
  EXPECT_EQ(2u, b.getNProperties());
  d.removeProperty(d.findProperty(vUCString("more")));
  d.clearProperties();
  EXPECT_EQ(0u, a.getNProperties());
  EXPECT_EQ(3u, f.getNProperties());
}
