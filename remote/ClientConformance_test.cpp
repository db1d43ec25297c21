// The shared store suite over client attribute sets: each store is a set
// that a client created in the real data server (UnitTest back end), filled
// with the reference content through the client and opened again. The
// server's failures reach the caller as its reports, so the suite's texts
// carry their prefix.

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "remote/ClientAttributeSet.h"
#include "remote/ClientProject.h"
#include "remote/ClientProjectCatalog.h"
#include "remote/RemoteTesting.h"
#include "testing/StoreConformance.h"

namespace {

// One server for the process, its home and log in a directory of its own.
vHandle<Project> const& clientProject() {
  static remote_testing::TempDir home;
  static vHandle<Project> project = [] {
    ::setenv("HOME", home.file("").c_str(), 1);
    ::setenv("VSERVER", (std::string(RONDO_TEST_BINARY_DIR) + "/bin/DataServer").c_str(), 1);
    ::unsetenv("SP_CAPI_DATASERVER");
    ::setenv("SP_DATASERVER_BACKEND", "UnitTest", 1);
    vHandle<ProjectCatalog> catalog(new ClientProjectCatalog(vString(), ProjectType::RONDO, vString()));
    vHandle<Project> made(new ClientProject(catalog));
    made->open("conformance");
    return made;
  }();
  return project;
}

// A set of its own, with the reference content, closed.
vLCString referenceSet() {
  static int made = 0;
  vLCString const name(("reference" + std::to_string(++made)).c_str());
  ClientAttributeSet set(clientProject());
  set.create(name, "seismic", "3d", StoreConformance::referenceKeys(), nullptr);
  StoreConformance::populate(set);
  set.close();
  return name;
}

std::string said(std::string const& text) { return "Server said:-o " + text; }

StoreConformanceCase clientCase() {
  StoreConformanceCase c("ClientAttributeSet");
  c.openForReading = [] {
    vLCString const name = referenceSet();
    vHandle<AttributeSet> set(new ClientAttributeSet(clientProject()));
    set->open(name, 0, "", "", nullptr);
    return set;
  };
  c.openForUpdate = [] {
    vLCString const name = referenceSet();
    vHandle<AttributeSet> set(new ClientAttributeSet(clientProject()));
    set->update(name, 0, "", "", nullptr);
    return set;
  };
  StoreConformanceTexts& t = c.texts;
  // The server's sets are bare sets, not stores: they say so in their words.
  t.notWritable = "AttributeSet '%s' is not open for modification.";
  for (std::string* text : {&t.firstIsZero, &t.firstAfterLast, &t.lastPastEnd, &t.listHasZero, &t.listPastEnd,
                            &t.unknownAttribute, &t.keysMissing, &t.notWritable, &t.writeCount, &t.groupWriteCount,
                            &t.keyWriteCount})
    *text = said(*text);
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(ClientAttributeSet, StoreConformance, ::testing::Values(clientCase()),
                         StoreConformance::caseName);
