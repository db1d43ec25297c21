#include "decorator/InfillAttributeSetIndexingTable.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "foundation/Message.h"
#include "foundation/vUtl.h"
#include "project/AttributeSet.h"

namespace {

char const* const kLabel = "InfillAttributeSetIndexingTable::myBuildInfillGroup";
unsigned int const kBatch = 65536;

}  // namespace

InfillAttributeSetIndexingTable::InfillAttributeSetIndexingTable(AttributeSet const& view, AttributeSet const& below,
                                                                 AttrPadType padType)
    : AttributeSetIndexingTable(view),
      m_below(below),
      m_padType(padType),
      m_padMinimum(0.0),
      m_padMaximum(0.0),
      m_padIncrement(0.0) {}

InfillAttributeSetIndexingTable::~InfillAttributeSetIndexingTable() {}

void InfillAttributeSetIndexingTable::addKeyAttributes(vUCString const& primary, vUCString const& secondary) {
  if (hasKeyAttributes() && (primary != m_primary || secondary != m_secondary))
    Message::fatal("InfillAttributeSetIndexingTable::addKeyAttributes", 0,
                   "Can't reset infilled attribute name. Currently using attribute %s", m_secondary.c_str());
  m_primary = primary;
  m_secondary = secondary;
}

void InfillAttributeSetIndexingTable::applyPaddingLimits(double minimum, double maximum, double increment) {
  m_padMinimum = minimum;
  m_padMaximum = maximum;
  m_padIncrement = increment;
  m_templates.clear();
}

void InfillAttributeSetIndexingTable::getAttributePadLimits(double& minimum, double& maximum, double& increment) const {
  minimum = m_padMinimum;
  maximum = m_padMaximum;
  increment = m_padIncrement;
}

bool InfillAttributeSetIndexingTable::boundsCheckOk(double a, double b, double increment) {
  long double const step = increment;
  long double const off = std::fmod(std::fabs(static_cast<long double>(a) - static_cast<long double>(b)), step);
  return off / step <= 0.001L;
}

template <class T, class K>
vHandle<InfillTemplate> InfillAttributeSetIndexingTable::myBuildInfillGroup() {
  GroupSizeInfillTemplate<T, K>* made = new GroupSizeInfillTemplate<T, K>;
  vHandle<InfillTemplate> handle(made);
  auto& groups = made->groups();

  // 1-2. The (value, instance) pairs of each group, in the store's order.
  unsigned int const n = m_below.getNInstances();
  for (unsigned int first = 1; first <= n; first += kBatch) {
    unsigned int const last = std::min(n, first + kBatch - 1);
    Attribute primary = m_below.getAttribute(m_primary);
    Attribute secondary = m_below.getAttribute(m_secondary);
    m_below.read(primary, first, last);
    m_below.read(secondary, first, last);
    for (unsigned int i = 1; i <= last - first + 1; ++i)
      groups[static_cast<K>(primary.getValue(i))].push_back({static_cast<T>(secondary.getValue(i)), first + i - 1});
  }

  // 3. The range of each group and of all, and the increment.
  double lowest = std::numeric_limits<double>::max();
  double highest = -std::numeric_limits<double>::max();
  double increment = std::numeric_limits<double>::max();
  std::map<K, double> ownSteps;
  for (auto& group : groups) {
    std::vector<double> values;
    for (auto const& pair : group.second) values.push_back(static_cast<double>(pair.first));
    std::sort(values.begin(), values.end());
    double own = std::numeric_limits<double>::max();
    for (std::size_t i = 1; i < values.size(); ++i) {
      double const step = values[i] - values[i - 1];
      if (step == 0.0)
        Message::fatal(kLabel, 0, "Duplicate sub-set value found in group <%f>\n", static_cast<double>(group.first));
      own = std::min(own, step);
    }
    ownSteps[group.first] = own;
    increment = std::min(increment, own);
    lowest = std::min(lowest, values.front());
    highest = std::max(highest, values.back());
  }
  // Groups of one value each take the increment given.
  if (increment == std::numeric_limits<double>::max()) increment = m_padIncrement != 0.0 ? m_padIncrement : 1.0;
  if (groups.empty()) {
    made->finish();
    return handle;
  }
  if (!boundsCheckOk(lowest, highest, increment))
    Message::fatal(kLabel, 0,
                   "The minumum <%f> and maximum <%f> of the attribute's values are incompatable with the determined "
                   "increment <%f>\n",
                   lowest, highest, increment);

  // 4. Each group completed over its range.
  bool const padded = m_padMinimum != 0.0 && m_padMaximum != 0.0;
  for (auto& group : groups) {
    auto& pairs = group.second;
    std::sort(pairs.begin(), pairs.end(), [](auto const& a, auto const& b) { return a.first < b.first; });
    if (m_padType == PadNone) continue;
    double const first = static_cast<double>(pairs.front().first), last = static_cast<double>(pairs.back().first);
    bool const ownStart = m_padType == PadWithinGroup || m_padType == PadToCommonEnd || m_padType == PadWithinGroupOwnStep;
    bool const ownEnd =
        m_padType == PadWithinGroup || m_padType == PadToCommonStart || m_padType == PadWithinGroupOwnStep;
    double start = ownStart ? first : lowest;
    double end = ownEnd ? last : highest;
    double step = increment;
    if (m_padType == PadWithinGroupOwnStep && ownSteps[group.first] != std::numeric_limits<double>::max())
      step = ownSteps[group.first];
    if (padded) {
      if (m_padMinimum > start)
        Message::fatal(kLabel, 0, "User set limit %f is less than attribute's lower value %f", m_padMinimum, start);
      if (m_padMaximum < end)
        Message::fatal(kLabel, 0, "User set limit %f is less than attribute's upper value %f", m_padMaximum, end);
      if (!boundsCheckOk(m_padMinimum, start, step))
        Message::fatal(kLabel, 0, "User set limit %f is not on a %f boundary", m_padMinimum, step);
      if (!boundsCheckOk(m_padMaximum, start, step))
        Message::fatal(kLabel, 0, "User set limit %f is not on a %f boundary. Determined end value <%f>", m_padMaximum,
                       step, end);
      start = m_padMinimum;
      end = m_padMaximum;
    }
    std::vector<double> present;
    for (auto const& pair : pairs) present.push_back(static_cast<double>(pair.first));
    long long const steps = std::llround((end - start) / step);
    double const tolerance = step * 0.001;
    for (long long i = 0; i <= steps; ++i) {
      double const v = start + static_cast<double>(i) * step;
      auto const at = std::lower_bound(present.begin(), present.end(), v - tolerance);
      if (at == present.end() || *at > v + tolerance) pairs.push_back({static_cast<T>(v), 0u});
    }
  }
  // 5.
  made->finish();
  return handle;
}

template <class K>
vHandle<InfillTemplate> InfillAttributeSetIndexingTable::myBuildForSecondary(DataType secondary) {
  switch (secondary) {
    case vINT32:
      return myBuildInfillGroup<int, K>();
    case vINT64:
      return myBuildInfillGroup<long long, K>();
    case vFLOAT32:
      return myBuildInfillGroup<float, K>();
    case vFLOAT64:
      return myBuildInfillGroup<double, K>();
    default:
      Message::fatal(kLabel, 0, "Can't handle the secondary key attribute's data type%s ",
                     vUtl::dataTypeName(secondary).c_str());
  }
}

InfillTemplate const& InfillAttributeSetIndexingTable::getTemplate() {
  if (!hasKeyAttributes()) {
    Message::info("InfillAttributeSetIndexingTable::getTemplate", 0,
                  "Key attributes have to be added first before calling this method.");
    Message::fatal("InfillAttributeSetIndexingTable::getTemplate", 0, "Store must have at least two keys");
  }
  auto it = m_templates.find(m_secondary);
  if (it != m_templates.end()) return *it->second;
  DataType const primary = m_below.getAttribute(m_primary).getDataType();
  DataType const secondary = m_below.getAttribute(m_secondary).getDataType();
  vHandle<InfillTemplate> made;
  switch (primary) {
    case vINT32:
      made = myBuildForSecondary<int>(secondary);
      break;
    case vINT64:
      made = myBuildForSecondary<long long>(secondary);
      break;
    case vFLOAT32:
      made = myBuildForSecondary<float>(secondary);
      break;
    case vFLOAT64:
      made = myBuildForSecondary<double>(secondary);
      break;
    default:
      Message::fatal(kLabel, 0, "Can't handle data type %s of primary Attribute", vUtl::dataTypeName(primary).c_str());
  }
  m_templates[m_secondary] = made;
  return *made;
}
