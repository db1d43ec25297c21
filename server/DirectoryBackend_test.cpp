// The directory back end of the data server, run as a process: projects are
// directories, stores the files the store factory identifies.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "filestore/segd/SegdTesting.h"
#include "filestore/segy/SegyTesting.h"
#include "foundation/Packer.h"
#include "project/StoreFactory.h"
#include "registry/RondoRegistry.h"
#include "remote/ClientAttributeSet.h"
#include "remote/ClientCodes.h"
#include "remote/ClientTesting.h"

using namespace remote_testing;

namespace {

std::string const kNothing = "(nothing raised)";

void write(std::string const& path, std::string const& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

class DirectoryBackend : public ClientTest {
 protected:
  DirectoryBackend()
      : m_root(m_dir.file("root")),
        m_default("SP_DATASERVER_BACKEND", nullptr),
        m_rootSetting("SP_DATASERVER_ROOT", m_root.c_str()),
        m_release("VREL", RONDO_TEST_SOURCE_DIR "/release/") {
    registerRondoClasses();
    segy_testing::SegyWriter w;
    std::string const survey = m_root + "/survey/";
    ::mkdir(m_root.c_str(), 0700);
    ::mkdir(survey.c_str(), 0700);
    ::mkdir((m_root + "/Other").c_str(), 0700);
    ::mkdir(m_dir.file("away").c_str(), 0700);
    write(m_root + "/plain", "not a project");
    // Name order: line1.SGY comes before line1.sgy and is the store.
    write(survey + "line1.SGY", w.file(2500));
    write(survey + "line1.sgy", w.file(2));
    write(survey + "notes.txt", "no store");
    write(survey + "cut.sgy", w.file(4));
    write(survey + "empty.sgy", "");
    // Format files beside their lines are no stores of their own.
    write(survey + "keyed.sgy", w.file(3));
    write(survey + "keyed.syf", "KEYNAMES CDP TRACE_NUMBER\nCDP cdp trace 21 int4\nTRACE_NUMBER tracl trace 1 int4\n");
    write(survey + "escaped.sgy", w.file(3));
    write(m_dir.file("away.syf"), "KEYNAMES CDP CDP\n");
    EXPECT_EQ(0, ::symlink(m_dir.file("away.syf").c_str(), (survey + "escaped.syf").c_str()));
    write(m_dir.file("outside.sgy"), w.file(3));
    EXPECT_EQ(0, ::symlink(m_dir.file("outside.sgy").c_str(), (survey + "link.sgy").c_str()));
    EXPECT_EQ(0, ::symlink(m_dir.file("away").c_str(), (m_root + "/escape").c_str()));
  }
  std::string m_root;

 private:
  ScopedEnv m_default;
  ScopedEnv m_rootSetting;
  ScopedEnv m_release;
};

// A shapefile is one store of a directory project, by its .shp: the .shx,
// .dbf and .prj beside it are parts of it (written by GDAL's ogr2ogr).
// SEG-D records and FDM velocity volumes go by their extensions.
TEST_F(DirectoryBackend, ShapefilesSegdAndFdmAreServed) {
  std::string const dir = m_root + "/maps";
  ::mkdir(dir.c_str(), 0700);
  write(dir + "/wells.geojson", R"({"type":"FeatureCollection","features":[
{"type":"Feature","properties":{"depth":1250.5,"name":"W1"},"geometry":{"type":"Point","coordinates":[431000,6520000]}},
{"type":"Feature","properties":{"depth":980.25,"name":"W2"},"geometry":{"type":"Point","coordinates":[432500,6521500]}}]})");
  // The same parts again with upper-case extensions, as some writers name them.
  std::string const cmd = "ogr2ogr -f 'ESRI Shapefile' -a_srs EPSG:32631 " + dir + "/wells.shp " + dir +
                          "/wells.geojson && rm " + dir + "/wells.geojson && cd " + dir +
                          " && for e in shp shx dbf prj; do cp wells.$e UP.$(echo $e | tr a-z A-Z); done";
  ASSERT_EQ(0, std::system(cmd.c_str())) << "GDAL's ogr2ogr is needed: run scripts/install-deps";
  vHandle<ProjectCatalog> catalog = newCatalog();
  vHandle<Project> project = openProject(catalog, "maps");
  EXPECT_EQ((std::vector<std::string>{"up.1", "wells.1"}), names(*project->getStoreList("", "")));
  EXPECT_EQ((std::vector<std::string>{"up.1", "wells.1"}), names(*project->getStoreList("shapes", "")));
  ClientAttributeSet up(project);
  up.open("up", 1, "", "", nullptr);
  EXPECT_EQ(2u, up.getNInstances());
  ClientAttributeSet wells(project);
  wells.open("wells", 1, "", "", nullptr);
  Attribute depth = wells.getAttribute("DEPTH");
  Attribute name = wells.getAttribute("NAME");
  wells.read(depth, 1, 2);
  wells.read(name, 2, 2);
  EXPECT_EQ((std::vector<double>{1250.5, 980.25}), (std::vector<double>{depth.getFloat64(1), depth.getFloat64(2)}));
  EXPECT_EQ("W2", std::string(name.getString(1).c_str()));

  std::string const field = m_root + "/field";
  ::mkdir(field.c_str(), 0700);
  ASSERT_TRUE(segd_testing::writeSegd(field + "/shot.segd", "--format 8015 --traces 5 --ffid 77"));
  ASSERT_TRUE(segd_testing::writeSegd(field + "/gap.dsegd", "--traces 2"));
  std::string const fdm =
      "/usr/bin/python3 " RONDO_TEST_SOURCE_DIR "/filestore/fdm/testdata/fdm_fixture.py " + field + "/rms.fdm '>'";
  ASSERT_EQ(0, std::system(fdm.c_str()));
  project = openProject(catalog, "field");
  EXPECT_EQ((std::vector<std::string>{"gap.1", "shot.1"}), names(*project->getStoreList("seismic", "")));
  EXPECT_EQ((std::vector<std::string>{"rms.1"}), names(*project->getStoreList("velocity", "")));
  ClientAttributeSet shot(project);
  shot.open("shot", 1, "", "", nullptr);
  Attribute trace = shot.getAttribute("TRACE");
  shot.read(trace, std::vector<unsigned int>{4, 2});
  EXPECT_EQ(-500.125f, trace.getFloat32Pointer(1)[0]);  // -(4000 + 1) / 8
  EXPECT_EQ(segd_testing::writtenSample(2, 256), trace.getFloat32Pointer(2)[255]);
  ClientAttributeSet rms(project);
  rms.open("rms", 1, "", "", nullptr);
  Attribute velocity = rms.getAttribute("VELTRACE.DEFAULT");
  rms.read(velocity, 6, 7);
  // Crossline index 1 and 2 of inline index 1, sample 3.
  EXPECT_EQ(1123.0f, velocity.getFloat32Pointer(2)[3]);
}

// Projects, stores, the refusals of bad input, and answers that are the
// store's own bytes, on one server (after one that has no root).
TEST_F(DirectoryBackend, ProjectsStoresBadInputAndTheStoresOwnBytes) {
  {
    ScopedEnv unset("SP_DATASERVER_ROOT", nullptr);
    EXPECT_EQ(said("The data server has no project directory: set the system property ROOT of section DATASERVER "
                   "(SP_DATASERVER_ROOT)."),
              fatalText([&] { newCatalog(); }));
  }
  vHandle<ProjectCatalog> catalog = newCatalog();
  EXPECT_EQ((std::vector<std::string>{"other", "survey"}), names(*catalog->getProjectList()));

  vHandle<Project> project = openProject(catalog, "survey");
  std::vector<std::string> const all = {"cut.1", "empty.1", "escaped.1", "keyed.1", "line1.1"};
  EXPECT_EQ(all, names(*project->getStoreList("", "")));
  EXPECT_EQ(all, names(*project->getStoreList("SEISMIC", "")));
  std::vector<std::string> const log = serverLines();
  EXPECT_EQ(1, std::count(log.begin(), log.end(),
                          "project survey: file line1.sgy skipped, store line1 is file line1.SGY"));

  // Each refusal is the server's answer; the session goes on.
  auto openSet = [&](char const* store) {
    ClientAttributeSet set(project);
    set.open(store, 0, "", "", nullptr);
  };
  for (std::string const name : {"survey/x", ""})
    EXPECT_EQ(said("'" + name + "' is not a project name: a name is not empty and holds no '/' and no '..'."),
              fatalText([&] { openProject(catalog, name.c_str()); }));
  EXPECT_EQ(said("There is no project escape: the data server's directory " + m_root + " has no such subdirectory."),
            fatalText([&] { openProject(catalog, "escape"); }));
  EXPECT_EQ(said("Store link version 0 is not in project survey."), fatalText([&] { openSet("link"); }));
  EXPECT_EQ(said("The format file escaped.syf of store escaped is not a file within the data server's directory."),
            fatalText([&] { openSet("escaped"); }));

  ClientAttributeSet line(project);
  line.open("line1", 0, "", "", nullptr);
  Attribute cmp = line.getAttribute("CMP");
  line.read(cmp, 3, 4);
  EXPECT_EQ(segy_testing::goldenHeader(4, 20), cmp.getInt32(2));

  ClientAttributeSet keyed(project);
  keyed.open("keyed", 0, "", "", nullptr);
  std::vector<std::string> keys;
  for (Attribute const& key : keyed.getKeyList()) keys.push_back(key.getName().c_str());
  EXPECT_EQ((std::vector<std::string>{"CDP", "TRACE_NUMBER"}), keys);
  Attribute cdp = keyed.getAttribute("CDP");
  keyed.read(cdp, 2, 2);
  EXPECT_EQ(segy_testing::goldenHeader(2, 20), cdp.getInt32(1));

  // A file cut short while open: its store's error, and the others served.
  ClientAttributeSet cut(project);
  cut.open("cut", 1, "", "", nullptr);
  Attribute trace = cut.getAttribute("TRACE");
  cut.read(trace, 1, 1);
  ASSERT_EQ(0, ::truncate((m_root + "/survey/cut.sgy").c_str(), 3600 + 2 * 260));
  EXPECT_EQ(said("Failed to read instance 3"), fatalText([&] { cut.read(trace, 3, 4); }));
  line.read(cmp, 1, 1);
  EXPECT_EQ(segy_testing::goldenHeader(1, 20), cmp.getInt32(1));

  // The answers to reads are the bytes of the store's own reads.
  BareCOB set("AttributeSet", dynamic_cast<COB*>(project.get()));
  std::string const opened = set.reply(ClientCode::Open, [](Packer& p) {
    p.pack(vString("line1"));
    p.pack(static_cast<int32_t>(1));
    p.pack(vString(""));
    p.pack(vString(""));
    p.packBool(false);
  });
  ASSERT_EQ(std::string::npos, opened.find("Server said")) << opened;
  vHandle<Store> local =
      StoreFactory::openStore(StoreDescription(vFilename((m_root + "/survey/line1.SGY").c_str())), "", nullptr);
  Store& s = *local;

  // Large reads go in pieces; other messages: the client's shared suite.
  struct Read {
    char const* name;
    uint32_t first, last;
  } const reads[] = {{"CMP", 2499, 2509}, {"CMP", 2, 2500}, {"TRACE", 1, 1001}};
  for (Read const& r : reads) {
    Packer expected(100);
    expected.pack(static_cast<int32_t>(ClientCode::ReadRange));
    std::string const failure = fatalText([&] {
      Attribute x = s.getAttribute(r.name);
      s.read(x, r.first, r.last);
      expected.pack(x);
    });
    // The store refuses the read past its end.
    EXPECT_EQ(r.last > 2500, failure != kNothing) << failure;
    EXPECT_EQ(failure != kNothing ? said(failure.substr(failure.find(": ") + 2)) : bytesOf(expected, set.getID()),
              set.reply(ClientCode::ReadRange, [&r](Packer& p) {
                p.pack(vString(r.name));
                p.pack(r.first);
                p.pack(r.last);
              }))
        << r.first;
  }
  std::string const refused = fatalText([&] { s.addInstances(2); });
  EXPECT_EQ(said(refused.substr(refused.find(": ") + 2)),
            set.reply(ClientCode::AddInstances, [](Packer& p) { p.pack(static_cast<uint32_t>(2)); }));
}

}  // namespace
