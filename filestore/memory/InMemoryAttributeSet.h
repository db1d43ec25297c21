#ifndef FILESTORE_MEMORY_INMEMORYATTRIBUTESET_H
#define FILESTORE_MEMORY_INMEMORYATTRIBUTESET_H

// InMemoryAttributeSet: an attribute set whose data live in an
// AttributeSetBuffer in memory. CapiAttributeSet does the checks; this
// class does the work, and offers direct access to the stored attributes
// for code that fills or reads a set in place.
//
// A set has one version (0). Opening changes nothing: the data last as long
// as the object, through closes and later opens; closing only makes the
// set closed. A set is packed whole, with its properties, key list and the
// data of all its attributes.
//
// The direct operations (setKeyList ... loadRangeFromStore) need no open
// set; those that change data clear the group tables of the indexing table.

#include <vector>

#include "attribute/AttributeSetBuffer.h"
#include "filestore/memory/CapiAttributeSet.h"
#include "foundation/Packable.h"
#include "foundation/vLCString.h"

class InMemoryAttributeSet : public CapiAttributeSet, public Packable {
 public:
  static constexpr short Magic = 3064;
  static constexpr short Version = 1;

  explicit InMemoryAttributeSet(vHandle<Project> const& project);
  // A deep copy: the frame, names, key list and a buffer of its own.
  InMemoryAttributeSet(InMemoryAttributeSet const& other);
  ~InMemoryAttributeSet() override;

  void pack(Packer& packer) const override;
  void unpack(Packer& packer) override;

  void setClass(vLCString const& className);
  void setSubClass(vLCString const& subClass);
  // Each key must be an attribute of the set.
  void setKeyList(KeyList& keys);
  bool hasAttribute(vUCString const& name) const override;
  bool hasAttribute(vUCStringTableData const* const& name) const;
  // The last n instances go (all of them, from a set with none).
  void deleteInstances(unsigned int n);
  // Only the listed instances stay, in the order of the list.
  void keepInstances(std::vector<unsigned int> const& instances);
  void renameAttribute(vUCString const& oldName, vUCString const& newName);
  // Also from the key list.
  void deleteAttribute(vUCString const& name);
  // Takes the values over (the attribute ends empty); the attribute must be
  // one of the set, with the set's number of instances.
  void setAttributeAndData(Attribute& attribute);
  // The stored attribute with its values; the non-const forms are for
  // changing it.
  Attribute& getAttributeAndData(vUCString const& name);
  Attribute const& getAttributeAndData(vUCString const& name) const;
  Attribute const& readAttributeAndData(vUCString const& name) const;
  Attribute const& readAttributeAndData(vUCStringTableData const* name) const;
  Attribute& updateAttributeAndData(vUCString const& name);
  Attribute& updateAttributeAndData(vUCStringTableData const* name);
  // The first value of an instance, in place.
  int* getInt32Pointer(vUCString const& name, unsigned int instance);
  int const* getInt32Pointer(vUCString const& name, unsigned int instance) const;
  long long* getInt64Pointer(vUCString const& name, unsigned int instance);
  long long const* getInt64Pointer(vUCString const& name, unsigned int instance) const;
  float* getFloat32Pointer(vUCString const& name, unsigned int instance);
  float const* getFloat32Pointer(vUCString const& name, unsigned int instance) const;
  double* getFloat64Pointer(vUCString const& name, unsigned int instance);
  double const* getFloat64Pointer(vUCString const& name, unsigned int instance) const;
  vHandle<AttributeSetBuffer> getAttributeSetBuffer();
  vHandle<AttributeSetBuffer> const getAttributeSetBuffer() const;
  // Takes instances first to last of source. With replace, the set first
  // takes source's layout, names and key list (false, and nothing changed,
  // when source cannot lay a buffer out), and opens itself if it was not
  // open; without, it keeps its own. A first of 0 takes the layout alone; a
  // last of 0 reads to source's last instance.
  bool loadRangeFromStore(bool replace, vHandle<AttributeSet> source, unsigned int first, unsigned int last);

  // The given buffer gets this set's layout, without instances.
  bool prepareBuffer(AttributeSetBuffer& buffer) const override;
  // Instances first to last of this set into the buffer, from its first on.
  void readBufferRange(AttributeSetBuffer& buffer, unsigned int first, unsigned int last) const override;

 protected:
  void doPreCreate(vLCString const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
                   StoreCreationOptions const* options) override;
  void doPostCreate(vLCString const& name, vLCString const& className, vLCString const& subClass,
                    KeyList const& keys, StoreCreationOptions const* options) override;
  void doPreOpen(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
                 StoreOpenOptions const* options) override;
  void doPostOpen(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
                  StoreOpenOptions const* options) override;
  void doPreUpdate(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
                   StoreOpenOptions const* options) override;
  void doPostUpdate(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
                    StoreOpenOptions const* options) override;
  void doClose() override;
  unsigned int doGetNInstances() const override;
  vLCString doGetClass() const override;
  vLCString doGetSubClass() const override;
  vLCString doGetName() const override;
  int doGetVersion() const override;
  KeyList doGetKeyList() const override;
  void doAddInstances(unsigned int count) override;
  void doAddAttribute(Attribute const& attribute) override;
  bool doHasAttribute(vUCString const& name) const override;
  std::list<Attribute> doGetAttributeList() const override;
  void doGetAttributeList(std::list<Attribute>& attributes) const override;
  Attribute doGetAttribute(vUCString const& name) const override;
  void doSetAttributeClass(vUCString const& name, vUCString const& className) override;
  unsigned int doGetNAttributes() const override;
  void doReadRange(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void doReadList(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  void doWriteRange(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void doWriteList(Attribute const& attribute, std::vector<unsigned int> const& instances) override;

 private:
  InMemoryAttributeSet& operator=(InMemoryAttributeSet const&) = delete;

  vLCString m_name;
  vLCString m_class;
  vLCString m_subClass;
  KeyList* m_keys;
  vHandle<AttributeSetBuffer> m_buffer;
};

#endif
