// The attributes of a client attribute set: their list, reads and writes.

#include <iterator>

#include "foundation/Message.h"
#include "foundation/Packer.h"
#include "remote/ClientAttributeSet.h"
#include "remote/ClientCodes.h"

namespace {

int32_t code(ClientCode::SetCode c) { return static_cast<int32_t>(c); }

}  // namespace

void ClientAttributeSet::myFillAttributeList() const {
  if (m_cache & AttributeListBit) return;
  Packer packer(20);
  packer.pack(code(ClientCode::GetAttributeList));
  myGetOK(packer, "ClientAttributeSet::getAttributeList", ClientCode::GetAttributeList);
  std::list<Attribute> list;
  unpack(packer, std::back_inserter(list), Attribute());
  m_attributes.swap(list);
  m_cache |= AttributeListBit;
}

std::list<Attribute> ClientAttributeSet::getAttributeList() const {
  myFillAttributeList();
  return m_attributes;
}

std::list<Attribute> ClientAttributeSet::getAttributeList(vUCString const& text,
                                                          AttributeMatch::AttributeMatchType match) const {
  Packer packer(100);
  packer.pack(code(ClientCode::GetAttributeListMatching));
  packer.pack(text);
  packer.pack(static_cast<int32_t>(match));
  myGetOK(packer, "ClientAttributeSet::getAttributeList", ClientCode::GetAttributeListMatching);
  std::list<Attribute> list;
  unpack(packer, std::back_inserter(list), Attribute());
  return list;
}

Attribute ClientAttributeSet::getAttribute(vUCString const& name) const {
  if (m_cache & AttributeListBit) {
    for (Attribute const& a : m_attributes)
      if (a.getName() == name) return a;
    // Not in the list: the list is out of date.
    m_attributes.clear();
    m_cache &= ~static_cast<uint32_t>(AttributeListBit);
  }
  Packer packer(50);
  packer.pack(code(ClientCode::GetAttribute));
  packer.pack(name);
  myGetOK(packer, "ClientAttributeSet::getAttribute", ClientCode::GetAttribute);
  Attribute attribute;
  attribute.unpack(packer);
  return attribute;
}

bool ClientAttributeSet::hasAttribute(vUCString const& name) const {
  if (m_cache & AttributeListBit) {
    for (Attribute const& a : m_attributes)
      if (a.getName() == name) return true;
    return false;
  }
  Packer packer(50);
  packer.pack(code(ClientCode::HasAttribute));
  packer.pack(name);
  myGetOK(packer, "ClientAttributeSet::hasAttribute", ClientCode::HasAttribute);
  bool has = false;
  packer.unpackBool(has);
  return has;
}

unsigned int ClientAttributeSet::getNAttributes() const {
  myFillAttributeList();
  return static_cast<unsigned int>(m_attributes.size());
}

void ClientAttributeSet::addAttribute(Attribute const& attribute) {
  Packer packer(200);
  packer.pack(code(ClientCode::AddAttribute));
  packer.pack(attribute);
  myGetOK(packer, "ClientAttributeSet::addAttribute", ClientCode::AddAttribute);
  if (m_cache & AttributeListBit) {
    m_attributes.push_back(attribute);
  }
}

void ClientAttributeSet::setAttributeClass(vUCString const& name, vUCString const& className) {
  Packer packer(50);
  packer.pack(code(ClientCode::SetAttributeClass));
  packer.pack(name);
  packer.pack(className);
  myGetOK(packer, "ClientAttributeSet::setAttributeClass", ClientCode::SetAttributeClass);
  m_attributes.clear();
  m_cache &= ~static_cast<uint32_t>(AttributeListBit);
}

void ClientAttributeSet::addInstances(unsigned int count) {
  Packer packer(30);
  packer.pack(code(ClientCode::AddInstances));
  packer.pack(count);
  myGetOK(packer, "ClientAttributeSet::addInstances", ClientCode::AddInstances);
  m_nInstances += count;
}

void ClientAttributeSet::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  Packer packer(200);
  packer.pack(code(ClientCode::GetUnique));
  packer.pack(attribute.getName());
  packer.pack(static_cast<int32_t>(order));
  myGetOK(packer, "ClientAttributeSet::getUnique", ClientCode::GetUnique);
  attribute.unpack(packer);
}

void ClientAttributeSet::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                           vUtlSort::SortOrder::SortOrderType order) const {
  Packer packer(100);
  packer.pack(code(ClientCode::GetGroupsAndSizes));
  packer.pack(attribute.getName());
  packer.pack(static_cast<int32_t>(order));
  myGetOK(packer, "ClientAttributeSet::getGroupsAndSizes", ClientCode::GetGroupsAndSizes);
  attribute.unpack(packer);
  std::vector<unsigned int> got;
  unpack(packer, std::back_inserter(got), 0u);
  sizes.swap(got);
}

// --- reads ------------------------------------------------------------------------------

void ClientAttributeSet::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  Packer packer(30);
  packer.pack(code(ClientCode::ReadRange));
  packer.pack(attribute.getName());
  packer.pack(first);
  packer.pack(last);
  myGetOK(packer, "ClientAttributeSet::read", ClientCode::ReadRange);
  attribute.unpack(packer);
}

void ClientAttributeSet::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  Packer packer(200);
  packer.pack(code(ClientCode::ReadList));
  packer.pack(attribute.getName());
  pack(packer, instances.begin(), instances.end());
  myGetOK(packer, "ClientAttributeSet::read", ClientCode::ReadList);
  attribute.unpack(packer);
}

void ClientAttributeSet::read(Attribute& attribute, Attribute const& key, unsigned int first,
                              unsigned int last) const {
  Packer packer(200);
  packer.pack(code(ClientCode::ReadGroups));
  packer.pack(attribute.getName());
  packer.pack(key);
  packer.pack(first);
  packer.pack(last);
  myGetOK(packer, "ClientAttributeSet::read", ClientCode::ReadGroups);
  attribute.unpack(packer);
}

void ClientAttributeSet::read(Attribute& attribute, KeyList const& keys) const {
  Packer packer(200);
  packer.pack(code(ClientCode::ReadKeys));
  packer.pack(attribute.getName());
  packer.pack(keys);
  myGetOK(packer, "ClientAttributeSet::read", ClientCode::ReadKeys);
  attribute.unpack(packer);
}

// --- writes ------------------------------------------------------------------------------

void ClientAttributeSet::write(Attribute const& attribute, unsigned int first, unsigned int last) {
  Packer packer(1008);
  packer.pack(code(ClientCode::WriteRange));
  packer.pack(first);
  packer.pack(last);
  packer.pack(attribute);
  myGetOK(packer, "ClientAttributeSet::write", ClientCode::WriteRange);
}

void ClientAttributeSet::write(Attribute const& attribute, std::vector<unsigned int> const& instances) {
  Packer packer(1008);
  packer.pack(code(ClientCode::WriteList));
  pack(packer, instances.begin(), instances.end());
  packer.pack(attribute);
  myGetOK(packer, "ClientAttributeSet::write", ClientCode::WriteList);
}

void ClientAttributeSet::write(Attribute const& attribute, Attribute const& key, unsigned int first,
                               unsigned int last) {
  Packer packer(1008);
  packer.pack(code(ClientCode::WriteGroups));
  packer.pack(attribute);
  packer.pack(key);
  packer.pack(first);
  packer.pack(last);
  myGetOK(packer, "ClientAttributeSet::write", ClientCode::WriteGroups);
}

void ClientAttributeSet::write(Attribute const& attribute, KeyList const& keys) {
  Packer packer(1008);
  packer.pack(code(ClientCode::WriteKeys));
  packer.pack(attribute);
  packer.pack(keys);
  myGetOK(packer, "ClientAttributeSet::write", ClientCode::WriteKeys);
}
