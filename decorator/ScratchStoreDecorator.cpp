#include "decorator/ScratchStoreDecorator.h"

#include "project/Project.h"

ScratchStoreDecorator::ScratchStoreDecorator(vHandle<Store> const& store) : StoreDecorator(store), m_closed(false) {}

ScratchStoreDecorator::~ScratchStoreDecorator() {
  if (m_closed) return;
  try {
    close();
  } catch (...) {
    // A destructor cannot pass the failure on; its message has been given.
  }
}

void ScratchStoreDecorator::close() {
  // Name and version cannot be had from a closed store.
  vHandle<Project> project = getProject();
  vLCString name = getName();
  int version = getVersion();
  StoreDecorator::close();
  project->deleteStore(name, version, vLCString(), vLCString());
  m_closed = true;
}

Store& ScratchStoreDecorator::operator=(PropertyI const& properties) {
  StoreDecorator::operator=(properties);
  return *this;
}
