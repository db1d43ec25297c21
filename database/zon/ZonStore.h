#ifndef DATABASE_ZON_ZONSTORE_H
#define DATABASE_ZON_ZONSTORE_H

// ZonStore: the store of a database project, as the factory hands it out.
// It is a thin shell: every store, attribute-set and property operation goes
// to the ZonStoreKVS it owns, which holds the data. The shell keeps the
// class-wide data-conversion choice of the database stores.

#include <memory>

#include "attribute/CapiAttribute.h"
#include "project/Store.h"

class ZonStoreKVS;

class ZonStore : public Store {
 public:
  explicit ZonStore(vHandle<Project> const& project);
  ~ZonStore() override;

  static Capi::eDataConversion getDataConversion();
  static void setDataConversion(Capi::eDataConversion conversion);

  // --- Properties
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
  bool hasProperty(vUCString const& name) override;
  bool hasProperty(Property const& property) override;
  void setPropertyList(PropertyI const& other) override;
  bool isSet() const override;
  void packProperties(Packer& packer) const override;
  void unpackProperties(Packer& packer) override;

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
  void readBufferRange(AttributeSetBuffer& buffer, unsigned int first, unsigned int last) const override;

  // --- Store
  void createAttributeSet(vLCString const& name, KeyList const& keys) override;
  void openAttributeSet(vLCString const& name) override;
  void updateAttributeSet(vLCString const& name) override;
  void flush() override;
  vHandle<AttributeSetList> getAttributeSetList() const override;
  void getAttributeSetList(AttributeSetList& names) const override;
  vLCString getAttributeSetName() const override;
  vLCString getPrimaryAttributeSetName() const override;
  bool operator==(Store const& other) const override;
  bool operator!=(Store const& other) const override;
  Store& operator=(PropertyI const& properties) override;

  // The store that does the work.
  ZonStoreKVS& getImplementation() const { return *m_imp; }

 private:
  ZonStore(ZonStore const&) = delete;
  ZonStore& operator=(ZonStore const&) = delete;

  static Capi::eDataConversion m_dataConversion;
  std::unique_ptr<ZonStoreKVS> m_imp;
};

#endif
