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

TEST(KeyList, KeysKeepInsertionOrderAndAreFoundByName) {
  KeyList k;
  k.addKey(Attribute("shot", "h", vINT32));
  k.addKey(Attribute("channel", "h", vINT32));
  k.addKey(Attribute("azimuth", "h", vFLOAT32));
  EXPECT_EQ((std::vector<std::string>{"SHOT", "CHANNEL", "AZIMUTH"}), namesOf(k));
  EXPECT_EQ(2u, k.determineKeyNumber(Attribute("CHANNEL", "any", vFLOAT64)));
  EXPECT_EQ(0u, k.determineKeyNumber(Attribute("cdp", "h", vINT32)));
  EXPECT_EQ(k.end(), k.findKey(Attribute("cdp", "h", vINT32)));
  KeyList const& c = k;
  EXPECT_STREQ("AZIMUTH", c.findKey(3)->getName().c_str());
  vString m2;
  EXPECT_TRUE(k.findName(5, &m2).isEmpty());
  EXPECT_STREQ("Requested key number '5' outside valid range (1-3)", m2.c_str());

  // A key is a definition: data do not come along.
  Attribute withData("offset", "h", vINT32);
  withData.resize(10);
  k.addKey(withData);
  EXPECT_EQ(0u, k.findKey(withData)->getNInstances());
  expectFailure([&] { k.addKey(Attribute("Shot", "other", vINT64)); }, "KeyList::addKey()",
                "SHOT already exists in this KeyList.");
  expectFailureFrom([&] { k.addKey(Attribute()); }, "KeyList::addKey()",
                    "Not allowed to add an empty Attribute to the KeyList", "KeyList");
  k.removeKey(vUCString("shot"));
  k.removeKey(vUCString("not_a_key"));
  EXPECT_EQ((std::vector<std::string>{"CHANNEL", "AZIMUTH", "OFFSET"}), namesOf(k));
}

TEST(KeyList, EqualityIsByNamesInOrder) {
  KeyList a, b, c;
  for (char const* n : {"k1", "k2"}) a.addKey(Attribute(n, "h", vINT32));
  for (char const* n : {"k1", "k2"}) b.addKey(Attribute(n, "other", vFLOAT64));
  for (char const* n : {"k2", "k1"}) c.addKey(Attribute(n, "h", vINT32));
  EXPECT_TRUE(a == b);
  EXPECT_TRUE(a != c);
}

TEST(KeyList, PackedFormByteExactAndRefusals) {
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
  KeyList back(*receive(p));
  EXPECT_TRUE(back == k);
  EXPECT_EQ(vINT16, back.findKey(2)->getDataType());

  expectFailure([&] { back.unpack(*Bytes().frame(1500, 1).int32(0).end().reader()); }, "KeyList::unpack()",
                "Bad magic value, not a KeyList.");
  EXPECT_EQ(0u, back.getNKeys());  // cleared first
  expectFailure([&] { back.unpack(*Bytes().frame(1501, 2).int32(0).end().reader()); }, "KeyList::unpack()",
                "Bad KeyList Version, not supported.");
  expectFailure([&] { back.unpack(*Bytes().frame(1501, 1).int32(1000000).end().reader()); }, "KeyList::unpack()",
                "Bad number of keys 1000000 with 1 bytes left.");
}
