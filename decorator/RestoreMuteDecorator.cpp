#include "decorator/RestoreMuteDecorator.h"

#include <cstring>

#include "foundation/Message.h"

namespace {
[[noreturn]] void refuse(char const* label) { Message::fatal(label, 0, "Not Supported."); }
}  // namespace

RestoreMuteDecorator::RestoreMuteDecorator(vHandle<Store> const& store)
    : StoreDecoratorImp(store), m_refreshedFor(nullptr) {}

RestoreMuteDecorator::~RestoreMuteDecorator() {}

bool RestoreMuteDecorator::myIsMuted(Attribute const& attribute) {
  return attribute.isVector() && attribute.getSampleRate() > 0.0 && attribute.getLastTime() > attribute.getFirstTime();
}

void RestoreMuteDecorator::myAdjustAttribute(Attribute& attribute) {
  int const length = static_cast<int>(attribute.getLastTime() / attribute.getSampleRate() + 1.0);
  attribute.setLength(length);
  attribute.setFirstTime(0.0);
}

// The lists are made again whenever the store below has changed.
void RestoreMuteDecorator::myRefresh() const {
  if (m_refreshedFor == m_decoratedStore.get() && !m_attributes.empty()) return;
  myRefreshAttributeList();
  myRefreshKeyList();
  m_refreshedFor = m_decoratedStore.get();
}

void RestoreMuteDecorator::myRefreshAttributeList() const {
  m_unadjusted.clear();
  m_attributes.clear();
  for (Attribute attribute : m_decoratedStore->getAttributeList()) {
    if (myIsMuted(attribute)) {
      m_unadjusted[attribute.getNameID()] = attribute;
      myAdjustAttribute(attribute);
    }
    m_attributes.push_back(attribute);
  }
}

void RestoreMuteDecorator::myRefreshKeyList() const {
  m_keys.clear();
  for (Attribute key : m_decoratedStore->getKeyList()) {
    if (myIsMuted(key)) myAdjustAttribute(key);
    m_keys.addKey(key);
  }
}

Attribute const* RestoreMuteDecorator::myUnadjusted(Attribute const& attribute) const {
  myRefresh();
  auto it = m_unadjusted.find(attribute.getNameID());
  return it == m_unadjusted.end() ? nullptr : &it->second;
}

Attribute RestoreMuteDecorator::getAttribute(vUCString const& name) const {
  myRefresh();
  for (Attribute const& attribute : m_attributes)
    if (attribute.getName() == name) return attribute;
  return m_decoratedStore->getAttribute(name);
}

std::list<Attribute> RestoreMuteDecorator::getAttributeList() const {
  myRefresh();
  return m_attributes;
}

void RestoreMuteDecorator::getAttributeList(std::list<Attribute>& attributes) const { attributes = getAttributeList(); }

std::list<Attribute> RestoreMuteDecorator::getAttributeList(vUCString const& text,
                                                            AttributeMatch::AttributeMatchType match) const {
  std::list<Attribute> result;
  for (Attribute const& below : m_decoratedStore->getAttributeList(text, match))
    result.push_back(getAttribute(below.getName()));
  return result;
}

KeyList RestoreMuteDecorator::getKeyList() const {
  myRefresh();
  return m_keys;
}

void RestoreMuteDecorator::getKeyList(KeyList& keys) const { keys = getKeyList(); }

void RestoreMuteDecorator::myTransferData(Attribute const& source, Attribute& output) {
  if (source.isVariableLength() || output.isVariableLength())
    Message::fatal("RestoreMuteDecorator::myTransferData", 0,
                   "The source or dest is a variable length Attribute, this is not supported!");
  unsigned int const n = source.getNInstances();
  output.resize(n);
  long long const sourceBytes = source.getNBytes();
  long long const outputBytes = output.getNBytes();
  long long const lead = outputBytes - sourceBytes;
  for (unsigned int i = 1; i <= n; ++i) {
    unsigned char* to = static_cast<unsigned char*>(output.getPointer(i));
    unsigned char const* from = static_cast<unsigned char const*>(source.getPointer(i));
    if (lead >= 0) {
      std::memset(to, 0, static_cast<std::size_t>(lead));
      std::memcpy(to + lead, from, static_cast<std::size_t>(sourceBytes));
    } else {
      // A stored trace longer than its times say: its last samples show.
      std::memcpy(to, from - lead, static_cast<std::size_t>(outputBytes));
    }
  }
}

void RestoreMuteDecorator::doReadRange(Attribute& attribute, unsigned int first, unsigned int last) const {
  Attribute const* unadjusted = myUnadjusted(attribute);
  if (unadjusted == nullptr) {
    m_decoratedStore->read(attribute, first, last);
    return;
  }
  Attribute source(*unadjusted);
  m_decoratedStore->read(source, first, last);
  myTransferData(source, attribute);
}

void RestoreMuteDecorator::doReadList(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  Attribute const* unadjusted = myUnadjusted(attribute);
  if (unadjusted == nullptr) {
    m_decoratedStore->read(attribute, instances);
    return;
  }
  Attribute source(*unadjusted);
  m_decoratedStore->read(source, instances);
  myTransferData(source, attribute);
}

void RestoreMuteDecorator::create(vLCString const&, vLCString const&, vLCString const&, KeyList const&,
                                  StoreCreationOptions const*) {
  refuse("RestoreMuteDecorator::create(storename)");
}
void RestoreMuteDecorator::create(FullStoreName const&, vLCString const&, vLCString const&, KeyList const&,
                                  StoreCreationOptions const*) {
  refuse("RestoreMuteDecorator::create(fsn)");
}
void RestoreMuteDecorator::update(vLCString const&, int, vLCString const&, vLCString const&, StoreOpenOptions const*) {
  refuse("RestoreMuteDecorator::update(storename)");
}
void RestoreMuteDecorator::update(FullStoreName const&, vLCString const&, vLCString const&, StoreOpenOptions const*) {
  refuse("RestoreMuteDecorator::update(fsn)");
}
void RestoreMuteDecorator::write(Attribute const&, unsigned int, unsigned int) {
  refuse("RestoreMuteDecorator::write(range)");
}
void RestoreMuteDecorator::write(Attribute const&, std::vector<unsigned int> const&) {
  refuse("RestoreMuteDecorator::write(list)");
}
void RestoreMuteDecorator::write(Attribute const&, Attribute const&, unsigned int, unsigned int) {
  refuse("RestoreMuteDecorator::write(groups)");
}
void RestoreMuteDecorator::write(Attribute const&, KeyList const&) { refuse("RestoreMuteDecorator::write(keys)"); }
void RestoreMuteDecorator::addAttribute(Attribute const&) { refuse("RestoreMuteDecorator::addAttribute"); }
void RestoreMuteDecorator::addInstances(unsigned int) { refuse("RestoreMuteDecorator::addInstances"); }
