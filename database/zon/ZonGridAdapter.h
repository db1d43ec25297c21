#ifndef DATABASE_ZON_ZONGRIDADAPTER_H
#define DATABASE_ZON_ZONGRIDADAPTER_H

// ZonGridAdapter: the bin grid of a survey, class "ZonGrid": one row of
// the grid's figures (CMP_ORDERING, FIRST_CMP ... NUM_BINS_ALONG_ORDERING_
// WITH_PADDING) in columns of short dictionary names, and its units in the
// property UNITS. The ordering is "ALONG_INLINES" or "ALONG_CROSSLINES",
// the units "METERS" or "FEET"; a grid with others is refused when
// written.

#include "database/zon/ZonPlainAdapter.h"

class ZonGridAdapter : public ZonPlainAdapter {
 public:
  explicit ZonGridAdapter(vHandle<ZonProject> const& project);
  ~ZonGridAdapter() override;

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
