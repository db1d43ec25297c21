#ifndef FILESTORE_DISK_SINGLESETDISKSTORE_H
#define FILESTORE_DISK_SINGLESETDISKSTORE_H

// SingleSetDiskStore: the base of the file stores whose file is one
// attribute set, named as the store: the root of the file name. It holds
// what those stores have in common: the file name and the open flag, the
// attribute definitions (a list in the store's order, with a map by name),
// the key list, the answers about the one set, and the checks of an
// instance range or list that their reads share, with the shared texts.
// Its messages are labelled with the store's class name and say the
// store's own not-open text.
//
// What stays with each format: opening and closing, getNInstances, the
// reads themselves, and where a format has its own words, the override
// that says them: getAttribute, addAttribute, and myRefuseAttributeSet for
// a set that is not there. A store that can show more than one set
// overrides the set questions.

#include <list>
#include <map>
#include <string>
#include <vector>

#include "attribute/KeyList.h"
#include "filestore/disk/DiskStore.h"
#include "foundation/vFilename.h"

class SingleSetDiskStore : public DiskStore {
 public:
  ~SingleSetDiskStore() override;

  bool isOpen() const override { return m_isOpen; }
  // The root of the file name; fatal when the store is not open.
  vLCString getName() const override;

  // --- The attributes, as the format defined them.
  // Fatal when the store is not open or has no such attribute.
  Attribute getAttribute(vUCString const& name) const override;
  bool hasAttribute(vUCString const& name) const override;
  std::list<Attribute> getAttributeList() const override;
  void getAttributeList(std::list<Attribute>& attributes) const override;
  std::list<Attribute> getAttributeList(vUCString const& text,
                                        AttributeMatch::AttributeMatchType match) const override;
  unsigned int getNAttributes() const override;
  KeyList getKeyList() const override;
  // Refused, for a store that only reads.
  void addAttribute(Attribute const& attribute) override;

  // --- The one set, named as the store.
  vHandle<AttributeSetList> getAttributeSetList() const override;
  void getAttributeSetList(AttributeSetList& names) const override;
  vLCString getAttributeSetName() const override;
  // A blank name or the store's own: nothing to do. Any other name goes to
  // myRefuseAttributeSet.
  void openAttributeSet(vLCString const& name) override;
  // Files have one version.
  int getVersion() const override;

 protected:
  // storeName labels the messages said here ("<storeName>::getName");
  // notOpen is the store's text for a question asked while it is closed.
  SingleSetDiskStore(vHandle<Project> const& project, char const* storeName, char const* notOpen);

  // Fatal, labelled by label, when the store is not open.
  void myCheckOpen(char const* label) const {
    if (!m_isOpen) myNotOpen(label);
  }

  // Another set's name: by default fatal, "File '<file>' does not have
  // AttributeSet named '<name>'.".
  virtual void myRefuseAttributeSet(vLCString const& name) const;

  // The definitions, replaced, added to or dropped; the keys are the
  // format's to fill in (m_keyList).
  void mySetAttributes(std::list<Attribute> const& attributes);
  void myAddDefinition(Attribute const& definition);
  void myClearAttributes();
  std::list<Attribute> const& myAttributes() const { return m_attributes; }
  // The definition of a name, null when the store has none.
  Attribute const* myFindDefinition(vUCString const& name) const;
  // The definition of a name, fatal labelled by label when the store has
  // none: "Attribute %s does not exist in file %s." with the store's name.
  Attribute const& myDefinition(char const* label, vUCString const& name) const;

  // The checks of an instance read, fatal labelled by label. A range must
  // be 1 <= first <= last <= the instance count, last 0 meaning the last
  // instance; the resolved last is returned. A list must hold no 0 and
  // nothing past the count.
  unsigned int myCheckRange(char const* label, unsigned int first, unsigned int last) const;
  void myCheckList(char const* label, vUCString const& name, std::vector<unsigned int> const& instances) const;
  // Whether the instances are one run of neighbours in rising order.
  static bool isRun(std::vector<unsigned int> const& instances);

  vFilename m_fileName;
  KeyList m_keyList;
  bool m_isOpen;

 private:
  [[noreturn]] void myNotOpen(char const* label) const;
  // "<storeName>::<operation>".
  std::string myLabel(char const* operation) const;

  char const* m_storeName;
  char const* m_notOpen;
  std::list<Attribute> m_attributes;
  std::map<vUCString, Attribute> m_attributeMap;
};

#endif
