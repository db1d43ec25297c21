#ifndef DATABASE_ZON_ZONWDEPTHADAPTER_H
#define DATABASE_ZON_ZONWDEPTHADAPTER_H

// ZonWDepthAdapter: water depth datasets: the positions XVAL, YVAL and the
// depth ATVAL at each, in columns of those names.

#include "database/zon/ZonPlainAdapter.h"

class ZonWDepthAdapter : public ZonPlainAdapter {
 public:
  explicit ZonWDepthAdapter(vHandle<ZonProject> const& project);
  ~ZonWDepthAdapter() override;

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
