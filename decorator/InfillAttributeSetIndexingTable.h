#ifndef DECORATOR_INFILLATTRIBUTESETINDEXINGTABLE_H
#define DECORATOR_INFILLATTRIBUTESETINDEXINGTABLE_H

// InfillAttributeSetIndexingTable: the complete grid of a two-key store.
// Within each group of the primary key the values of the secondary key are
// completed on a regular grid whose increment is the smallest step between
// neighbouring values of any group; the values the store lacks are
// invented (instance 0). With PadToCommonRange every group runs over the
// smallest to the largest value of all groups; with PadWithinGroup each
// group over its own. Pad limits (both non-zero) replace the range; they
// must lie on the grid and hold every value.
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
  enum AttrPadType { PadToCommonRange = 0, PadWithinGroup = 1 };

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
