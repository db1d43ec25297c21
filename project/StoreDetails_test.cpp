// The catalogue records of stores, attribute sets and project lists: their
// packed forms byte for byte, and the frames of every older writer, whose
// fields were fewer or narrower.

#include <gtest/gtest.h>

#include "project/AttributeSetDetails.h"
#include "project/ProjectList.h"
#include "project/StoreDetails.h"
#include "project/StoreTesting.h"

using store_testing::Bytes;
using store_testing::bodyOf;
using store_testing::expectFailure;
using store_testing::receive;

namespace {

StoreDetails sample() {
  return StoreDetails("line12", 3, "seismic", "2d", 4000000000u, "first", "second", vDate(1000000000L), "me",
                      (1LL << 33) + 5, 2, ProjectType::ZONMESH);
}

ProjectList projects() {
  ProjectList list;
  list.add(ProjectListEntry("north_sea"));
  list.add(ProjectListEntry("gulf"));
  return list;
}

// The fields that every version holds, as version 1 wrote them.
Bytes& firstFields(Bytes& b, bool wideCount) {
  b.text("line12").int32(3).text("seismic").text("2d");
  if (wideCount)
    b.int64(480);
  else
    b.uint32(480);
  return b.text("first").text("second");
}

}  // namespace

TEST(StoreDetails, PacksAllFieldsInAVersionSevenFrame) {
  Packer p;
  sample().pack(p);
  Bytes expected;
  expected.frame(6654, 7).text("line12").int32(3).text("seismic").text("2d").int64(4000000000LL);
  expected.text("first").text("second").int32(1000000000).text("me").int64((1LL << 33) + 5).int32(2).int32(8);
  expected.boolean(false).end();
  EXPECT_EQ(expected.body(), bodyOf(p));

  StoreDetails back;
  back.unpack(*receive(p));
  EXPECT_EQ(sample(), back);
  // Equality leaves the project type out.
  EXPECT_EQ(ProjectType::ZONMESH, back.getProjectType());

  // An unknown date travels as invalid, which equality tells.
  StoreDetails d(ProjectType::RONDO, "srv", "Wells", 4);
  Packer again;
  d.pack(again);
  back.unpack(*receive(again));
  EXPECT_EQ(d, back);
  EXPECT_EQ(ProjectType::RONDO, back.getProjectType());
}

TEST(StoreDetails, ReadsTheFramesOfOlderAndNewerWriters) {
  auto read = [](Bytes const& b) {
    StoreDetails d = sample();  // what a frame lacks is reset, not kept
    d.unpack(*b.reader());
    return d;
  };
  auto details = [](vDate const& date, char const* owner, long long size, int nSets) {
    return StoreDetails("line12", 3, "seismic", "2d", 480, "first", "second", date, owner, size, nSets,
                        ProjectType::NOTYPE);
  };
  vDate const date(1000000000L);
  // Version 1: a 32-bit count and nothing after the descriptions.
  Bytes v1;
  firstFields(v1.frame(6654, 1), false).end();
  EXPECT_EQ(details(vDate(vDate::Invalid), "D", -1, -1), read(v1));
  // Version 2: the date follows; the count was a signed 32-bit entry.
  Bytes v2;
  v2.frame(6654, 2).text("line12").int32(3).text("seismic").text("2d").int32(480).text("first").text("second");
  EXPECT_EQ(details(date, "D", -1, -1), read(v2.int32(1000000000).end()));
  // Version 3 adds the owner.
  Bytes v3;
  firstFields(v3.frame(6654, 3), false).int32(1000000000).text("owner").end();
  EXPECT_EQ(details(date, "owner", -1, -1), read(v3));
  // Version 5 adds size and set count, with the wide count.
  Bytes v5;
  firstFields(v5.frame(6654, 5), true).int32(1000000000).text("owner").int64(123456789012LL).int32(3).end();
  EXPECT_EQ(details(date, "owner", 123456789012LL, 3), read(v5));
  // Version 6 adds the project type; its date counts as valid.
  Bytes v6;
  firstFields(v6.frame(6654, 6), true).int32(1000000000).text("owner").int64(7).int32(1).int32(4).end();
  StoreDetails d = read(v6);
  EXPECT_EQ(details(date, "owner", 7, 1), d);
  EXPECT_EQ(ProjectType::UNITTEST, d.getProjectType());

  // A newer frame is read and skipped to its end.
  Bytes b;
  b.frame(6654, 8);
  firstFields(b, true).int32(1000000000).text("owner").int64(7).int32(1).int32(3).boolean(true);
  b.text("a later field").frame(1, 1).int32(5).end().end();
  b.int32(31337);
  std::unique_ptr<Packer> reader = b.reader();
  d.unpack(*reader);
  EXPECT_FALSE(d.getDate().isValid());
  EXPECT_EQ(ProjectType::DORN, d.getProjectType());
  int after = 0;
  reader->unpack(after);
  EXPECT_EQ(31337, after);
}

TEST(StoreDetails, RefusesForeignFrames) {
  Bytes magic, version, wide;
  magic.frame(6655, 7).end();
  version.frame(6654, -1).end();
  wide.frame(6654, 7).text("n").int32(1).text("c").text("s").int64(1LL << 32).end();
  StoreDetails d;
  expectFailure([&] { d.unpack(*magic.reader()); }, "StoreDetails::unpack",
                "Expected 6654 as a magic number, but found 6655. Not a StoreDetails object here.");
  expectFailure([&] { d.unpack(*version.reader()); }, "StoreDetails::unpack",
                "Expected a version number >= 0 ... not -1!");
  expectFailure([&] { d.unpack(*wide.reader()); }, "StoreDetails::unpack",
                "Instance count 4294967296 of store 'n' is out of range.");
}

TEST(StoreDetails, ComparesAndOrders) {
  StoreDetails a = sample();
  StoreDetails b = sample();
  b.setProjectType(ProjectType::RONDO);
  EXPECT_EQ(a, b) << "the project type takes no part";
  // Every other field counts.
  b.setNAttributeSets(9);
  EXPECT_NE(a, b);
  EXPECT_TRUE(StoreDetails(ProjectType::RONDO, "", "a", 9) < StoreDetails(ProjectType::RONDO, "", "b", 1));
  EXPECT_TRUE(StoreDetails(ProjectType::RONDO, "", "a", 1) < StoreDetails(ProjectType::KELP, "", "a", 2));
  EXPECT_FALSE(StoreDetails(ProjectType::RONDO, "", "a", 2) < StoreDetails(ProjectType::KELP, "", "a", 1));
  // Equal name and version: neither is less, whatever else differs.
  StoreDetails described = sample();
  described.setDescription1("other");
  EXPECT_FALSE(described < sample());
  EXPECT_FALSE(sample() < described);
  EXPECT_NE(sample(), described);
}

TEST(AttributeSetDetails, PacksNameAndA32BitCountReadsTheWideOneOfLaterVersions) {
  Packer p;
  AttributeSetDetails("Headers", 4000000000u).pack(p);
  Bytes expected;
  expected.frame(8765, 1).text("headers").uint32(4000000000u).end();
  EXPECT_EQ(expected.body(), bodyOf(p));
  AttributeSetDetails back;
  back.unpack(*receive(p));
  EXPECT_EQ(AttributeSetDetails("headers", 4000000000u), back);

  // Later versions carry a wide count.
  Bytes b;
  b.frame(8765, 2).text("set").int64(12).text("later").end().int32(7);
  std::unique_ptr<Packer> reader = b.reader();
  back.unpack(*reader);
  EXPECT_EQ(AttributeSetDetails("set", 12), back);
  int after = 0;
  reader->unpack(after);
  EXPECT_EQ(7, after);

  Bytes bad;
  bad.frame(8766, 1).end();
  expectFailure([&] { back.unpack(*bad.reader()); }, "AttributeSetDetails::unpack",
                "Wrong magic number 8766, expected 8765.");
}

TEST(ProjectListPack, FrameByteExactRoundTripAndForeignFramesRefused) {
  Packer p(0);
  projects().pack(p);
  Bytes b;
  b.frame(1020, 1).int32(2).text("north_sea").text("gulf").end();
  EXPECT_EQ(b.body(), bodyOf(p));

  // Read back, the list replaces its entries.
  ProjectList back;
  back.add(ProjectListEntry("stale"));
  back.unpack(*receive(p));
  EXPECT_EQ(projects(), back);

  Bytes wrongMagic, wrongVersion, forged;
  wrongMagic.frame(1021, 1).int32(0).end();
  wrongVersion.frame(1020, 2).int32(0).end();
  forged.frame(1020, 1).int32(100000000).text("a").end();
  expectFailure([&] { back.unpack(*wrongMagic.reader()); }, "ProjectList::unpack",
                "Magic number mismatch: expected 1020, got 1021.");
  expectFailure([&] { back.unpack(*wrongVersion.reader()); }, "ProjectList::unpack",
                "Version number mismatch: expected 1, got 2.");
  expectFailure([&] { back.unpack(*forged.reader()); }, "ProjectList::unpack",
                "Bad number of projects 100000000 with 8 bytes left.");
}
