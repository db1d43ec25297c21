#ifndef DATABASE_ZON_ZONPLAINADAPTER_H
#define DATABASE_ZON_ZONPLAINADAPTER_H

// ZonPlainAdapter: any table of a dataset, column by column. Each column is
// a scalar attribute, the table's key columns are the key list, and the
// table's parameters of group "PROP" ("SGD" in a seismic-geometry dataset)
// are the store's properties (those with names of up to eight characters
// and one value). The class of the
// store is the table's class, its subclass the table's domain.
//
// The adapters of the typed datasets derive from it: they name columns and
// parameters of their own (myColumnName, myAttributeName) and add their
// checks around the same reads and writes.

#include "database/zon/ZonAdapterBase.h"

class ZonPlainAdapter : public ZonAdapterBase {
 public:
  explicit ZonPlainAdapter(vHandle<ZonProject> const& project);
  ~ZonPlainAdapter() override;

  vLCString getClass() const override;
  vLCString getSubClass() const override;
  void doInit(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) override;
  void doLoad(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) override;
  void doWriteAll(std::list<Attribute>& attributes, KeyList const& keys, PropertyI const& properties) override;

 protected:
  // The table of the open dataset: "The table doesn't exist for %s.\n".
  Object myTable(char const* label) const;
  void myRead(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties, bool withData);
  // The table written: columns and the parameters of its group.
  Object myWrite(std::list<Attribute> const& attributes, PropertyI const& properties);

  // The domain of the table written, which must be "2D" or "3D" for the
  // adapters that take both: "Unknown domain %s.".
  void myMustBe2DOr3D(char const* label) const;
  // "SGD" for a dataset of type SGD, else "PROP".
  char const* myParameterGroup() const;

  vString myDomain;
};

#endif
