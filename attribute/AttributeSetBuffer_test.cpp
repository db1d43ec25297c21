#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <list>
#include <string>
#include <vector>

#include "attribute/AttributeSetBuffer.h"
#include "attribute/AttributeTesting.h"
#include "attribute/ByteSwappedRecordBuffer.h"
#include "attribute/RecordBuffer.h"

using attribute_testing::doublesOf;
using attribute_testing::expectFailure;
using attribute_testing::intsOf;
using attribute_testing::namesOf;

namespace {

char const* const kDirty = "Reading instances from/to dirty attribute set buffers is not supported yet!";

// A record of 16 bytes: OFFSET (int32) at 0, X (float64) at 4, FLAG (int16)
// at 12; and a plain attribute CDP.
AttributeSetBuffer::Layout headerLayout() {
  AttributeSetBuffer::Layout layout;
  layout.push_back(std::make_pair(Attribute("X", "HEADER", vFLOAT64), 4));
  layout.push_back(std::make_pair(Attribute("OFFSET", "HEADER", vINT32), 0));
  layout.push_back(std::make_pair(Attribute("FLAG", "HEADER", vINT16), 12));
  return layout;
}

void build(AttributeSetBuffer& b, unsigned int n) {
  b.addAttribute(Attribute("CDP", "HEADER", vINT32));
  b.setNInstances(n);
  b.addRecordBuffer("hdr", RecordBuffer(16), headerLayout());
}

// Raw records of the header layout.
std::vector<char> records(std::vector<int> const& offsets, std::vector<double> const& xs) {
  std::vector<char> raw(16 * offsets.size(), 0);
  for (std::size_t k = 0; k < offsets.size(); ++k) {
    std::memcpy(raw.data() + 16 * k, &offsets[k], 4);
    std::memcpy(raw.data() + 16 * k + 4, &xs[k], 8);
    short const flag = static_cast<short>(k + 1);
    std::memcpy(raw.data() + 16 * k + 12, &flag, 2);
  }
  return raw;
}

void setInts(Attribute& a, std::vector<int> const& v) { std::copy(v.begin(), v.end(), a.getInt32Pointer(1)); }

TEST(AttributeSetBuffer, LayoutAndNames) {
  AttributeSetBuffer b;
  build(b, 3);
  EXPECT_EQ((std::vector<std::string>{"CDP", "FLAG", "OFFSET", "X"}), namesOf(b.getAttributeList()));

  expectFailure([&] { b.addRecordBuffer("hdr", RecordBuffer(4), AttributeSetBuffer::Layout()); },
                "AttributeSetBuffer::addRecordBuffer",
                "RecordBuffer 'hdr' has already been added to this AttributeSetBuffer.");
  expectFailure([&] { b.addAttribute(Attribute("x", "OTHER", vINT32)); }, "AttributeSetBuffer::addAttribute",
                "Attribute 'X' has already been added to this AttributeSetBuffer.");
}

TEST(AttributeSetBuffer, FieldsLoadChangeAndMultiplex) {
  AttributeSetBuffer b;
  build(b, 3);
  std::vector<char> raw = records({10, 20, 30}, {1.5, 2.5, 3.5});
  b.importRange(raw.data(), 1, 3, 1);
  EXPECT_EQ((std::vector<double>{1.5, 2.5, 3.5}), doublesOf(b.readAttributeAndData(vUCString("X"))));

  Attribute& offset = b.updateAttributeAndData(vUCString("OFFSET"));
  EXPECT_EQ((std::vector<int>{10, 20, 30}), intsOf(offset));
  EXPECT_TRUE(b.isDirty(vUCString("OFFSET")));
  setInts(offset, {11, 21, 31});
  // Pending changes stop moves of whole records.
  std::vector<char> out(48);
  expectFailure([&] { b.exportRange(out.data(), 1, 3); }, "AttributeSetBuffer::exportRange", kDirty);
  AttributeSetBuffer::Layout layout;
  expectFailure([&] { b.getAttributeLayout(layout); }, "AttributeSetBuffer::getAttributeLayout",
                "Building a layout containing dirty attribute set buffers is not supported yet!");
  EXPECT_TRUE(b.multiplex());
  EXPECT_FALSE(b.isDirty(vUCString("OFFSET")));
  b.exportRange(out.data(), 2, 3);
  int word;
  std::memcpy(&word, out.data() + 16, 4);
  EXPECT_EQ(31, word);

  // A plain attribute gives its pointer, a field does not.
  Attribute& cdp = b.updateAttributeAndData(vUCString("CDP"));
  setInts(cdp, {7, 8, 9});
  EXPECT_EQ(cdp.getPointer(1), b.getPointer("cdp"));
  expectFailure([&] { b.getPointer("X"); }, "AttributeSetBuffer::getPointer",
                "Attribute 'X' is part of a RecordBuffer. You cannot call getPointer for this Attribute");
  expectFailure([&] { b.loadAttributeData(vUCString("NOPE")); }, "AttributeSetBuffer::loadAttributeData",
                "Attribute 'NOPE' does not exist in this AttributeSetBuffer.");
}

TEST(AttributeSetBuffer, MultiplexRefusesAnAttributeOfAnotherSize) {
  AttributeSetBuffer b;
  build(b, 2);
  Attribute wide("OFFSET", "HEADER", vFLOAT64);
  wide.resize(2);
  b.setAttributeAndData(wide);
  EXPECT_EQ(0u, wide.getNInstances());  // taken over
  Attribute& x = b.updateAttributeAndData(vUCString("X"));
  x.setFloat64(2, 9.0);
  EXPECT_FALSE(b.multiplex());
  EXPECT_TRUE(b.isDirty(vUCString("OFFSET")));
  EXPECT_FALSE(b.isDirty(vUCString("X")));  // the fitting one went in

  Attribute shorter("CDP", "HEADER", vINT32);
  shorter.resize(1);
  expectFailure([&] { b.setAttributeAndData(shorter); }, "AttributeSetBuffer::setAttributeAndData",
                "New attribute 'CDP' has 1 instances, but the buffer has 2. They must be the same.");
  EXPECT_EQ(1u, shorter.getNInstances());
}

TEST(AttributeSetBuffer, InstancesComeAndGoWithTheirValues) {
  AttributeSetBuffer b;
  build(b, 3);
  std::vector<char> raw = records({10, 20, 30}, {1.5, 2.5, 3.5});
  b.importRange(raw.data(), 1, 3, 1);
  setInts(b.updateAttributeAndData(vUCString("CDP")), {1, 2, 3});

  b.addInstances(2);
  EXPECT_EQ((std::vector<int>{10, 20, 30, 0, 0}), intsOf(b.readAttributeAndData(vUCString("OFFSET"))));

  b.keepInstances({3, 1});
  EXPECT_EQ((std::vector<double>{3.5, 1.5}), doublesOf(b.readAttributeAndData(vUCString("X"))));
  expectFailure([&] { b.keepInstances({1, 2, 1}); }, "AttributeSetBuffer::keepInstances",
                "AttributeSetBuffer has 2 instances, but instance list has 3 values");
  expectFailure([&] { b.keepInstances({3}); }, "AttributeSetBuffer::keepInstances",
                "Instance numbers 3 to 3 of the list are outside the range 1 to 2.");

  b.deleteInstances(1);
  EXPECT_EQ(4u, b.getNDeleted());
  EXPECT_EQ((std::vector<double>{3.5}), doublesOf(b.readAttributeAndData(vUCString("X"))));
  expectFailure([&] { b.deleteInstances(2); }, "AttributeSetBuffer::deleteInstances",
                "Cannot delete 2 instances, AttributeSetBuffer has 1 instances.");

  b.setNInstances(0);
  b.addInstances(2);
  EXPECT_EQ((std::vector<int>{0, 0}), intsOf(b.readAttributeAndData(vUCString("OFFSET"))));
}

TEST(AttributeSetBuffer, ImportAndExportRanges) {
  AttributeSetBuffer b;
  build(b, 4);
  std::vector<char> raw = records({1, 2, 3}, {0.5, 1.5, 2.5});
  b.importRange(raw.data() + 16, 2, 3, 3);  // records of instances 2 and 3, to 3 and 4
  EXPECT_EQ((std::vector<int>{0, 0, 2, 3}), intsOf(b.readAttributeAndData(vUCString("OFFSET"))));
  expectFailure([&] { b.importRange(raw.data(), 1, 3, 0); }, "AttributeSetBuffer::importRange",
                "Invalid destination instance 0 ... must be greater than zero.");
  expectFailure([&] { b.importRange(raw.data(), 1, 3, 3); }, "AttributeSetBuffer::importRange",
                "Importing the instance range 1-3 to instance 3 exceeds the capacity of the buffer (4 instances)");
  std::vector<char> out(64);
  expectFailure([&] { b.exportRange(out.data(), 3, 9); }, "AttributeSetBuffer::exportRange",
                "Invalid instance range 3-9, AttributeSetBuffer has 4 instances.");
  expectFailure([&] { b.exportRange(out.data(), 1, 1, "nope"); }, "AttributeSetBuffer::exportRange",
                "RecordBuffer 'nope' does not exist in this AttributeSetBuffer.");
  b.exportRange(out.data(), 3, 4, "hdr");
  EXPECT_EQ(0, std::memcmp(raw.data() + 16, out.data(), 32));

  // Two record buffers: per instance, both records in name order.
  AttributeSetBuffer::Layout extra;
  extra.push_back(std::make_pair(Attribute("AMP", "TRACE", vFLOAT32, 1), 0));
  b.addRecordBuffer("amp", RecordBuffer(4), extra);
  Attribute& amp = b.updateAttributeAndData(vUCString("AMP"));
  for (unsigned int i = 1; i <= 4; ++i) amp.setFloat32(i, static_cast<float>(i) * 100.0f);
  ASSERT_TRUE(b.multiplex());
  b.exportRange(out.data(), 4, 4);
  float a;
  std::memcpy(&a, out.data(), 4);
  EXPECT_EQ(400.0f, a);
  EXPECT_EQ(0, std::memcmp(raw.data() + 32, out.data() + 4, 16));
}

TEST(AttributeSetBuffer, ReadingFromAnotherBuffer) {
  AttributeSetBuffer source;
  build(source, 3);
  std::vector<char> raw = records({10, 20, 30}, {1.5, 2.5, 3.5});
  source.importRange(raw.data(), 1, 3, 1);
  setInts(source.updateAttributeAndData(vUCString("CDP")), {100, 200, 300});

  AttributeSetBuffer same;
  build(same, 4);
  same.readBufferRange(source, 2, 3, 2);
  EXPECT_EQ((std::vector<int>{0, 20, 30, 0}), intsOf(same.readAttributeAndData(vUCString("OFFSET"))));
  same.readBufferInstances(source, {3, 1}, 1);
  EXPECT_EQ((std::vector<int>{300, 100, 300, 0}), intsOf(same.readAttributeAndData(vUCString("CDP"))));

  // Another layout: OFFSET is plain here, X sits elsewhere; by name.
  AttributeSetBuffer other;
  other.addAttribute(Attribute("OFFSET", "HEADER", vINT32));
  other.setNInstances(2);
  AttributeSetBuffer::Layout moved;
  moved.push_back(std::make_pair(Attribute("X", "HEADER", vFLOAT64), 8));
  other.addRecordBuffer("hdr", RecordBuffer(16), moved);
  other.readBufferInstances(source, {2, 3});
  EXPECT_EQ((std::vector<int>{20, 30}), intsOf(other.readAttributeAndData(vUCString("OFFSET"))));
  other.readBufferRange(source, 1, 1, 2);
  EXPECT_EQ((std::vector<double>{2.5, 1.5}), doublesOf(other.readAttributeAndData(vUCString("X"))));

  expectFailure([&] { same.readBufferRange(source, 1, 3, 3); }, "AttributeSetBuffer::readBufferRange",
                "Reading the instance range 1-3 to instance 3 exceeds the capacity of the buffer (4 instances)");
  expectFailure([&] { same.readBufferInstances(source, {1, 9}); }, "AttributeSetBuffer::readBufferInstances",
                "Invalid instance 9, AttributeSetBuffer has 3 instances.");
  expectFailure([&] { other.readBufferInstances(source, {1, 2, 3}); }, "AttributeSetBuffer::readBufferInstances",
                "Reading the instances supplied exceeds the capacity of the buffer (2 instances)");
}

TEST(AttributeSetBuffer, RenameDeleteAndTheLayoutCRC) {
  AttributeSetBuffer a;
  build(a, 2);
  AttributeSetBuffer b;
  build(b, 5);
  uint32_t const crc = a.getAttributeIDCRC();
  EXPECT_EQ(crc, b.getAttributeIDCRC());  // instances do not count

  setInts(a.updateAttributeAndData(vUCString("CDP")), {4, 5});
  a.renameAttribute(vUCString("CDP"), vUCString("ENSEMBLE"));
  EXPECT_FALSE(a.hasAttribute(vUCString("CDP")));
  EXPECT_EQ((std::vector<int>{4, 5}), intsOf(a.readAttributeAndData(vUCString("ENSEMBLE"))));
  EXPECT_NE(crc, a.getAttributeIDCRC());
  expectFailure([&] { a.renameAttribute(vUCString("NOPE"), vUCString("NEW")); }, "AttributeSetBuffer::renameAttribute",
                "Attribute 'NOPE' cannot be renamed to 'NEW', because it does not exist.");
  // A field keeps its place under a new name.
  a.renameAttribute(vUCString("X"), vUCString("X2"));
  AttributeSetBuffer::Layout layout;
  a.getAttributeLayout(layout);
  EXPECT_EQ(vUCString("X2"), std::next(layout.begin())->first.getName());
  EXPECT_EQ(4, std::next(layout.begin())->second);

  b.deleteAttribute(vUCString("FLAG"));
  EXPECT_NE(crc, b.getAttributeIDCRC());
  EXPECT_FALSE(b.hasAttribute(vUCString("FLAG")));
}

TEST(AttributeSetBuffer, AssignmentSharesCopyingDoesNot) {
  AttributeSetBuffer a;
  build(a, 2);
  setInts(a.updateAttributeAndData(vUCString("CDP")), {1, 2});
  AttributeSetBuffer shared;
  shared = a;
  AttributeSetBuffer copy(a);
  setInts(a.updateAttributeAndData(vUCString("CDP")), {3, 4});
  EXPECT_EQ((std::vector<int>{3, 4}), intsOf(shared.readAttributeAndData(vUCString("CDP"))));
  EXPECT_EQ((std::vector<int>{1, 2}), intsOf(copy.readAttributeAndData(vUCString("CDP"))));
  // The copy has records of its own.
  std::vector<char> raw = records({7, 8}, {0.0, 0.0});
  a.importRange(raw.data(), 1, 2, 1);
  EXPECT_EQ((std::vector<int>{7, 8}), intsOf(shared.readAttributeAndData(vUCString("OFFSET"))));
  EXPECT_EQ((std::vector<int>{0, 0}), intsOf(copy.readAttributeAndData(vUCString("OFFSET"))));
}

TEST(AttributeSetBuffer, ByteSwappedRecordsComeOutInThisMachinesOrder) {
  ByteSwappedRecordBuffer swapped(8);
  swapped.setType(0, vINT32);
  swapped.setType(4, vFLOAT32);
  AttributeSetBuffer b;
  b.setNInstances(2);
  AttributeSetBuffer::Layout layout;
  layout.push_back(std::make_pair(Attribute("CDP", "HEADER", vINT32), 0));
  layout.push_back(std::make_pair(Attribute("AMP", "TRACE", vFLOAT32), 4));
  b.addRecordBuffer("trace", swapped, layout);
  // Big-endian file records: 258 and 1.0f, then 1 and -2.0f.
  unsigned char const file[16] = {0, 0, 1, 2, 0x3F, 0x80, 0, 0, 0, 0, 0, 1, 0xC0, 0, 0, 0};
  b.importRange(reinterpret_cast<char const*>(file), 1, 2, 1);
  EXPECT_EQ((std::vector<int>{258, 1}), intsOf(b.readAttributeAndData(vUCString("CDP"))));
  // Changes go back in the file's order.
  b.updateAttributeAndData(vUCString("CDP")).setInt32(2, 0x01020304);
  ASSERT_TRUE(b.multiplex());
  unsigned char out[16];
  b.exportRange(reinterpret_cast<char*>(out), 1, 2);
  unsigned char const expected[4] = {1, 2, 3, 4};
  EXPECT_EQ(0, std::memcmp(expected, out + 8, 4));
  EXPECT_EQ(0, std::memcmp(file, out, 8));
}

}  // namespace
