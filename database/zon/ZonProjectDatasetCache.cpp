#include <strings.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
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

void ZonProject::DatasetCache::remove(vLCString const& name) {
  // A name may carry its version text as a third component.
  std::vector<vString> parts = local_split(name);
  vLCString key = parts.size() > 2 ? local_buildName(parts[0], parts[1]) : name;
  if (m_map.erase(key) == 0) m_stale = true;
}

void ZonProject::DatasetCache::remove(vLCString const& name, int version) {
  std::vector<vString> parts = local_split(name);
  vLCString key = parts.size() > 2 ? local_buildName(parts[0], parts[1]) : name;
  Map::iterator it = m_map.find(key);
  if (it == m_map.end()) {
    m_stale = true;
    return;
  }
  it->second->versionTexts.erase(version);
  it->second->details.erase(version);
  if (it->second->versionTexts.empty()) m_map.erase(it);
}

void ZonProject::DatasetCache::myPopulateCache() {
  char const* const method = "ZonProject::DatasetCache::myPopulateCache";
  m_map.clear();
  m_stale = false;
  m_project.setSession();
  std::string const project(m_project.m_kvsProject->getProject().c_str());
  std::string const server(m_project.m_kvsProject->getServer().c_str());
  kvs::KvsBaseInfo* info = nullptr;
  if (kvs::KvsBaseGetInfo(project.c_str(), nullptr, server.c_str(), &info) != 0)
    Message::fatal(method, 0, "Error getting general info for project %s@%s:%s %s", project.c_str(), "",
                   server.c_str(), kvs::kvsErrorString.c_str());
  // Versions by dataset first, so that texts that are not numbers can be
  // numbered after the numeric ones.
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
    int highest = 0;
    for (kvs::KvsDatasetInfo const* d : named.second)
      if (local_isNumber(d->version)) highest = std::max(highest, std::atoi(d->version));
    for (kvs::KvsDatasetInfo const* d : named.second) {
      int number = local_isNumber(d->version) ? std::atoi(d->version) : ++highest;
      vDate created;
      created.setSeconds(d->created);
      vString type(d->type);
      if (!classes.count(type)) classes[type] = local_classOf(type);
      StoreDetails details(named.first, number, classes[type].first, classes[type].second, 0, vString(d->ident),
                           vString(d->version), created, vString(project.c_str()), 0, 0, ProjectType::ZONMESH);
      entry->versionTexts[number] = vString(d->version);
      entry->details[number] = details;
    }
    m_map[named.first] = entry;
  }
  kvs::KvsHelper::free(info);
}

vHandle<ZonProject::DatasetCache::Entry> ZonProject::DatasetCache::find(vLCString const& name) {
  Map::iterator it = m_map.find(name);
  if (it != m_map.end()) return it->second;
  std::vector<vString> parts = local_split(name);
  if (parts.size() == 1) {
    // An ident alone names the one dataset of that ident, whatever its type.
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
  if (parts.size() != 3) return vHandle<Entry>();
  // ident,type,version: the one version only.
  it = m_map.find(local_buildName(parts[0], parts[1]));
  if (it == m_map.end()) return vHandle<Entry>();
  vHandle<Entry> one(new Entry);
  one->ident = it->second->ident;
  one->type = it->second->type;
  for (auto const& v : it->second->versionTexts) {
    if (strcasecmp(v.second.c_str(), parts[2].c_str()) != 0) continue;
    one->versionTexts[v.first] = v.second;
    one->details[v.first] = it->second->details[v.first];
  }
  return one->versionTexts.empty() ? vHandle<Entry>() : one;
}

bool ZonProject::DatasetCache::locateNameComponents(vString& name, vString& ident, vString& type, vString& version) {
  vHandle<Entry> entry = find(vLCString(name));
  int wanted = version.isInteger() ? version.readi() : 0;
  if (!entry.isEmpty()) {
    int number = entry->resolve(wanted);
    if (number >= 0) {
      ident = entry->ident;
      type = entry->type;
      version = entry->versionTexts[number];
      return true;
    }
  }
  std::vector<vString> parts = local_split(name);
  ident = parts[0];
  type = parts.size() > 1 ? parts[1] : vString();
  type.toUpperCase();
  if (parts.size() > 2) version = parts[2];
  else if (wanted <= 0) version = "1";
  return false;
}

bool ZonProject::DatasetCache::findBestMatch(vString const& name, vString& ident, vString& type) {
  for (auto const& e : m_map) {
    if (strcasecmp(e.first.c_str(), name.c_str()) != 0) continue;
    ident = e.second->ident;
    type = e.second->type;
    return true;
  }
  return false;
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
  for (auto const& e : m_map) {
    for (auto const& d : e.second->details) {
      if (!storeClass.isBlank() && d.second.getClass() != storeClass) continue;
      if (!subClass.isBlank() && d.second.getSubClass() != subClass) continue;
      list->push_back(d.second);
    }
  }
  return list;
}

vHandle<Project::StoreList> ZonProject::DatasetCache::getStoreList(vLCString const& storeClass,
                                                                  vLCString const& subClass) {
  vHandle<Project::StoreList> list(new Project::StoreList);
  for (auto const& e : m_map) {
    for (auto const& d : e.second->details) {
      if (!storeClass.isBlank() && d.second.getClass() != storeClass) continue;
      if (!subClass.isBlank() && d.second.getSubClass() != subClass) continue;
      // Each version, as "name.version".
      vLCString name(e.first);
      name += '.';
      name += vString::number(d.first);
      list->push_back(name);
    }
  }
  return list;
}
