#ifndef DECORATOR_GATHERSTOREDECORATOR_H
#define DECORATOR_GATHERSTOREDECORATOR_H

// GatherStoreDecorator: a view that interleaves the attribute sets of one
// store, one instance of each in turn. With S sets, view instance k is
// instance (k + S - 1) / S of set k mod S (0 read as S): instance 1 of every
// set, then instance 2 of every set, and so on. The sets are taken to be of
// equal size.
//
// An interleaved read visits every set at every step, and the store below
// has one current set; so reads go through a cache that holds a window of
// every attribute of every set, refilled a set at a time. The cache's size
// in megabytes is 256, or GATHERSTOREDECORATOR_CACHESIZE where set; it is
// meant to be set before the first read.

#include <map>
#include <vector>

#include "decorator/ConcatStoreDecorator.h"
#include "decorator/Timer.h"

class GatherStoreDecorator : public ConcatStoreDecorator {
 public:
  explicit GatherStoreDecorator(vHandle<Store> const& store);
  ~GatherStoreDecorator() override;

  Store& operator=(PropertyI const& properties) override;

  // The size now held must be at least 1 (whatever the new one).
  void setCacheSize(int megabytes);
  int getCacheSize() const;
  // Instances a window holds past its first (0 until the first read).
  int getInstancesPerFill() const;
  // The fills of the cache so far.
  Timer const& getTimer() const;

 protected:
  // One location for the range, without a set.
  void myConvertRangeToLocations(unsigned int first, unsigned int last,
                                 std::vector<ConcatStoreDecoratorLocation>& locations) const override;
  void myAddKeys(std::list<Attribute>& attributes, KeyList& keys) const override;
  void myAppend(Attribute& attribute, std::vector<ConcatStoreDecoratorLocation>& locations) const override;

 private:
  class CacheData;

  CacheData* m_cache;
};

#endif
