#ifndef DATABASE_ZON_ZONHORIZONADAPTER_H
#define DATABASE_ZON_ZONHORIZONADAPTER_H

// ZonHorizonAdapter: horizon datasets (type "HZ"), of a "2D" or a "3D"
// domain. The attributes DATAINDEX, HORIZONNAMES, HORIZONINDEX, HTIME,
// HORIZONFLOATVALUES and RECUMBENCY sit in columns of the horizon table;
// the property HORIZONNAME, which a horizon must have, in the table's
// parameter HZNAME of group "SGD". The subclass is the domain.

#include "database/zon/ZonPlainAdapter.h"

class ZonHorizonAdapter : public ZonPlainAdapter {
 public:
  explicit ZonHorizonAdapter(vHandle<ZonProject> const& project);
  ~ZonHorizonAdapter() override;

  vLCString getClass() const override;
  vLCString getSubClass() const override;
  void doInit(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) override;
  void doLoad(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) override;
  void doWriteAll(std::list<Attribute>& attributes, KeyList const& keys, PropertyI const& properties) override;

 protected:
  vString myColumnName(vUCString const& attribute) const override;
  vUCString myAttributeName(vString const& column) const override;
};

#endif
