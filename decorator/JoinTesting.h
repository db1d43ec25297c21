#ifndef DECORATOR_JOINTESTING_H
#define DECORATOR_JOINTESTING_H

// Test helpers of the sorting and joining views: stores on the in-memory
// test double written column by column, with any number of attribute sets,
// and the values of a view read back.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "attribute/AttributeDefinitionTable.h"
#include "decorator/DecoratorTesting.h"

namespace join_testing {

using namespace decorator_testing;

// One column: its definition and its values, instance after instance
// (length values per instance).
struct Column {
  Attribute definition;
  std::vector<double> values;
};

inline Column column(char const* name, DataType type, std::vector<double> values, int length = 1) {
  return Column{Attribute(name, name, type, length), std::move(values)};
}

// The columns of one attribute set; the first set is the store's primary.
// A set may name keys of its own.
struct SetContent {
  std::string name;
  std::vector<Column> columns;
  std::vector<std::string> keys = {};
};

inline void writeColumns(Store& store, std::vector<Column> const& columns) {
  unsigned int n = 0;
  if (!columns.empty())
    n = static_cast<unsigned int>(columns.front().values.size() / columns.front().definition.getLength());
  for (Column const& c : columns)
    if (!store.hasAttribute(c.definition.getName())) store.addAttribute(c.definition);
  if (n == 0) return;
  store.addInstances(n);
  for (Column const& c : columns) {
    Attribute data(c.definition);
    data.resize(n);
    int const length = c.definition.getLength();
    for (unsigned int i = 1; i <= n; ++i)
      for (int k = 0; k < length; ++k) setElement(data, i, k, c.values[(i - 1) * length + k]);
    store.write(data, 1, n);
  }
}

// A store of that name whose sets hold the contents given, with the key
// list of the columns named (unless a set names its own).
inline std::shared_ptr<TestMemoryShelf> joinShelf(char const* name, std::vector<std::string> const& keyNames,
                                                  std::vector<SetContent> const& sets, char const* subClass = "3d") {
  auto shelf = std::make_shared<TestMemoryShelf>();
  TestMemoryStore writer(vHandle<Project>(), shelf);
  auto keysOf = [&](SetContent const& set) {
    KeyList keys;
    for (std::string const& key : set.keys.empty() ? keyNames : set.keys)
      for (Column const& c : set.columns)
        if (key == c.definition.getName().c_str()) keys.addKey(c.definition);
    return keys;
  };
  writer.create(name, "seismic", subClass, keysOf(sets.front()), nullptr);
  writeColumns(writer, sets.front().columns);
  for (std::size_t s = 1; s < sets.size(); ++s) {
    writer.createAttributeSet(sets[s].name.c_str(), keysOf(sets[s]));
    writeColumns(writer, sets[s].columns);
  }
  writer.close();
  return shelf;
}

inline vHandle<Store> openJoin(std::shared_ptr<TestMemoryShelf> const& shelf, char const* name,
                               char const* subClass = "3d") {
  vHandle<Store> store(new TestMemoryStore(vHandle<Project>(), shelf));
  store->open(name, 0, "seismic", subClass, nullptr);
  return store;
}

// A store with one set of the columns given and keys.
inline vHandle<Store> simpleStore(char const* name, std::vector<std::string> const& keyNames,
                                  std::vector<Column> const& columns) {
  return openJoin(joinShelf(name, keyNames, {SetContent{"", columns}}), name);
}

// The values of an attribute after a read.
inline std::vector<double> valuesOf(Attribute const& a) {
  std::vector<double> out;
  for (unsigned int i = 1; i <= a.getNInstances(); ++i)
    for (int k = 1; k <= a.getLength(); ++k) out.push_back(a.getValue(i, k));
  return out;
}

// The definition table holds the sequence attribute of the joining views
// (and nothing else) for the life of the object.
class SequenceDefinition {
 public:
  SequenceDefinition() {
    AttributeDefinitionTable::instance().dropTable();
    AttributeDefinitionTable::instance().addDefinition(
        Attribute("ATTRIBUTESET.SEQUENCE", "ATTRIBUTESET.SEQUENCE", vINT32));
  }
  ~SequenceDefinition() { AttributeDefinitionTable::instance().dropTable(); }
};

}  // namespace join_testing

#endif
