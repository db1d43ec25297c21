#ifndef FILESTORE_DISK_ATTRIBUTESETINDEXINGTABLE_H
#define FILESTORE_DISK_ATTRIBUTESETINDEXINGTABLE_H

// AttributeSetIndexingTable: key and group questions answered for a set or
// file that can only read by instance number. The table reads what it needs
// through a BasicDataAdaptor, in batches that keep its buffers near
// 1,000,000 bytes, and asks the set nothing before the first question, so
// that a store can build the table on itself before it has attributes.
//
// Groups of an attribute are its distinct values, counted from 1 in
// ascending order of value. The table of group values and sizes of each
// attribute asked about is built once and kept; clearCache() forgets those
// tables when the data beneath have changed. Groups and keys are scalars of
// type vINT32, vINT64, vFLOAT32 or vFLOAT64 (keys of other numeric types
// and strings are compared by value). Floating-point NaNs form one group,
// after all numbers.

#include <map>
#include <vector>

#include "attribute/Attribute.h"
#include "attribute/KeyList.h"
#include "filestore/disk/BasicDataAdaptor.h"
#include "foundation/vUtlSort.h"

class AttributeFile;
class AttributeSet;

class AttributeSetIndexingTable {
 public:
  explicit AttributeSetIndexingTable(AttributeFile* file);
  explicit AttributeSetIndexingTable(AttributeSet const& set);
  virtual ~AttributeSetIndexingTable();

  // One slot for each tuple of key values that the keys hold (the first
  // key's number of values): the first instance holding that tuple, 0 when
  // none does. With allowDuplicates the search goes on after a first match,
  // and each further instance matching a tuple already found is appended
  // after the slots, so that duplicates make the result longer than the
  // list of tuples.
  void locateByKeys(KeyList const& keys, std::vector<unsigned int>& result, bool allowDuplicates = false);
  // The instances of groups first to last of the attribute named, group
  // after group, each group's instances ascending. A last group of 0 means
  // the last group.
  void locateByGroups(Attribute const& groupAttribute, unsigned int firstGroup, unsigned int lastGroup,
                      std::vector<unsigned int>& result);
  // The attribute becomes the set's definition holding the group values in
  // the order asked for, and sizes the number of instances of each.
  void getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                         vUtlSort::SortOrder::SortOrderType order);
  void getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order);

  // Instances read at a time: 1,000,000 / (4 * attributes), 5000 without
  // attributes; worked out at the first call.
  unsigned int getBatchSize();
  // Forgets the group tables.
  void clearCache();

  BasicDataAdaptor const& getAdaptor() const { return m_adaptor; }

  // Orders NaNs after every number and equal to one another, so that
  // floating-point values can key a map.
  template <class T>
  struct GroupLess {
    bool operator()(T const& a, T const& b) const {
      if (a != a) return false;
      if (b != b) return true;
      return a < b;
    }
  };
  template <class T>
  using GroupTable = std::map<T, unsigned int, GroupLess<T> >;

 protected:
  // The group table of the attribute, built at the first call.
  template <class T>
  GroupTable<T>& myBuildAndGetGroupSize(Attribute const& definition);
  // The set's definition of a group attribute, checked for type and length.
  Attribute myGroupDefinition(char const* label, Attribute const& attribute);
  void myCheckFirstLast(unsigned int first, unsigned int last, unsigned int nInstances) const;
  void myBuildListByKeys(KeyList const& keys, std::vector<unsigned int>& result, bool allowDuplicates);

 private:
  template <class T>
  void myLocateByGroups(Attribute const& definition, unsigned int first, unsigned int last,
                        std::vector<unsigned int>& result);
  template <class T>
  void myGroupsAndSizes(Attribute const& definition, Attribute& attribute, std::vector<unsigned int>* sizes,
                        vUtlSort::SortOrder::SortOrderType order);
  template <class T>
  std::map<vUCStringTableData const*, GroupTable<T> >& myTables();

  unsigned int m_batchSize;
  BasicDataAdaptor m_adaptor;
  std::map<vUCStringTableData const*, GroupTable<int> > m_int32Groups;
  std::map<vUCStringTableData const*, GroupTable<long long> > m_int64Groups;
  std::map<vUCStringTableData const*, GroupTable<float> > m_float32Groups;
  std::map<vUCStringTableData const*, GroupTable<double> > m_float64Groups;
};

#endif
