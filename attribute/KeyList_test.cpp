// KeyList: ordered sort keys, found by name, and their packed form.

#include "attribute/KeyList.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "attribute/AttributeTesting.h"
#include "foundation/Packer.h"

using attribute_testing::Bytes;
using attribute_testing::bodyOf;
using attribute_testing::expectFailure;
using attribute_testing::expectFailureFrom;
using attribute_testing::namesOf;
using attribute_testing::receive;

TEST(KeyList, KeysKeepInsertionOrder) {
  KeyList k;
  k.addKey(Attribute("shot", "h", vINT32));
  k.addKey(Attribute("channel", "h", vINT32));
  k.addKey(Attribute("azimuth", "h", vFLOAT32));
  EXPECT_EQ((std::vector<std::string>{"SHOT", "CHANNEL", "AZIMUTH"}), namesOf(k));

  // A key is a definition: data do not come along.
  Attribute withData("offset", "h", vINT32);
  withData.resize(10);
  k.addKey(withData);
  EXPECT_EQ(0u, k.findKey(withData)->getNInstances());

  expectFailure([&] { k.addKey(Attribute("Shot", "other", vINT64)); }, "KeyList::addKey()",
                "SHOT already exists in this KeyList.");
  expectFailureFrom([&] { k.addKey(Attribute()); }, "KeyList::addKey()",
                    "Not allowed to add an empty Attribute to the KeyList", "KeyList");
  EXPECT_EQ(4u, k.getNKeys());
}

TEST(KeyList, FindingKeys) {
  KeyList k;
  k.addKey(Attribute("inline", "h", vINT32));
  k.addKey(Attribute("xline", "h", vINT32));
  EXPECT_EQ(2u, k.determineKeyNumber(Attribute("XLINE", "any", vFLOAT64)));
  EXPECT_EQ(0u, k.determineKeyNumber(Attribute("cdp", "h", vINT32)));
  EXPECT_EQ(k.end(), k.findKey(Attribute("cdp", "h", vINT32)));
  KeyList const& c = k;

  EXPECT_STREQ("XLINE", c.findKey(2)->getName().c_str());
  expectFailure([&] { k.findKey(3); }, "KeyList::findKey(int)", "Requested key number '3' outside valid range (1-2)");

  vString m2;
  EXPECT_TRUE(k.findName(5, &m2).isEmpty());
  EXPECT_STREQ("Requested key number '5' outside valid range (1-2)", m2.c_str());

  k.removeKey(vUCString("inline"));
  EXPECT_EQ((std::vector<std::string>{"XLINE"}), namesOf(k));
  k.removeKey(vUCString("not_a_key"));
  EXPECT_EQ(1u, k.getNKeys());
}

TEST(KeyList, EqualityIsByNamesInOrder) {
  KeyList a;
  a.addKey(Attribute("k1", "h", vINT32));
  a.addKey(Attribute("k2", "h", vINT32));
  KeyList b;
  b.addKey(Attribute("k1", "other", vFLOAT64));
  b.addKey(Attribute("k2", "h", vINT16));
  EXPECT_TRUE(a == b);
  KeyList c;
  c.addKey(Attribute("k2", "h", vINT32));
  c.addKey(Attribute("k1", "h", vINT32));
  EXPECT_TRUE(a != c);
}

TEST(KeyList, PackedFormByteExact) {
  KeyList k;
  k.addKey(Attribute("ffid", "hdr", vINT32));
  k.addKey(Attribute("chan", "hdr", vINT16));
  Packer p(0);
  k.pack(p);

  Bytes b;
  b.frame(1501, 1).int32(2);
  for (auto const& key : {std::make_pair("FFID", vINT32), std::make_pair("CHAN", vINT16)}) {
    b.frame(1241, 5).text(key.first).text("HDR").int32(key.second).int32(1).float64(0).float64(0);
    b.boolean(false).int64(0).float64(0).float64(0).int64(0).int32(0).end();
  }
  b.end();
  EXPECT_EQ(b.body(), bodyOf(p));

  std::unique_ptr<Packer> r = receive(p);
  KeyList back(*r);
  EXPECT_TRUE(back == k);
  EXPECT_EQ(vINT16, back.findKey(2)->getDataType());
}

// The keys of a read or write by key values carry those values: they travel
// with the list and come out of unpack with it.
TEST(KeyList, KeyValuesTravelWithTheList) {
  KeyList k;
  k.addKey(Attribute("cdp", "hdr", vINT32));
  k.addKey(Attribute("offset", "hdr", vFLOAT32));
  int const cdps[] = {7, 9, 11};
  float const offsets[] = {100.5f, 200.5f, 300.5f};
  k.begin()->copyData(3, cdps);
  (k.begin() + 1)->copyData(3, offsets);
  Packer p(0);
  k.pack(p);
  std::unique_ptr<Packer> r = receive(p);
  KeyList back(*r);
  ASSERT_EQ(3u, back.begin()->getNInstances());
  ASSERT_EQ(3u, (back.begin() + 1)->getNInstances());
  for (unsigned int i = 1; i <= 3; ++i) {
    EXPECT_EQ(cdps[i - 1], back.begin()->getInt32(i));
    EXPECT_EQ(offsets[i - 1], (back.begin() + 1)->getFloat32(i));
  }

  // Old attribute frames inside are read.
  Bytes old;
  old.frame(1501, 1).int32(1);
  old.frame(1241, 1).text("OLDKEY").text("H").int32(vINT32).int32(1).float64(0).float64(0).int32(0).end();
  old.end();
  EXPECT_STREQ("OLDKEY", KeyList(*old.reader()).findName(1).c_str());
}

TEST(KeyList, UnpackRefusals) {
  KeyList k;
  k.addKey(Attribute("before", "h", vINT32));
  Bytes magic;
  magic.frame(1500, 1).int32(0).end();
  expectFailure([&] { k.unpack(*magic.reader()); }, "KeyList::unpack()", "Bad magic value, not a KeyList.");
  EXPECT_EQ(0u, k.getNKeys());  // cleared first
  Bytes version;
  version.frame(1501, 2).int32(0).end();
  expectFailure([&] { k.unpack(*version.reader()); }, "KeyList::unpack()", "Bad KeyList Version, not supported.");
  Bytes forged;
  forged.frame(1501, 1).int32(1000000).end();
  expectFailure([&] { k.unpack(*forged.reader()); }, "KeyList::unpack()", "Bad number of keys 1000000 with 1 bytes left.");
}
