#ifndef DECORATOR_ATTRIBUTESETDECORATOR_H
#define DECORATOR_ATTRIBUTESETDECORATOR_H

// AttributeSetDecorator: the forwarding base for wrappers of bare attribute
// sets. Every attribute-set operation goes to the set below untranslated.
// Properties are the exception: the decorator keeps a property interface of
// its own, in which only addProperty forwards; after create, open or update
// the decorator takes over (shares) the property list of the set below, so
// that from then on both show the same properties. prepareBuffer and
// readBufferRange are not forwarded: buffered reads go through this
// object's read().

#include <list>
#include <vector>

#include "foundation/vHandle.h"
#include "project/AttributeSet.h"

class AttributeSetDecorator : public AttributeSet {
 public:
  explicit AttributeSetDecorator(vHandle<AttributeSet> const& set);
  ~AttributeSetDecorator() override;

  void addProperty(Property const& property) override;

  bool isOpen() const override;
  void create(vLCString const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
              StoreCreationOptions const* options) override;
  // By the name form, with the store name of the full name.
  void create(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
              KeyList const& keys, StoreCreationOptions const* options) override;
  void open(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;
  // By the name form, with the store name and version of the full name.
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

  vHandle<AttributeSet> getDecoratedSet() const { return m_decoratedSet; }

 protected:
  // Takes over the property list of the set below.
  void myShareProperties();

  vHandle<AttributeSet> m_decoratedSet;
};

#endif
