// The packed forms of the in-memory set and store: byte-exact frames built
// by hand, round trips through a Packer, foreign and later frames.

#include <gtest/gtest.h>

#include <string>

#include "attribute/Property.h"
#include "filestore/memory/InMemoryStore.h"
#include "foundation/Packer.h"
#include "project/Project.h"
#include "project/StoreTesting.h"

using store_testing::bodyOf;
using store_testing::Bytes;
using store_testing::expectFailure;
using store_testing::receive;

namespace {

template <class T>
std::vector<unsigned char> packed(T const& object) {
  Packer p;
  p.pack(object);
  return bodyOf(p);
}

std::vector<unsigned char> packedProperties(PropertyI const& properties) {
  Packer p;
  properties.packProperties(p);
  return bodyOf(p);
}

// Two instances of CDP (key, Int32) and AMP (Float64, length 2), with a
// property.
void fill(InMemoryStore& store) {
  KeyList keys;
  keys.addKey(Attribute("CDP", "CDP", vINT32));
  store.create("line9", "seismic", "2d", keys, nullptr);
  store.addAttribute(Attribute("AMP", "", vFLOAT64, 2, 4.0));
  store.addInstances(2);
  *store.updateAttributeAndData("CDP").getInt32Pointer(2) = 7;
  double* amp = store.updateAttributeAndData("AMP").getFloat64Pointer(1);
  amp[0] = 0.5;
  amp[3] = -1.25;
  store.addProperty(Property("SURVEY", vString("north")));
}

// A set frame of the given version, up to its one attribute: CDP with 4, 5
// over nInstances.
Bytes& cdpSetFrame(Bytes& bytes, int16_t version, char const* name, unsigned int nInstances) {
  bytes.frame(3064, version).text(name).text("seismic").text("3d");
  bytes.append(packedProperties(PropertyI())).append(packed(KeyList()));
  bytes.int32(1).uint32(nInstances);
  Attribute cdp("CDP", "", vINT32);
  int const values[] = {4, 5};
  cdp.copyData(2, values);
  return bytes.append(packed(cdp));
}

}  // namespace

TEST(InMemoryStorePack, FramesAreByteExactAndAStoreComesBackWholeWithItsSecondarySets) {
  InMemoryStore store{vHandle<Project>()};
  fill(store);
  InMemoryAttributeSet const& set = *vHandle_cast<InMemoryAttributeSet>(store.getAttributeSets().front());

  Bytes expectedSet;
  expectedSet.frame(3064, 1).text("line9").text("seismic").text("2d");
  expectedSet.append(packedProperties(set));
  expectedSet.append(packed(set.getKeyList()));
  expectedSet.int32(2).uint32(2);
  // The attributes in name order, each with its data.
  expectedSet.append(packed(set.readAttributeAndData("AMP")));
  expectedSet.append(packed(set.readAttributeAndData("CDP")));
  expectedSet.end();
  EXPECT_EQ(expectedSet.body(), packed(set));

  // A store with no secondary set counts one set.
  Bytes expectedStore;
  expectedStore.frame(3063, 1).text("line9").text("seismic").text("2d").int32(1);
  expectedStore.append(expectedSet.body()).end();
  EXPECT_EQ(expectedStore.body(), packed(store));

  store.createAttributeSet("notes", KeyList());
  store.addAttribute(Attribute("TEXT", "", vSTRING));
  store.addInstances(1);
  store.updateAttributeAndData("TEXT").setString(1, "checked");
  store.openAttributeSet("line9");

  Packer out;
  out.pack(store);
  std::unique_ptr<Packer> in = receive(out);
  InMemoryStore back{vHandle<Project>()};
  in->unpack(back);

  // The bytes compared below hold names, properties, keys and data.
  EXPECT_FALSE(back.getAttributeSets().back()->isOpen()) << "secondary sets come back closed";
  back.openAttributeSet("notes");
  EXPECT_EQ("checked", std::string(back.readAttributeAndData("TEXT").getString(1).c_str()));
  back.openAttributeSet("line9");
  EXPECT_EQ(packed(store), packed(back));
  Packer setOut;
  setOut.pack(set);
  std::unique_ptr<Packer> setIn = receive(setOut);
  InMemoryAttributeSet unpacked{vHandle<Project>()};
  setIn->unpack(unpacked);
  EXPECT_TRUE(unpacked.isOpen());
  EXPECT_FALSE(unpacked.isWriteable());
}

TEST(InMemoryStorePack, ForeignFramesAndASetWhoseAttributeDoesNotFitAreRefused) {
  Bytes foreign;
  foreign.frame(3065, 1).end();
  InMemoryAttributeSet set{vHandle<Project>()};
  std::unique_ptr<Packer> p = foreign.reader();
  expectFailure([&] { p->unpack(set); }, "InMemoryAttributeSet::unpack()",
                "Bad magic value, not an InMemoryAttributeSet.");
  InMemoryStore store{vHandle<Project>()};
  std::unique_ptr<Packer> q = foreign.reader();
  expectFailure([&] { q->unpack(store); }, "InMemoryStore::unpack()", "Bad magic value, not an InMemoryStore.");
  EXPECT_FALSE(store.isOpen());
  Bytes bad;
  cdpSetFrame(bad, 1, "odd", 3).end();
  std::unique_ptr<Packer> r = bad.reader();
  expectFailure([&] { r->unpack(set); }, "InMemoryAttributeSet::unpack()",
                "Attribute CDP of AttributeSet 'odd' holds 2 instances, the AttributeSet 3.");
}

TEST(InMemoryStorePack, ALaterFrameIsReadThroughTheKnownFieldsAndSkipped) {
  Bytes later;
  later.frame(3063, 2).text("late").text("seismic").text("3d").int32(1);
  // What a later writer added to each frame.
  cdpSetFrame(later, 2, "late", 2).float64(3.5).text("more").end();
  later.int32(99).end();
  later.int32(123456);

  std::unique_ptr<Packer> p = later.reader();
  InMemoryStore store{vHandle<Project>()};
  p->unpack(store);
  int after = 0;
  p->unpack(after);
  EXPECT_EQ(123456, after);
  EXPECT_EQ(5, store.readAttributeAndData("CDP").getInt32(2));
}
