#ifndef NATIVE_STORECLASSREADER_H
#define NATIVE_STORECLASSREADER_H

// StoreClassReader: the base of the readers that make sense of a store of
// one kind for the host, whatever the store's own layout. A reader keeps
// the store it was given alive for as long as it lives.

#include "foundation/vHandle.h"
#include "project/Store.h"

class StoreClassReader {
 public:
  explicit StoreClassReader(vHandle<Store> const& store);
  virtual ~StoreClassReader();

  // Whether the store holds what this kind of reader needs.
  virtual bool isValid() const = 0;

 protected:
  vHandle<Store> m_store;
};

#endif
