#ifndef PROJECT_STOREFACTORYTESTING_H
#define PROJECT_STOREFACTORYTESTING_H

// Test helpers of the store and attribute set factories (tests only).
//
// The file stores themselves live in higher layers. Where a test needs one
// to be there, it registers a maker that stands in for it with a store held
// in memory, opened on the name that the factory hands it, and notes the
// description it got. Nothing registered stays registered after a test.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/ExceptionErrorHandler.h"
#include "foundation/RaiseError.h"
#include "foundation/SystemPropertyTable.h"
#include "foundation/TestReleaseTree.h"
#include "foundation/vDatabases.h"
#include "project/StoreFactory.h"
#include "project/UTProject.h"
#include "project/UTProjectCatalog.h"
#include "testing/TestMemoryStore.h"

namespace factory_testing {

inline std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

inline Attribute ints(char const* name, std::vector<int> const& values) {
  Attribute a(name, "", vINT32);
  a.copyData(static_cast<unsigned int>(values.size()), values.data());
  return a;
}

inline std::vector<int> readInts(Store const& store, char const* name) {
  Attribute a = store.getAttribute(name);
  store.read(a, 1, store.getNInstances());
  std::vector<int> values;
  for (unsigned int i = 1; i <= a.getNInstances(); ++i) values.push_back(a.getInt32(i));
  return values;
}

// A unit-test project "survey" on that host, of that type, open.
inline vHandle<Project> projectOn(char const* host, ProjectType::PROJECT_TYPE type) {
  vHandle<Project> project(new UTProject(vHandle<ProjectCatalog>(new UTProjectCatalog(host, type))));
  project->open("survey");
  return project;
}

inline KeyList cdpKeys() {
  KeyList keys;
  keys.addKey(Attribute("CDP", "CDP", vINT32));
  return keys;
}

// Where the stand-ins of file stores keep their sets.
inline std::shared_ptr<TestMemoryShelf>& fileShelf() {
  static std::shared_ptr<TestMemoryShelf> shelf = std::make_shared<TestMemoryShelf>();
  return shelf;
}

// Puts a set of that name, with CDP 10 20, on the shelf.
inline void shelve(std::shared_ptr<TestMemoryShelf> const& shelf, char const* name) {
  TestMemoryStore store(vHandle<Project>(), shelf);
  store.create(name, "seismic", "2d", cdpKeys(), nullptr);
  store.addInstances(2);
  store.write(ints("CDP", {10, 20}), 1, 2);
  store.close();
}

struct Seen {
  std::string how;
  StoreDescription description;
  std::string setName;
};

inline std::vector<Seen>& seen() {
  static std::vector<Seen> all;
  return all;
}

inline vHandle<Store> openOnShelf(StoreDescription const& description) {
  seen().push_back({"open", description, ""});
  vHandle<Store> store(new TestMemoryStore(vHandle<Project>(), fileShelf()));
  store->open(description.getStoreName(), 0, "", "", nullptr);
  return store;
}

inline vHandle<Store> createOnShelf(StoreDescription const& description, vLCString const& setName) {
  seen().push_back({"create", description, str(setName)});
  vHandle<Store> store(new TestMemoryStore(vHandle<Project>(), fileShelf()));
  store->create(description.getStoreName(), "seismic", "2d", KeyList(), nullptr);
  return store;
}

// Runs `undo` when it goes: puts back what a test registered over.
class Restore {
 public:
  explicit Restore(std::function<void()> undo) : m_undo(std::move(undo)) {}
  ~Restore() { m_undo(); }
  Restore(Restore const&) = delete;
  Restore& operator=(Restore const&) = delete;

 private:
  std::function<void()> m_undo;
};

// Registers a stand-in for a store class while it lives.
class StandIn {
 public:
  StandIn(char const* className, StoreFactory::Makers const& makers)
      : m_class(className), m_saved(StoreFactory::registerMakers(className, makers)) {
    seen().clear();
  }
  ~StandIn() { StoreFactory::registerMakers(m_class, m_saved); }

 private:
  vString m_class;
  StoreFactory::Makers m_saved;
};

inline StoreFactory::Makers fileMakers() { return {nullptr, &openOnShelf, &createOnShelf, nullptr}; }

// Empties the queue of pushed stores before and after a test.
class CleanQueue {
 public:
  CleanQueue() { StoreFactory::clearStores(); }
  ~CleanQueue() { StoreFactory::clearStores(); }
};

inline StoreDescription fileIn(TestReleaseTree const& tree, char const* name) {
  return StoreDescription(vFilename(vString(tree.writeWorkFile(name, "data").c_str())));
}

// A release tree whose system property table holds the records given, with
// the site's wrapping words taken out of the environment; the table is read
// again when the tree comes and when it goes.
class PropertyTree {
 public:
  explicit PropertyTree(std::string const& records) : m_tree(new TestReleaseTree) {
    for (char const* name : {"SP_CAPI_ATTRIBUTESETDECORATORS", "SP_CAPI_TRANSLATIONS", "SP_CAPI_MYWRAPPERS"})
      m_tree->unsetEnv(name);
    m_tree->writeSystemFile("SystemPropertyTable2.txt", records);
    reload();
  }
  ~PropertyTree() {
    m_tree.reset();
    reload();
  }
  static std::string record(char const* section, char const* name, char const* values) {
    return std::string("<SystemProperty name= ") + name + " package= " + section + " description= \"test\" " + values +
           " SystemProperty>\n";
  }

 private:
  static void reload() {
    vDatabases::clearCache();
    SystemPropertyTable::instance().reload();
  }
  std::unique_ptr<TestReleaseTree> m_tree;
};

// Keeps the error reports as "label: text" while it lives; fatal messages
// raise as usual, without printed reports.
class Recording {
 public:
  Recording() { RaiseError::getInstance()->install(&m_handler); }
  ~Recording() { RaiseError::getInstance()->uninstall(&m_handler); }
  std::vector<std::string> const& errors() const { return m_handler.errors; }

 private:
  class Handler : public ExceptionErrorHandler {
   public:
    std::vector<std::string> errors;

   protected:
    void doError(char const* label, int, char const* text) override {
      errors.push_back(std::string(label) + ": " + text);
    }
    void doInfo(char const*, int, char const*) override {}
  };
  Handler m_handler;
};

}  // namespace factory_testing

#endif
