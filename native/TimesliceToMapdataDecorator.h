#ifndef NATIVE_TIMESLICETOMAPDATADECORATOR_H
#define NATIVE_TIMESLICETOMAPDATADECORATOR_H

// TimesliceToMapdataDecorator: a seismic time slice seen as a gridded map.
//
// The slice store holds, for each slice time (SLICE.TIME) and each
// crossline, one trace whose samples run along the inline axis: the trace's
// first time and sample rate are the first inline and the inline step. The
// view has one instance per grid point, the crossline index moving
// fastest, and the attributes CROSSLINE, INLINE (in that order when the
// store has "crossline", otherwise INLINE, CROSSLINE) and one vFLOAT32
// scalar per slice, AMPLITUDE.tttttt, named by the slice time in six digits.
// Its property XYZ_PLOT_ATTRIBUTES names the first three.
//
// Without a "crossline" attribute the store's "inline" values stand for the
// crossline numbers, so the grid is held the other way round. A negative
// inline step reverses the inline axis in the numbers and amplitudes alike.
//
// Only ranges are read; the other read forms and property assignment are
// refused.

#include <list>
#include <vector>

#include "attribute/Attribute.h"
#include "attribute/PropertyList.h"
#include "decorator/StoreDecorator.h"

class TimesliceToMapdataDecorator : public StoreDecorator {
 public:
  explicit TimesliceToMapdataDecorator(vHandle<Store> const& store);
  ~TimesliceToMapdataDecorator() override;

  vLCString getClass() const override;
  vLCString getSubClass() const override;
  unsigned int getNInstances() const override;

  using StoreDecorator::hasProperty;
  bool hasProperty(Property const& property) const override;
  bool hasProperty(vUCString const& name) const override;
  bool hasProperty(vUCString const& name) override;
  bool hasProperty(Property const& property) override;
  iterator findProperty(Property const& property) override;
  const_iterator findProperty(Property const& property) const override;
  iterator findProperty(vUCString const& name) override;
  const_iterator findProperty(vUCString const& name) const override;

  std::list<Attribute> getAttributeList() const override;
  void getAttributeList(std::list<Attribute>& attributes) const override;
  std::list<Attribute> getAttributeList(vUCString const& text, AttributeMatch::AttributeMatchType match) const override;
  Attribute getAttribute(vUCString const& name) const override;
  bool hasAttribute(vUCString const& name) const override;

  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  void read(Attribute& attribute, Attribute const& key, unsigned int firstGroup,
            unsigned int lastGroup) const override;
  void read(Attribute& attribute, KeyList const& keys) const override;
  Store& operator=(PropertyI const& properties) override;

 protected:
  void myConstructAttributeList();
  void myConstructPropertyList();
  bool myHasCrossline() const;
  void myReadCrossline(Attribute& attribute, unsigned int first, unsigned int last) const;
  void myReadInline(Attribute& attribute, unsigned int first, unsigned int last) const;
  void myReadAmplitude(Attribute& attribute, unsigned int first, unsigned int last) const;
  void myReadSliceToTraces(double time) const;
  unsigned int myNCrosslines() const { return m_crosslines.getNInstances(); }

 private:
  Attribute m_crosslines;
  Attribute m_sliceTimes;
  mutable Attribute m_traces;
  int m_firstInline;
  int m_inlineIncrement;
  int m_nInlines;
  int m_lastInline;
  PropertyList m_properties;
  std::list<Attribute> m_attributes;
};

#endif
