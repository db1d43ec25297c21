#include "foundation/vHandle.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "foundation/Message.h"
#include "foundation/MessageHandling.h"
#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"

namespace {

struct Counted {
  static int alive;
  Counted() { ++alive; }
  virtual ~Counted() { --alive; }
  virtual int kind() const { return 0; }
};
int Counted::alive = 0;

struct Derived : Counted {
  int kind() const override { return 1; }
};

struct Other : Counted {
  int kind() const override { return 2; }
};

struct Element {
  static int destroyed;
  ~Element() { ++destroyed; }
};
int Element::destroyed = 0;

struct Mixin {
  virtual ~Mixin() {}
  int tag = 7;
};
struct Both : Counted, Mixin {};

class vHandleTest : public ::testing::Test {
 protected:
  void SetUp() override { Counted::alive = 0; }
  void TearDown() override { EXPECT_EQ(0, Counted::alive); }
};

}  // namespace

TEST_F(vHandleTest, NullHandlesAndSlavesKeepTheRecordButNotTheObject) {
  vHandle<Counted> h(nullptr);
  EXPECT_TRUE(h.isEmpty());
  expectFailure([&] { h->kind(); }, "vHandle::get()", "Trying to get a NULL pointer");
  vHandle<Counted>* master = new vHandle<Counted>(new Counted);
  vHandle<Counted> slave(*master, true);
  EXPECT_TRUE(slave.isSlave());
  EXPECT_EQ((std::pair<int, int>(1, 1)), (std::pair<int, int>(master->getMasterCount(), master->getSlaveCount())));
  EXPECT_EQ(0, slave->kind());
  delete master;
  EXPECT_EQ(0, Counted::alive);
  EXPECT_TRUE(slave.isEmpty());
  expectFailure([&] { slave.get(); }, "vHandle::get()", "A slave vHandle is trying to get a NULL pointer");
}

TEST_F(vHandleTest, ACopyOfASlaveIsAMasterAndOnlyAMasterReleases) {
  vHandle<Counted> master(new Counted);
  vHandle<Counted> slave(master, true);
  vHandle<Counted> copy(slave);
  EXPECT_TRUE(copy.isMaster() && copy == master);
  EXPECT_EQ((std::pair<int, int>(2, 1)), (std::pair<int, int>(master.getMasterCount(), master.getSlaveCount())));
  master = vHandle<Counted>();
  EXPECT_EQ(1, Counted::alive);
  EXPECT_FALSE(slave.isEmpty());
  master = copy;
  copy = vHandle<Counted>();
  expectFailure([&] { slave.release(); }, "vHandle::release", "A slave cannot release a vHandle!");
  master.release();
  EXPECT_TRUE(master.isEmpty());
  EXPECT_TRUE(slave.isEmpty());
  EXPECT_EQ(0, Counted::alive);
}

// A cast that fails, or that would move the pointer, is refused.
TEST_F(vHandleTest, FailedCastsAreRefused) {
  vHandle<Counted> base(new Other);
  expectFailure([&] { vHandle_cast<Derived>(base); }, "vHandle::assign", "Could not convert class with dynamic_cast.");
  EXPECT_EQ(1, base.getMasterCount());
  vHandle<Counted> mixed(new Both);
  EXPECT_THROW(vHandle_cast<Mixin>(mixed), UtlExcept);
  vHandle<Both> both = vHandle_cast<Both>(mixed);
  EXPECT_EQ(7, both->tag);
}

TEST_F(vHandleTest, DeletionPoliciesTheReservedOneFatal) {
  Element::destroyed = 0;
  { vHandle<Element> arr(new Element[3], vHandleEnum::DeleteArray); }
  EXPECT_EQ(3, Element::destroyed);
  {
    char* raw = static_cast<char*>(std::malloc(16));
    std::strcpy(raw, "malloced");
    vHandle<char> c(raw, vHandleEnum::FreeC);
    EXPECT_STREQ("malloced", c.get());
  }
  char* block = static_cast<char*>(std::malloc(8));
  vHandle<char> h(block, vHandleEnum::FreeUT);
  expectFailure([&] { h.release(); }, "vHandleHelper::freeDataUT", "Not implemented yet!");
  std::free(block);
  // The last master going cannot throw: the failure is reported and the block left to its owner.
  char* kept = static_cast<char*>(std::malloc(8));
  std::strcpy(kept, "kept");
  int const fatals = Message::getNFatals();
  {
    MessageHandling quiet;
    vHandle<char> last(kept, vHandleEnum::FreeUT);
    vHandle<char> slave(last, true);
  }
  EXPECT_EQ(fatals + 1, Message::getNFatals());
  EXPECT_STREQ("kept", kept);
  std::free(kept);
}

TEST_F(vHandleTest, MultiThreadedHandlesCountUnderTheirMutex) {
  vHandle<Counted> shared(new Counted, vHandleEnum::DeleteObject, vHandleEnum::MultiThreaded);
  EXPECT_TRUE(shared.isMultiThreaded());
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&shared] {
      for (int i = 0; i < 2000; ++i) {
        vHandle<Counted> copy(shared);
        vHandle<Counted> other;
        other = copy;
        EXPECT_TRUE(other.isMultiThreaded());
      }
    });
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(1, shared.getMasterCount());
  EXPECT_EQ(1, Counted::alive);
}
