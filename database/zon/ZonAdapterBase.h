#ifndef DATABASE_ZON_ZONADAPTERBASE_H
#define DATABASE_ZON_ZONADAPTERBASE_H

// ZonAdapterBase: how one type of dataset of a database project maps to the
// key list, attributes and properties of a store. The dataset is named by
// its name details (type, version, ident, domain); its data sit in one
// table, the one of that domain when the dataset has several, else the
// first the database sends (the server sends them in order of their
// names). That table is the store's primary attribute set; each other
// table of the dataset is a secondary set, named by its table (in lower
// case), which a store reads and writes in its turn, or makes anew. A
// table written as a secondary set is marked so, and is never taken for
// the primary one. A derived class says which columns and parameters mean
// what (doInit, doLoad, doWriteAll); the base opens and closes the dataset
// around them, on the table of the active set:
//
//   init      open for reading, doInit, close
//   load      open for reading, doLoad, close
//   writeAll  open for writing, doWriteAll, close, which sends the dataset
//
// Every entry into the database first makes the project's session the
// current one, so that stores of several projects can be used in turn.
// A dataset is held open only inside those three operations.

#include <list>

#include "attribute/Attribute.h"
#include "attribute/KeyList.h"
#include "attribute/PropertyI.h"
#include "database/zon/ZonStoreAttributeSetInfo.h"
#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "foundation/vString.h"
#include "project/Store.h"

class ZonProject;
namespace kvs {
struct KvsObjectRec;
}

class ZonAdapterBase {
 public:
  typedef kvs::KvsObjectRec* Object;

  explicit ZonAdapterBase(vHandle<ZonProject> const& project);
  virtual ~ZonAdapterBase();

  // The dataset of the name details must hold data: "Store not found %s".
  virtual void open(vLCString const& name);
  // A dataset to be written under the name details; nothing reaches the
  // database before writeAll.
  virtual void create(vString const& name, KeyList const& keys);
  virtual vLCString getClass() const = 0;
  virtual vLCString getSubClass() const;
  // The dataset's sets as open found them; another name: "Attribute set %s
  // is not in store %s.".
  virtual void openAttributeSet(vLCString const& name);
  virtual void updateAttributeSet(vLCString const& name);
  // A new table of the dataset, named by its dictionary class, made the
  // active set; it reaches the database with the next write. The name of
  // the store, or of a table the dataset holds: "Cannot create an
  // AttributeSet that has that same name as the Store '%s'." and "Cannot
  // create an AttributeSet called '%s' in Store '%s' because one already
  // exists."; a name the dictionary has no table for, or keys other than
  // the table's, are refused too.
  virtual void createAttributeSet(vLCString const& name, KeyList const& keys);
  virtual vHandle<Store::AttributeSetList> getAttributeSetList() const;
  virtual void getAttributeSetList(std::list<vLCString>& names);
  virtual vLCString getAttributeSetName() const;
  virtual vLCString getPrimaryAttributeSetName() const;
  virtual vHandle<ZonStoreAttributeSetInfo> getAttributeSetInfo();
  virtual unsigned int getNInstances() const;
  virtual vHandle<NameDetails> getNameDetails();
  virtual vHandle<NameDetails> const getNameDetails() const;
  virtual std::list<Attribute>& getAttributeList();
  virtual std::list<Attribute> const& getAttributeList() const;
  virtual KeyList& getKeyList();
  virtual KeyList const& getKeyList() const;
  // Definitions of the keys and attributes, and the properties, without data.
  virtual void doInit(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) = 0;
  // The same with all the data.
  virtual void doLoad(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) = 0;
  // Puts the attributes and properties into the dataset opened for writing.
  virtual void doWriteAll(std::list<Attribute>& attributes, KeyList const& keys, PropertyI const& properties) = 0;

  void init(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties);
  void load(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties);
  void writeAll(std::list<Attribute>& attributes, KeyList const& keys, PropertyI const& properties);
  // The store's name and the dataset it names, before open or create.
  void setNameDetails(vString const& storeName, vHandle<NameDetails> const& details);
  vString getStoreName() const;
  // The dataset a store name was found as: ident, type and version text as
  // the database spells them, which the name details, upper-case, cannot
  // tell apart when two idents differ only in case. Empty for a dataset
  // still to be made, which is then opened by its details.
  struct Spelling {
    vString ident;
    vString type;
    vString version;
  };
  void setSpelling(Spelling const& spelling) { mySpelling = spelling; }

  // Whether stores convert attribute values to the formats of the columns.
  static void setDataConversion(bool convert);

 protected:
  // Makes a set of the dataset the active one, for the reads and writes
  // that follow.
  void mySelectSet(char const* label, vLCString const& name);
  void myOpenForRead();
  void myOpenForWrite();
  // The ident, type and version text to open the dataset by.
  Spelling myDataset() const;
  // Sends the dataset when a replace is due, and lets it go.
  void myClose();
  void myWrite(Object object, long n);

  // --- Column work for the derived classes.
  // The table of the active set: for the primary one the table of the
  // name's domain, else the first; null when there is none.
  Object myFindTable() const;
  // The dictionary table to write: the one read, or for a new dataset the
  // translation of the class and subclass given at create.
  virtual vString myTableClass() const;
  // Every column of the table as an attribute, the key columns as the key
  // list; with data or as definitions.
  void myReadColumns(Object table, KeyList& keys, std::list<Attribute>& attributes, bool withData) const;
  // A new table of the class with a column for each attribute.
  Object myWriteColumns(vString const& tableClass, std::list<Attribute> const& attributes);
  // The parameters of a group as properties, and back.
  void myReadParameters(Object table, char const* group, PropertyI& properties) const;
  void myWriteParameters(Object table, char const* group, PropertyI const& properties) const;
  // The column that holds an attribute, and the attribute of a column; the
  // same names unless a derived class maps them.
  virtual vString myColumnName(vUCString const& attribute) const;
  virtual vUCString myAttributeName(vString const& column) const;
  // For failure texts: the store's name and the library's last error.
  vString myDescribe() const;

  Object myObject;
  vHandle<ZonProject> myProject;
  vHandle<ZonStoreAttributeSetInfo> myInfo;
  bool myReplaceDue;
  vString myStoreName;
  Spelling mySpelling;
  vString myTableType;
  vString myCreateClass;
  vString myCreateSubClass;
  KeyList myKeys;
  std::list<Attribute> myAttributes;
  // The tables of the secondary sets, as open found them, and the one of
  // the active set (empty: the primary one).
  std::list<vLCString> mySetTables;
  vLCString myActiveSet;
  // The class of the primary set's table. A table written as a secondary
  // set carries it in its parameters of group "ASET", so that the primary
  // set stays the same table whatever the order the server sends them in.
  vString myPrimaryTable;

  static bool myDataConversion;

 public:
  // The class and subclass that a create was given, for the table to write.
  void setCreateClass(vString const& className, vString const& subClass);
};

#endif
