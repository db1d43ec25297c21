#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <list>
#include <string>
#include <vector>

#include "attribute/AttributeSetBuffer.h"
#include "attribute/AttributeTesting.h"
#include "attribute/RecordBuffer.h"

using attribute_testing::expectFailure;

namespace {

// A record of 16 bytes: OFFSET (int32) at 0, X (float64) at 4, FLAG (int16) at 12; and a plain attribute CDP.
void build(AttributeSetBuffer& b, unsigned int n) {
  b.addAttribute(Attribute("CDP", "HEADER", vINT32));
  b.setNInstances(n);
  b.addRecordBuffer("hdr", RecordBuffer(16),
                    {{Attribute("X", "HEADER", vFLOAT64), 4},
                     {Attribute("OFFSET", "HEADER", vINT32), 0},
                     {Attribute("FLAG", "HEADER", vINT16), 12}});
}

// Raw records of that layout: OFFSET 10, 20, ..., X 1.5, 2.5, ...
std::vector<char> records(int n) {
  std::vector<char> raw(16 * n, 0);
  for (int k = 0; k < n; ++k) {
    int const offset = 10 * (k + 1);
    double const x = k + 1.5;
    std::memcpy(raw.data() + 16 * k, &offset, 4);
    std::memcpy(raw.data() + 16 * k + 4, &x, 8);
  }
  return raw;
}

std::vector<int> ints(AttributeSetBuffer& b, char const* name) {
  return attribute_testing::intsOf(b.readAttributeAndData(vUCString(name)));
}
std::vector<double> doubles(AttributeSetBuffer& b, char const* name) {
  return attribute_testing::doublesOf(b.readAttributeAndData(vUCString(name)));
}
void setInts(AttributeSetBuffer& b, char const* name, std::vector<int> const& v) {
  std::copy(v.begin(), v.end(), b.updateAttributeAndData(vUCString(name)).getInt32Pointer(1));
}

// Three instances loaded from records, with CDP 1, 2, 3.
class LoadedBuffer : public ::testing::Test {
 protected:
  void SetUp() override {
    build(b, 3);
    b.importRange(raw.data(), 1, 3, 1);
    setInts(b, "CDP", {1, 2, 3});
  }
  AttributeSetBuffer b;
  std::vector<char> const raw = records(3);
};

TEST_F(LoadedBuffer, FieldsLoadChangeAndMultiplexButNotAnotherSize) {
  EXPECT_EQ((std::vector<std::string>{"CDP", "FLAG", "OFFSET", "X"}), attribute_testing::namesOf(b.getAttributeList()));
  EXPECT_EQ((std::vector<double>{1.5, 2.5, 3.5}), doubles(b, "X"));
  setInts(b, "OFFSET", {11, 21, 31});
  EXPECT_TRUE(b.isDirty(vUCString("OFFSET")));
  // Pending changes stop moves of whole records.
  std::vector<char> out(48);
  expectFailure([&] { b.exportRange(out.data(), 1, 3); }, "AttributeSetBuffer::exportRange",
                "Reading instances from/to dirty attribute set buffers is not supported yet!");
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
  EXPECT_EQ(b.readAttributeAndData(vUCString("CDP")).getPointer(1), b.getPointer("cdp"));
  expectFailure([&] { b.getPointer("X"); }, "AttributeSetBuffer::getPointer",
                "Attribute 'X' is part of a RecordBuffer. You cannot call getPointer for this Attribute");
  expectFailure([&] { b.loadAttributeData(vUCString("NOPE")); }, "AttributeSetBuffer::loadAttributeData",
                "Attribute 'NOPE' does not exist in this AttributeSetBuffer.");
  expectFailure([&] { b.addRecordBuffer("hdr", RecordBuffer(4), AttributeSetBuffer::Layout()); },
                "AttributeSetBuffer::addRecordBuffer",
                "RecordBuffer 'hdr' has already been added to this AttributeSetBuffer.");
  expectFailure([&] { b.addAttribute(Attribute("x", "OTHER", vINT32)); }, "AttributeSetBuffer::addAttribute",
                "Attribute 'X' has already been added to this AttributeSetBuffer.");

  // An attribute of another size cannot go into the records.
  Attribute wide("OFFSET", "HEADER", vFLOAT64);
  wide.resize(3);
  b.setAttributeAndData(wide);
  EXPECT_EQ(0u, wide.getNInstances());  // taken over
  b.updateAttributeAndData(vUCString("X")).setFloat64(2, 9.0);
  EXPECT_FALSE(b.multiplex());
  EXPECT_TRUE(b.isDirty(vUCString("OFFSET")));
  EXPECT_FALSE(b.isDirty(vUCString("X")));  // the fitting one went in
  Attribute shorter("CDP", "HEADER", vINT32);
  shorter.resize(1);
  expectFailure([&] { b.setAttributeAndData(shorter); }, "AttributeSetBuffer::setAttributeAndData",
                "New attribute 'CDP' has 1 instances, but the buffer has 3. They must be the same.");
  EXPECT_EQ(1u, shorter.getNInstances());
}

TEST_F(LoadedBuffer, InstancesComeAndGoWithTheirValues) {
  b.addInstances(2);
  EXPECT_EQ((std::vector<int>{10, 20, 30, 0, 0}), ints(b, "OFFSET"));
  b.keepInstances({3, 1});
  EXPECT_EQ((std::vector<double>{3.5, 1.5}), doubles(b, "X"));
  expectFailure([&] { b.keepInstances({1, 2, 1}); }, "AttributeSetBuffer::keepInstances",
                "AttributeSetBuffer has 2 instances, but instance list has 3 values");
  expectFailure([&] { b.keepInstances({3}); }, "AttributeSetBuffer::keepInstances",
                "Instance numbers 3 to 3 of the list are outside the range 1 to 2.");
  b.deleteInstances(1);
  EXPECT_EQ(4u, b.getNDeleted());
  EXPECT_EQ((std::vector<int>{3}), ints(b, "CDP"));
  expectFailure([&] { b.deleteInstances(2); }, "AttributeSetBuffer::deleteInstances",
                "Cannot delete 2 instances, AttributeSetBuffer has 1 instances.");
  b.setNInstances(0);
  b.addInstances(2);
  EXPECT_EQ((std::vector<int>{0, 0}), ints(b, "OFFSET"));
}

TEST(AttributeSetBuffer, ImportAndExportRanges) {
  AttributeSetBuffer b;
  build(b, 4);
  std::vector<char> raw = records(3);
  b.importRange(raw.data() + 16, 2, 3, 3);  // records of instances 2 and 3, to 3 and 4
  EXPECT_EQ((std::vector<int>{0, 0, 20, 30}), ints(b, "OFFSET"));
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
  b.addRecordBuffer("amp", RecordBuffer(4), {{Attribute("AMP", "TRACE", vFLOAT32, 1), 0}});
  b.updateAttributeAndData(vUCString("AMP")).setFloat32(4, 400.0f);
  ASSERT_TRUE(b.multiplex());
  b.exportRange(out.data(), 4, 4);
  float a;
  std::memcpy(&a, out.data(), 4);
  EXPECT_EQ(400.0f, a);
  EXPECT_EQ(0, std::memcmp(raw.data() + 32, out.data() + 4, 16));
}

TEST_F(LoadedBuffer, ReadingFromAnotherBuffer) {
  AttributeSetBuffer same;
  build(same, 4);
  same.readBufferRange(b, 2, 3, 2);
  EXPECT_EQ((std::vector<int>{0, 20, 30, 0}), ints(same, "OFFSET"));
  same.readBufferInstances(b, {3, 1}, 1);
  EXPECT_EQ((std::vector<int>{3, 1, 3, 0}), ints(same, "CDP"));

  // Another layout: OFFSET is plain here, X sits elsewhere; by name.
  AttributeSetBuffer other;
  other.addAttribute(Attribute("OFFSET", "HEADER", vINT32));
  other.setNInstances(2);
  other.addRecordBuffer("hdr", RecordBuffer(16), {{Attribute("X", "HEADER", vFLOAT64), 8}});
  other.readBufferInstances(b, {2, 3});
  EXPECT_EQ((std::vector<int>{20, 30}), ints(other, "OFFSET"));
  other.readBufferRange(b, 1, 1, 2);
  EXPECT_EQ((std::vector<double>{2.5, 1.5}), doubles(other, "X"));

  expectFailure([&] { same.readBufferRange(b, 1, 3, 3); }, "AttributeSetBuffer::readBufferRange",
                "Reading the instance range 1-3 to instance 3 exceeds the capacity of the buffer (4 instances)");
  expectFailure([&] { same.readBufferInstances(b, {1, 9}); }, "AttributeSetBuffer::readBufferInstances",
                "Invalid instance 9, AttributeSetBuffer has 3 instances.");
  expectFailure([&] { other.readBufferInstances(b, {1, 2, 3}); }, "AttributeSetBuffer::readBufferInstances",
                "Reading the instances supplied exceeds the capacity of the buffer (2 instances)");
}

TEST_F(LoadedBuffer, RenameDeleteAndTheLayoutCRC) {
  AttributeSetBuffer other;
  build(other, 5);
  uint32_t const crc = b.getAttributeIDCRC();
  EXPECT_EQ(crc, other.getAttributeIDCRC());  // instances do not count
  b.renameAttribute(vUCString("CDP"), vUCString("ENSEMBLE"));
  EXPECT_FALSE(b.hasAttribute(vUCString("CDP")));
  EXPECT_EQ((std::vector<int>{1, 2, 3}), ints(b, "ENSEMBLE"));
  EXPECT_NE(crc, b.getAttributeIDCRC());
  expectFailure([&] { b.renameAttribute(vUCString("NOPE"), vUCString("NEW")); }, "AttributeSetBuffer::renameAttribute",
                "Attribute 'NOPE' cannot be renamed to 'NEW', because it does not exist.");
  b.renameAttribute(vUCString("X"), vUCString("X2"));  // a field keeps its place
  AttributeSetBuffer::Layout layout;
  b.getAttributeLayout(layout);
  EXPECT_EQ(vUCString("X2"), std::next(layout.begin())->first.getName());
  EXPECT_EQ(4, std::next(layout.begin())->second);
  other.deleteAttribute(vUCString("FLAG"));
  EXPECT_NE(crc, other.getAttributeIDCRC());
  EXPECT_FALSE(other.hasAttribute(vUCString("FLAG")));
}

TEST(AttributeSetBuffer, AssignmentSharesCopyingDoesNot) {
  AttributeSetBuffer a;
  build(a, 2);
  setInts(a, "CDP", {1, 2});
  AttributeSetBuffer shared;
  shared = a;
  AttributeSetBuffer copy(a);
  setInts(a, "CDP", {3, 4});
  EXPECT_EQ((std::vector<int>{3, 4}), ints(shared, "CDP"));
  EXPECT_EQ((std::vector<int>{1, 2}), ints(copy, "CDP"));
  // The copy has records of its own.
  a.importRange(records(2).data(), 1, 2, 1);
  EXPECT_EQ((std::vector<int>{10, 20}), ints(shared, "OFFSET"));
  EXPECT_EQ((std::vector<int>{0, 0}), ints(copy, "OFFSET"));
}

}  // namespace
