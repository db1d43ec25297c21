#ifndef DECORATOR_SCRATCHSTOREDECORATOR_H
#define DECORATOR_SCRATCHSTOREDECORATOR_H

// ScratchStoreDecorator: a store that lives only as long as its handles.
// Closing it closes the store below and then deletes that store from its
// project; when the last handle goes without a close, the destructor does
// both. Everything else, writes included, goes through to the store below.

#include "decorator/StoreDecorator.h"

class ScratchStoreDecorator : public StoreDecorator {
 public:
  explicit ScratchStoreDecorator(vHandle<Store> const& store);
  // Closes (and so deletes) the store unless that was done already. A
  // failure is reported by its message and goes no further.
  ~ScratchStoreDecorator() override;

  // Closes the store below and deletes it, by the name and version it had,
  // from its project; once.
  void close() override;
  Store& operator=(PropertyI const& properties) override;

  bool isClosed() const { return m_closed; }

 private:
  bool m_closed;
};

#endif
