#include "attribute/AttributeDefinitionTable.h"

#include <cstdint>
#include <iostream>

#include "attribute/LoadAttributeDefinitions.h"
#include "foundation/Packer.h"
#include "foundation/UtlExcept.h"

namespace {

char const* const kFile = "AttributeDefinitionTable.cpp";

}  // namespace

AttributeDefinitionTable& AttributeDefinitionTable::instance() {
  // Never destroyed: definitions are asked for by objects in static storage
  // whose order of destruction is not known.
  static AttributeDefinitionTable* table = new AttributeDefinitionTable;
  return *table;
}

vString AttributeDefinitionTable::getFilename() { return vString("AttributeDefTable4.txt"); }

AttributeDefinitionTable::AttributeDefinitionTable() : m_nEntries(0) {}

AttributeDefinitionTable::~AttributeDefinitionTable() {}

Attribute const* AttributeDefinitionTable::myFind(vUCString const& className) const {
  Index::const_iterator const found = m_index.find(className);
  return found == m_index.end() ? nullptr : found->second;
}

void AttributeDefinitionTable::myLoad() {
  LoadAttributeDefinitions loader(*this);
  loader.load(getFilename(), vString("attribute definitions"));
}

void AttributeDefinitionTable::myLoadIfEmpty() {
  if (m_nEntries == 0) myLoad();
}

Attribute AttributeDefinitionTable::getDefinition(vUCString const& className) {
  myLoadIfEmpty();
  Attribute const* definition = myFind(className);
  if (definition == nullptr) {
    vString reason("AttributeDefinitionTable::getDefinition() Attribute definition for '");
    reason += className;
    reason += "' not found.";
    throw UtlExcept(reason, vString("AttributeDefinitionTable::getDefinition()"), __LINE__, kFile);
  }
  return *definition;
}

bool AttributeDefinitionTable::hasDefinition(vUCString const& className) {
  myLoadIfEmpty();
  return myFind(className) != nullptr;
}

void AttributeDefinitionTable::addDefinition(Attribute const& definition) {
  vUCString const& key = definition.getClass();
  Definitions::iterator const found = m_definitions.find(key);
  if (found != m_definitions.end()) {
    found->second = definition;
    return;
  }
  Definitions::iterator const made = m_definitions.emplace(key, definition).first;
  try {
    m_index.emplace(key, &made->second);
  } catch (...) {
    m_definitions.erase(made);
    throw;
  }
  m_nEntries = static_cast<int>(m_definitions.size());
}

void AttributeDefinitionTable::dropTable() {
  m_index.clear();
  m_definitions.clear();
  m_nEntries = 0;
}

void AttributeDefinitionTable::reload() {
  dropTable();
  myLoad();
}

void AttributeDefinitionTable::printTable() const {
  if (m_definitions.empty()) {
    std::cout << "AttributeDefinitionTable is empty." << std::endl;
    return;
  }
  std::cout << "Dump of AttributeDefinitionTable." << std::endl;
  for (Definitions::const_iterator i = m_definitions.begin(); i != m_definitions.end(); ++i)
    std::cout << "Class= " << i->first << " | "
              << "Attribute= " << i->second;
  std::cout << std::flush;
}

void AttributeDefinitionTable::pack(Packer& packer) const {
  packer.packFrame(Magic, Version);
  packer.pack(static_cast<int32_t>(m_nEntries));
  for (Definitions::const_iterator i = m_definitions.begin(); i != m_definitions.end(); ++i) packer.pack(i->second);
  packer.endFrame();
}

void AttributeDefinitionTable::unpack(Packer& packer) {
  short magic = 0;
  short version = 0;
  packer.unpackFrame(magic, version);
  if (magic != Magic)
    throw UtlExcept("AttributeDefinitionTable::unpack() Bad magic number.", "AttributeDefinitionTable::unpack()",
                    __LINE__, kFile);
  if (version != Version)
    throw UtlExcept("AttributeDefinitionTable::unpack() Bad version number.", "AttributeDefinitionTable::unpack()",
                    __LINE__, kFile);
  int32_t count = 0;
  packer.unpack(count);
  for (int32_t i = 0; i < count; ++i) {
    Attribute definition(packer);
    addDefinition(definition);
  }
  packer.endFrame();
}
