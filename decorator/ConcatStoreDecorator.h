#ifndef DECORATOR_CONCATSTOREDECORATOR_H
#define DECORATOR_CONCATSTOREDECORATOR_H

// ConcatStoreDecorator: a view of the attribute sets of one store end to
// end, as one set: the instances of the first set, then those of the
// second, and so on. All sets must have the key list and the attributes of
// the first (the primary) set, of fixed length.
//
// A view that has lost the set boundaries still tells instances apart:
// unless "offset.bin" is a key already, it becomes the first key where the
// sets have it as an attribute; otherwise a sequence attribute
// ("attributeset.sequence", the set's number counted from 1) joins the
// attributes and, except for offload header stores, leads the keys.
//
// The sets are examined at the first question asked of the view. Reads by
// range and by list only; the rest of the reads, and writes, are refused.
// Each location of a read opens its set on the store below, which has one
// current set.

#include <list>
#include <map>
#include <vector>

#include "attribute/Attribute.h"
#include "attribute/KeyList.h"
#include "decorator/StoreDecorator.h"
#include "foundation/vUCStringTable.h"

struct ConcatStoreDecoratorData {
  vLCString setName;
  // Instances first to last of the view.
  unsigned int first;
  unsigned int last;
  unsigned int nInstances;
  // 1 for the first set.
  int sequence;
};

// Instances first to last of one set, count of them; for the gather view a
// range of the view, without a set.
struct ConcatStoreDecoratorLocation {
  ConcatStoreDecoratorData const* set;
  unsigned int first;
  unsigned int last;
  unsigned int count;
};

class ConcatStoreDecorator : public StoreDecorator {
 public:
  static char const* const myOffsetBinName;

  explicit ConcatStoreDecorator(vHandle<Store> const& store);
  ~ConcatStoreDecorator() override;

  unsigned int getNInstances() const override;
  KeyList getKeyList() const override;
  void getKeyList(KeyList& keys) const override;
  std::list<Attribute> getAttributeList() const override;
  void getAttributeList(std::list<Attribute>& attributes) const override;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  Attribute getAttribute(vUCString const& name) const override;
  bool hasAttribute(vUCString const& name) const override;
  // Blank or the primary set's name; nothing to do.
  void openAttributeSet(vLCString const& name) override;
  vHandle<AttributeSetList> getAttributeSetList() const override;
  void getAttributeSetList(AttributeSetList& names) const override;
  vLCString getAttributeSetName() const override;

  // Refused: "Has not been written yet!"
  void read(Attribute& attribute, Attribute const& key, unsigned int firstGroup,
            unsigned int lastGroup) const override;
  void read(Attribute& attribute, KeyList const& keys) const override;
  void addInstances(unsigned int count) override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void addAttribute(Attribute const& attribute) override;

  // The sets as the view lays them out.
  std::vector<ConcatStoreDecoratorData*> const& getSets() const;
  // The synthetic attribute that numbers the sets.
  Attribute const& getSequenceAttribute() const { return m_sequence; }

 protected:
  // The class name that labels the refusals.
  ConcatStoreDecorator(vHandle<Store> const& store, char const* className);

  virtual void myConvertRangeToLocations(unsigned int first, unsigned int last,
                                         std::vector<ConcatStoreDecoratorLocation>& locations) const;
  virtual void myAddKeys(std::list<Attribute>& attributes, KeyList& keys) const;
  virtual void myAppend(Attribute& attribute, std::vector<ConcatStoreDecoratorLocation>& locations) const;

  void myValidateStore() const;
  void myValidateAttribute(Attribute const& attribute) const;
  void myValidateRange(unsigned int first, unsigned int last) const;
  // Runs of consecutive ascending numbers, in list order.
  static void myConvertListToRanges(std::vector<unsigned int> const& instances,
                                    std::vector<std::pair<unsigned int, unsigned int>>& ranges);
  bool myIsSequence(Attribute const& attribute) const;
  [[noreturn]] void myRefuse(char const* form) const;

  mutable bool m_validated;
  mutable KeyList m_keys;
  mutable std::list<Attribute> m_attributes;
  mutable std::list<vLCString> m_setNames;
  mutable unsigned int m_nInstances;
  mutable std::vector<ConcatStoreDecoratorData*> m_sets;
  mutable Attribute m_sequence;
  mutable std::map<vUCStringTableData const*, Attribute> m_attributeMap;
  mutable bool m_useSequence;

 private:
  char const* m_className;
};

#endif
