#ifndef DATABASE_ZON_ZONPROJECT_H
#define DATABASE_ZON_ZONPROJECT_H

// ZonProject: a project held in a Kvs database. Its stores are the datasets
// of the project, each named by its ident and its type joined with the
// separator (",": "line12,seis"); a version that is not a number is a third
// component. Names are found in any case. Seismic-geometry tables (type
// SGD) are named type first, "sgd,1,line12". The datasets are listed from
// the database into the DatasetCache on the first question after open, and
// again after a store was written or on the full details list; the light
// list answers from the cache as it stands.
//
// The library serves one project at a time, so every use of it, from here
// or from a store of this project, first calls setSession().

#include <list>
#include <map>
#include <vector>

#include "database/kvs/Kvs.h"
#include "database/zon/vKvsProject.h"
#include "database/zon/ZonProjectCatalog.h"
#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "foundation/vString.h"
#include "project/NameDetailsCompleter.h"
#include "project/Project.h"
#include "project/StoreDetails.h"

class ZonProject : public Project, public NameDetailsCompleter {
 public:
  static char const separator;

  class DatasetCache {
   public:
    // One dataset (ident and type) with all its versions.
    class Entry {
     public:
      vString ident;
      vString type;
      // By version number: the database's version text and the details.
      std::map<int, vString> versionTexts;
      // By version number: the ident as the database spells it.
      std::map<int, vString> idents;
      std::map<int, StoreDetails> details;
      // The tables found, once they were asked for.
      std::list<vLCString> attributeSetNames;

      // The version asked for, or the newest for 0 or below; -1 if missing.
      int resolve(int version) const;
    };
    typedef std::map<vString, vHandle<Entry> > Map;

    explicit DatasetCache(ZonProject& project) : m_project(project) {}

    // Empty, or told of a change it cannot place: the next look-up lists
    // the datasets again.
    bool empty() const { return (m_map.empty() && m_geometry.empty()) || m_stale; }
    void clear() {
      m_map.clear();
      m_geometry.clear();
    }
    // Drops a store after a write to it, and makes the whole cache stale:
    // the store may be new, or hold a new version.
    void remove(vLCString const& name);
    // Drops one version of a store, and the store with its last version.
    void remove(vLCString const& name, int version);
    // Lists the project's datasets into the cache, replacing what was held.
    void myPopulateCache();
    // From a store name (and the wanted version as text, "0" or blank for the
    // newest) to the database's ident, type and version text. A name the
    // cache does not hold is split at the separator, for a store about to be
    // made: the type upper-cased, the version kept. True when found. Idents
    // that differ only in case with one version text are numbered apart; a
    // version named by its text goes to the one spelled as given, and is
    // refused when neither is.
    bool locateNameComponents(vString& name, vString& ident, vString& type, vString& version);
    // The ident and type of the cached dataset whose name equals this one in
    // any case.
    bool findBestMatch(vString const& name, vString& ident, vString& type);
    // Ident, type and version text as the database spells them, for a
    // dataset named in another case; false, and nothing changed, when no
    // dataset has them. The exact spelling wins; another case is taken only
    // when one dataset alone has it, else refused naming both.
    bool findTrueSpelling(vString& ident, vString& type, vString& version);
    StoreDetails getStoreDetails(vLCString const& name, int version);
    bool hasStore(vLCString const& name, int version);
    vHandle<Project::StoreDetailsList> getStoreDetailsList(vLCString const& storeClass, vLCString const& subClass);
    // Every version of the matching stores, as "name.version".
    vHandle<Project::StoreList> getStoreList(vLCString const& storeClass, vLCString const& subClass);
    vHandle<Entry> find(vLCString const& name);

   private:
    // The entry a name of one to three parts points at, and the map it is
    // in (null if none).
    Map::iterator myFindKey(vLCString const& name, Map*& in);

    ZonProject& m_project;
    Map m_map;
    // Seismic-geometry tables (type SGD), apart from the stores: an ident
    // alone never names one, and each version is listed by the three parts
    // of its name details, "sgd,version,ident". "ident,sgd" finds one too.
    Map m_geometry;
    bool m_stale = false;
  };

  explicit ZonProject(vHandle<ProjectCatalog> const& catalog);
  ~ZonProject() override;

  void open(vLCString const& name) override;
  void close() override;
  vLCString getName() const override;
  ProjectType::PROJECT_TYPE getProjectType() const override;
  bool isOpen() const override { return (m_flags & 1) != 0; }
  vHandle<StoreList> getStoreList(vLCString const& storeClass, vLCString const& subClass) override;
  vHandle<StoreDetailsList> getStoreDetailsList(vLCString const& storeClass, vLCString const& subClass) override;
  vHandle<StoreDetailsList> getLightStoreDetailsList(vLCString const& storeClass, vLCString const& subClass) override;
  vString getProjectHost() const override;
  vString getServerHost() const override;
  bool deleteStore(vLCString const& name, int version, vLCString const& storeClass,
                   vLCString const& subClass) override;
  bool purgeStore(int keep, vLCString const& name, vLCString const& storeClass, vLCString const& subClass) override;
  bool hasStore(vLCString const& name, int version) override;
  StoreDetails getStoreDetails(vLCString const& name, int version) const override;
  AttributeSetDetailsList getAttributeSetDetails(vLCString const& name, int version) override;

  // Makes this project the one the library serves, and its session the
  // current one. Every store of the project calls it before the library.
  void setSession();
  // The session of this project, after setSession().
  kvs::KvsObject getSession();
  // See DatasetCache::locateNameComponents.
  bool locateNameComponents(vString& name, vString& ident, vString& type, vString& version) override;
  // See DatasetCache::findBestMatch.
  bool findBestMatch(vString const& name, vString& ident, vString& type) override;
  // See DatasetCache::findTrueSpelling: store names are held upper-case, the
  // database keeps the case its writer gave.
  bool findTrueSpelling(vString& ident, vString& type, vString& version);
  // Drops a store from the cache, or all of it, after a change.
  void removeFromCache(vLCString const& name);
  void emptyDatasetCache();
  vHandle<ZonProjectCatalog> getZonCatalog() const { return m_zonCatalog; }

 private:
  void myMustBeOpen(char const* method) const;
  DatasetCache& myCache() const;

  vHandle<ZonProjectCatalog> m_zonCatalog;
  unsigned int m_flags;
  vLCString m_name;
  vKvsProject* m_kvsProject;
  DatasetCache* m_cache;
};

#endif
