#ifndef TESTING_TESTMEMORYSTORE_H
#define TESTING_TESTMEMORYSTORE_H

// A store held in memory for tests of the store layer and of views: a small
// but complete implementation of the AttributeSet contract, so that code
// above the contract can be tested against real behaviour before (and
// beside) the production back ends.
//
// TestMemoryShelf stands for the place where sets are kept: each named set
// (a store's primary set, or a secondary set under its constructed name)
// lives on the shelf with its data, key list and properties, and survives
// the closing of the objects that opened it. TestMemoryAttributeSet opens,
// creates and updates sets on a shelf; TestMemoryStore is a StoreImp whose
// sets are TestMemoryAttributeSets on its shelf.
//
// The checks and failure texts of the set are those of the in-process
// attribute sets of the system (range, list, group and key checks), so that
// the shared conformance suite holds this double to the same texts.
//
// Attributes of a fixed length of types vINT16, vINT32, vINT64, vFLOAT32,
// vFLOAT64 and vSTRING are kept; group and key attributes are scalars.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "attribute/Attribute.h"
#include "attribute/KeyList.h"
#include "attribute/PropertyI.h"
#include "project/AttributeSet.h"
#include "project/StoreImp.h"

struct TestMemorySetData {
  vLCString name;
  vLCString className;
  vLCString subClass;
  int version = 0;
  KeyList keys;
  unsigned int nInstances = 0;
  // Each attribute holds all instances.
  std::vector<std::unique_ptr<Attribute>> attributes;
  PropertyI properties;
};

class TestMemoryShelf {
 public:
  // The set of that name, or null.
  std::shared_ptr<TestMemorySetData> find(vLCString const& name) const;
  // A new, empty set of that name, replacing an older one; its version is
  // one above the one it replaces.
  std::shared_ptr<TestMemorySetData> make(vLCString const& name);
  std::vector<vLCString> getNames() const;

 private:
  std::map<std::string, std::shared_ptr<TestMemorySetData>> m_sets;
};

class TestMemoryAttributeSet : public AttributeSet {
 public:
  TestMemoryAttributeSet(vHandle<Project> const& project, std::shared_ptr<TestMemoryShelf> const& shelf);
  ~TestMemoryAttributeSet() override;

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
  void addInstances(unsigned int count) override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void addAttribute(Attribute const& attribute) override;
  void getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const override;
  std::list<Attribute> getAttributeList() const override;
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

  bool isWriteable() const { return m_writeable; }

 private:
  void myOpen(char const* label, vLCString const& name, int version, bool writeable);
  void myMustBeOpen(char const* label) const;
  void myMustNotBeOpen(char const* label) const;
  void myMustBeModifiable(char const* label) const;
  void myMustHaveAttribute(char const* label, vUCString const& name) const;
  void myCheckFirstLast(unsigned int first, unsigned int last, unsigned int nInstances) const;
  // The last instance a range stands for: a last of 0 is the last one.
  unsigned int myCheckRange(char const* label, Attribute const& attribute, unsigned int first,
                            unsigned int last) const;
  void myCheckList(char const* label, Attribute const& attribute, std::vector<unsigned int> const& list) const;
  void myKeysCheck(KeyList const& keys) const;
  Attribute* myFind(vUCString const& name) const;
  // The instances of groups first to last (last 0: to the last group).
  std::vector<unsigned int> myLocateByGroups(char const* label, Attribute const& key, unsigned int first,
                                             unsigned int last) const;
  // The first instance of each key tuple, 0 for a tuple not found.
  std::vector<unsigned int> myLocateByKeys(KeyList const& keys) const;
  // The distinct values of a scalar attribute, ascending, with the
  // instances of each.
  std::map<double, std::vector<unsigned int>> myGroups(char const* label, vUCString const& name) const;
  void myReadList(char const* label, Attribute& attribute, std::vector<unsigned int> const& list) const;
  void myWriteList(char const* label, Attribute const& attribute, std::vector<unsigned int> const& list);
  void myKeysFound(std::vector<unsigned int> const& found, unsigned int wanted) const;

  std::shared_ptr<TestMemoryShelf> m_shelf;
  std::shared_ptr<TestMemorySetData> m_data;
  bool m_open;
  bool m_writeable;
};

class TestMemoryStore : public StoreImp {
 public:
  explicit TestMemoryStore(vHandle<Project> const& project,
                           std::shared_ptr<TestMemoryShelf> const& shelf = std::make_shared<TestMemoryShelf>());
  // Closes the store when it is still open.
  ~TestMemoryStore() override;

  // How many set objects the store has made, for tests of laziness.
  int getNSetsMade() const { return m_nSetsMade; }
  // The active and the primary set.
  vHandle<AttributeSet> getActiveSet() const { return m_active; }
  vHandle<AttributeSet> getPrimarySet() const { return m_primary; }

 protected:
  vHandle<AttributeSet> doCreateAttributeSet(vHandle<Project> const& project) const override;

 private:
  std::shared_ptr<TestMemoryShelf> m_shelf;
  mutable int m_nSetsMade;
};

#endif
