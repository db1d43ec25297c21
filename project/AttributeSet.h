#ifndef PROJECT_ATTRIBUTESET_H
#define PROJECT_ATTRIBUTESET_H

// AttributeSet: the one data contract of the system. A table of instances
// (rows, such as traces), attributes (columns), a key list (the sort keys,
// primary first) and properties. Everything above it (the native loader,
// views, the data server) is written against this class, and everything
// below (memory, files, databases, the remote client) implements it.
//
// Instance numbers are 1-based and ranges inclusive. Reads fill the
// attribute given, resizing it; the attribute's name says which column is
// read. A last instance or last group of 0 means "to the end" where an
// implementation's checks allow it.
//
// Names, classes and subclasses of sets are lower case (vLCString);
// attribute names and classes upper case (vUCString).

#include <list>
#include <vector>

#include "attribute/Attribute.h"
#include "attribute/KeyList.h"
#include "attribute/PropertyI.h"
#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "foundation/vUCString.h"
#include "foundation/vUtlSort.h"
#include "project/AttributeMatch.h"

class AttributeSetBuffer;
class FullStoreName;
class Project;
class StoreCreationOptions;
class StoreOpenOptions;

class AttributeSet : public PropertyI {
 public:
  AttributeSet();
  explicit AttributeSet(vHandle<Project> const& project);
  AttributeSet(AttributeSet const& other) = default;
  AttributeSet& operator=(AttributeSet const& other) = default;
  ~AttributeSet() override;

  virtual bool isOpen() const = 0;
  // Creates an empty set and opens it for writing.
  virtual void create(vLCString const& name, vLCString const& className, vLCString const& subClass,
                      KeyList const& keys, StoreCreationOptions const* options) = 0;
  virtual void create(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                      KeyList const& keys, StoreCreationOptions const* options) = 0;
  // Opens for reading; version 0 is the newest.
  virtual void open(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
                    StoreOpenOptions const* options) = 0;
  virtual void open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                    StoreOpenOptions const* options) = 0;
  // Opens for reading and writing.
  virtual void update(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
                      StoreOpenOptions const* options) = 0;
  virtual void update(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                      StoreOpenOptions const* options) = 0;
  virtual unsigned int getNInstances() const = 0;
  virtual vLCString getClass() const = 0;
  virtual vLCString getSubClass() const = 0;
  virtual vLCString getName() const = 0;
  virtual int getVersion() const = 0;
  virtual void close() = 0;
  virtual KeyList getKeyList() const = 0;
  // Through getKeyList().
  virtual void getKeyList(KeyList& keys) const;
  // Appends that many empty instances.
  virtual void addInstances(unsigned int count) = 0;
  // Writes the attribute's instances to instances first to last.
  virtual void write(Attribute const& attribute, unsigned int first, unsigned int last) = 0;
  // Writes the attribute's instances to the listed instances, in order.
  virtual void write(Attribute const& attribute, std::vector<unsigned int> const& instances) = 0;
  // Writes to the instances of the groups first to last of the key, the
  // groups counted in ascending order of the key's distinct values.
  virtual void write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
                     unsigned int lastGroup) = 0;
  // Writes to the instances selected by the key values that the key list's
  // attributes hold, one instance for each tuple.
  virtual void write(Attribute const& attribute, KeyList const& keys) = 0;
  // Adds a column; its instances are empty until written.
  virtual void addAttribute(Attribute const& attribute) = 0;
  // The distinct values of the attribute named, in the order given.
  virtual void getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const = 0;
  // Definitions, without data.
  virtual std::list<Attribute> getAttributeList() const = 0;
  // Through getAttributeList().
  virtual void getAttributeList(std::list<Attribute>& attributes) const;
  // The definitions whose class matches the text (see AttributeMatch).
  virtual std::list<Attribute> getAttributeList(vUCString const& text,
                                                AttributeMatch::AttributeMatchType match) const = 0;
  virtual void read(Attribute& attribute, unsigned int first, unsigned int last) const = 0;
  virtual void read(Attribute& attribute, std::vector<unsigned int> const& instances) const = 0;
  // The instances of groups first to last of the key; see write.
  virtual void read(Attribute& attribute, Attribute const& key, unsigned int firstGroup,
                    unsigned int lastGroup) const = 0;
  virtual void read(Attribute& attribute, KeyList const& keys) const = 0;
  // The definition of the attribute named.
  virtual Attribute getAttribute(vUCString const& name) const = 0;
  virtual bool hasAttribute(vUCString const& name) const = 0;
  virtual void setAttributeClass(vUCString const& name, vUCString const& className) = 0;
  virtual unsigned int getNAttributes() const = 0;
  // The distinct values of the attribute named, in the order given, and the
  // number of instances of each.
  virtual void getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                 vUtlSort::SortOrder::SortOrderType order) const = 0;
  virtual vHandle<Project> getProject() const = 0;
  // Lays the buffer out as this set's own, when the set keeps its data in
  // one; true when it did. Nothing here.
  virtual bool prepareBuffer(AttributeSetBuffer& buffer) const;
  // Reads instances first to last into every attribute of the buffer,
  // which must hold as many instances; here by read(), one attribute after
  // the other.
  virtual void readBufferRange(AttributeSetBuffer& buffer, unsigned int first, unsigned int last) const;

 protected:
  vHandle<Project> m_project;
};

#endif
