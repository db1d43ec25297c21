#include "decorator/MergeMethodBase.h"

#include "foundation/Message.h"

namespace Merge {

MergeMethodBase::MergeMethodBase(unsigned int cacheMegabytes)
    : m_cacheSize(cacheMegabytes), m_validated(false), m_reverse(false) {}

MergeMethodBase::~MergeMethodBase() {}

void MergeMethodBase::addStore(vHandle<Store> const& store) {
  if (m_validated)
    Message::fatal("MergeMethodBase::addStore", 0, "Cannot add stores after we've validated everything!");
  myDoAddStore(store);
}

void MergeMethodBase::validateStores() const {
  if (!m_validated) myDoValidateStores();
}

void MergeMethodBase::reset() {
  myDoReset();
  m_cacheSize = 0;
  m_validated = false;
  m_reverse = false;
}

void MergeMethodBase::setReverse(bool reverse) {
  if (m_validated)
    Message::fatal("MergeMethodBase::setReverse", 0, "Cannot set reverse mode after we've validated everything!");
  m_reverse = reverse;
}

}  // namespace Merge
