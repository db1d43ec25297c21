#ifndef DECORATOR_TRANSLATINGATTRIBUTESETDECORATOR_H
#define DECORATOR_TRANSLATINGATTRIBUTESETDECORATOR_H

// TranslatingAttributeSetDecorator: lets a client speak the vocabulary of its
// project type (the Dorn side) to a set that holds the definition table's
// vocabulary (the Capi side). Names, types and lengths above it are the
// client's; below it the set's. The translation table is the one named after
// the project's type, asked for afresh on every use.
//
// The client's attribute list is built on first question and kept until
// close. Reads go through a temporary in the set's own definition and hand
// the converted data over to the caller's attribute, which keeps its name.
// Writes whose translation changes only the name rename the caller's
// attribute for the time of the write (and always put the name back), so
// that the data are not copied.

#include <list>
#include <map>
#include <vector>

#include "attribute/AttributeTranslationTable.h"
#include "decorator/AttributeSetDecorator.h"
#include "foundation/vString.h"
#include "foundation/vUCString.h"

class TranslatingAttributeSetDecorator : public AttributeSetDecorator {
 public:
  explicit TranslatingAttributeSetDecorator(vHandle<AttributeSet> const& set);
  ~TranslatingAttributeSetDecorator() override;

  void create(FullStoreName const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
              StoreCreationOptions const* options) override;
  void create(vLCString const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
              StoreCreationOptions const* options) override;
  void close() override;
  void getKeyList(KeyList& keys) const override;
  KeyList getKeyList() const override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& groups, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void addAttribute(Attribute const& attribute) override;
  void getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const override;
  std::list<Attribute> getAttributeList() const override;
  void getAttributeList(std::list<Attribute>& attributes) const override;
  std::list<Attribute> getAttributeList(vUCString const& text, AttributeMatch::AttributeMatchType match) const override;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  void read(Attribute& attribute, Attribute const& groups, unsigned int firstGroup,
            unsigned int lastGroup) const override;
  void read(Attribute& attribute, KeyList const& keys) const override;
  Attribute getAttribute(vUCString const& name) const override;
  bool hasAttribute(vUCString const& name) const override;
  void setAttributeClass(vUCString const& name, vUCString const& className) override;
  void getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                         vUtlSort::SortOrder::SortOrderType order) const override;

  vString const& getTranslationTableName() const { return m_tableName; }

 private:
  // What a write of an attribute needs: 0 nothing, 1 a data change, 2 a
  // change of name only.
  struct WriteRecord {
    int state;
    vUCString capiName;
    vUCString clientName;
  };
  typedef vUCStringTableData const* NameIdentity;

  AttributeTranslationTable& myTranslationTable() const;
  void myConvertKeyList(KeyList& target, KeyList const& source) const;
  Attribute myConvertGroup(Attribute const& groups, unsigned int firstGroup, unsigned int lastGroup) const;
  void myConvertAndTransferReadData(Attribute& target, Attribute& read) const;
  Attribute myCreateAttributeToBeAdded(Attribute const& attribute) const;
  vHandle<Attribute> myCreateAttributeToBeRead(Attribute const& attribute) const;
  std::list<Attribute> const& myGetAttributeList() const;
  WriteRecord const& myGetAttributeData(Attribute const& attribute);
  // The write of attribute as its record says, by doWrite(attribute to write).
  template <class Write>
  void myWrite(Attribute const& attribute, Write doWrite);

  vString m_tableName;
  mutable std::list<Attribute> m_clientAttributes;
  std::map<NameIdentity, WriteRecord> m_writeMap;
  mutable std::map<vUCString, Attribute*> m_lookup;
  mutable std::map<NameIdentity, Attribute> m_readMap;
};

#endif
