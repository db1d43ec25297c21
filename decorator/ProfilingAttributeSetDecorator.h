#ifndef DECORATOR_PROFILINGATTRIBUTESETDECORATOR_H
#define DECORATOR_PROFILINGATTRIBUTESETDECORATOR_H

// ProfilingAttributeSetDecorator: times the calls made on an attribute set.
// open, create, update (name forms), close and the four reads and four
// writes each have a timer under a fixed label ("open", "create", "update",
// "close", "read(range)", "read(list)", "read(groups)", "read(keys)",
// "write(range)", "write(list)", "write(groups)", "write(keys)"), made at the
// label's first call. close reports on standard error, one line per label
// used, in label order:
//
//   <set name> <label>: <Timer::getTotalTimes()>
//
// and then forgets the timers, so that a set opened again starts from zero.
// The full-name forms of open, create and update are timed by the name forms
// they call. Several profiling decorators may be stacked.

#include <map>

#include "decorator/AttributeSetDecorator.h"
#include "decorator/Timer.h"
#include "foundation/vString.h"

class ProfilingAttributeSetDecorator : public AttributeSetDecorator {
 public:
  explicit ProfilingAttributeSetDecorator(vHandle<AttributeSet> const& set);
  ~ProfilingAttributeSetDecorator() override;

  void create(vLCString const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
              StoreCreationOptions const* options) override;
  void create(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
              KeyList const& keys, StoreCreationOptions const* options) override;
  void open(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;
  void open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;
  void update(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
              StoreOpenOptions const* options) override;
  void update(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
              StoreOpenOptions const* options) override;
  void close() override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  void read(Attribute& attribute, Attribute const& key, unsigned int firstGroup,
            unsigned int lastGroup) const override;
  void read(Attribute& attribute, KeyList const& keys) const override;

  // The timers by label, as they stand.
  std::map<vString, Timer> const& getTimers() const { return m_timers; }

 private:
  // Runs call under the label's timer; the timer stops also when the call
  // fails.
  template <class F>
  void myTimed(char const* label, F call) const;

  mutable std::map<vString, Timer> m_timers;
};

#endif
