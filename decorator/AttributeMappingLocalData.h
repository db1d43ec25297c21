#ifndef DECORATOR_ATTRIBUTEMAPPINGLOCALDATA_H
#define DECORATOR_ATTRIBUTEMAPPINGLOCALDATA_H

// AttributeMappingDecorator::LocalData: the schema of a mapping view under
// construction and, once built, its attribute list and key list. Attributes
// keep the order in which they were declared.

#include <list>
#include <map>
#include <vector>

#include "attribute/KeyList.h"
#include "decorator/AttributeMappingDecorator.h"
#include "decorator/AttributeMappingParserInfo.h"
#include "project/StoreDescription.h"

class AttributeMappingDecorator::LocalData {
 public:
  LocalData(vHandle<Store> store, Store& view, bool writeMode);

  // A new computed attribute; a name defined before is fatal.
  void addVariable(vHandle<ParserInfo> const& parser);
  // Attributes of the store taken over as they are.
  void addExistingAttributes(std::vector<vUCString> const& names, bool preserve);
  void saveKeyNames(std::vector<vUCString> const& names) { m_keyNames = names; }
  void setStoreClass(vLCString const& name) { m_class = name; }
  void setStoreSubClass(vLCString const& name) { m_subClass = name; }
  vLCString const& getStoreClass() const { return m_class; }
  vLCString const& getStoreSubClass() const { return m_subClass; }

  void buildNewAttributeLists();
  std::list<Attribute> const& getAttributeList() const { return m_attributes; }
  Attribute getAttribute(vUCString const& name) const;
  bool hasAttribute(vUCString const& name) const;
  KeyList getKeyList() const;

  // Write mode: where and how the store is to be made at the first write.
  void setCreation(StoreDescription const& description, vLCString const& attributeSetName, KeyList const& keys,
                   StoreCreationOptions const* options);
  // Write mode: the listed instances of source through the expressions,
  // appended to the store, which the first write makes.
  void write(AttributeSet const& source, std::vector<unsigned int> const& instances);
  bool isStoreCreated() const { return m_created; }
  bool isWriteMode() const { return m_writeMode; }

  // The attribute's values over the store's instances.
  void read(Attribute& attribute, unsigned int first, unsigned int last) const;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const;

 private:
  ParserInfo const& myParser(Attribute const& attribute) const;
  void createDeferredStore(AttributeSet const& source);

  vHandle<Store> m_store;
  Store& m_view;
  bool m_writeMode;
  vLCString m_class;
  vLCString m_subClass;
  std::vector<vUCString> m_keyNames;
  std::map<vUCString, vHandle<ParserInfo> > m_parsers;
  std::map<vUCStringTableData const*, Attribute> m_existing;
  std::vector<vUCString> m_order;
  std::list<Attribute> m_attributes;
  StoreDescription m_description;
  vLCString m_attributeSetName;
  KeyList m_creationKeys;
  StoreCreationOptions const* m_options = nullptr;
  bool m_created = false;
};

#endif
