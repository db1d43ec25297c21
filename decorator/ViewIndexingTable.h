#ifndef DECORATOR_VIEWINDEXINGTABLE_H
#define DECORATOR_VIEWINDEXINGTABLE_H

// ViewIndexingTable: group and key questions answered over any attribute set
// through its own reads by range, so that a view that maps, filters or
// reorders instances answers them in its own numbering. Instances are read in
// batches of 1,000,000 / (4 x number of attributes), 5000 when the set has
// no attributes; the batch size is worked out at the first question.
//
// Groups are the distinct values of a scalar attribute of type vINT32,
// vINT64, vFLOAT32 or vFLOAT64, counted from 1 in ascending order of value
// whatever order a question asks its answer in. Nothing is cached between
// questions: a view's instance set may change under it (a new selection).
//
// The table holds a reference to its set and must not outlive it.

#include <vector>

#include "attribute/Attribute.h"
#include "attribute/KeyList.h"
#include "foundation/vUtlSort.h"

class AttributeSet;

class ViewIndexingTable {
 public:
  explicit ViewIndexingTable(AttributeSet const& set);

  // One slot for each key tuple (the key attributes' values, instance by
  // instance): the first instance that holds it, 0 when none does.
  void locateByKeys(KeyList const& keys, std::vector<unsigned int>& result) const;
  // The instances of groups firstGroup to lastGroup of groupAttribute (last 0:
  // to the last group), group by group, ascending within a group.
  void locateByGroups(Attribute const& groupAttribute, unsigned int firstGroup, unsigned int lastGroup,
                      std::vector<unsigned int>& result) const;
  // The distinct values of the attribute named, in the order given, with
  // the number of instances of each.
  void getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                         vUtlSort::SortOrder::SortOrderType order) const;
  void getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const;

 private:
  ViewIndexingTable(ViewIndexingTable const&) = delete;
  ViewIndexingTable& operator=(ViewIndexingTable const&) = delete;

  unsigned int myBatchSize() const;
  // The groups of a scalar attribute: distinct values ascending, and the
  // instances of each.
  struct Groups;
  void myBuildGroups(char const* label, vUCString const& name, Groups& groups) const;
  void myCheckFirstLast(unsigned int first, unsigned int last, unsigned int n) const;

  AttributeSet const& m_set;
  mutable unsigned int m_batchSize;
};

#endif
