// zonload: sets up a database server's client folder and loads a small
// dataset into a Kvs database, through the database stores.
//
//   zonload dictionary FOLDER HOST
//       writes FOLDER/KvsDict.bin, the dictionary of the dataset types and
//       tables that this system's database stores use, and FOLDER/config.kvs
//       naming the kvsd HOST (the port comes from KVSPORT)
//   zonload table SERVER PROJECT IDENT N
//       writes the plain table store "IDENT,tab" (class table, subclass
//       plain; IDENT not empty and without ',') of N rows into PROJECT on
//       SERVER: keys CDP = 1000 + row and OFFSET = 100 * (row % 4), and
//       ELEV = row / 2 (rows from 1)
//
// The server's folder is found under the release's support files (VREL);
// the class translations under its system files.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "database/kvs/KvsDict.h"
#include "database/kvs/KvsParams.h"
#include "database/zon/CapiZonFactory.h"
#include "database/zon/vKvsActivate.h"
#include "foundation/UtlExcept.h"
#include "attribute/Attribute.h"
#include "attribute/KeyList.h"
#include "project/ProjectFactory.h"
#include "project/Store.h"
#include "registry/RondoRegistry.h"

namespace {

int usage() {
  std::fprintf(stderr, "usage: zonload dictionary FOLDER HOST | zonload table SERVER PROJECT IDENT N\n");
  return 2;
}

std::vector<unsigned char> dictionary() {
  using kvs::KvsDtElement;
  std::vector<KvsDtElement> d[4];
  char const* const ints[] = {"CDP", "OFFSET", "DATAINDEX", "HZINDEX", "RECUMB", "FIRSTCMP", "CMPINC",
                              "CMPLINEINC", "FIRSTIL", "ILINC", "NIL", "FIRSTXL", "XLINC", "NXL", "NBINSPAD"};
  char const* const flts[] = {"HTIME", "HZFLOATS", "MOFFSET", "MTIME", "TIME", "VRMS", "ATVAL"};
  char const* const dbls[] = {"ELEV", "XVAL", "YVAL", "ILINTV", "XLINTV", "ROTATION", "XWORLD", "YWORLD",
                              "XSURVEY", "YSURVEY"};
  std::uint32_t code = 0;
  for (char const* n : ints) d[kvs::KvsDtAttKind].push_back({n, ++code, kvs::KvsFmtINT, 4, 0});
  for (char const* n : flts) d[kvs::KvsDtAttKind].push_back({n, ++code, kvs::KvsFmtFLT, 4, 0});
  for (char const* n : dbls) d[kvs::KvsDtAttKind].push_back({n, ++code, kvs::KvsFmtDBL, 8, 0});
  d[kvs::KvsDtAttKind].push_back({"HZNAMES", ++code, 0, 16, 0});
  d[kvs::KvsDtAttKind].push_back({"ORDERING", ++code, 0, 24, 0});
  std::uint32_t const cdp = 1, offset = 2, time = 20;  // by their places above
  code = 0;
  for (char const* n : {"SEIS", "HZ", "MUTE", "VELO", "WDEP", "GRID", "TAB", "SGD"})
    d[kvs::KvsDtTypKind].push_back({n, ++code});
  d[kvs::KvsDtDomKind] = {{"3D", 1, cdp, offset}, {"2D", 2, cdp, offset}, {"WD", 3}, {"GRID", 4}};
  d[kvs::KvsDtTabKind] = {{"TAB1", 1, 1, cdp, offset},   {"HZ3D", 2, 1, cdp, offset}, {"HZ2D", 3, 2, cdp, offset},
                          {"MUTE3D", 4, 1, cdp, offset}, {"VEL3D", 5, 1, cdp, time},  {"WDEPTH", 6, 3},
                          {"ZONGRID", 7, 4},             {"TRACE3D", 8, 1, cdp, offset},
                          {"SGD1", 9, 0, cdp}};
  return kvs::KvsDtBuild(d);
}

int writeDictionary(std::string const& folder, std::string const& host) {
  std::vector<unsigned char> const bytes = dictionary();
  std::ofstream dict(folder + "/KvsDict.bin", std::ios::binary);
  dict.write(reinterpret_cast<char const*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  std::ofstream config(folder + "/config.kvs");
  config << "Kvs.server: " << host << "\nKvs.base: rondo\n";
  // A write that fails (a full disk) shows only when the buffer goes out.
  dict.close();
  config.close();
  if (!dict || !config) {
    std::fprintf(stderr, "zonload: cannot write into %s\n", folder.c_str());
    return 1;
  }
  return 0;
}

int writeTable(char const* server, char const* project, std::string const& ident, int n) {
  registerRondoClasses();
  vHandle<Project> opened = ProjectFactory::openProject(ProjectType::ZONMESH, server, "", project);
  vHandle<Store> store = CapiZonFactory::createStore(opened);
  KeyList keys;
  keys.addKey(Attribute("CDP", "", vINT32));
  keys.addKey(Attribute("OFFSET", "", vINT32));
  store->create(vLCString((ident + ",tab").c_str()), "table", "plain", keys, nullptr);
  store->addAttribute(Attribute("ELEV", "", vFLOAT64));
  store->addInstances(static_cast<unsigned int>(n));
  Attribute cdp("CDP", "", vINT32), off("OFFSET", "", vINT32), elev("ELEV", "", vFLOAT64);
  cdp.resize(static_cast<unsigned int>(n));
  off.resize(static_cast<unsigned int>(n));
  elev.resize(static_cast<unsigned int>(n));
  for (int row = 1; row <= n; ++row) {
    cdp.setInt32(static_cast<unsigned int>(row), 1000 + row);
    off.setInt32(static_cast<unsigned int>(row), 100 * (row % 4));
    elev.setFloat64(static_cast<unsigned int>(row), row / 2.0);
  }
  store->write(cdp, 1, static_cast<unsigned int>(n));
  store->write(off, 1, static_cast<unsigned int>(n));
  store->write(elev, 1, static_cast<unsigned int>(n));
  store->close();
  vKvsActivate::deactivate();
  return 0;
}

// A row count is a whole number 1..2^31-1: "10abc" is no 10, and a count
// past an int is not some other count.
int rowCount(char const* text) {
  char* end = nullptr;
  long long const value = std::strtoll(text, &end, 10);
  return end != text && *end == '\0' && value > 0 && value <= 0x7fffffff ? static_cast<int>(value) : 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc == 4 && std::strcmp(argv[1], "dictionary") == 0) return writeDictionary(argv[2], argv[3]);
    // An empty ident would make the store ",tab", which no store name
    // reaches again; one with a ',' would be read as ident and type.
    if (argc == 6 && std::strcmp(argv[1], "table") == 0 && rowCount(argv[5]) > 0 && *argv[4] &&
        !std::strchr(argv[4], ','))
      return writeTable(argv[2], argv[3], argv[4], rowCount(argv[5]));
    return usage();
  } catch (UtlExcept const&) {
    // The report is printed already.
    return 1;
  }
}
