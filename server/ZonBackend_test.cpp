// The database back end of the data server, run as a process against a real kvsd.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "database/zon/ZonTestDatabase.h"
#include "registry/RondoRegistry.h"
#include "remote/ClientAttributeSet.h"
#include "remote/ClientTesting.h"

using namespace remote_testing;

namespace {

class ZonBackend : public ClientTest {
 protected:
  ZonBackend() {
    registerRondoClasses();
    db.tree.setEnv("SP_DATASERVER_BACKEND", "Zonmesh");
  }
  ZonTestDatabase db;
};

}  // namespace

TEST_F(ZonBackend, DatabaseProjectsAreListedAndRead) {
  ASSERT_TRUE(db.writeShots("Survey7", "TAB", "LINE1", "1", 25, 101));
  ASSERT_TRUE(db.writeShots("Survey7", "TAB", "LINE2", "1", 3));
  ASSERT_TRUE(db.writeShots("empty", "TAB", "L", "1", 1));

  vHandle<ProjectCatalog> catalog = newCatalog();
  EXPECT_EQ((std::vector<std::string>{"survey7", "empty"}), names(*catalog->getProjectList()));

  vHandle<Project> project = openProject(catalog, "survey7");
  EXPECT_EQ((std::vector<std::string>{"line1,tab.1", "line2,tab.1"}), names(*project->getStoreList("", "")));
  EXPECT_TRUE(project->getStoreList("seismic", "")->empty());

  ClientAttributeSet line1(project);
  line1.open("line1,tab", 0, "", "", nullptr);
  ASSERT_EQ(25u, line1.getNInstances());
  Attribute shot = line1.getAttribute("SHOT");
  line1.read(shot, 2, 4);
  EXPECT_EQ(104, shot.getInt32(3));

  // The daemon killed: the data already read stay, the database's are refused.
  db.stop(SIGKILL);
  line1.read(shot, 1, 1);
  EXPECT_EQ(101, shot.getInt32(1));
  ClientAttributeSet line2(project);
  EXPECT_EQ("COBPortal::myMessage: Server said:-o Error opening store line2,tab:%E Could not receive data from server "
            "on 127.0.0.1",
            fatalText([&] { line2.open("line2,tab", 0, "", "", nullptr); }));
}
