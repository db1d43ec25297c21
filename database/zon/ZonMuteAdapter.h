#ifndef DATABASE_ZON_ZONMUTEADAPTER_H
#define DATABASE_ZON_ZONMUTEADAPTER_H

// ZonMuteAdapter: mute datasets, of a "2D" or a "3D" domain: class
// "Mute", subclass "offset". A mute function is the offsets MUTEOFFSETS
// and times MUTETIMES of a location, in columns MOFFSET and MTIME.

#include "database/zon/ZonPlainAdapter.h"

class ZonMuteAdapter : public ZonPlainAdapter {
 public:
  explicit ZonMuteAdapter(vHandle<ZonProject> const& project);
  ~ZonMuteAdapter() override;

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
