#include "database/zon/ZonTestBed.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

#include "database/kvs/Kvs.h"
#include "database/kvs/KvsDict.h"
#include "database/zon/ZonClassNamesTranslator.h"
#include "database/zon/ZonProjectCatalog.h"
#include "database/zon/vKvsActivate.h"

using namespace kvs;

namespace {

// Attributes: INT, FLT, DBL or text of a width; tables by domain and keys.
std::vector<unsigned char> dictionary() {
  std::vector<KvsDtElement> d[4];
  char const* const ints[] = {"CDP", "OFFSET", "DATAINDEX", "HZINDEX", "RECUMB", "FIRSTCMP", "CMPINC",
                              "CMPLINEINC", "FIRSTIL", "ILINC", "NIL", "FIRSTXL", "XLINC", "NXL", "NBINSPAD"};
  char const* const flts[] = {"HTIME", "HZFLOATS", "MOFFSET", "MTIME", "TIME", "VRMS", "ATVAL"};
  char const* const dbls[] = {"ELEV", "XVAL", "YVAL", "ILINTV", "XLINTV", "ROTATION", "XWORLD", "YWORLD",
                              "XSURVEY", "YSURVEY"};
  std::uint32_t code = 0;
  for (char const* n : ints) d[KvsDtAttKind].push_back({n, ++code, KvsFmtINT, 4, 0});
  for (char const* n : flts) d[KvsDtAttKind].push_back({n, ++code, KvsFmtFLT, 4, 0});
  for (char const* n : dbls) d[KvsDtAttKind].push_back({n, ++code, KvsFmtDBL, 8, 0});
  d[KvsDtAttKind].push_back({"HZNAMES", ++code, 0, 16, 0});
  d[KvsDtAttKind].push_back({"ORDERING", ++code, 0, 24, 0});
  auto codeOf = [&](char const* name) {
    for (KvsDtElement const& e : d[KvsDtAttKind])
      if (e.name == name) return e.code;
    return 0u;
  };
  std::uint32_t const cdp = codeOf("CDP"), offset = codeOf("OFFSET"), time = codeOf("TIME");
  code = 0;
  for (char const* n : {"SEIS", "HZ", "MUTE", "VELO", "WDEP", "GRID", "TAB"}) d[KvsDtTypKind].push_back({n, ++code});
  d[KvsDtDomKind] = {{"3D", 1, cdp, offset}, {"2D", 2, cdp, offset}, {"WD", 3}, {"GRID", 4}};
  d[KvsDtTabKind] = {{"TAB1", 1, 1, cdp, offset},   {"HZ3D", 2, 1, cdp, offset},  {"HZ2D", 3, 2, cdp, offset},
                     {"MUTE3D", 4, 1, cdp, offset}, {"VEL3D", 5, 1, cdp, time},    {"WDEPTH", 6, 3},
                     {"ZONGRID", 7, 4},             {"TRACE3D", 8, 1, cdp, offset}};
  return KvsDtBuild(d);
}

}  // namespace

ZonTestBed::ZonTestBed() : m_pid(-1) {
  std::string const home = m_tree.releaseDir() + "SupportFiles/CapiZon/" + server();
  std::filesystem::create_directories(home + "/data");
  std::vector<unsigned char> const bytes = dictionary();
  std::ofstream(home + "/KvsDict.bin", std::ios::binary)
      .write(reinterpret_cast<char const*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
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
