#include "database/zon/ZonAdapterBase.h"

#include <algorithm>
#include <cstring>
#include <strings.h>

#include "database/kvs/Kvs.h"
#include "database/kvs/KvsDict.h"
#include "database/kvs/KvsObject.h"
#include "database/zon/CapiZon.h"
#include "database/zon/ZonBuildAttribute.h"
#include "database/zon/ZonClassNamesTranslator.h"
#include "database/zon/ZonProject.h"
#include "foundation/Message.h"

using namespace kvs;

bool ZonAdapterBase::myDataConversion = true;

ZonAdapterBase::ZonAdapterBase(vHandle<ZonProject> const& project)
    : myObject(nullptr), myProject(project), myInfo(new ZonStoreAttributeSetInfo), myReplaceDue(false) {}

// A dataset is only held inside init, load and writeAll, which let it go
// on every way out.
ZonAdapterBase::~ZonAdapterBase() {}

void ZonAdapterBase::setDataConversion(bool convert) { myDataConversion = convert; }

void ZonAdapterBase::setCreateClass(vString const& className, vString const& subClass) {
  myCreateClass = className;
  myCreateSubClass = subClass;
}

void ZonAdapterBase::setNameDetails(vString const& storeName, vHandle<NameDetails> const& details) {
  myStoreName = storeName;
  myInfo->setNameDetails(details);
}

vString ZonAdapterBase::getStoreName() const { return myStoreName; }

void ZonAdapterBase::open(vLCString const& name) {
  myOpenForRead();
  myActiveSet = vLCString();
  Object const table = myFindTable();
  if (table) myTableType = KvsType(table);
  myPrimaryTable = myTableType;
  mySetTables.clear();
  for (Object child : myObject->children)
    if (child != table && KvsIsA(child, kvsTableClass)) mySetTables.push_back(vLCString(KvsType(child)));
  myClose();
  if (!table) Message::fatal("ZonAdapterBase::open", 0, "Store not found %s", vString(name).c_str());
}

void ZonAdapterBase::create(vString const&, KeyList const& keys) {
  myTableType = vString();
  mySetTables.clear();
  myActiveSet = vLCString();
  myKeys = keys;
  myAttributes.clear();
  myInfo->setNInstances(0);
  myPrimaryTable = myTableClass();
}

vLCString ZonAdapterBase::getSubClass() const { return vLCString(); }

// The set's table is found again, and its type taken, when it is read.
void ZonAdapterBase::mySelectSet(char const* label, vLCString const& name) {
  if (name == getPrimaryAttributeSetName()) {
    myActiveSet = vLCString();
  } else if (std::find(mySetTables.begin(), mySetTables.end(), name) != mySetTables.end()) {
    myActiveSet = name;
  } else {
    Message::fatal(label, 0, "Attribute set %s is not in store %s.", name.c_str(), getStoreName().c_str());
  }
  myTableType = vString();
}

void ZonAdapterBase::openAttributeSet(vLCString const& name) { mySelectSet("ZonAdapterBase::openAttributeSet", name); }

void ZonAdapterBase::updateAttributeSet(vLCString const& name) {
  mySelectSet("ZonAdapterBase::updateAttributeSet", name);
}

void ZonAdapterBase::createAttributeSet(vLCString const& name, KeyList const& keys) {
  char const* const label = "ZonAdapterBase::createAttributeSet";
  vString const store = getStoreName();
  if (name == getPrimaryAttributeSetName())
    Message::fatal(label, 0, "Cannot create an AttributeSet that has that same name as the Store '%s'.",
                   store.c_str());
  vString table(name.c_str());
  table.toUpperCase();
  if (strcasecmp(table.c_str(), myPrimaryTable.c_str()) == 0 ||
      std::find(mySetTables.begin(), mySetTables.end(), name) != mySetTables.end())
    Message::fatal(label, 0, "Cannot create an AttributeSet called '%s' in Store '%s' because one already exists.",
                   name.c_str(), store.c_str());
  long const tab = KvsDtTab(table.c_str());
  if (tab == 0)
    Message::fatal(label, 0, "Cannot create an AttributeSet called '%s' in Store '%s': the database knows no table %s.",
                   name.c_str(), store.c_str(), table.c_str());
  // The database keys a table by its dictionary's columns; other keys
  // would come back changed.
  vString wanted, given;
  for (long key : {KvsDtKey1(tab), KvsDtKey2(tab)}) {
    char const* column = key ? KvsDtAttName(key) : nullptr;
    if (column) wanted += vString(wanted.isEmpty() ? "" : ",") + vString(myAttributeName(vString(column)).c_str());
  }
  for (Attribute const& key : keys) given += vString(given.isEmpty() ? "" : ",") + vString(key.getName().c_str());
  if (wanted != given)
    Message::fatal(label, 0, "The keys of AttributeSet '%s' in Store '%s' are (%s), not (%s).", name.c_str(),
                   store.c_str(), wanted.c_str(), given.c_str());
  mySetTables.push_back(name);
  myActiveSet = name;
  myTableType = table;
  myKeys = keys;
  myAttributes.clear();
  myInfo->setNInstances(0);
}

vHandle<Store::AttributeSetList> ZonAdapterBase::getAttributeSetList() const {
  vHandle<Store::AttributeSetList> names(new Store::AttributeSetList(1, getPrimaryAttributeSetName()));
  names->insert(names->end(), mySetTables.begin(), mySetTables.end());
  return names;
}

void ZonAdapterBase::getAttributeSetList(std::list<vLCString>& names) { names = *getAttributeSetList(); }

vLCString ZonAdapterBase::getAttributeSetName() const {
  return myActiveSet.isEmpty() ? getPrimaryAttributeSetName() : myActiveSet;
}

vLCString ZonAdapterBase::getPrimaryAttributeSetName() const { return vLCString(getStoreName()); }

vHandle<ZonStoreAttributeSetInfo> ZonAdapterBase::getAttributeSetInfo() { return myInfo; }

unsigned int ZonAdapterBase::getNInstances() const { return myInfo->getNInstances(); }

vHandle<NameDetails> ZonAdapterBase::getNameDetails() { return myInfo->getNameDetails(); }

vHandle<NameDetails> const ZonAdapterBase::getNameDetails() const { return myInfo->getNameDetails(); }

std::list<Attribute>& ZonAdapterBase::getAttributeList() { return myAttributes; }

std::list<Attribute> const& ZonAdapterBase::getAttributeList() const { return myAttributes; }

KeyList& ZonAdapterBase::getKeyList() { return myKeys; }

KeyList const& ZonAdapterBase::getKeyList() const { return myKeys; }

void ZonAdapterBase::init(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) {
  CapiZon::timer("ZonAdapterBase::init", 1);
  myOpenForRead();
  CapiZon::timer("ZonAdapterBase::init", 2);
  try {
    doInit(keys, attributes, properties);
  } catch (...) {
    myClose();
    throw;
  }
  CapiZon::timer("ZonAdapterBase::init", 3);
  myClose();
  CapiZon::timer("ZonAdapterBase::init", 4);
  myKeys = keys;
  myAttributes = attributes;
}

void ZonAdapterBase::load(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) {
  CapiZon::timer("ZonAdapterBase::load", 1);
  myOpenForRead();
  CapiZon::timer("ZonAdapterBase::load", 2);
  try {
    doLoad(keys, attributes, properties);
  } catch (...) {
    myClose();
    throw;
  }
  CapiZon::timer("ZonAdapterBase::load", 3);
  myClose();
  CapiZon::timer("ZonAdapterBase::load", 4);
}

void ZonAdapterBase::writeAll(std::list<Attribute>& attributes, KeyList const& keys, PropertyI const& properties) {
  CapiZon::timer("ZonAdapterBase::writeAll", 1);
  myOpenForWrite();
  CapiZon::timer("ZonAdapterBase::writeAll", 2);
  try {
    doWriteAll(attributes, keys, properties);
  } catch (...) {
    // Nothing of a failed write goes to the database.
    myReplaceDue = false;
    myClose();
    throw;
  }
  CapiZon::timer("ZonAdapterBase::writeAll", 3);
  myClose();
  CapiZon::timer("ZonAdapterBase::writeAll", 4);
}

vString ZonAdapterBase::myDescribe() const { return getStoreName(); }

ZonAdapterBase::Spelling ZonAdapterBase::myDataset() const {
  if (!mySpelling.ident.isEmpty()) return mySpelling;
  // The name is held upper-case; the dataset keeps its writer's case.
  vHandle<NameDetails> const name = myInfo->getNameDetails();
  Spelling dataset{name->getIdent(), name->getType(), name->getVersion()};
  myProject->findTrueSpelling(dataset.ident, dataset.type, dataset.version);
  return dataset;
}

void ZonAdapterBase::myOpenForRead() {
  myProject->setSession();
  Spelling const dataset = myDataset();
  KvsObject const session = KvsCurrentSession();
  myObject = session ? KvsOpen(session, KvsNident, dataset.ident.c_str(), KvsNtype, dataset.type.c_str(),
                               KvsNversion, dataset.version.c_str(), KvsNmode, 1L, 0L)
                     : nullptr;
  if (!myObject)
    Message::fatal("ZonAdapterBase::myOpenForRead", 0, "Error opening store %s:%s", getStoreName().c_str(),
                   KvsErrorString());
  myReplaceDue = false;
}

void ZonAdapterBase::myOpenForWrite() {
  myProject->setSession();
  Spelling const dataset = myDataset();
  KvsObject const session = KvsCurrentSession();
  myObject = session ? KvsOpen(session, KvsNident, dataset.ident.c_str(), KvsNtype, dataset.type.c_str(),
                               KvsNversion, dataset.version.c_str(), KvsNmode, 2L, 0L)
                     : nullptr;
  if (!myObject)
    Message::fatal("ZonAdapterBase::myOpenForWrite", 0, "Requested Store '%s' could not be created.%s",
                   getStoreName().c_str(), KvsErrorString());
  myReplaceDue = true;
}

void ZonAdapterBase::myClose() {
  if (!myObject) return;
  Object const object = myObject;
  myObject = nullptr;
  // A dataset given no table (a seismic one, whose traces are not written
  // here) has nothing to send.
  if (myReplaceDue && !object->children.empty()) {
    myReplaceDue = false;
    int const rc = KvsReplace(object);
    if (rc != 0) {
      KvsClose(object);
      Message::fatal("ZonAdapterBase::myClose", 0, "Error replacing store %s:%d:%s", getStoreName().c_str(), rc,
                     KvsErrorString());
    }
  }
  // Closing a dataset also takes it out of the session's tree.
  if (KvsClose(object) != 0)
    Message::fatal("ZonAdapterBase::myClose", 0, "Error closing store %s:%s", getStoreName().c_str(),
                   KvsErrorString());
}

void ZonAdapterBase::myWrite(Object object, long n) {
  if (n < 1) return;
  long const written = KvsWrite(object, n);
  if (written != n)
    Message::fatal("ZonAdapterBase::myWrite", 0, "Error writing data %d %s:%s", static_cast<int>(n),
                   getStoreName().c_str(), KvsErrorString());
}

ZonAdapterBase::Object ZonAdapterBase::myFindTable() const {
  if (!myObject) return nullptr;
  vString const domain = myInfo->getNameDetails()->getDomain();
  Object first = nullptr;
  for (Object child : myObject->children) {
    if (!KvsIsA(child, kvsTableClass)) continue;
    if (!myActiveSet.isEmpty()) {
      if (strcasecmp(KvsType(child), myActiveSet.c_str()) == 0) return child;
      continue;
    }
    if (KvsFind(child, "ASET")) continue;
    if (!first) first = child;
    char const* its = KvsDomain(child);
    if (its && strcasecmp(its, domain.c_str()) == 0) return child;
  }
  return first;
}

vString ZonAdapterBase::myTableClass() const {
  if (!myTableType.isEmpty()) return myTableType;
  vString zonClass, table;
  ZonClassNamesTranslator::convertRondoVToZon(myCreateClass, myCreateSubClass, zonClass, table);
  return table;
}

vString ZonAdapterBase::myColumnName(vUCString const& attribute) const { return vString(attribute.c_str()); }

vUCString ZonAdapterBase::myAttributeName(vString const& column) const { return vUCString(column.c_str()); }

void ZonAdapterBase::myReadColumns(Object table, KeyList& keys, std::list<Attribute>& attributes,
                                   bool withData) const {
  keys.clear();
  attributes.clear();
  Attribute key[2];
  long rows = 0;
  KvsGet(table, KvsNsize, &rows, 0L);
  for (Object child : table->children) {
    if (!KvsIsA(child, kvsArrayClass)) continue;
    Attribute column;
    if (withData) {
      column = ZonBuildAttribute::buildDornAttribute(child);
    } else {
      char const* format = nullptr;
      KvsGet(child, KvsNformat, &format, 0L);
      column = Attribute(vUCString(child->name.c_str()), vUCString(), ZonBuildAttribute::getDataType(
                                                                          ZonBuildAttribute::getCode(format)));
    }
    vUCString const name = myAttributeName(vString(child->name.c_str()));
    column.setName(name);
    if (ZonBuildAttribute::getAttributeConversion() == Capi::eAttributeTranslation) column.setClass(name);
    int const keyNumber = KvsIsKey(child);
    if (keyNumber == 1 || keyNumber == 2) key[keyNumber - 1] = Attribute(column);
    attributes.push_back(std::move(column));
  }
  for (Attribute const& k : key)
    if (!k.getName().isEmpty()) keys.addKey(k);
  myInfo->setNInstances(static_cast<unsigned int>(rows));
}

ZonAdapterBase::Object ZonAdapterBase::myWriteColumns(vString const& tableClass,
                                                     std::list<Attribute> const& attributes) {
  Object const table = KvsCreate(myObject, KvsNname, tableClass.c_str(), 0L);
  if (!table)
    Message::fatal("ZonAdapterBase::myWriteColumns", 0, "Error creating table %s for %s:%s", tableClass.c_str(),
                   getStoreName().c_str(), KvsErrorString());
  std::vector<Object> columns;
  for (Attribute const& attribute : attributes) {
    vString const column = myColumnName(attribute.getName());
    Object const array = KvsCreate(table, KvsNname, column.c_str(), 0L);
    if (!array)
      Message::fatal("ZonAdapterBase::myWriteColumns", 0, "Error creating column %s for %s:%s", column.c_str(),
                     getStoreName().c_str(), KvsErrorString());
    columns.push_back(array);
  }
  if (!myActiveSet.isEmpty()) {
    KvsParam primary;
    primary.name = "PRIMARY";
    primary.cls = "ASET";
    primary.fmt = "C";
    primary.text = myPrimaryTable.c_str();
    KvsParamPut(KvsCreate(table, KvsNclass, "ASET", 0L), primary);
  }
  std::size_t at = 0;
  for (Attribute const& attribute : attributes) {
    if (attribute.getLength() != 1 || attribute.isVariableLength())
      Message::fatal("ZonAdapterBase::myWriteColumns", 0, "Attribute %s of %s is not a scalar.",
                     attribute.getName().c_str(), getStoreName().c_str());
    Object const array = columns[at++];
    if (attribute.getNInstances() == 0) continue;
    std::vector<unsigned char> block;
    ZonBuildAttribute::buildDornColumn(array, attribute, myDataConversion, block);
    myWrite(array, static_cast<long>(attribute.getNInstances()));
    KvsSet(array, KvsNdata, static_cast<void*>(nullptr), KvsNfmt, "", 0L);
  }
  return table;
}

void ZonAdapterBase::myReadParameters(Object table, char const* group, PropertyI& properties) const {
  for (Object child : table->children) {
    if (!KvsIsA(child, kvsParamsClass) || child->name != group) continue;
    for (KvsParam const& p : static_cast<KvsParamsRec*>(child)->params) {
      vUCString const name(p.name.c_str());
      if (properties.hasProperty(name)) properties.removeProperty(name);
      if (p.fmt == "INT")
        properties.addProperty(Property(name, static_cast<int>(p.i)));
      else if (p.fmt == "FLT")
        properties.addProperty(Property(name, p.f));
      else if (p.fmt == "DBL")
        properties.addProperty(Property(name, p.d));
      else
        properties.addProperty(Property(name, vString(p.text.c_str())));
    }
  }
}

void ZonAdapterBase::myWriteParameters(Object table, char const* group, PropertyI const& properties) const {
  Object params = nullptr;
  for (PropertyI::const_iterator it = properties.beginProperty(); it != properties.endProperty(); ++it) {
    Property const& property = *it;
    if (property.getNElements() != 1 || property.getName().length() > 8) continue;
    KvsParam p;
    p.name = property.getName().c_str();
    p.cls = group;
    switch (property.getDataType()) {
      case vINT16:
      case vINT32:
      case vUINT16:
      case vUINT32:
        p.fmt = "INT", p.i = property.getInt32();
        break;
      case vFLOAT32:
        p.fmt = "FLT", p.f = property.getFloat32();
        break;
      case vFLOAT64:
        p.fmt = "DBL", p.d = property.getFloat64();
        break;
      case vSTRING:
        p.fmt = "C", p.text = property.getString().c_str();
        break;
      default:
        continue;
    }
    if (!params) params = KvsCreate(table, KvsNclass, group, 0L);
    KvsParamPut(params, p);
  }
}
