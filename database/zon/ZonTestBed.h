#ifndef DATABASE_ZON_ZONTESTBED_H
#define DATABASE_ZON_ZONTESTBED_H

// Test helper (tests only): a release tree whose server folder
// SupportFiles/CapiZon/<server> holds a config.kvs and no dictionary (the
// stores use the shipped SupportFiles/CapiZon/KvsDict.bin), the shipped
// class translations, and a real kvsd on a free loopback port. KVSROOT, KVSPROJ, KVSDICT and KVSPORT are
// set for the test and restored after it.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "database/kvs/KvsTestPeer.h"
#include "database/zon/ZonProject.h"
#include "database/zon/ZonStore.h"
#include "project/AttributeSet.h"
#include "foundation/TestReleaseTree.h"

class ZonTestBed {
 public:
  static char const* server() { return "zontest"; }

  ZonTestBed();
  ~ZonTestBed();

  // A project of the server, open.
  vHandle<ZonProject> openProject(char const* name);
  // Stops the daemon (SIGTERM, or SIGKILL to kill it) and lets the library go.
  void stop(int signal);
  // Starts the daemon again on the same data; projects opened afresh see it.
  void start();
  // Closes a written store, restarts the daemon, opens the project afresh
  // (into project, under name) and the store in it, for reading.
  vHandle<AttributeSet> reopenAfterRestart(vHandle<AttributeSet> written, vHandle<ZonProject>& project,
                                           char const* name);
  TestReleaseTree& tree() { return m_tree; }

 private:
  TestReleaseTree m_tree;
  kvs::KvsdProcess m_kvsd{m_tree.root() + "/kvsd"};
};

// A store of the project, opened for reading or for update.
vHandle<ZonStore> openStore(vHandle<ZonProject> const& project, vLCString const& name, bool update = false);

// A fixture whose tests share one daemon, started once for the suite; each
// test opens a project of its own. Suite is the fixture itself, so that
// every suite has a daemon of its own.
template <class Suite>
class SharedZonTestBed : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { shared.reset(new ZonTestBed); }
  static void TearDownTestSuite() { shared.reset(); }
  ZonTestBed& bed = *shared;

 private:
  static inline std::unique_ptr<ZonTestBed> shared;
};

#endif
