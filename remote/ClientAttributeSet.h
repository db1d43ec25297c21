#ifndef REMOTE_CLIENTATTRIBUTESET_H
#define REMOTE_CLIENTATTRIBUTESET_H

// ClientAttributeSet: an attribute set served by the data server of its
// project's catalog. Each operation is one request to the twin and one
// reply; what does not change while the set is open (name, class,
// subclass, version, attribute list, key list) is kept once asked for,
// each under its bit of the cache word.
//
// Properties are fetched at open and kept here; changes to them are local,
// allowed only on a set open for writing, and go to the server at close.
// After a lost connection the set opens (or updates) its new twin again
// with the same name, version and options, and makes up instances that a
// new server lacks, so the count the caller sees stays the same.

#include <cstdint>
#include <list>
#include <vector>

#include "foundation/vLCString.h"
#include "project/AttributeSet.h"
#include "remote/COB.h"

class ClientProject;
class Packer;
class StoreOpenOptions;

class ClientAttributeSet : public AttributeSet, public COB {
 public:
  enum CacheBit : uint32_t {
    NameBit = 1,
    ClassBit = 2,
    SubClassBit = 4,
    VersionBit = 8,
    AttributeListBit = 16,
    KeyListBit = 32
  };

  // The project must be a ClientProject.
  explicit ClientAttributeSet(vHandle<Project> const& project);
  ~ClientAttributeSet() override;

  bool isOpen() const override;
  void create(vLCString const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
              StoreCreationOptions const* options) override;
  void create(FullStoreName const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
              StoreCreationOptions const* options) override;
  void open(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;
  void open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;
  void update(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
              StoreOpenOptions const* options) override;
  void update(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
              StoreOpenOptions const* options) override;
  unsigned int getNInstances() const override;
  vLCString getClass() const override;
  vLCString getSubClass() const override;
  vLCString getName() const override;
  int getVersion() const override;
  void close() override;
  KeyList getKeyList() const override;
  using AttributeSet::getKeyList;
  void addInstances(unsigned int count) override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& key, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void addAttribute(Attribute const& attribute) override;
  void getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const override;
  std::list<Attribute> getAttributeList() const override;
  using AttributeSet::getAttributeList;
  std::list<Attribute> getAttributeList(vUCString const& text, AttributeMatch::AttributeMatchType match) const override;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  void read(Attribute& attribute, Attribute const& key, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, KeyList const& keys) const override;
  Attribute getAttribute(vUCString const& name) const override;
  bool hasAttribute(vUCString const& name) const override;
  void setAttributeClass(vUCString const& name, vUCString const& className) override;
  unsigned int getNAttributes() const override;
  void getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                         vUtlSort::SortOrder::SortOrderType order) const override;
  vHandle<Project> getProject() const override;

  // Property changes: local, on a set open for writing only.
  void addProperty(Property const& property) override;
  void addProperties(PropertyI const& other) override;
  void removeProperty(vUCString const& name) override;
  void removeProperty(PropertyI::iterator position) override;
  void clearProperties() override;
  // Not offered: fatal.
  void setPropertyList(PropertyI const& other) override;
  // Takes copies of other's properties in place of its own.
  ClientAttributeSet& operator=(PropertyI const& other);

  // Open sets compare by open state, instances, version and attribute list;
  // two closed sets are equal.
  bool operator==(AttributeSet const& other) const;
  bool operator!=(AttributeSet const& other) const { return !operator==(other); }

  // Brings a new twin to this set's state.
  void doCommsReinitialize() override;

  // What is answered without a message: the bits of CacheBit.
  uint32_t getCacheBits() const { return m_cache; }
  bool isWriteable() const { return m_writeable; }
  bool isCreated() const { return m_created; }

 private:
  ClientAttributeSet(ClientAttributeSet const&) = delete;
  ClientAttributeSet& operator=(ClientAttributeSet const&) = delete;

  static COB* myParent(vHandle<Project> const& project);
  void myResetCache() const;
  void myCheckWriteable(char const* operation) const;
  void mySendReceive(Packer& packer, char const* method) const;
  void myGetOK(Packer& packer, char const* method, int expected) const;
  // Open (212) or update (213).
  void myDoOpen(int code, vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
                StoreOpenOptions const* options);
  unsigned int myGetNInstances() const;
  void myGetProperties();
  void mySendProperties();
  // The attribute list, asked for once.
  void myFillAttributeList() const;

  bool m_open;
  bool m_writeable;
  bool m_created;
  mutable uint32_t m_cache;
  mutable vLCString m_name;
  mutable int m_version;
  mutable vLCString m_class;
  mutable vLCString m_subClass;
  mutable std::list<Attribute> m_attributes;
  mutable KeyList m_keys;
  mutable StoreOpenOptions* m_options;
  mutable uint32_t m_nInstances;
};

#endif
