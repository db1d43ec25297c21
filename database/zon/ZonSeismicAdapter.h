#ifndef DATABASE_ZON_ZONSEISMICADAPTER_H
#define DATABASE_ZON_ZONSEISMICADAPTER_H

// ZonSeismicAdapter: seismic datasets. Their traces are not read through
// attributes: the store gives the number of traces and the parameters of
// group "SEIS" of the trace table (STATUS and the like) as properties; it
// loads and writes no attributes of its own.

#include "database/zon/ZonPlainAdapter.h"

class ZonSeismicAdapter : public ZonPlainAdapter {
 public:
  explicit ZonSeismicAdapter(vHandle<ZonProject> const& project);
  ~ZonSeismicAdapter() override;

  vLCString getClass() const override;
  vLCString getSubClass() const override;
  void doInit(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) override;
  void doLoad(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) override;
  void doWriteAll(std::list<Attribute>& attributes, KeyList const& keys, PropertyI const& properties) override;
  // A table that would never be written: "Store %s is seismic; no
  // attribute set %s can be made in it here.".
  void createAttributeSet(vLCString const& name, KeyList const& keys) override;

 protected:
  vString myColumnName(vUCString const& attribute) const override;
  vUCString myAttributeName(vString const& column) const override;
};

#endif
