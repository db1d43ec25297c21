#include "native/TimesliceToMapdataDecorator.h"

#include <cfloat>

#include "attribute/AttributeDefinition.h"
#include "attribute/Property.h"
#include "foundation/Message.h"
#include "foundation/vTokenizer.h"
#include "foundation/vUtl.h"
#include "foundation/vUtlSort.h"

namespace {

// The step between slices when there is only one: the float no-value, so
// that any time falls on slice 0.
double const kNoValue = FLT_MAX;

char const kNotImplemented[] = "Programming problem--a non implemented method was used.";

vUCString sliceName(int time) {
  char const* format = "AMPLITUDE.%d";
  if (time <= 9)
    format = "AMPLITUDE.00000%d";
  else if (time <= 99)
    format = "AMPLITUDE.0000%d";
  else if (time <= 999)
    format = "AMPLITUDE.000%d";
  else if (time <= 9999)
    format = "AMPLITUDE.00%d";
  else if (time <= 99999)
    format = "AMPLITUDE.0%d";
  vString name;
  name.printf(format, time);
  return vUCString(name.c_str());
}

// Value `index` (0-based) of the attribute's data taken flat.
double flatValue(Attribute const& attribute, long long index) {
  long long const length = attribute.getLength();
  return attribute.getValue(static_cast<unsigned int>(index / length) + 1, static_cast<int>(index % length) + 1);
}

}  // namespace

TimesliceToMapdataDecorator::TimesliceToMapdataDecorator(vHandle<Store> const& store)
    : StoreDecorator(store), m_firstInline(0), m_inlineIncrement(0), m_nInlines(0), m_lastInline(0) {
  myConstructAttributeList();
  myConstructPropertyList();

  m_crosslines = m_decoratedStore->getAttribute(vUCString(myHasCrossline() ? "crossline" : "inline"));
  m_decoratedStore->getUnique(m_crosslines, vUtlSort::SortOrder::ASCENDING);

  m_traces = m_decoratedStore->getAttribute(vUCString("trace"));
  m_firstInline = vUtl::nint(m_traces.getFirstTime());
  m_inlineIncrement = vUtl::nint(m_traces.getSampleRate());
  m_nInlines = m_traces.getLength();
  m_lastInline = m_firstInline + m_inlineIncrement * (m_nInlines - 1);
}

TimesliceToMapdataDecorator::~TimesliceToMapdataDecorator() {}

bool TimesliceToMapdataDecorator::myHasCrossline() const {
  return m_decoratedStore->hasAttribute(vUCString("crossline"));
}

void TimesliceToMapdataDecorator::myConstructAttributeList() {
  if (myHasCrossline()) {
    m_attributes.push_back(AttributeDefinition::getDefinition(vUCString("CROSSLINE")));
    m_attributes.push_back(AttributeDefinition::getDefinition(vUCString("INLINE")));
  } else {
    m_attributes.push_back(AttributeDefinition::getDefinition(vUCString("INLINE")));
    m_attributes.push_back(AttributeDefinition::getDefinition(vUCString("CROSSLINE")));
  }
  m_sliceTimes = m_decoratedStore->getAttribute(vUCString("SLICE.TIME"));
  m_decoratedStore->getUnique(m_sliceTimes, vUtlSort::SortOrder::ASCENDING);
  for (unsigned int k = 1; k <= m_sliceTimes.getNInstances(); ++k)
    m_attributes.push_back(Attribute(sliceName(vUtl::nint(m_sliceTimes.getValue(k))), vUCString(""), vFLOAT32));
}

void TimesliceToMapdataDecorator::myConstructPropertyList() {
  vString names[3];
  int n = 0;
  for (auto it = m_attributes.begin(); it != m_attributes.end() && n < 3; ++it) names[n++] = it->getName();
  m_properties.addProperty(Property(vUCString("XYZ_PLOT_ATTRIBUTES"), 3u, names));
}

vLCString TimesliceToMapdataDecorator::getClass() const { return vLCString("mapdata"); }

vLCString TimesliceToMapdataDecorator::getSubClass() const { return vLCString("gridded"); }

unsigned int TimesliceToMapdataDecorator::getNInstances() const {
  return static_cast<unsigned int>(m_nInlines) * myNCrosslines();
}

// --- properties: the view's own ---------------------------------------------

bool TimesliceToMapdataDecorator::hasProperty(Property const& property) const {
  return m_properties.hasProperty(property);
}
bool TimesliceToMapdataDecorator::hasProperty(vUCString const& name) const { return m_properties.hasProperty(name); }
bool TimesliceToMapdataDecorator::hasProperty(vUCString const& name) { return m_properties.hasProperty(name); }
bool TimesliceToMapdataDecorator::hasProperty(Property const& property) { return m_properties.hasProperty(property); }

PropertyI::iterator TimesliceToMapdataDecorator::findProperty(Property const& property) {
  return m_properties.findProperty(property);
}
PropertyI::const_iterator TimesliceToMapdataDecorator::findProperty(Property const& property) const {
  return m_properties.findProperty(property);
}
PropertyI::iterator TimesliceToMapdataDecorator::findProperty(vUCString const& name) {
  return m_properties.findProperty(name);
}
PropertyI::const_iterator TimesliceToMapdataDecorator::findProperty(vUCString const& name) const {
  return m_properties.findProperty(name);
}

// --- attributes: the view's own ---------------------------------------------

std::list<Attribute> TimesliceToMapdataDecorator::getAttributeList() const { return m_attributes; }

void TimesliceToMapdataDecorator::getAttributeList(std::list<Attribute>& attributes) const {
  attributes = m_attributes;
}

std::list<Attribute> TimesliceToMapdataDecorator::getAttributeList(vUCString const& text,
                                                                  AttributeMatch::AttributeMatchType match) const {
  std::list<Attribute> chosen;
  for (Attribute const& a : m_attributes)
    if (AttributeMatch::matches(a, text, match)) chosen.push_back(a);
  return chosen;
}

Attribute TimesliceToMapdataDecorator::getAttribute(vUCString const& name) const {
  Attribute const probe(name, vUCString(""), vFLOAT32);
  for (Attribute const& a : m_attributes)
    if (a == probe) return a;
  Message::fatal("TimesliceToMapdataDecorator::getAttribute", 0, "Attribute %s is not in the time slice map of %s.",
                 name.c_str(), m_decoratedStore->getName().c_str());
}

bool TimesliceToMapdataDecorator::hasAttribute(vUCString const& name) const {
  Attribute const probe(name, vUCString(""), vFLOAT32);
  for (Attribute const& a : m_attributes)
    if (a == probe) return true;
  return false;
}

// --- reads -------------------------------------------------------------------

void TimesliceToMapdataDecorator::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  // The grid is computed from the instance numbers: outside it there is
  // nothing to compute from.
  if (first == 0 || last < first || last > getNInstances())
    Message::fatal("TimesliceToMapdataDecorator::read", 0,
                   "Instances %u to %u of %s are outside the grid of %d inlines by %u crosslines.", first, last,
                   attribute.getName().c_str(), m_nInlines, myNCrosslines());
  char const letter = attribute.getName().isBlank() ? '\0' : attribute.getName().c_str()[0];
  bool const crossline = myHasCrossline();
  if (letter == 'C') {
    if (crossline)
      myReadCrossline(attribute, first, last);
    else
      myReadInline(attribute, first, last);
  } else if (letter == 'I') {
    if (crossline)
      myReadInline(attribute, first, last);
    else
      myReadCrossline(attribute, first, last);
  } else if (letter == 'A') {
    myReadAmplitude(attribute, first, last);
  }
}

void TimesliceToMapdataDecorator::myReadCrossline(Attribute& attribute, unsigned int first, unsigned int last) const {
  unsigned int const n = last - first + 1;
  unsigned int const nCross = myNCrosslines();
  attribute.resize(n);
  for (unsigned int i = 0; i < n; ++i) {
    unsigned int const k = first + i - 1;
    attribute.setValue(i + 1, m_crosslines.getValue(k % nCross + 1));
  }
}

void TimesliceToMapdataDecorator::myReadInline(Attribute& attribute, unsigned int first, unsigned int last) const {
  std::vector<int> inlines(static_cast<size_t>(m_nInlines));
  for (int index = 0; index < m_nInlines; ++index)
    inlines[static_cast<size_t>(index)] = m_inlineIncrement > 0 ? m_firstInline + m_inlineIncrement * index
                                                                : m_lastInline - m_inlineIncrement * index;
  unsigned int const n = last - first + 1;
  unsigned int const nCross = myNCrosslines();
  attribute.resize(n);
  for (unsigned int i = 0; i < n; ++i) {
    unsigned int const k = first + i - 1;
    attribute.setValue(i + 1, inlines[k / nCross]);
  }
}

void TimesliceToMapdataDecorator::myReadAmplitude(Attribute& attribute, unsigned int first, unsigned int last) const {
  unsigned int const n = last - first + 1;
  attribute.resize(n);
  vTokenizer words(attribute.getName(), ".");
  vString word;
  words.next(word);
  words.next(word);
  myReadSliceToTraces(word.readf());
  unsigned int const nCross = myNCrosslines();
  long long const nInlines = m_nInlines;
  for (unsigned int i = 0; i < n; ++i) {
    unsigned int const k = first + i - 1;
    long long const q = k / nCross;
    long long const r = k % nCross;
    long long const sample = m_inlineIncrement < 1 ? r * nInlines + nInlines - q - 1 : r * nInlines + q;
    attribute.setValue(i + 1, flatValue(m_traces, sample));
  }
}

void TimesliceToMapdataDecorator::myReadSliceToTraces(double time) const {
  double const t0 = m_sliceTimes.getValue(1);
  double const increment = m_sliceTimes.getNInstances() == 1 ? kNoValue : m_sliceTimes.getValue(2) - t0;
  int const slice = vUtl::nint((time - t0) / increment);
  unsigned int const nCross = myNCrosslines();
  unsigned int const first = static_cast<unsigned int>(slice) * nCross + 1;
  m_decoratedStore->read(m_traces, first, first + nCross - 1);
}

// --- what the view does not offer ---------------------------------------------

void TimesliceToMapdataDecorator::read(Attribute&, std::vector<unsigned int> const&) const {
  Message::fatal("TimesliceToMapdataDecorator::read(Attribute&, const vInstanceList&)const", 0, "%s", kNotImplemented);
}

void TimesliceToMapdataDecorator::read(Attribute&, Attribute const&, unsigned int, unsigned int) const {
  Message::fatal("TimesliceToMapdataDecorator::read(Attribute&, const Attribute&, vInstance, vInstance)const", 0,
                 "%s", kNotImplemented);
}

void TimesliceToMapdataDecorator::read(Attribute&, KeyList const&) const {
  Message::fatal("TimesliceToMapdataDecorator::read(Attribute&, const KeyList&)const", 0, "%s", kNotImplemented);
}

// The label names read for an assignment; kept as it has always been.
Store& TimesliceToMapdataDecorator::operator=(PropertyI const&) {
  Message::fatal("TimesliceToMapdataDecorator::read(const PropertyI &rhs)const", 0, "%s", kNotImplemented);
}
