#include "database/zon/ZonTestBed.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "database/kvs/Kvs.h"
#include "database/zon/ZonClassNamesTranslator.h"
#include "database/zon/ZonProjectCatalog.h"
#include "database/zon/ZonStore.h"
#include "database/zon/vKvsActivate.h"

using namespace kvs;

ZonTestBed::ZonTestBed() : m_pid(-1) {
  std::string const home = m_tree.releaseDir() + "SupportFiles/CapiZon/" + server();
  std::filesystem::create_directories(home + "/data");
  // No dictionary in the server folder: the stores run on the one the
  // release ships.
  std::filesystem::copy_file(std::string(RONDO_TEST_SOURCE_DIR) + "/release/SupportFiles/CapiZon/KvsDict.bin",
                             m_tree.releaseDir() + "SupportFiles/CapiZon/KvsDict.bin");
  std::ofstream(home + "/config.kvs") << "Kvs.server: 127.0.0.1\nKvs.base: zonbase\n";
  std::filesystem::copy_file(std::string(RONDO_TEST_SOURCE_DIR) + "/release/SystemFiles/ZonClassTranslations.txt",
                             m_tree.systemFilesDir() + "ZonClassTranslations.txt");
  m_data = m_tree.root() + "/kvsd";
  for (char const* name : {"KVSROOT", "KVSPROJ", "KVSDICT"}) m_tree.unsetEnv(name);
  m_tree.setEnv("KVSPORT", "0");
  m_tree.setEnv("TMPDIR", m_tree.root());
  ZonClassNamesTranslator::dropTable();
  start();
}

ZonTestBed::~ZonTestBed() {
  stop(SIGKILL);
  ZonClassNamesTranslator::dropTable();
}

void ZonTestBed::start() {
  int p[2];
  if (pipe(p) != 0) std::abort();
  m_pid = fork();
  if (m_pid == 0) {
    // The daemon goes with the test, also when the test dies.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    dup2(p[1], 1);
    close(p[0]);
    std::string const bin = std::string(RONDO_TEST_BINARY_DIR) + "/bin/kvsd";
    execl(bin.c_str(), "kvsd", "-d", m_data.c_str(), "-p", "0", static_cast<char*>(nullptr));
    _exit(127);
  }
  close(p[1]);
  char line[32] = {};
  ssize_t const n = read(p[0], line, sizeof line - 1);
  close(p[0]);
  if (n <= 0) ADD_FAILURE() << "kvsd did not start";
  m_tree.setEnv("KVSPORT", std::to_string(n > 0 ? std::atoi(line) : 0));
}

void ZonTestBed::stop(int signal) {
  vKvsActivate::deactivate();
  if (m_pid <= 0) return;
  kill(m_pid, signal);
  waitpid(m_pid, nullptr, 0);
  m_pid = -1;
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
  vHandle<ZonStore> reopened(new ZonStore(vHandle_cast<Project>(project)));
  reopened->open(store, 0, "", "", nullptr);
  return vHandle_cast<AttributeSet>(reopened);
}
