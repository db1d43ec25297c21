// Who owns an attribute's memory. Run under AddressSanitizer these tests also
// prove that nothing leaks and nothing is freed twice.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "attribute/Attribute.h"
#include "attribute/AttributeDataHandler.h"
#include "attribute/AttributeTesting.h"

using attribute_testing::expectFailure;
using attribute_testing::lengthsOf;
using attribute_testing::stringsOf;

namespace {

// The owner of a block that a store lends out, counting live owners.
struct Block {
  static int live;
  explicit Block(unsigned int n) : values(new float[n]) {
    for (unsigned int i = 0; i < n; ++i) values[i] = static_cast<float>(i) + 0.5f;
    ++live;
  }
  ~Block() {
    delete[] values;
    --live;
  }
  float* values;
};
int Block::live = 0;

// Lends the owner's block to the attribute, with a share of the owner.
void lend(Attribute& a, vHandle<Block> const& owner, unsigned int n) {
  a.resize(n, owner->values, nullptr, makeAttributeDataHandler(owner));
}

}  // namespace

TEST(AttributeResize, AdoptionAndRefusalsThatTakeNothing) {
  Attribute a("fixed", "c", vINT16, 2);
  a.resize(3);
  void* block = a.getPointer(1);
  a.resize(3);
  EXPECT_EQ(block, a.getPointer(1));
  int lengths[3] = {1, 1, 1};
  vHandle<Block> owner(new Block(4));
  AttributeDataHandler* h = makeAttributeDataHandler(owner);
  short data[6] = {};
  Attribute v("var", "c", vINT32, Attribute::VARIABLE_LENGTH);
  attribute_testing::expectFailures({
      {[&] { a.resize(3, nullptr, lengths); }, "Attribute::resize",
       "You must not supply a list of lengths for fixed length attribute:'FIXED'."},
      {[&] { a.resize(3, nullptr, nullptr, h); }, "Attribute::resize",
       "Cannot specify an attribute data handler without data on a resize!"},
      {[&] { a.resize(3, data, lengths, h); }, "Attribute::resize",
       "Cannot specify a lengths array when specifying an attribute data handler on a resize!"},
      {[&] { v.resize(1, owner->values, nullptr, h); }, "Attribute::resize",
       "Cannot resize a variable length attribute with a lengths parameter!"},
  });
  EXPECT_EQ(block, a.getPointer(1));
  delete h;
  EXPECT_EQ(1, owner.getMasterCount());
  // Negative lengths cannot make offsets; the caller keeps its array.
  int* bad = new int[2]{3, -1};
  expectFailure([&] { v.resize(2, nullptr, bad); }, "Attribute::myBuildOffsets",
                "Length -1 of instance 2 is negative for Attribute VAR.");
  delete[] bad;

  // Same count with new data: the old block goes; handing back its own block changes nothing.
  Attribute b("adopt", "c", vINT32);
  b.resize(3);
  int* next = new int[3]{7, 8, 9};
  b.resize(3, next);
  b.resize(3, next);
  EXPECT_EQ(next, b.getInt32Pointer(1));
  v.resize(4);  // no lengths: all instances empty
  EXPECT_EQ((std::vector<int>{0, 0, 0, 0}), lengthsOf(v));
  v.resize(0, nullptr, new int[5]{1, 2, 3, 4, 5});  // lengths for no instances are simply deleted
  EXPECT_EQ(nullptr, v.getLengthsPointer());
}

TEST(AttributeResize, UnsupportedBlocksAreReported) {
  Attribute none;  // no type: it can be sized but holds no values
  none.setLength(2);
  expectFailure([&] { none.resize(1); }, "Attribute::myAllocateMemory",
                "Attribute '(Class:)' has an unsupported data type 'vNOTYPE'.");
  Attribute untyped;
  int* foreign = new int[2];
  untyped.resize(1, foreign);
  expectFailure([&] { untyped.resize(0); }, "Attribute::myFreeData", "Unsupported data type vNOTYPE for Attribute .");
  // The attribute let go of the block it could not free.
  EXPECT_EQ(0u, untyped.getNInstances());
  delete[] foreign;
}

TEST(AttributeHandler, LentDataAreNeverFreedHereAndKeepTheirOwnerAlive) {
  vHandle<Block> owner(new Block(6));
  {
    Attribute a("lent", "c", vFLOAT32, 2);
    lend(a, owner, 3);
    EXPECT_EQ(4.5, a.getValue(3, 1));
    a.resize(0);  // gives back the handler's share and nothing else
    EXPECT_EQ(1, owner.getMasterCount());
    lend(a, owner, 3);
  }
  EXPECT_EQ(1, owner.getMasterCount());
  Attribute alive("alive", "c", vFLOAT32);
  lend(alive, vHandle<Block>(new Block(3)), 3);
  // The store's handle is gone; the attribute's share keeps the block.
  EXPECT_EQ(2, Block::live);
  EXPECT_EQ(2.5f, alive.getFloat32(3));

  // A reread into lent data gets a private block; the same memory with another
  // keeper changes only the keeper, and with none the keeper stays.
  Attribute r("reread", "c", vFLOAT32);
  lend(r, owner, 2);
  r.resize(2);
  r.setFloat32(1, 99.0f);
  EXPECT_EQ(0.5f, owner->values[0]);
  vHandle<Block> other(new Block(2));
  lend(r, owner, 2);
  lend(r, other, 2);
  EXPECT_EQ(1, owner.getMasterCount());
  r.resize(1, other->values);
  EXPECT_EQ(2, other.getMasterCount());

  expectFailure([&] { r.releaseData(); }, "Attribute::myCheckCanReleaseData",
                "Attribute has a data handler, use releaseDataHandler instead!");
  AttributeDataHandler* h = r.releaseDataHandler();
  EXPECT_EQ(other, static_cast<AttributeDataHandle<Block>*>(h)->getOwner());
  delete h;
  expectFailure([&] { r.releaseDataHandler(); }, "Attribute::releaseDataHandler",
                "Attribute does not have a data handler!");
}

TEST(AttributeRelease, ReleaseHandsTheBlockOver) {
  Attribute a("rel", "c", vINT64);
  a.resize(3);
  long long* const block = a.getInt64Pointer(1);
  EXPECT_EQ(block, a.releaseInt64Data());
  delete[] block;
  EXPECT_EQ(nullptr, Attribute("rel_empty", "c", vINT32).releaseData());
  // releaseLengths alone leaves the data, which the attribute still frees.
  Attribute w("lengths_only", "c", vSTRING, Attribute::VARIABLE_LENGTH);
  w.resize(2, nullptr, new int[2]{1, 1});
  w.releaseLengths();
  EXPECT_EQ(2u, w.getNInstances());
}

TEST(AttributeCopyData, CopiesDefinitionAndValues) {
  Attribute a("src", "c", vFLOAT64, 2, 1.0);
  a.resize(2);
  a.getFloat64Pointer(1)[3] = 4;
  Attribute b = attribute_testing::filled("other", "k", vINT16, {1, 2, 3, 4, 5});
  b.copyData(a);
  EXPECT_TRUE(b.compare(a));
  b.copyData(b);
  EXPECT_EQ(4.0, b.getValue(2, 2));
  Attribute s("strs", "c", vSTRING, Attribute::VARIABLE_LENGTH);
  s.resize(2, nullptr, new int[2]{1, 2});
  s.getStringPointer(2)[1] = "c";
  Attribute u;
  u.copyData(s);
  EXPECT_EQ((std::vector<std::string>{"", "", "c"}), stringsOf(u));

  // Lent data are copied into a block of the copy's own.
  vHandle<Block> owner(new Block(2));
  Attribute lent("lent_copy", "c", vFLOAT32);
  lend(lent, owner, 2);
  Attribute mine;
  mine.copyData(lent);
  EXPECT_NE(owner->values, mine.getFloat32Pointer(1));

  Attribute f("raw", "c", vINT32, 2);
  int values[4] = {1, 2, 3, 4};
  int lengths[2] = {1, 3};
  expectFailure([&] { f.copyData(2, values, lengths); }, "Attribute::copyData",
                "Can only give lengths array with a variable length Attribute (RAW).");
  Attribute v("rawv", "c", vINT32, Attribute::VARIABLE_LENGTH);
  expectFailure([&] { v.copyData(2, values); }, "Attribute::copyData",
                "Cannot copy variable length Attribute 'RAWV' without lengths array.");
  v.copyData(2, values, lengths);
  lengths[1] = 9;  // the attribute holds its own copy
  EXPECT_EQ((std::vector<int>{1, 3}), lengthsOf(v));
}

TEST(AttributeTransfer, DataAndHandlerMoveAndSourceEndsEmpty) {
  Attribute src("moving", "c", vINT32, Attribute::VARIABLE_LENGTH, 2.0);
  src.resize(2, nullptr, new int[2]{2, 1});
  src.getInt32Pointer(1)[2] = 7;
  Attribute dst("dst", "k", vSTRING);
  dst.resize(4);
  dst.transferData(src);
  EXPECT_TRUE(dst.compare(src));
  dst.transferData(dst);
  EXPECT_EQ(7.0, dst.getValue(2, 1));

  vHandle<Block> owner(new Block(3));
  Attribute lent("lent_move", "c", vFLOAT32);
  lend(lent, owner, 3);
  Attribute to;
  to.transferData(lent);
  EXPECT_FALSE(lent.hasDataHandler());
  to.resize(0);
  EXPECT_EQ(1, owner.getMasterCount());
}

TEST(AttributeInstanceLength, GrowAndShrinkNumbersAndStrings) {
  Attribute v("sil", "c", vFLOAT64, Attribute::VARIABLE_LENGTH);
  v.resize(3, nullptr, new int[3]{2, 3, 2});
  double* p = v.getFloat64Pointer(1);
  for (int i = 0; i < 7; ++i) p[i] = i + 1;  // 1 2 | 3 4 5 | 6 7
  v.setInstanceLength(2, 5);                 // grow in the middle: new values are zero
  v.setInstanceLength(1, 1);                 // shrink the first
  EXPECT_EQ((std::vector<double>{1, 3, 4, 5, 0, 0, 6, 7}), attribute_testing::doublesOf(v));
  EXPECT_EQ((std::vector<int>{1, 5, 2}), lengthsOf(v));

  Attribute s("sils", "c", vSTRING, Attribute::VARIABLE_LENGTH);
  s.resize(3, nullptr, new int[3]{1, 2, 2});
  std::copy_n(std::vector<vString>{"a", "b1", "b2", "c1", "c2"}.begin(), 5, s.getStringPointer(1));
  s.setInstanceLength(1, 3);
  EXPECT_EQ((std::vector<std::string>{"a", "", "", "b1", "b2", "c1", "c2"}), stringsOf(s));
  s.setInstanceLength(1, 0);
  EXPECT_EQ((std::vector<std::string>{"b1", "b2", "c1", "c2"}), stringsOf(s));
  expectFailure([] { Attribute("silf", "c", vINT32, 3).setInstanceLength(1, 2); }, "Attribute::setInstanceLength",
                "Attribute 'SILF' must be variable length to use this function.");
}
