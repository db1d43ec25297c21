#include <strings.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "database/kvs/Kvs.h"
#include "database/kvs/KvsDict.h"
#include "database/kvs/KvsHelper.h"
#include "database/zon/ZonClassNamesTranslator.h"
#include "foundation/MessageHandling.h"
#include "foundation/UtlExcept.h"
#include "database/zon/ZonProject.h"
#include "foundation/Message.h"
#include "foundation/vDate.h"

namespace {

// A store's name: ident and type, lower case, joined by the separator. The
// separator cannot occur in either: the dictionary's types are words, and
// idents are the project's line and survey names.
vLCString local_buildName(vString const& ident, vString const& type) {
  vString name(ident);
  name += vString(ZonProject::separator);
  name += type;
  return vLCString(name);
}

std::vector<vString> local_split(vString const& name) {
  std::vector<vString> parts;
  std::string text(name.c_str());
  std::size_t at = 0;
  for (std::size_t cut; (cut = text.find(ZonProject::separator, at)) != std::string::npos; at = cut + 1)
    parts.push_back(vString(text.substr(at, cut - at).c_str()));
  parts.push_back(vString(text.substr(at).c_str()));
  return parts;
}

// The class and subclass of a dataset type, from the class translations:
// every table of the dictionary that the translations pair with the type is
// tried. One pairing gives both; several of one class give that class and
// an "unknown" subclass; none gives "unknown" for both.
std::pair<vLCString, vLCString> local_classOf(vString const& type) {
  vLCString storeClass, subClass;
  int found = 0;
  for (long code = 1;; ++code) {
    char const* table = kvs::KvsDtTabName(code);
    if (table == nullptr) break;
    vString className, subName;
    try {
      MessageHandling quiet;
      ZonClassNamesTranslator::convertZonToRondoV(type, vString(table), className, subName);
    } catch (UtlExcept const&) {
      continue;
    }
    if (found++ == 0) {
      storeClass = className;
      subClass = subName;
    } else {
      if (vLCString(className) != storeClass) return std::make_pair(vLCString("unknown"), vLCString("unknown"));
      if (vLCString(subName) != subClass) subClass = "unknown";
    }
  }
  if (found == 0) return std::make_pair(vLCString("unknown"), vLCString("unknown"));
  if (subClass.isBlank() || subClass == vLCString("-")) subClass = vLCString();
  return std::make_pair(storeClass, subClass);
}

// Seismic-geometry tables: not a store with a domain, but the geometry
// that goes with the line or survey of the same ident.
bool local_isGeometry(vString const& type) { return strcasecmp(type.c_str(), "SGD") == 0; }

// The name a geometry table is listed by: its type, version and ident, the
// three parts its name details take.
vLCString local_geometryName(vString const& ident, vString const& version) {
  vString name("SGD");
  name += vString(ZonProject::separator);
  name += version;
  name += vString(ZonProject::separator);
  name += ident;
  return vLCString(name);
}

// The versions of an entry whose text is this one in any case.
vHandle<ZonProject::DatasetCache::Entry> local_oneVersion(vHandle<ZonProject::DatasetCache::Entry> const& all,
                                                          vString const& text) {
  vHandle<ZonProject::DatasetCache::Entry> one(new ZonProject::DatasetCache::Entry);
  one->ident = all->ident;
  one->type = all->type;
  for (auto const& v : all->versionTexts) {
    if (strcasecmp(v.second.c_str(), text.c_str()) != 0) continue;
    one->versionTexts[v.first] = v.second;
    one->idents[v.first] = all->idents[v.first];
    one->details[v.first] = all->details[v.first];
  }
  return one->versionTexts.empty() ? vHandle<ZonProject::DatasetCache::Entry>() : one;
}

// The dataset of the entry spelled as given: among the versions listed
// (all of one version text in any case), an exact ident and version text
// wins, and one that is the same in any case only when it is the only one.
// Two equally near are refused, with both spellings. -1 for none.
int local_choose(ZonProject::DatasetCache::Entry& entry, std::vector<int> const& numbers, vString const& ident,
                 vString const& version, char const* method, vString const& name) {
  int best = -1, bestScore = -1, tie = -1;
  for (int number : numbers) {
    int const score = (entry.idents[number] == ident ? 2 : 0) + (entry.versionTexts[number] == version ? 1 : 0);
    if (score > bestScore) {
      best = number;
      bestScore = score;
      tie = -1;
    } else if (score == bestScore) {
      tie = number;
    }
  }
  if (tie >= 0) {
    vString one, other;
    one.printf("%s%c%s%c%s", entry.idents[best].c_str(), ZonProject::separator, entry.type.c_str(),
               ZonProject::separator, entry.versionTexts[best].c_str());
    other.printf("%s%c%s%c%s", entry.idents[tie].c_str(), ZonProject::separator, entry.type.c_str(),
                 ZonProject::separator, entry.versionTexts[tie].c_str());
    Message::fatal(method, 0, "The store name '%s' is ambiguous: the datasets '%s' and '%s' differ only in case.",
                   name.c_str(), one.c_str(), other.c_str());
  }
  return best;
}

bool local_isNumber(std::string const& text) {
  if (text.empty() || text.size() > 9) return false;
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

int ZonProject::DatasetCache::Entry::resolve(int version) const {
  if (versionTexts.empty()) return -1;
  if (version <= 0) return versionTexts.rbegin()->first;
  return versionTexts.count(version) ? version : -1;
}

ZonProject::DatasetCache::Map::iterator ZonProject::DatasetCache::myFindKey(vLCString const& name, Map*& in) {
  // A name may carry its version text as a third component, and a geometry
  // table comes type first.
  std::vector<vString> parts = local_split(name);
  vLCString key = parts.size() > 2 ? local_buildName(parts[0], parts[1]) : name;
  if (parts.size() == 3 && local_isGeometry(parts[0]) && !m_map.count(key) && !m_geometry.count(key))
    key = local_buildName(parts[2], parts[0]);
  for (Map* map : {&m_map, &m_geometry}) {
    Map::iterator it = map->find(key);
    if (it != map->end()) {
      in = map;
      return it;
    }
  }
  in = nullptr;
  return m_map.end();
}

void ZonProject::DatasetCache::remove(vLCString const& name) {
  // A store written may be new, or have a new version: the next look-up
  // lists again rather than miss it.
  Map* in = nullptr;
  Map::iterator it = myFindKey(name, in);
  if (in) in->erase(it);
  m_stale = true;
}

void ZonProject::DatasetCache::remove(vLCString const& name, int version) {
  Map* in = nullptr;
  Map::iterator it = myFindKey(name, in);
  if (!in) {
    m_stale = true;
    return;
  }
  it->second->versionTexts.erase(version);
  it->second->idents.erase(version);
  it->second->details.erase(version);
  if (it->second->versionTexts.empty()) in->erase(it);
}

void ZonProject::DatasetCache::myPopulateCache() {
  char const* const method = "ZonProject::DatasetCache::myPopulateCache";
  m_map.clear();
  m_geometry.clear();
  m_stale = false;
  m_project.setSession();
  std::string const project(m_project.m_kvsProject->getProject().c_str());
  std::string const server(m_project.m_kvsProject->getServer().c_str());
  kvs::KvsBaseInfo* info = nullptr;
  if (kvs::KvsBaseGetInfo(project.c_str(), nullptr, server.c_str(), &info) != 0)
    Message::fatal(method, 0, "Error getting general info for project %s@%s:%s %s", project.c_str(), "",
                   server.c_str(), kvs::kvsErrorString.c_str());
  // The record is the library's, and goes back to it on every way out.
  std::unique_ptr<kvs::KvsBaseInfo, void (*)(kvs::KvsBaseInfo*)> held(info, &kvs::KvsHelper::free);
  // Versions by dataset first, so that texts that are not numbers can be
  // numbered after the numeric ones. Names are lower case, so idents that
  // differ only in case share one entry, each version keeping its spelling.
  std::map<vString, std::vector<kvs::KvsDatasetInfo const*> > byName;
  std::map<vString, std::pair<vLCString, vLCString> > classes;
  for (int i = 0; i < info->count; ++i) {
    kvs::KvsDatasetInfo const& d = info->datasets[i];
    byName[local_buildName(d.ident, d.type)].push_back(&d);
  }
  for (auto const& named : byName) {
    vHandle<Entry> entry(new Entry);
    entry->ident = named.second.front()->ident;
    entry->type = named.second.front()->type;
    bool const geometry = local_isGeometry(entry->type);
    int highest = 0;
    for (kvs::KvsDatasetInfo const* d : named.second)
      if (local_isNumber(d->version)) highest = std::max(highest, std::atoi(d->version));
    for (kvs::KvsDatasetInfo const* d : named.second) {
      // An ident that differs from another only in case, with the same
      // version, is numbered after the others too, so that both are
      // reachable by number.
      int number = local_isNumber(d->version) ? std::atoi(d->version) : ++highest;
      if (entry->versionTexts.count(number)) number = ++highest;
      vDate created;
      created.setSeconds(d->created);
      vString type(d->type);
      if (!classes.count(type)) classes[type] = local_classOf(type);
      vLCString const name = geometry ? local_geometryName(d->ident, d->version) : vLCString(named.first);
      StoreDetails details(name, number, classes[type].first, classes[type].second, 0, vString(d->ident),
                           vString(d->version), created, vString(project.c_str()), 0, 0, ProjectType::ZONMESH);
      entry->versionTexts[number] = vString(d->version);
      entry->idents[number] = vString(d->ident);
      entry->details[number] = details;
    }
    (geometry ? m_geometry : m_map)[named.first] = entry;
  }
}

vHandle<ZonProject::DatasetCache::Entry> ZonProject::DatasetCache::find(vLCString const& name) {
  std::vector<vString> parts = local_split(name);
  if (parts.size() == 1) {
    // An ident alone names the one dataset of that ident, whatever its type;
    // the geometry of the same line does not count.
    vHandle<Entry> only;
    vString prefix(name);
    prefix += vString(ZonProject::separator);
    for (auto const& e : m_map) {
      if (std::strncmp(e.first.c_str(), prefix.c_str(), prefix.length()) != 0) continue;
      if (!only.isEmpty()) return vHandle<Entry>();
      only = e.second;
    }
    return only;
  }
  Map* in = nullptr;
  Map::iterator it = myFindKey(name, in);
  if (!in) return vHandle<Entry>();
  if (parts.size() == 2) return it->second;
  if (parts.size() != 3) return vHandle<Entry>();
  // ident,type,version, or SGD,version,ident: the one version only.
  bool const typeFirst = in == &m_geometry && local_isGeometry(parts[0]) &&
                         it->first != vString(local_buildName(parts[0], parts[1]));
  return local_oneVersion(it->second, typeFirst ? parts[1] : parts[2]);
}

bool ZonProject::DatasetCache::locateNameComponents(vString& name, vString& ident, vString& type, vString& version) {
  vHandle<Entry> entry = find(vLCString(name));
  int wanted = version.isInteger() ? version.readi() : 0;
  std::vector<vString> parts = local_split(name);
  if (!entry.isEmpty()) {
    int number = entry->resolve(wanted);
    if (number >= 0 && parts.size() == 3) {
      // A version named by its text: the versions of that text are one
      // dataset, or idents that differ only in case.
      std::vector<int> numbers;
      for (auto const& v : entry->versionTexts) numbers.push_back(v.first);
      bool const typeFirst = local_isGeometry(parts[0]) && !local_isGeometry(parts[1]);
      number = local_choose(*entry, numbers, typeFirst ? parts[2] : parts[0], typeFirst ? parts[1] : parts[2],
                            "ZonProject::locateNameComponents", name);
    }
    if (number >= 0) {
      ident = entry->idents[number];
      type = entry->type;
      version = entry->versionTexts[number];
      return true;
    }
  }
  if (parts.size() == 3 && local_isGeometry(parts[0]) && kvs::KvsDtTyp(parts[1].c_str()) == 0) {
    // A geometry table about to be made, named type first.
    ident = parts[2];
    type = parts[0];
    version = parts[1];
  } else {
    ident = parts[0];
    type = parts.size() > 1 ? parts[1] : vString();
    if (parts.size() > 2) version = parts[2];
    else if (wanted <= 0) version = "1";
  }
  type.toUpperCase();
  return false;
}

bool ZonProject::DatasetCache::findBestMatch(vString const& name, vString& ident, vString& type) {
  for (Map const* map : {&m_map, &m_geometry}) {
    for (auto const& e : *map) {
      if (strcasecmp(e.first.c_str(), name.c_str()) != 0) continue;
      ident = e.second->ident;
      type = e.second->type;
      return true;
    }
  }
  return false;
}

bool ZonProject::DatasetCache::findTrueSpelling(vString& ident, vString& type, vString& version) {
  Map* in = nullptr;
  Map::iterator it = myFindKey(local_buildName(ident, type), in);
  if (!in) return false;
  // The version of that text, its own spelling first.
  Entry& entry = *it->second;
  std::vector<int> numbers;
  for (auto const& v : entry.versionTexts)
    if (strcasecmp(v.second.c_str(), version.c_str()) == 0) numbers.push_back(v.first);
  vString name;
  name.printf("%s%c%s%c%s", ident.c_str(), ZonProject::separator, type.c_str(), ZonProject::separator,
              version.c_str());
  int const number = local_choose(entry, numbers, ident, version, "ZonProject::findTrueSpelling", name);
  if (number < 0) return false;
  ident = entry.idents[number];
  type = entry.type;
  version = entry.versionTexts[number];
  return true;
}

bool ZonProject::DatasetCache::hasStore(vLCString const& name, int version) {
  vHandle<Entry> entry = find(name);
  return !entry.isEmpty() && entry->resolve(version) >= 0;
}

StoreDetails ZonProject::DatasetCache::getStoreDetails(vLCString const& name, int version) {
  vHandle<Entry> entry = find(name);
  int number = entry.isEmpty() ? -1 : entry->resolve(version);
  if (number < 0) Message::fatal("ZonProject::getStoreDetails", 0, "The store '%s' does not exist!", name.c_str());
  return entry->details[number];
}

vHandle<Project::StoreDetailsList> ZonProject::DatasetCache::getStoreDetailsList(vLCString const& storeClass,
                                                                                vLCString const& subClass) {
  vHandle<Project::StoreDetailsList> list(new Project::StoreDetailsList);
  for (Map const* map : {&m_map, &m_geometry}) {
    for (auto const& e : *map) {
      for (auto const& d : e.second->details) {
        if (!storeClass.isBlank() && d.second.getClass() != storeClass) continue;
        if (!subClass.isBlank() && d.second.getSubClass() != subClass) continue;
        list->push_back(d.second);
      }
    }
  }
  return list;
}

vHandle<Project::StoreList> ZonProject::DatasetCache::getStoreList(vLCString const& storeClass,
                                                                  vLCString const& subClass) {
  vHandle<Project::StoreList> list(new Project::StoreList);
  for (Map const* map : {&m_map, &m_geometry}) {
    for (auto const& e : *map) {
      for (auto const& d : e.second->details) {
        if (!storeClass.isBlank() && d.second.getClass() != storeClass) continue;
        if (!subClass.isBlank() && d.second.getSubClass() != subClass) continue;
        // Each version, as "name.version".
        vLCString name(d.second.getName());
        name += '.';
        name += vString::number(d.first);
        list->push_back(name);
      }
    }
  }
  return list;
}
