#ifndef PROJECT_CAPIATTRIBUTESETW_H
#define PROJECT_CAPIATTRIBUTESETW_H

// CapiAttributeSetW: one attribute set of the in-process back end, chosen
// when it is created or opened. The wrapper holds the project; create, open
// and update make the real set (CapiMaker::attributeSet) of the store's
// class and subclass, asking the project for them when the caller leaves
// them blank, and every other operation goes to that set. Before that, an
// operation is refused with "The AttributeSet has not been opened yet.".
// close() closes the set and lets it go.

#include "project/AttributeSet.h"

class CapiAttributeSetW : public AttributeSet {
 public:
  explicit CapiAttributeSetW(vHandle<Project> const& project);
  ~CapiAttributeSetW() override;

  // False while there is no set.
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
  bool prepareBuffer(AttributeSetBuffer& buffer) const override;
  void readBufferRange(AttributeSetBuffer& buffer, unsigned int first, unsigned int last) const override;

  // The real set; empty before create, open or update and after close.
  vHandle<AttributeSet> getAttributeSet() const { return m_set; }

 protected:
  // Fills a blank class or subclass from the project's details of the store.
  void myDetermineRealClass(vLCString const& name, int version, vLCString& className, vLCString& subClass) const;
  // A new set of the class and subclass, unless an open one is held.
  void myMakeAttributeSet(vLCString const& className, vLCString const& subClass);
  void myMustHaveAttributeSet(char const* method) const;

  vHandle<AttributeSet> m_set;
};

#endif
