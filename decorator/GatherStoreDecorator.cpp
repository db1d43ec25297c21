#include "decorator/GatherStoreDecorator.h"

#include <algorithm>
#include <cstdlib>

#include "decorator/InstanceCopy.h"
#include "foundation/Message.h"
#include "foundation/vString.h"
#include "foundation/vUtl.h"

namespace {

// One attribute of one set: a window of its instances.
struct CacheAttribute {
  explicit CacheAttribute(Attribute const& definition) : attribute(definition) {
    if (definition.isVariableLength())
      Message::fatal("GatherStoreDecorator::CacheAttribute::CacheAttribute", 0,
                     "Attribute %s is variable length ... not supported!", definition.getName().c_str());
    bytesPerInstance = definition.getNBytes();
  }
  Attribute attribute;
  // First and last instance of the window; none at first.
  unsigned int first = 0;
  unsigned int last = 0;
  int bytesPerInstance = 0;
};

}  // namespace

class GatherStoreDecorator::CacheData {
 public:
  CacheData(GatherStoreDecorator const& decorator, int megabytes)
      : m_decorator(decorator),
        m_size(megabytes),
        m_totalBytes(0),
        m_perFill(0),
        m_openSet(-1),
        m_currentSet(nullptr),
        m_current(nullptr),
        m_offset(0),
        m_timer("timer") {
    vString value;
    if (vUtl::getenv("GATHERSTOREDECORATOR_CACHESIZE", value)) {
      setCacheSize(static_cast<int>(std::strtol(value.c_str(), nullptr, 10)));
      Message::info("GatherStoreDecorator::CacheData::CacheData", 0, "Cache set to %d megabytes", m_size);
    }
  }

  void setCacheSize(int megabytes) {
    if (m_size < 1)
      Message::fatal("GatherStoreDecorator::CacheData::setCacheSize", 0,
                     "The size of the cache must be greater than zero, not %d!", m_size);
    if (megabytes != m_size) {
      m_size = megabytes;
      m_perFill = 0;
    }
  }
  int getCacheSize() const { return m_size; }
  int getInstancesPerFill() const { return m_perFill; }
  Timer const& getTimer() const { return m_timer; }

  // Instance `instance` of set `set` (1-based) into the output position.
  void read(int set, unsigned int instance, Attribute& attribute, unsigned int outputPosition);

 private:
  typedef std::map<vUCStringTableData const*, CacheAttribute> SetCache;

  void myBuild();
  void myFill(int set, SetCache& cache, unsigned int instance);

  GatherStoreDecorator const& m_decorator;
  int m_size;
  int m_totalBytes;
  int m_perFill;
  int m_openSet;
  std::list<Attribute> m_attributes;
  std::map<int, SetCache> m_sets;
  SetCache* m_currentSet;
  CacheAttribute* m_current;
  unsigned int m_offset;
  Timer m_timer;
};

void GatherStoreDecorator::CacheData::myBuild() {
  std::vector<ConcatStoreDecoratorData*> const& sets = m_decorator.m_sets;
  Store& store = *m_decorator.m_decoratedStore;
  for (int s = 1; s <= static_cast<int>(sets.size()); ++s) {
    store.openAttributeSet(sets[s - 1]->setName);
    m_openSet = s;
    m_attributes = store.getAttributeList();
    SetCache& cache = m_sets[s];
    for (Attribute const& attribute : m_attributes) {
      auto made = cache.emplace(attribute.getNameID(), CacheAttribute(attribute)).first;
      m_totalBytes += made->second.bytesPerInstance;
    }
  }
  long long const fill = m_totalBytes > 0 ? (static_cast<long long>(m_size) << 20) / m_totalBytes : 0;
  m_perFill = static_cast<int>(std::min<long long>(fill, 0x7FFFFFFF));
  if (m_perFill < 2)
    Message::fatal("GatherStoreDecorator::CacheData::read", 0,
                   "Cache error, memory size too small for an efficient cache (mb %d/total instance size %d/#ToCache "
                   "%d).",
                   m_size, m_totalBytes, m_perFill);
}

// Every attribute of the set refills together, so that they stay in step.
void GatherStoreDecorator::CacheData::myFill(int set, SetCache& cache, unsigned int instance) {
  Store& store = *m_decorator.m_decoratedStore;
  if (set != m_openSet) {
    store.openAttributeSet(m_decorator.m_sets[static_cast<std::size_t>(set - 1)]->setName);
    m_openSet = set;
  }
  m_timer.start();
  unsigned int const n = store.getNInstances();
  unsigned long long const wanted = static_cast<unsigned long long>(instance) + static_cast<unsigned int>(m_perFill);
  unsigned int const last = static_cast<unsigned int>(std::min<unsigned long long>(wanted, n));
  for (auto& entry : cache) {
    CacheAttribute& c = entry.second;
    c.first = instance;
    c.last = last;
    store.read(c.attribute, instance, last);
  }
  m_timer.stop();
}

void GatherStoreDecorator::CacheData::read(int set, unsigned int instance, Attribute& attribute,
                                           unsigned int outputPosition) {
  char const* label = "GatherStoreDecorator::CacheData::read";
  if (m_sets.empty()) myBuild();
  auto foundSet = m_sets.find(set);
  std::vector<ConcatStoreDecoratorData*> const& sets = m_decorator.m_sets;
  // Sets of unequal size, or a list read past the end, reach here with an
  // instance that the set does not have.
  if (foundSet == m_sets.end() || instance == 0 || instance > sets[static_cast<std::size_t>(set - 1)]->nInstances)
    Message::fatal(label, 0, "Instance %d is not in attribute set %d of the gather!", static_cast<int>(instance),
                   set);
  m_currentSet = &foundSet->second;
  auto found = m_currentSet->find(attribute.getNameID());
  if (found == m_currentSet->end())
    Message::fatal(label, 0, "The attribute '%s' was not found!", attribute.getName().c_str());
  m_current = &found->second;
  if (instance < m_current->first || instance > m_current->last || m_current->first == 0)
    myFill(set, *m_currentSet, instance);
  m_offset = instance - m_current->first;
  InstanceCopy::copy(m_current->attribute, m_offset + 1, attribute, outputPosition, 1);
}

// --- the view ------------------------------------------------------------------------------

GatherStoreDecorator::GatherStoreDecorator(vHandle<Store> const& store)
    : ConcatStoreDecorator(store, "GatherStoreDecorator"), m_cache(nullptr) {
  m_cache = new CacheData(*this, 256);
}

GatherStoreDecorator::~GatherStoreDecorator() { delete m_cache; }

Store& GatherStoreDecorator::operator=(PropertyI const& properties) {
  StoreDecorator::operator=(properties);
  return *this;
}

void GatherStoreDecorator::setCacheSize(int megabytes) { m_cache->setCacheSize(megabytes); }

int GatherStoreDecorator::getCacheSize() const { return m_cache->getCacheSize(); }

int GatherStoreDecorator::getInstancesPerFill() const { return m_cache->getInstancesPerFill(); }

Timer const& GatherStoreDecorator::getTimer() const { return m_cache->getTimer(); }

void GatherStoreDecorator::myConvertRangeToLocations(unsigned int first, unsigned int last,
                                                     std::vector<ConcatStoreDecoratorLocation>& locations) const {
  locations.push_back(ConcatStoreDecoratorLocation{nullptr, first, last, last - first + 1});
}

void GatherStoreDecorator::myAddKeys(std::list<Attribute>& attributes, KeyList& keys) const {
  ConcatStoreDecorator::myAddKeys(attributes, keys);
}

void GatherStoreDecorator::myAppend(Attribute& attribute, std::vector<ConcatStoreDecoratorLocation>& locations) const {
  unsigned int total = 0;
  for (ConcatStoreDecoratorLocation const& location : locations) total += location.count;
  attribute.resize(total);
  unsigned int const nSets = static_cast<unsigned int>(m_sets.size());
  bool const sequence = myIsSequence(attribute);
  unsigned int position = 1;
  for (ConcatStoreDecoratorLocation const& location : locations) {
    for (unsigned int k = location.first; k <= location.last; ++k, ++position) {
      unsigned int set = k % nSets;
      if (set == 0) set = nSets;
      // The sequence attribute is no attribute of the sets: it is the set.
      if (sequence)
        attribute.setValue(position, static_cast<double>(set));
      else
        m_cache->read(static_cast<int>(set), (k + nSets - 1) / nSets, attribute, position);
    }
  }
}
