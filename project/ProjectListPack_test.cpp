// The packed form of a catalog's project list, byte for byte, and its
// refusals.

#include <gtest/gtest.h>

#include <string>

#include "attribute/AttributeTesting.h"
#include "foundation/Packer.h"
#include "project/ProjectList.h"

using attribute_testing::Bytes;
using attribute_testing::bodyOf;
using attribute_testing::expectFailure;
using attribute_testing::receive;

namespace {

ProjectList sample() {
  ProjectList list;
  list.add(ProjectListEntry("north_sea"));
  list.add(ProjectListEntry("gulf"));
  return list;
}

TEST(ProjectListPack, FrameByteExactAndRoundTrip) {
  Packer p(0);
  sample().pack(p);
  Bytes b;
  b.frame(1020, 1).int32(2).text("north_sea").text("gulf").end();
  EXPECT_EQ(b.body(), bodyOf(p));

  // Read back, the list replaces the entries.
  std::unique_ptr<Packer> in = receive(p);
  ProjectList back;
  back.add(ProjectListEntry("stale"));
  back.unpack(*in);
  EXPECT_EQ(sample(), back);
  EXPECT_EQ(back.end(), back.find("stale"));
}

TEST(ProjectListPack, ForeignFramesAreRefused) {
  Bytes wrongMagic;
  wrongMagic.frame(1021, 1).int32(0).end();
  expectFailure([&] { ProjectList l; l.unpack(*wrongMagic.reader()); }, "ProjectList::unpack",
                "Magic number mismatch: expected 1020, got 1021.");
  Bytes wrongVersion;
  wrongVersion.frame(1020, 2).int32(0).end();
  expectFailure([&] { ProjectList l; l.unpack(*wrongVersion.reader()); }, "ProjectList::unpack",
                "Version number mismatch: expected 1, got 2.");
  Bytes forged;
  forged.frame(1020, 1).int32(100000000).text("a").end();
  expectFailure([&] { ProjectList l; l.unpack(*forged.reader()); }, "ProjectList::unpack",
                "Bad number of projects 100000000 with 8 bytes left.");
}

}  // namespace
