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
  // The reason of the failure f ends in, or "(nothing raised)".
  template <class F>
  std::string failure(F f) {
    try {
      MessageHandling quiet;
      f();
    } catch (UtlExcept const& e) {
      return e.getReason().c_str();
    }
    return "(nothing raised)";
  }

  ZonTestDatabase db;
};

}  // namespace

TEST_F(ZonBackend, DatabaseProjectsAreListedAndRead) {
  ASSERT_TRUE(db.writeShots("Survey7", "TAB", "LINE1", "1", 25, 101));
  ASSERT_TRUE(db.writeShots("Survey7", "TAB", "LINE2", "1", 3));
  ASSERT_TRUE(db.writeShots("empty", "TAB", "L", "1", 1));

  vHandle<ProjectCatalog> catalog = newCatalog();
  std::vector<std::string> projects;
  vHandle<ProjectList> const list = catalog->getProjectList();
  for (ProjectListEntry const& e : *list) projects.push_back(e.getName().c_str());
  EXPECT_EQ((std::vector<std::string>{"survey7", "empty"}), projects);

  vHandle<Project> project = openProject(catalog, "survey7");
  std::vector<std::string> stores;
  vHandle<Project::StoreList> const names = project->getStoreList("", "");
  for (vLCString const& n : *names) stores.push_back(n.c_str());
  EXPECT_EQ((std::vector<std::string>{"line1,tab.1", "line2,tab.1"}), stores);
  EXPECT_TRUE(project->getStoreList("seismic", "")->empty());

  ClientAttributeSet line1(project);
  line1.open("line1,tab", 0, "", "", nullptr);
  ASSERT_EQ(25u, line1.getNInstances());
  Attribute shot = line1.getAttribute("SHOT");
  line1.read(shot, 2, 4);
  EXPECT_EQ(104, shot.getInt32(3));

  // The daemon killed between two reads: the data already read stay, a
  // read that needs the database is refused with the library's reason.
  db.stop(SIGKILL);
  line1.read(shot, 1, 1);
  EXPECT_EQ(101, shot.getInt32(1));
  ClientAttributeSet line2(project);
  std::string const gone = failure([&] { line2.open("line2,tab", 0, "", "", nullptr); });
  EXPECT_EQ("Server said:-o Error opening store line2,tab:%E Could not receive data from server on 127.0.0.1", gone);
}

TEST_F(ZonBackend, DaemonUnreachableAtOpen) {
  ASSERT_TRUE(db.writeShots("Survey7", "TAB", "LINE1", "1", 2));
  vKvsActivate::deactivate();
  db.stop(SIGKILL);
  vHandle<ProjectCatalog> catalog = newCatalog();
  std::string const reason = failure([&] { openProject(catalog, "survey7"); });
  // The server finds the project's spelling first, through the catalog's
  // placeholder project.
  EXPECT_EQ("Server said:-o Unable to initialise KVS:  Server='zonsite'  Project='dummy'  error=9 '%S Could not "
            "find kvsd server (PORT " + std::to_string(db.port()) + ") on 127.0.0.1'  KVSROOT='" +
                db.clientFolder() + "'",
            reason);
}
