#include "foundation/vUCStringTable.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "foundation/TestAddressSpaceCap.h"
#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"

TEST(vUCStringTable, IdsAreLexicalRanksPointersStayAndUnknownNamesFail) {
  vUCStringTable t;
  vUCStringTableData const* m = t.add("midpoint");
  EXPECT_EQ(0, m->getID());
  EXPECT_EQ(m->getString(), "MIDPOINT");
  vUCStringTableData const* z = t.add(vUCString("Zeta"));
  vUCStringTableData const* a = t.add("alpha");
  EXPECT_EQ((std::vector<int>{a->getID(), m->getID(), z->getID()}), (std::vector<int>{0, 1, 2}));
  vUCStringTableData const* b = t.add("BETA");
  EXPECT_EQ((std::vector<int>{a->getID(), b->getID(), m->getID(), z->getID()}), (std::vector<int>{0, 1, 2, 3}));
  // Adding again gives the same entry and changes nothing.
  EXPECT_EQ(m, t.add("MidPoint"));
  EXPECT_EQ(4, t.size());
  EXPECT_EQ(2, t.getID(vUCString("midpoint")));
  EXPECT_EQ(a, t.at(0));
  EXPECT_EQ(nullptr, t.at(4));
  vUCStringTableData const* found = nullptr;
  EXPECT_TRUE(t.exists(vUCString("zeta"), &found));
  EXPECT_EQ(z, found);
  EXPECT_FALSE(t.exists(vUCString("Y_COORD"), &found));
  EXPECT_EQ(nullptr, found);
  expectFailure([&] { t.getID(vUCString("y_coord")); }, "vUCStringTableIDTable::getID",
                "The string 'Y_COORD' is not within the table!");
  ::testing::internal::CaptureStdout();
  t.dumpTable();
  EXPECT_EQ("vUCStringTable: 4 entries\n     0  ALPHA\n     1  BETA\n     2  MIDPOINT\n     3  ZETA\n",
            ::testing::internal::GetCapturedStdout());
  t.clear();
  EXPECT_EQ(0, t.size());
  EXPECT_FALSE(t.exists(vUCString("ZETA")));
}

TEST(vUCStringTable, IdsReadWhileAnotherThreadRenumbersAreOneState) {
  // An insertion in front renumbers the long run between two names one by one: a torn read sees another gap.
  vUCStringTable t;
  int const between = 20000;
  for (int i = 0; i < between; ++i) t.add(("M" + std::to_string(100000 + i)).c_str());
  vUCStringTableData const* first = t.add("L");
  vUCStringTableData const* last = t.add("N");
  std::atomic<bool> adding(true);
  std::atomic<long> wrong(0), reads(0);
  std::vector<std::thread> readers;
  for (int k = 0; k < 2; ++k)
    readers.emplace_back([&] {
      do {
        int a = 0, b = 0;
        vUCStringTableData::getIDs(first, last, a, b);
        if (b - a != between + 1 || !vUCStringTableData::isLess(first, last)) ++wrong;
        ++reads;
      } while (adding);
    });
  for (int i = 0; i < 300; ++i) t.add(("A" + std::to_string(i)).c_str());
  adding = false;
  for (std::thread& th : readers) th.join();
  EXPECT_EQ(0, wrong.load()) << "of " << reads.load() << " reads";
  EXPECT_EQ(300, first->getID());
  EXPECT_EQ(first, t.at(first->getID()));
}
