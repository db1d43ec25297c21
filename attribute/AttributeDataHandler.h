#ifndef ATTRIBUTE_ATTRIBUTEDATAHANDLER_H
#define ATTRIBUTE_ATTRIBUTEDATAHANDLER_H

// AttributeDataHandler: the keeper of data that an Attribute reads without
// owning. A store that lends a pointer into its own block hands the
// attribute, together with the pointer, a heap-allocated handler that holds a
// vHandle on the block's owner; the attribute deletes the handler when it
// lets go of the data, which gives back its share, and never frees the data
// itself. The handler is polymorphic so that the attribute can delete it
// without knowing what it keeps alive.
//
// A handler may also remember the data type the data had before a
// translation changed the attribute's type.

#include "foundation/DataType.h"
#include "foundation/vHandle.h"

class AttributeDataHandler {
 public:
  AttributeDataHandler() : m_originalDataType(vNOTYPE) {}
  virtual ~AttributeDataHandler();

  DataType getOriginalDataType() const { return m_originalDataType; }
  void setOriginalDataType(DataType type) { m_originalDataType = type; }

 private:
  AttributeDataHandler(AttributeDataHandler const&) = delete;
  AttributeDataHandler& operator=(AttributeDataHandler const&) = delete;

  DataType m_originalDataType;
};

// The usual handler: a master handle on whatever owns the block.
template <class T>
class AttributeDataHandle : public AttributeDataHandler {
 public:
  explicit AttributeDataHandle(vHandle<T> const& owner) : m_owner(owner) {}
  ~AttributeDataHandle() override {}

  vHandle<T> const& getOwner() const { return m_owner; }

 private:
  vHandle<T> m_owner;
};

// A heap-allocated handler sharing owner, ready for Attribute::resize.
template <class T>
AttributeDataHandler* makeAttributeDataHandler(vHandle<T> const& owner) {
  return new AttributeDataHandle<T>(owner);
}

#endif
