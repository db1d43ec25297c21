#ifndef PROJECT_STORE_H
#define PROJECT_STORE_H

// Store: a named, versioned object of a project. A store is an attribute set
// itself (its primary set) and may hold further, secondary attribute sets,
// one of which is active at a time: the AttributeSet operations act on the
// active set.
//
// The names of the secondary sets are kept in the property
// ATTRIBUTESET_NAMES of the primary set, an array of strings, and their
// versions in ATTRIBUTESET_VERSIONS, an array of ints of equal length. Each
// secondary set lives in the project as a store of its own, of class
// ATTRIBUTESET_CLASS and subclass ATTRIBUTESET_SUBCLASS.

#include <list>
#include <vector>

#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "foundation/vUCString.h"
#include "project/AttributeSet.h"

class InMemoryStore;

class Store : public AttributeSet {
 public:
  typedef std::list<vLCString> AttributeSetList;

  static vUCString const ATTRIBUTESET_NAMES;
  static vUCString const ATTRIBUTESET_VERSIONS;
  static vLCString const ATTRIBUTESET_CLASS;
  static vLCString const ATTRIBUTESET_SUBCLASS;

  Store();
  explicit Store(vHandle<Project> const& project);
  ~Store() override;

  // Creates a secondary set and makes it active.
  virtual void createAttributeSet(vLCString const& name, KeyList const& keys) = 0;
  // Makes a set active, for reading or for reading and writing.
  virtual void openAttributeSet(vLCString const& name) = 0;
  virtual void updateAttributeSet(vLCString const& name) = 0;
  // Writes what is held back; nothing here.
  virtual void flush();
  // The primary set's name first, then the secondary sets'.
  virtual vHandle<AttributeSetList> getAttributeSetList() const = 0;
  virtual void getAttributeSetList(AttributeSetList& names) const = 0;
  virtual vLCString getAttributeSetName() const = 0;
  virtual vLCString getPrimaryAttributeSetName() const = 0;
  virtual bool operator==(Store const& other) const = 0;
  virtual bool operator!=(Store const& other) const = 0;
  virtual Store& operator=(PropertyI const& properties) = 0;
  // Writes every attribute of the in-memory store, all its instances, to
  // instances first to last (or to the listed instances) of this store.
  virtual void writeIMSRange(InMemoryStore const& source, unsigned int first, unsigned int last);
  virtual void writeIMSList(InMemoryStore const& source, std::vector<unsigned int> const& instances);
  // The property questions of a store that may be asked through a
  // non-const store (views forward them); here those of PropertyI.
  using PropertyI::hasProperty;
  virtual bool hasProperty(vUCString const& name);
  virtual bool hasProperty(Property const& property);

  // How an InMemoryStore is seen as an attribute set. The in-memory store
  // installs it when its class is linked in, so that this layer needs no
  // knowledge of a class built on top of it.
  typedef AttributeSet const& (*InMemoryStoreView)(InMemoryStore const& store);
  static InMemoryStoreView setInMemoryStoreView(InMemoryStoreView view);

 protected:
  // The work of writeIMSRange and writeIMSList for any source set.
  void myWriteSetRange(AttributeSet const& source, unsigned int first, unsigned int last);
  void myWriteSetList(AttributeSet const& source, std::vector<unsigned int> const& instances);
  static AttributeSet const& myViewOf(InMemoryStore const& source, char const* label);
};

#endif
