#ifndef DATABASE_ZON_ZONVELOCITYADAPTER_H
#define DATABASE_ZON_ZONVELOCITYADAPTER_H

// ZonVelocityAdapter: velocity datasets, of a "2D" or a "3D" domain:
// class velocity, subclass "time_rms". A store holds exactly three
// attributes: the location (first key), the time (second key) and the
// velocity. The rows of one location are its velocity function.
//
// With the property KVSENDVELOCITY of section CAPIZON set to a time, each
// function that ends before it gets one more row when written, at that time
// with its last velocity, so that a function reaches the end of the data.

#include "database/zon/ZonPlainAdapter.h"

class ZonVelocityAdapter : public ZonPlainAdapter {
 public:
  explicit ZonVelocityAdapter(vHandle<ZonProject> const& project);
  ~ZonVelocityAdapter() override;

  vLCString getClass() const override;
  vLCString getSubClass() const override;
  void doInit(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) override;
  void doLoad(KeyList& keys, std::list<Attribute>& attributes, PropertyI& properties) override;
  void doWriteAll(std::list<Attribute>& attributes, KeyList const& keys, PropertyI const& properties) override;

  // The attributes as they are to be written: a copy with the end rows.
  static void handleKVSVelocitySyntheticEndData(std::list<Attribute>& attributes, KeyList const& keys);

 protected:
  vString myColumnName(vUCString const& attribute) const override;
  vUCString myAttributeName(vString const& column) const override;
};

#endif
