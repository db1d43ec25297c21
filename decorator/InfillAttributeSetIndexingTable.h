#ifndef DECORATOR_INFILLATTRIBUTESETINDEXINGTABLE_H
#define DECORATOR_INFILLATTRIBUTESETINDEXINGTABLE_H

// InfillAttributeSetIndexingTable: the complete grid of a two-key store.
// Within each group of the primary key the values of the secondary key are
// completed on a regular grid whose increment is the smallest step between
// neighbouring values of any group; the values the store lacks are
// invented (instance 0). How far each group runs, by pad type:
//
//   PadToCommonRange       the smallest to the largest value of all groups
//   PadWithinGroup         its own smallest to its own largest value
//   PadNone                nothing invented: the groups as they are, each
//                          in ascending order of the secondary key
//   PadToCommonStart       the smallest value of all to its own largest
//   PadToCommonEnd         its own smallest to the largest value of all
//   PadWithinGroupOwnStep  its own range, in its own smallest step (the
//                          common step for a group of one value)
//
// Pad limits (both non-zero) replace the range of every type but PadNone;
// they must lie on the group's grid and hold every value. Values count as
// on a grid within a thousandth of its step.
//
// Key types are vINT32, vINT64, vFLOAT32 and vFLOAT64, in any of the 4 x 4
// combinations. The grid is built once per secondary key and kept.

#include <map>

#include "decorator/GroupSizeInfillTemplate.h"
#include "filestore/disk/AttributeSetIndexingTable.h"
#include "foundation/vHandle.h"
#include "foundation/vUCString.h"

class InfillAttributeSetIndexingTable : public AttributeSetIndexingTable {
 public:
  enum AttrPadType {
    PadToCommonRange = 0,
    PadWithinGroup = 1,
    PadNone = 2,
    PadToCommonStart = 3,
    PadToCommonEnd = 4,
    PadWithinGroupOwnStep = 5
  };

  // Group questions of the table's own go to view; the grid is read from
  // below.
  InfillAttributeSetIndexingTable(AttributeSet const& view, AttributeSet const& below, AttrPadType padType);
  ~InfillAttributeSetIndexingTable() override;

  void addKeyAttributes(vUCString const& primary, vUCString const& secondary);
  bool hasKeyAttributes() const { return !m_primary.isBlank(); }
  vUCString const& getPrimaryKey() const { return m_primary; }
  vUCString const& getSecondaryKey() const { return m_secondary; }
  void applyPaddingLimits(double minimum, double maximum, double increment);
  void getAttributePadLimits(double& minimum, double& maximum, double& increment) const;

  // The grid, built at the first call.
  InfillTemplate const& getTemplate();

  // a and b lie on one grid of that increment, within a thousandth of a
  // step (computed in extended precision).
  static bool boundsCheckOk(double a, double b, double increment);

 private:
  template <class T, class K>
  vHandle<InfillTemplate> myBuildInfillGroup();
  template <class K>
  vHandle<InfillTemplate> myBuildForSecondary(DataType secondary);

  AttributeSet const& m_below;
  AttrPadType m_padType;
  vUCString m_primary;
  vUCString m_secondary;
  double m_padMinimum;
  double m_padMaximum;
  double m_padIncrement;
  std::map<vUCString, vHandle<InfillTemplate> > m_templates;
};

#endif
