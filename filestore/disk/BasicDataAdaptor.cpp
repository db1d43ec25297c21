#include "filestore/disk/BasicDataAdaptor.h"

#include "filestore/disk/AttributeFile.h"
#include "foundation/Message.h"
#include "project/AttributeSet.h"

namespace {

// Both constructors take a pointer: a null one would only fail later, far
// from where it came from.
template <class T>
T* mustBeGiven(T* p, char const* what) {
  if (p == nullptr) Message::fatal("BasicDataAdaptor::BasicDataAdaptor", 0, "The %s given was null.", what);
  return p;
}

}  // namespace

BasicDataAdaptor::BasicDataAdaptor(AttributeSet const* set)
    : m_set(mustBeGiven(set, "AttributeSet")), m_file(nullptr) {}

BasicDataAdaptor::BasicDataAdaptor(AttributeFile* file) : m_set(nullptr), m_file(mustBeGiven(file, "AttributeFile")) {}

unsigned int BasicDataAdaptor::getNInstances() const {
  return m_set != nullptr ? m_set->getNInstances() : m_file->getNInstances();
}

void BasicDataAdaptor::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  if (m_set != nullptr)
    m_set->read(attribute, first, last);
  else
    m_file->readRange(attribute, first, last);
}

unsigned int BasicDataAdaptor::getNAttributes() const {
  return m_set != nullptr ? m_set->getNAttributes() : m_file->getNAttributes();
}

bool BasicDataAdaptor::hasAttribute(vUCString const& name) const {
  return m_set != nullptr ? m_set->hasAttribute(name) : m_file->hasAttribute(name);
}

vString BasicDataAdaptor::getName() const {
  return m_set != nullptr ? vString(m_set->getName()) : m_file->getName().getFilename();
}

Attribute BasicDataAdaptor::getAttribute(vUCString const& name) const {
  return m_set != nullptr ? m_set->getAttribute(name) : m_file->getAttribute(name);
}
