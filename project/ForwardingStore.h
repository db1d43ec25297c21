#ifndef PROJECT_FORWARDINGSTORE_H
#define PROJECT_FORWARDINGSTORE_H

// ForwardingStore: a Store that passes its property, attribute-set and store
// operations on to another store, the one forwardTarget() names. A class
// that stands in front of a store (a view, or a shell over the store that
// does the work) derives from it and overrides what it changes.
//
// Not forwarded here, so that they keep the behaviour of the bases unless a
// derived class says otherwise: isSet, packProperties, unpackProperties,
// prepareBuffer, readBufferRange, flush, writeIMSRange and writeIMSList.

#include <list>
#include <vector>

#include "foundation/vHandle.h"
#include "project/Store.h"

class ForwardingStore : public Store {
 public:
  ~ForwardingStore() override;
  ForwardingStore(ForwardingStore const&) = delete;
  ForwardingStore& operator=(ForwardingStore const&) = delete;

  // --- PropertyI
  void addProperty(Property const& property) override;
  void addProperties(PropertyI const& other) override;
  void removeProperty(vUCString const& name) override;
  void removeProperty(iterator position) override;
  iterator beginProperty() override;
  const_iterator beginProperty() const override;
  iterator endProperty() override;
  const_iterator endProperty() const override;
  iterator findProperty(Property const& property) override;
  const_iterator findProperty(Property const& property) const override;
  iterator findProperty(vUCString const& name) override;
  const_iterator findProperty(vUCString const& name) const override;
  void clearProperties() override;
  unsigned int getNProperties() const override;
  bool hasProperty(Property const& property) const override;
  bool hasProperty(vUCString const& name) const override;
  void setPropertyList(PropertyI const& other) override;

  // --- AttributeSet
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
  void getKeyList(KeyList& keys) const override;
  void addInstances(unsigned int count) override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void addAttribute(Attribute const& attribute) override;
  void getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const override;
  std::list<Attribute> getAttributeList() const override;
  void getAttributeList(std::list<Attribute>& attributes) const override;
  std::list<Attribute> getAttributeList(vUCString const& text, AttributeMatch::AttributeMatchType match) const override;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  void read(Attribute& attribute, Attribute const& key, unsigned int firstGroup, unsigned int lastGroup) const override;
  void read(Attribute& attribute, KeyList const& keys) const override;
  Attribute getAttribute(vUCString const& name) const override;
  bool hasAttribute(vUCString const& name) const override;
  void setAttributeClass(vUCString const& name, vUCString const& className) override;
  unsigned int getNAttributes() const override;
  void getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                         vUtlSort::SortOrder::SortOrderType order) const override;
  vHandle<Project> getProject() const override;

  // --- Store
  void createAttributeSet(vLCString const& name, KeyList const& keys) override;
  void openAttributeSet(vLCString const& name) override;
  void updateAttributeSet(vLCString const& name) override;
  vHandle<AttributeSetList> getAttributeSetList() const override;
  void getAttributeSetList(AttributeSetList& names) const override;
  vLCString getAttributeSetName() const override;
  vLCString getPrimaryAttributeSetName() const override;
  bool operator==(Store const& other) const override;
  bool operator!=(Store const& other) const override;
  Store& operator=(PropertyI const& properties) override;
  using Store::hasProperty;
  bool hasProperty(vUCString const& name) override;
  bool hasProperty(Property const& property) override;

 protected:
  explicit ForwardingStore(vHandle<Project> const& project);

  // The store that takes the operations; a derived class that has none
  // fails here.
  virtual Store& forwardTarget() const = 0;
};

#endif
