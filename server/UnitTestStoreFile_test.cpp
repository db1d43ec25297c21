// Scripted UnitTest stores backed by packed store files, through the real
// data server and a client attribute set.

#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "attribute/KeyList.h"
#include "attribute/Property.h"
#include "filestore/memory/InMemoryStore.h"
#include "remote/ClientAttributeSet.h"
#include "remote/ClientTesting.h"
#include "server/UnitTestStoreFile.h"

using namespace remote_testing;

namespace {

// Picks keyed by POINT, with a float64 DEPTH and a property.
void writePicks(std::string const& file, unsigned int count = 3) {
  InMemoryStore store{vHandle<Project>()};
  KeyList keys;
  keys.addKey(Attribute("POINT", "POINT", vINT32));
  store.create("picks", "mapdata", "scattered", keys, nullptr);
  store.addAttribute(Attribute("DEPTH", "", vFLOAT64));
  store.addInstances(count);
  for (unsigned int i = 1; i <= count; ++i) {
    *store.updateAttributeAndData("POINT").getInt32Pointer(i) = static_cast<int>(7 * i);
    *store.updateAttributeAndData("DEPTH").getFloat64Pointer(i) = 1000.0 + 0.125 * i;
  }
  store.addProperty(Property("SURVEY", vString("north")));
  writeUnitTestStoreFile(store, vString(file.c_str()));
}

class UnitTestStoreFile : public ClientTest {};

// One server holds stores with files and without, versions of one store,
// and files that cannot be had.
TEST_F(UnitTestStoreFile, StoresWithFilesAreServedWithTheirData) {
  // A file name may hold ':' itself: everything after the third one is it.
  std::string const file = m_dir.file("picks:v2.store");
  writePicks(m_dir.file("v1.store"), 3);
  writePicks(file, 5);
  std::string const missing = m_dir.file("nowhere/gone.store");
  std::string const empty = m_dir.file("empty.store");
  std::ofstream(empty).close();
  ScopedEnv stores("RONDO_UNITTEST_STORES", ("picks.1:horizon::" + m_dir.file("v1.store") + " picks.2:horizon::" +
                                             file + " plain.1:seismic:2d gone.1:seismic:2d:" + missing +
                                             " hollow.1:seismic:2d:" + empty).c_str());
  vHandle<Project> project = openProject(newCatalog(), "survey");

  // The project lists the scripted class; the data set has the file's.
  EXPECT_EQ((std::vector<std::string>{"picks.1", "picks.2"}), names(*project->getStoreList("horizon", "")));
  ClientAttributeSet set(project);
  set.open("picks", 2, "", "", nullptr);
  EXPECT_STREQ("mapdata", set.getClass().c_str());
  EXPECT_STREQ("POINT", set.getKeyList().begin()->getName().c_str());
  ASSERT_TRUE(set.hasProperty(vUCString("SURVEY")));
  EXPECT_STREQ("north", set.findProperty(vUCString("SURVEY"))->getString().c_str());
  Attribute depth = set.getAttribute("DEPTH");
  set.read(depth, 1, 3);
  for (unsigned int i = 1; i <= 3; ++i) EXPECT_EQ(1000.0 + 0.125 * i, depth.getFloat64(i)) << i;

  // Version 0 is the newest; each opens while another is open too.
  std::vector<std::pair<int, unsigned int>> const versions = {{1, 3}, {0, 5}, {1, 3}};
  std::vector<vHandle<ClientAttributeSet>> open;
  for (auto const& v : versions) {
    open.emplace_back(new ClientAttributeSet(project));
    open.back()->open("picks", v.first, "", "", nullptr);
    EXPECT_EQ(v.second, open.back()->getNInstances()) << v.first;
  }

  // A store without a file is still made empty.
  ClientAttributeSet plain(project);
  plain.open("plain", 1, "", "", nullptr);
  EXPECT_EQ(0u, plain.getNInstances());

  ClientAttributeSet unread(project);
  EXPECT_EQ(said("Store file '" + missing + "' of store gone cannot be read."),
            fatalText([&] { unread.open("gone", 1, "", "", nullptr); }));
  EXPECT_EQ(said("Store file '" + empty + "' of store hollow is empty."),
            fatalText([&] { unread.open("hollow", 1, "", "", nullptr); }));
  // Nor can a file that cannot be written be had.
  InMemoryStore store{vHandle<Project>()};
  store.create("x", "seismic", "2d", KeyList(), nullptr);
  EXPECT_EQ("writeUnitTestStoreFile: Store file '/nonexistent-dir/x.store' cannot be written.",
            fatalText([&] { writeUnitTestStoreFile(store, "/nonexistent-dir/x.store"); }));
}

}  // namespace
