#include "decorator/MergeStoreDecorator.h"

#include "foundation/Message.h"

namespace {
char const* const kNotWritten = "Has not been written yet!";
}

MergeStoreDecorator::MergeStoreDecorator(vHandle<Store> const& store, unsigned int cacheMegabytes, bool forward)
    : StoreDecorator(store), m_method(cacheMegabytes) {
  m_method.setReverse(!forward);
  m_method.addStore(store);
}

MergeStoreDecorator::~MergeStoreDecorator() {}

void MergeStoreDecorator::addStore(vHandle<Store> const& store) { m_method.addStore(store); }

unsigned int MergeStoreDecorator::getNInstances() const { return m_method.getNInstances(); }

KeyList MergeStoreDecorator::getKeyList() const { return m_method.getKeyList(); }

void MergeStoreDecorator::getKeyList(KeyList& keys) const { m_method.getKeyList(keys); }

std::list<Attribute> MergeStoreDecorator::getAttributeList() const { return m_method.getAttributeList(); }

void MergeStoreDecorator::getAttributeList(std::list<Attribute>& attributes) const {
  m_method.getAttributeList(attributes);
}

std::list<Attribute> MergeStoreDecorator::getAttributeList(vUCString const& text,
                                                           AttributeMatch::AttributeMatchType match) const {
  return m_method.getAttributeList(text, match);
}

void MergeStoreDecorator::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  m_method.read(attribute, first, last);
}

void MergeStoreDecorator::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  m_method.read(attribute, instances);
}

Attribute MergeStoreDecorator::getAttribute(vUCString const& name) const { return m_method.getAttribute(name); }

bool MergeStoreDecorator::hasAttribute(vUCString const& name) const { return m_method.hasAttribute(name); }

void MergeStoreDecorator::openAttributeSet(vLCString const& name) { m_method.openAttributeSet(name); }

vHandle<Store::AttributeSetList> MergeStoreDecorator::getAttributeSetList() const {
  return m_method.getAttributeSetList();
}

void MergeStoreDecorator::getAttributeSetList(AttributeSetList& names) const { m_method.getAttributeSetList(names); }

vLCString MergeStoreDecorator::getAttributeSetName() const { return m_method.getAttributeSetName(); }

void MergeStoreDecorator::read(Attribute&, Attribute const&, unsigned int, unsigned int) const {
  Message::fatal("MergeStoreDecorator::read(groups)", 0, "%s", kNotWritten);
}

void MergeStoreDecorator::read(Attribute&, KeyList const&) const {
  Message::fatal("MergeStoreDecorator::read(keys)", 0, "%s", kNotWritten);
}

void MergeStoreDecorator::addInstances(unsigned int) {
  Message::fatal("MergeStoreDecorator::addInstances", 0, "%s", kNotWritten);
}

void MergeStoreDecorator::write(Attribute const&, unsigned int, unsigned int) {
  Message::fatal("MergeStoreDecorator::write(range)", 0, "%s", kNotWritten);
}

void MergeStoreDecorator::write(Attribute const&, std::vector<unsigned int> const&) {
  Message::fatal("MergeStoreDecorator::write(list)", 0, "%s", kNotWritten);
}

void MergeStoreDecorator::write(Attribute const&, Attribute const&, unsigned int, unsigned int) {
  Message::fatal("MergeStoreDecorator::write(groups)", 0, "%s", kNotWritten);
}

void MergeStoreDecorator::write(Attribute const&, KeyList const&) {
  Message::fatal("MergeStoreDecorator::write(keys)", 0, "%s", kNotWritten);
}

void MergeStoreDecorator::addAttribute(Attribute const&) {
  Message::fatal("MergeStoreDecorator::addAttribute", 0, "%s", kNotWritten);
}
