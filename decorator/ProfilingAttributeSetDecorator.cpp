#include "decorator/ProfilingAttributeSetDecorator.h"

#include <cstdio>

#include "project/FullStoreName.h"

ProfilingAttributeSetDecorator::ProfilingAttributeSetDecorator(vHandle<AttributeSet> const& set)
    : AttributeSetDecorator(set) {}

ProfilingAttributeSetDecorator::~ProfilingAttributeSetDecorator() {}

template <class F>
void ProfilingAttributeSetDecorator::myTimed(char const* label, F call) const {
  auto entry = m_timers.find(vString(label));
  if (entry == m_timers.end()) entry = m_timers.emplace(vString(label), Timer("Timer")).first;
  Timer& timer = entry->second;
  timer.start();
  try {
    call();
  } catch (...) {
    timer.stop();
    throw;
  }
  timer.stop();
}

void ProfilingAttributeSetDecorator::create(vLCString const& name, vLCString const& className,
                                            vLCString const& subClass, KeyList const& keys,
                                            StoreCreationOptions const* options) {
  myTimed("create", [&] { AttributeSetDecorator::create(name, className, subClass, keys, options); });
}

void ProfilingAttributeSetDecorator::create(FullStoreName const& name, vLCString const& className,
                                            vLCString const& subClass, KeyList const& keys,
                                            StoreCreationOptions const* options) {
  create(name.getStoreName(), className, subClass, keys, options);
}

void ProfilingAttributeSetDecorator::open(vLCString const& name, int version, vLCString const& className,
                                          vLCString const& subClass, StoreOpenOptions const* options) {
  myTimed("open", [&] { AttributeSetDecorator::open(name, version, className, subClass, options); });
}

void ProfilingAttributeSetDecorator::open(FullStoreName const& name, vLCString const& className,
                                          vLCString const& subClass, StoreOpenOptions const* options) {
  open(name.getStoreName(), name.getVersion(), className, subClass, options);
}

void ProfilingAttributeSetDecorator::update(vLCString const& name, int version, vLCString const& className,
                                            vLCString const& subClass, StoreOpenOptions const* options) {
  myTimed("update", [&] { AttributeSetDecorator::update(name, version, className, subClass, options); });
}

void ProfilingAttributeSetDecorator::update(FullStoreName const& name, vLCString const& className,
                                            vLCString const& subClass, StoreOpenOptions const* options) {
  update(name.getStoreName(), name.getVersion(), className, subClass, options);
}

void ProfilingAttributeSetDecorator::close() {
  // The name of a closed set cannot be asked for.
  vString name = getName();
  myTimed("close", [&] { AttributeSetDecorator::close(); });
  for (auto const& entry : m_timers)
    std::fprintf(stderr, "%s %s: %s\n", name.c_str(), entry.first.c_str(), entry.second.getTotalTimes().c_str());
  std::fflush(stderr);
  m_timers.clear();
}

void ProfilingAttributeSetDecorator::write(Attribute const& attribute, unsigned int first, unsigned int last) {
  myTimed("write(range)", [&] { AttributeSetDecorator::write(attribute, first, last); });
}

void ProfilingAttributeSetDecorator::write(Attribute const& attribute, std::vector<unsigned int> const& instances) {
  myTimed("write(list)", [&] { AttributeSetDecorator::write(attribute, instances); });
}

void ProfilingAttributeSetDecorator::write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
                                           unsigned int lastGroup) {
  myTimed("write(groups)", [&] { AttributeSetDecorator::write(attribute, key, firstGroup, lastGroup); });
}

void ProfilingAttributeSetDecorator::write(Attribute const& attribute, KeyList const& keys) {
  myTimed("write(keys)", [&] { AttributeSetDecorator::write(attribute, keys); });
}

void ProfilingAttributeSetDecorator::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  myTimed("read(range)", [&] { AttributeSetDecorator::read(attribute, first, last); });
}

void ProfilingAttributeSetDecorator::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  myTimed("read(list)", [&] { AttributeSetDecorator::read(attribute, instances); });
}

void ProfilingAttributeSetDecorator::read(Attribute& attribute, Attribute const& key, unsigned int firstGroup,
                                          unsigned int lastGroup) const {
  myTimed("read(groups)", [&] { AttributeSetDecorator::read(attribute, key, firstGroup, lastGroup); });
}

void ProfilingAttributeSetDecorator::read(Attribute& attribute, KeyList const& keys) const {
  myTimed("read(keys)", [&] { AttributeSetDecorator::read(attribute, keys); });
}
