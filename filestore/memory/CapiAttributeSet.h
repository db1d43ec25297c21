#ifndef FILESTORE_MEMORY_CAPIATTRIBUTESET_H
#define FILESTORE_MEMORY_CAPIATTRIBUTESET_H

// CapiAttributeSet: the common frame of an attribute set that is not a view.
// It owns the open and writeable flags, every check of arguments with its
// message, and the use of an indexing table for key and group access; the
// work itself is left to the protected do... operations of a derived class.
//
// A set is closed until create, open or update; create and update give a
// set open for modification, open one for reading. Each of the three makes
// a fresh indexing table on the set. Changes of data through the frame
// clear the table's group tables; a derived class that changes data by
// other ways calls myDataChanged().
//
// The checks are written so that each goes on with the next one should a
// fatal message return. Failures carry the label of the public operation,
// the class and operation with a word for the overload, such as
// "CapiAttributeSet::read(byList)".

#include <list>
#include <vector>

#include "filestore/disk/AttributeSetIndexingTable.h"
#include "foundation/vHandle.h"
#include "project/AttributeSet.h"

class CapiAttributeSet : public AttributeSet {
 public:
  explicit CapiAttributeSet(vHandle<Project> const& project);
  // The frame of other: project and flags, with a table of its own.
  CapiAttributeSet(CapiAttributeSet const& other);
  ~CapiAttributeSet() override;

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
  // A set that is not open is reported, and closed all the same.
  void close() override;
  KeyList getKeyList() const override;
  void getKeyList(KeyList& keys) const override;
  void addInstances(unsigned int count) override;
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
  // A last of 0 passes the check as the last instance and reaches
  // doReadRange as 0.
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  // A list that is a run of instances is read as a range.
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  void read(Attribute& attribute, Attribute const& groups, unsigned int firstGroup,
            unsigned int lastGroup) const override;
  void read(Attribute& attribute, KeyList const& keys) const override;
  Attribute getAttribute(vUCString const& name) const override;
  bool hasAttribute(vUCString const& name) const override;
  void setAttributeClass(vUCString const& name, vUCString const& className) override;
  unsigned int getNAttributes() const override;
  void getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                         vUtlSort::SortOrder::SortOrderType order) const override;
  vHandle<Project> getProject() const override;

  virtual bool isWriteable() const;

 protected:
  virtual void doPreCreate(vLCString const& name, vLCString const& className, vLCString const& subClass,
                           KeyList const& keys, StoreCreationOptions const* options) = 0;
  virtual void doPostCreate(vLCString const& name, vLCString const& className, vLCString const& subClass,
                            KeyList const& keys, StoreCreationOptions const* options) = 0;
  virtual void doPreOpen(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
                         StoreOpenOptions const* options) = 0;
  virtual void doPostOpen(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
                          StoreOpenOptions const* options) = 0;
  virtual void doPreUpdate(vLCString const& name, int version, vLCString const& className,
                           vLCString const& subClass, StoreOpenOptions const* options) = 0;
  virtual void doPostUpdate(vLCString const& name, int version, vLCString const& className,
                            vLCString const& subClass, StoreOpenOptions const* options) = 0;
  virtual void doClose() = 0;
  virtual unsigned int doGetNInstances() const = 0;
  virtual vLCString doGetClass() const = 0;
  virtual vLCString doGetSubClass() const = 0;
  virtual vLCString doGetName() const = 0;
  virtual int doGetVersion() const = 0;
  virtual KeyList doGetKeyList() const = 0;
  // Through doGetKeyList().
  virtual void doGetKeyList(KeyList& keys) const;
  virtual void doAddInstances(unsigned int count) = 0;
  virtual void doAddAttribute(Attribute const& attribute) = 0;
  virtual bool doHasAttribute(vUCString const& name) const = 0;
  virtual std::list<Attribute> doGetAttributeList() const = 0;
  virtual void doGetAttributeList(std::list<Attribute>& attributes) const = 0;
  // The attributes of doGetAttributeList whose class equals the text; with
  // MATCH_OR_BLANK_CLASS also those of a blank class.
  virtual std::list<Attribute> doGetMatchingAttributeList(vUCString const& text,
                                                          AttributeMatch::AttributeMatchType match) const;
  virtual Attribute doGetAttribute(vUCString const& name) const = 0;
  virtual void doSetAttributeClass(vUCString const& name, vUCString const& className) = 0;
  virtual unsigned int doGetNAttributes() const = 0;
  // Through the indexing table.
  virtual void doGetGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                   vUtlSort::SortOrder::SortOrderType order) const;
  virtual void doReadRange(Attribute& attribute, unsigned int first, unsigned int last) const = 0;
  virtual void doReadList(Attribute& attribute, std::vector<unsigned int> const& instances) const = 0;
  virtual void doGetUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const;
  virtual vHandle<Project> doGetProject() const;
  virtual void doWriteRange(Attribute const& attribute, unsigned int first, unsigned int last) = 0;
  virtual void doWriteList(Attribute const& attribute, std::vector<unsigned int> const& instances) = 0;
  // The instances of the groups, through the indexing table, then a list
  // write.
  virtual void doWriteGroups(Attribute const& attribute, Attribute const& groups, unsigned int firstGroup,
                             unsigned int lastGroup);
  // The instances of the key tuples, through the indexing table, then a
  // list write.
  virtual void doWriteKeys(Attribute const& attribute, KeyList const& keys);

  void setIsOpen() { m_isOpen = true; }
  void setIsNotOpen() { m_isOpen = false; }
  void setIsWriteable() { m_isWriteable = true; }
  void setIsNotWriteable() { m_isWriteable = false; }
  // The group tables no longer hold.
  void myDataChanged();

  // --- Guards; label is the calling operation's.
  void myMustBeOpen(char const* label) const;
  void myMustNotBeOpen(char const* label) const;
  void myMustBeModifiable(char const* label) const;
  void myMustHaveAttribute(char const* label, vUCString const& name) const;
  void myMustNotHaveAttribute(char const* label, vUCString const& name) const;
  void myCheckNameAndClass(char const* label, vLCString const& name, vLCString const& className,
                           vLCString const& subClass) const;
  void myCheckFirstLast(unsigned int first, unsigned int last, unsigned int nInstances) const;
  void myCheckRange(char const* label, Attribute const& attribute, unsigned int first, unsigned int last) const;
  // A scalar Int32 group attribute, and groups first to last of its
  // instances.
  void myCheckGroups(Attribute const& attribute, unsigned int first, unsigned int last) const;
  void myCheckList(char const* label, Attribute const& attribute, std::vector<unsigned int> const& list) const;
  void myKeysCheck(KeyList const& keys) const;

  static bool myIsListARange(std::vector<unsigned int> const& list);
  void myCheckAndReadList(char const* label, Attribute& attribute, std::vector<unsigned int> const& list) const;
  void myCheckAndWriteList(char const* label, Attribute const& attribute, std::vector<unsigned int> const& list);
  AttributeSetIndexingTable& myTable(char const* label) const;

 private:
  CapiAttributeSet& operator=(CapiAttributeSet const&) = delete;
  void myNewTable();
  void myMustNotHaveZero(char const* label, Attribute const& attribute, std::vector<unsigned int> const& list) const;

  bool m_isOpen;
  bool m_isWriteable;
  vHandle<AttributeSetIndexingTable> m_indexingTable;
};

#endif
