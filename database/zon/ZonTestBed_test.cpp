#include "database/zon/ZonTestBed.h"

#include <signal.h>

#include <filesystem>
#include <fstream>

#include "database/kvs/Kvs.h"
#include "database/zon/ZonClassNamesTranslator.h"
#include "database/zon/ZonProjectCatalog.h"
#include "database/zon/vKvsActivate.h"

using namespace kvs;

ZonTestBed::ZonTestBed() {
  std::string const home = m_tree.releaseDir() + "SupportFiles/CapiZon/" + server();
  std::filesystem::create_directories(home + "/data");
  // No dictionary in the server folder: the stores run on the one the
  // release ships.
  std::filesystem::copy_file(std::string(RONDO_TEST_SOURCE_DIR) + "/release/SupportFiles/CapiZon/KvsDict.bin",
                             m_tree.releaseDir() + "SupportFiles/CapiZon/KvsDict.bin");
  std::ofstream(home + "/config.kvs") << "Kvs.server: 127.0.0.1\nKvs.base: zonbase\n";
  std::filesystem::copy_file(std::string(RONDO_TEST_SOURCE_DIR) + "/release/SystemFiles/ZonClassTranslations.txt",
                             m_tree.systemFilesDir() + "ZonClassTranslations.txt");
  for (char const* name : {"KVSROOT", "KVSPROJ", "KVSDICT"}) m_tree.unsetEnv(name);
  m_tree.setEnv("TMPDIR", m_tree.root());
  ZonClassNamesTranslator::dropTable();
  start();
}

ZonTestBed::~ZonTestBed() {
  stop(SIGKILL);
  ZonClassNamesTranslator::dropTable();
}

void ZonTestBed::start() {
  int const port = m_kvsd.start();
  if (port <= 0) ADD_FAILURE() << "kvsd did not start";
  m_tree.setEnv("KVSPORT", std::to_string(port > 0 ? port : 0));
}

void ZonTestBed::stop(int signal) {
  vKvsActivate::deactivate();
  m_kvsd.stop(signal);
}

vHandle<ZonProject> ZonTestBed::openProject(char const* name) {
  vHandle<ProjectCatalog> catalog(new ZonProjectCatalog(vString("localhost"), vString(server())));
  vHandle<ZonProject> project(new ZonProject(catalog));
  project->open(name);
  return project;
}

vHandle<AttributeSet> ZonTestBed::reopenAfterRestart(vHandle<AttributeSet> written, vHandle<ZonProject>& project,
                                                     char const* name) {
  vLCString const store = written->getName();
  written->close();
  written = vHandle<AttributeSet>();
  stop(SIGTERM);
  start();
  project = openProject(name);
  return vHandle_cast<AttributeSet>(openStore(project, store));
}

vHandle<ZonStore> openStore(vHandle<ZonProject> const& project, vLCString const& name, bool update) {
  vHandle<ZonStore> store(new ZonStore(vHandle_cast<Project>(project)));
  if (update)
    store->update(name, 0, "", "", nullptr);
  else
    store->open(name, 0, "", "", nullptr);
  return store;
}
