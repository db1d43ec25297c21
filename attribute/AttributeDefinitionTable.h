#ifndef ATTRIBUTE_ATTRIBUTEDEFINITIONTABLE_H
#define ATTRIBUTE_ATTRIBUTEDEFINITIONTABLE_H

// AttributeDefinitionTable: the process's one vocabulary of attributes. For
// each attribute class it keeps the defining Attribute: name, data type and
// length. The table loads itself from the system file "AttributeDefTable4.txt"
// (see LoadAttributeDefinitions) on the first question; a table without
// entries counts as not loaded, so it is asked for again.
//
// Entries are kept in class order, for printing and packing, and reached
// through a hash of the class name: a look-up is on the way of every
// attribute that a store hands out.
//
// A server sends its table to a client packed (magic 9845, version 1).
// No locks: the first caller loads the table.

#include <cstddef>
#include <functional>
#include <map>
#include <string_view>
#include <unordered_map>

#include "attribute/Attribute.h"
#include "foundation/Packable.h"
#include "foundation/vUCString.h"

class AttributeDefinitionTable : public Packable {
 public:
  static constexpr short Magic = 9845;
  static constexpr short Version = 1;

  // The one table, made empty on first use.
  static AttributeDefinitionTable& instance();
  // "AttributeDefTable4.txt".
  static vString getFilename();

  ~AttributeDefinitionTable() override;

  void pack(Packer& packer) const override;
  // Adds the packed entries as addDefinition does. A foreign magic throws
  // "AttributeDefinitionTable::unpack() Bad magic number.", another version
  // "AttributeDefinitionTable::unpack() Bad version number.".
  void unpack(Packer& packer) override;

  // A copy of the definition of a class, loading the table first if it is
  // empty. An absent class throws "AttributeDefinitionTable::getDefinition()
  // Attribute definition for '<name>' not found.".
  Attribute getDefinition(vUCString const& className);
  bool hasDefinition(vUCString const& className);
  // Inserts under the attribute's class; a later definition of a class
  // replaces the earlier one.
  void addDefinition(Attribute const& definition);
  // Empties the table and loads it from its file.
  void reload();
  void dropTable();
  // The definitions, one block per class, on standard output.
  void printTable() const;

  int getNEntries() const { return m_nEntries; }
  bool isLoaded() const { return m_nEntries != 0; }
  // Entries in class order.
  std::map<vUCString, Attribute> const& getDefinitions() const { return m_definitions; }

 private:
  struct NameHash {
    std::size_t operator()(vUCString const& name) const {
      return std::hash<std::string_view>()(std::string_view(name.c_str(), name.length()));
    }
  };
  typedef std::map<vUCString, Attribute> Definitions;
  typedef std::unordered_map<vUCString, Attribute const*, NameHash> Index;

  AttributeDefinitionTable();
  AttributeDefinitionTable(AttributeDefinitionTable const&) = delete;
  AttributeDefinitionTable& operator=(AttributeDefinitionTable const&) = delete;

  void myLoadIfEmpty();
  void myLoad();
  Attribute const* myFind(vUCString const& className) const;

  Definitions m_definitions;
  int m_nEntries;
  // Class name to its entry in m_definitions (map nodes do not move).
  Index m_index;
};

#endif
