// Look-up of instances by tuples of key values.

#include <algorithm>
#include <memory>

#include "filestore/disk/AttributeSetIndexingTable.h"
#include "foundation/Message.h"
#include "foundation/vString.h"
#include "foundation/vUtl.h"

namespace {

char const* const kKeysLabel = "AttributeSetIndexingTable::myBuildListByKeys";

// One key: the wanted values, in the type the set stores, and the values of
// the current batch.
class KeyColumn {
 public:
  explicit KeyColumn(Attribute const& definition) : m_batch(definition) {}
  virtual ~KeyColumn() {}
  // Instance i (0-based) of the batch holds the value of tuple t (0-based).
  virtual bool equal(unsigned int i, unsigned int t) const = 0;
  Attribute& batch() { return m_batch; }

 protected:
  Attribute m_batch;
};

template <class T>
class TypedKeyColumn : public KeyColumn {
 public:
  TypedKeyColumn(Attribute const& definition, Attribute const& key, unsigned int nTuples) : KeyColumn(definition) {
    m_wanted.reserve(nTuples);
    bool const sameType = key.getDataType() == definition.getDataType();
    for (unsigned int t = 1; t <= nTuples; ++t)
      m_wanted.push_back(sameType ? *static_cast<T const*>(key.getPointer(t)) : static_cast<T>(key.getValue(t)));
  }
  bool equal(unsigned int i, unsigned int t) const override {
    T const a = static_cast<T const*>(m_batch.getPointer(1))[i];
    T const b = m_wanted[t];
    // NaN finds NaN, as in the group tables.
    return a == b || (a != a && b != b);
  }

 private:
  std::vector<T> m_wanted;
};

// Keys of the other numeric types, by value.
class ValueKeyColumn : public KeyColumn {
 public:
  ValueKeyColumn(Attribute const& definition, Attribute const& key, unsigned int nTuples) : KeyColumn(definition) {
    for (unsigned int t = 1; t <= nTuples; ++t) m_wanted.push_back(key.getValue(t));
  }
  bool equal(unsigned int i, unsigned int t) const override { return m_batch.getValue(i + 1) == m_wanted[t]; }

 private:
  std::vector<double> m_wanted;
};

class StringKeyColumn : public KeyColumn {
 public:
  StringKeyColumn(Attribute const& definition, Attribute const& key, unsigned int nTuples) : KeyColumn(definition) {
    for (unsigned int t = 1; t <= nTuples; ++t) m_wanted.push_back(key.getString(t));
  }
  bool equal(unsigned int i, unsigned int t) const override { return m_batch.getString(i + 1) == m_wanted[t]; }

 private:
  std::vector<vString> m_wanted;
};

std::unique_ptr<KeyColumn> makeColumn(Attribute const& definition, Attribute const& key, unsigned int nTuples) {
  // The wanted values must be of the kind the set stores.
  if ((definition.getDataType() == vSTRING) != (key.getDataType() == vSTRING))
    Message::fatal(kKeysLabel, 0, "The key %s is of type %s, but the Attribute of the data is of type %s.",
                   key.getName().c_str(), vUtl::dataTypeName(key.getDataType()).c_str(),
                   vUtl::dataTypeName(definition.getDataType()).c_str());
  switch (definition.getDataType()) {
    case vINT32:
      return std::unique_ptr<KeyColumn>(new TypedKeyColumn<int>(definition, key, nTuples));
    case vINT64:
      return std::unique_ptr<KeyColumn>(new TypedKeyColumn<long long>(definition, key, nTuples));
    case vFLOAT32:
      return std::unique_ptr<KeyColumn>(new TypedKeyColumn<float>(definition, key, nTuples));
    case vFLOAT64:
      return std::unique_ptr<KeyColumn>(new TypedKeyColumn<double>(definition, key, nTuples));
    case vSTRING:
      return std::unique_ptr<KeyColumn>(new StringKeyColumn(definition, key, nTuples));
    default:
      return std::unique_ptr<KeyColumn>(new ValueKeyColumn(definition, key, nTuples));
  }
}

void mustBeScalar(Attribute const& attribute) {
  if (attribute.getLength() != 1)
    Message::fatal(kKeysLabel, 0, "Can only function with Attributes of length=1. Your Attribute %s has a length of %d.",
                   attribute.getName().c_str(), attribute.getLength());
}

}  // namespace

void AttributeSetIndexingTable::locateByKeys(KeyList const& keys, std::vector<unsigned int>& result,
                                             bool allowDuplicates) {
  myBuildListByKeys(keys, result, allowDuplicates);
}

void AttributeSetIndexingTable::myBuildListByKeys(KeyList const& keys, std::vector<unsigned int>& result,
                                                  bool allowDuplicates) {
  result.clear();
  if (keys.getNKeys() == 0) return;
  unsigned int const nTuples = keys.begin()->getNInstances();
  std::vector<std::unique_ptr<KeyColumn> > columns;
  for (Attribute const& key : keys) {
    mustBeScalar(key);
    if (key.getNInstances() != nTuples)
      Message::fatal(kKeysLabel, 0, "Attribute %s of the KeyList does not have %lld values.", key.getName().c_str(),
                     static_cast<long long>(nTuples));
    Attribute definition = m_adaptor.getAttribute(key.getName());
    mustBeScalar(definition);
    columns.push_back(makeColumn(definition, key, nTuples));
  }
  result.assign(nTuples, 0);
  if (nTuples == 0) return;

  // Which tuples have been found already.
  std::vector<bool> found(nTuples, false);
  unsigned int nFound = 0;
  unsigned int const n = m_adaptor.getNInstances();
  unsigned int const batch = getBatchSize();
  for (unsigned int first = 1; first <= n;) {
    unsigned int const last = first + std::min(batch, n - first + 1) - 1;
    for (auto& column : columns) m_adaptor.read(column->batch(), first, last);
    for (unsigned int i = 0; i < last - first + 1; ++i) {
      for (unsigned int t = 0; t < nTuples; ++t) {
        if (found[t] && !allowDuplicates) continue;
        bool match = true;
        for (auto const& column : columns) {
          if (!column->equal(i, t)) {
            match = false;
            break;
          }
        }
        if (!match) continue;
        if (!found[t]) {
          found[t] = true;
          result[t] = first + i;
          ++nFound;
        } else {
          result.push_back(first + i);
        }
      }
    }
    if (last == n || (!allowDuplicates && nFound == nTuples)) break;
    first = last + 1;
  }
}
