#ifndef PROJECT_STOREFACTORY_H
#define PROJECT_STOREFACTORY_H

// StoreFactory: turns a StoreDescription into a live Store. It decides what
// kind of file a flat-file description names, builds the right file store,
// opens it and, for the Nyx formats, puts the attribute mapping on it.
//
// Every concrete store is known here by its class name only. The classes
// live in higher layers (the file stores, the in-memory store, the database
// store) and registerRondoClasses() tells this factory how to make each of
// them; nothing registers itself. Which class serves which file format tag
// or project type is this factory's own table:
//
//   "segy", "sgy", "dsegy"                      SegyDiskStore
//   "segd", "sgd", "dsegd"                      SegdDiskStore
//   "ascii", "txt"                              AsciiDiskStore
//   "shapefile", "shp"                          ShapefileDiskStore
//   "fdm"                                       FdmDiskStore
//   "offload"                                   OffloadDiskStore
//   "nyx", "cst", "dat", "nyxcst", "nyxdat"     NyxDiskStore
//
//   project type UnitTest                       InMemoryStore
//   project type Zonmesh                        ZonStore
//
// A tag whose class has no makers registered is handled as a tag of a
// format this build cannot read. A project type whose class has none is
// fatal and names the class.
//
// Stores pushed with pushStore() are handed out by the next create() calls,
// first in, first out, whatever the project: a test or a tool injects the
// store that a caller deep down is going to make. No locks: one thread.

#include <list>

#include "attribute/KeyList.h"
#include "foundation/vFilename.h"
#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "foundation/vString.h"
#include "project/Project.h"
#include "project/Store.h"
#include "project/StoreCreationOptions.h"
#include "project/StoreDescription.h"
#include "project/StoreOpenOptions.h"

class StoreFactory {
 public:
  // How a registered store class is made. Any of the four may be null.
  struct Makers {
    // A new, unopened store of a project.
    vHandle<Store> (*forProject)(vHandle<Project> const& project);
    // A file store built on no project and opened on the description.
    vHandle<Store> (*openFile)(StoreDescription const& description);
    // A new file store of that description (and, for the formats that hold
    // several, that attribute set).
    vHandle<Store> (*createFile)(StoreDescription const& description, vLCString const& attributeSetName);
    // A new store of a project-served description, made by the back end
    // itself rather than through a project.
    vHandle<Store> (*createServed)(StoreDescription const& description, vLCString const& attributeSetName,
                                   KeyList const& keys, StoreCreationOptions const* options);
  };

  // The file of a format description found for a Nyx data file; blank when
  // there is none.
  typedef vFilename (*NyxSpecificationFinder)(StoreDescription const& description);
  // The file of a text table's format description, found for a data file,
  // and the store class that description gives; a blank file when there is
  // none.
  typedef vFilename (*AsciiSpecificationFinder)(vFilename const& file, vLCString& storeClass);
  // The attribute mapping of a Nyx store: where its mapping file is, and the
  // view that applies it.
  struct AttributeMapping {
    bool (*resolve)(vFilename const& file, vString const& spec, vFilename& mapFile);
    vHandle<Store> (*apply)(vHandle<Store> store, vFilename const& mapFile);
  };

  // Sets the format, store class and possibly the format spec of a flat
  // file from its name alone; false when the name tells nothing.
  static bool identifyFileFormat(StoreDescription& description, StoreOpenOptions const* options);

  // A new, unopened store for the project, or the first pushed store.
  static vHandle<Store> create(vHandle<Project> project);

  // A store that a project serves is made by create() for its project and
  // then opened, made or opened for update by its own operation, under the
  // full store name and the store class of the description; the attribute
  // set name goes to that operation as the subclass, by which the
  // in-process back end picks a store's attribute set. A live in-memory
  // store is used as it is; only when it is closed is it opened, made or
  // opened for update under its own name. A flat file is opened by the
  // store of its format; only text tables, shapefiles and Nyx files can be
  // made, and none can be opened for update.
  static vHandle<Store> openStore(StoreDescription const& description, vLCString const& attributeSetName,
                                  StoreOpenOptions const* options);
  static vHandle<Store> createStore(StoreDescription const& description, vLCString const& attributeSetName,
                                    KeyList const& keys, StoreCreationOptions const* options);
  static vHandle<Store> updateStore(StoreDescription const& description, vLCString const& attributeSetName,
                                    StoreOpenOptions const* options);
  // True for an in-memory description; a flat file is fatal; otherwise the
  // project is asked.
  static bool hasStore(StoreDescription const& description);

  static void pushStore(vHandle<Store> store);
  static void clearStores();
  static unsigned int getNPushedStores();

  // --- registration (registerRondoClasses). Each returns what it replaces;
  // a null or empty argument removes the entry.
  static Makers registerMakers(vString const& className, Makers const& makers);
  static Makers getMakers(vString const& className);
  static NyxSpecificationFinder registerNyxSpecificationFinder(NyxSpecificationFinder finder);
  static AsciiSpecificationFinder registerAsciiSpecificationFinder(AsciiSpecificationFinder finder);
  static AttributeMapping registerAttributeMapping(AttributeMapping const& mapping);

  // The class that serves a file format tag (any case); blank for a tag
  // outside the table.
  static vString getFileStoreClass(vString const& tag);

 private:
  static std::list<vHandle<Store> >& myPushedStores();
  // The tag by which a flat file is dispatched: its format, or else what
  // identification or its extension gives. The copy takes the
  // identification.
  static vString myFileTag(StoreDescription& copy, StoreOpenOptions const* options);
  static vHandle<Store> myOpenFile(StoreDescription const& description, StoreOpenOptions const* options);
  static vHandle<Store> myCreateFile(StoreDescription const& description, vLCString const& attributeSetName);
  static vHandle<Store> myMapAttributes(vHandle<Store> store, StoreDescription const& description);
  // The fatal failures of a flat file whose tag no store takes.
  [[noreturn]] static void myCannotHandle(char const* label, StoreDescription const& description, vString const& tag);
};

#endif
