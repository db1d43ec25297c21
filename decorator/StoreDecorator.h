#ifndef DECORATOR_STOREDECORATOR_H
#define DECORATOR_STOREDECORATOR_H

// StoreDecorator: a Store that owns another Store and passes everything on to
// it. Views derive from it and override what they change; what they leave
// alone reaches the store below untranslated: the same instance numbers,
// names and arguments.
//
// The decorator shares the decorated store's project and properties (the
// property interface forwards). A handful of operations are deliberately not
// forwarded and keep the behaviour of the bases: isSet, packProperties,
// unpackProperties, prepareBuffer, readBufferRange, flush, writeIMSRange and
// writeIMSList. readBufferRange thus reads through this object's own read(),
// so that a view's instance map applies to buffered reads too, and flush does
// not reach the store below: a caller who needs that asks for
// getDecoratedStore().
//
// A decorator never closes the store below on its destruction; the counted
// handle alone decides when that store goes. After releaseDecoratedStore()
// every forwarded call fails in the handle's null check.
//
// Decorators are made and unstacked by StoreDecoratorFactory. One thread at
// a time.

#include <list>
#include <vector>

#include "foundation/vHandle.h"
#include "project/Store.h"

class StoreDecorator : public Store {
 public:
  // Holds its own reference to store and takes over its project.
  explicit StoreDecorator(vHandle<Store> const& store);
  ~StoreDecorator() override;

  // --- PropertyI: the properties of the store below.
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
  void create(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
              KeyList const& keys, StoreCreationOptions const* options) override;
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
  void read(Attribute& attribute, Attribute const& key, unsigned int firstGroup,
            unsigned int lastGroup) const override;
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

  // --- The store below.
  // Hands back a counted copy and leaves this decorator with an empty handle.
  virtual vHandle<Store> releaseDecoratedStore();
  // A counted copy.
  virtual vHandle<Store> getDecoratedStore() const;
  // Replaces the store below; the same (non-null) object changes nothing.
  virtual void setDecoratedStore(vHandle<Store> store);

 protected:
  StoreDecorator(StoreDecorator const&) = delete;
  StoreDecorator& operator=(StoreDecorator const&) = delete;

  vHandle<Store> m_decoratedStore;
};

#endif
