#ifndef FILESTORE_DISK_DISKSTORE_H
#define FILESTORE_DISK_DISKSTORE_H

// DiskStore: the base of every store that lives in files. Its defaults
// refuse the writing side and the questions a file store must answer for
// itself, each with a fatal message labelled by the operation; a concrete
// store overrides what it supports. Reads by key values and by groups, and
// the group questions, are answered here through an indexing table built on
// the store itself, which reads by instance number through the store's own
// read(attribute, first, last): so a new disk store that can read by
// instance number (range and list) and say what it holds (getNInstances,
// getNAttributes, getAttribute, hasAttribute, getName) has key and group
// access too.
//
// A DiskStore is made closed; the concrete store's own open makes it open.
// The table asks the store nothing before the first key or group question,
// so the concrete store may fill in its attributes after this base is
// built. Not copyable: the table refers to this object.

#include "filestore/disk/AttributeSetIndexingTable.h"
#include "foundation/vHandle.h"
#include "project/Store.h"

class DiskStore : public Store {
 public:
  // project may be empty, for a file opened without one.
  explicit DiskStore(vHandle<Project> const& project);
  ~DiskStore() override;
  DiskStore(DiskStore const&) = delete;
  DiskStore& operator=(DiskStore const&) = delete;

  // --- Properties: those of PropertyI.
  void addProperty(Property const& property) override;
  void addProperties(PropertyI const& other) override;
  void removeProperty(vUCString const& name) override;
  void removeProperty(iterator position) override;
  void setPropertyList(PropertyI const& other) override;
  void clearProperties() override;

  // --- Opened by the concrete store's own open, by file name.
  void open(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;
  void open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;

  // --- Refused here.
  void create(vLCString const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
              StoreCreationOptions const* options) override;
  void create(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
              KeyList const& keys, StoreCreationOptions const* options) override;
  void update(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
              StoreOpenOptions const* options) override;
  void update(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
              StoreOpenOptions const* options) override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void setAttributeClass(vUCString const& name, vUCString const& className) override;
  void createAttributeSet(vLCString const& name, KeyList const& keys) override;
  void updateAttributeSet(vLCString const& name) override;
  void openAttributeSet(vLCString const& name) override;
  vHandle<AttributeSetList> getAttributeSetList() const override;
  void getAttributeSetList(AttributeSetList& names) const override;
  vLCString getAttributeSetName() const override;
  vLCString getPrimaryAttributeSetName() const override;
  vLCString getClass() const override;
  vLCString getSubClass() const override;
  void addInstances(unsigned int count) override;
  Store& operator=(PropertyI const& properties) override;
  void addAttribute(Attribute const& attribute) override;
  bool operator==(Store const& other) const override;
  bool operator!=(Store const& other) const override;
  int getVersion() const override;
  unsigned int getNAttributes() const override;

  vHandle<Project> getProject() const override;

  // --- Through the indexing table.
  // The instances of the key tuples, read by the list read.
  void read(Attribute& attribute, KeyList const& keys) const override;
  // The instances of the groups, read by the list read.
  void read(Attribute& attribute, Attribute const& groups, unsigned int firstGroup,
            unsigned int lastGroup) const override;
  void getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                         vUtlSort::SortOrder::SortOrderType order) const override;
  void getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const override;

  // The concrete store's reads by instance number.
  using Store::read;

 protected:
  AttributeSetIndexingTable& getIndexingTable() const { return *m_indexingTable; }

 private:
  vHandle<AttributeSetIndexingTable> m_indexingTable;
};

#endif
