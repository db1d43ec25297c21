#include "decorator/SelectOperatorCollection.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "foundation/Message.h"
#include "project/Store.h"

namespace {

char const* const kEvaluate = "SelectStoreDecorator::doEvaluate";

// Room for a batch and the slack operators may write into.
std::size_t maskBytes(int batchSize) { return static_cast<std::size_t>(batchSize) + 10; }

}  // namespace

// The masks of one selection: freed, and the working vector emptied, however
// the selection ends.
class SelectOperatorCollection::Masks {
 public:
  explicit Masks(std::vector<std::pair<SelectOperatorBase*, unsigned char*>>& working) : m_working(working) {}
  ~Masks() {
    for (auto& entry : m_working) delete[] entry.second;
    m_working.clear();
    delete[] m_aggregate;
  }
  Masks(Masks const&) = delete;
  Masks& operator=(Masks const&) = delete;

  unsigned char* allocate(std::size_t bytes, char const* what) {
    unsigned char* mask = new (std::nothrow) unsigned char[bytes];
    if (mask == nullptr) Message::fatal(kEvaluate, 0, "Cannot allocate %d bytes %s", static_cast<int>(bytes), what);
    return mask;
  }

  std::vector<std::pair<SelectOperatorBase*, unsigned char*>>& m_working;
  unsigned char* m_aggregate = nullptr;
};

SelectOperatorCollection::SelectOperatorCollection()
    : m_batchSize(10000), m_debug(false), m_hasFilter(false), m_negate(false), m_haveBatchAttributes(false) {}

SelectOperatorCollection::SelectOperatorCollection(std::vector<unsigned int> const& filter)
    : m_batchSize(10000), m_debug(false), m_hasFilter(true), m_negate(false), m_filter(filter),
      m_haveBatchAttributes(false) {}

SelectOperatorCollection::~SelectOperatorCollection() {}

void SelectOperatorCollection::addOperator(vHandle<SelectOperatorBase> const& op) { m_operators.push_back(op); }

void SelectOperatorCollection::setBatchSize(int batchSize) {
  if (batchSize <= 0)
    Message::fatal("SelectOperatorCollection::setBatchSize", 0, "The batch size must be positive, not %d.", batchSize);
  m_batchSize = batchSize;
}

void SelectOperatorCollection::setInstanceFilter(std::vector<unsigned int> const& filter) {
  m_filter = filter;
  m_hasFilter = true;
}

std::vector<vUCString> SelectOperatorCollection::getAllAttributeNames() const {
  std::vector<vUCString> names;
  for (vHandle<SelectOperatorBase> const& op : m_operators) {
    // An empty handle is refused when the operators are evaluated.
    if (op.isEmpty()) continue;
    for (vUCString const& name : op->getAllAttributeNames()) names.push_back(name);
  }
  std::sort(names.begin(), names.end(),
            [](vUCString const& a, vUCString const& b) { return std::strcmp(a.c_str(), b.c_str()) < 0; });
  names.erase(std::unique(names.begin(), names.end(),
                          [](vUCString const& a, vUCString const& b) { return std::strcmp(a.c_str(), b.c_str()) == 0; }),
              names.end());
  return names;
}

void SelectOperatorCollection::mySetupRead(Store const& store) {
  vLCString name = store.getName();
  if (m_haveBatchAttributes && name == m_storeName) return;
  std::list<Attribute> attributes;
  for (vUCString const& attributeName : getAllAttributeNames()) {
    Attribute attribute = store.getAttribute(attributeName);
    if (attribute.getLength() != 1)
      Message::fatal("SelectStoreDecorator::mySetupRead", 0,
                     "Attribute '%s' in Store '%s' has more than one element (%d).", attributeName.c_str(),
                     name.c_str(), attribute.getLength());
    attributes.push_back(attribute);
  }
  m_batchAttributes.swap(attributes);
  m_storeName = name;
  m_haveBatchAttributes = true;
}

std::vector<unsigned int> SelectOperatorCollection::doSelection(vHandle<Store> const& store) {
  unsigned int const n = store->getNInstances();
  m_selected.clear();
  mySetupRead(*store);
  if (m_hasFilter && n > m_filter.size())
    Message::fatal("SelectStoreDecorator::doSelection", 0,
                   "Supplied instance filter is too small -- %d instances in filter -- %d instances in store",
                   static_cast<int>(m_filter.size()), static_cast<int>(n));
  bool needsLoop = false;
  for (vHandle<SelectOperatorBase> const& op : m_operators)
    if (!op.isEmpty() && op->getOperatorType() == SelectOperatorBase::NoAttributeOperator) needsLoop = true;
  if (m_batchAttributes.empty() && !needsLoop) {
    for (unsigned int i = 1; i <= n; ++i)
      if (!m_hasFilter || m_filter[i - 1] != 0) m_selected.push_back(i);
  } else {
    myEvaluate(*store, n);
  }
  return m_selected;
}

void SelectOperatorCollection::myEvaluate(Store const& store, unsigned int n) {
  Masks masks(m_working);
  std::size_t const bytes = maskBytes(m_batchSize);
  for (vHandle<SelectOperatorBase> const& op : m_operators) {
    if (op.isEmpty()) Message::fatal(kEvaluate, 0, "Null Selection Operator Iterator");
    m_working.emplace_back(op.pointer(), nullptr);
    if (op->isEvaluating()) m_working.back().second = masks.allocate(bytes, "for instances");
  }
  masks.m_aggregate = masks.allocate(bytes, "for aggregate selection");
  unsigned int const batch = static_cast<unsigned int>(m_batchSize);
  for (unsigned int first = 1; first <= n; first += batch) {
    unsigned int const last = n - first < batch ? n : first + batch - 1;
    unsigned int const count = last - first + 1;
    std::memset(masks.m_aggregate, 0, bytes);
    for (Attribute& attribute : m_batchAttributes) store.read(attribute, first, last);
    for (auto& entry : m_working) {
      if (entry.second != nullptr) std::memset(entry.second, 0, bytes);
      entry.first->doEvaluate(m_batchAttributes, count, entry.second, first, last);
    }
    myJoinMasks(masks.m_aggregate, count);
    std::size_t const before = m_selected.size();
    myCollect(masks.m_aggregate, first, count);
    if (m_debug)
      Message::info(kEvaluate, 0, "Instances %u to %u: %u selected", first, last,
                    static_cast<unsigned int>(m_selected.size() - before));
    if (last == n) break;
  }
}

void SelectOperatorCollection::myJoinMasks(unsigned char* aggregate, unsigned int count) const {
  bool seenMask = false;
  SelectOperatorBase const* pending = nullptr;
  for (auto const& entry : m_working) {
    unsigned char const* mask = entry.second;
    if (mask == nullptr) {
      if (pending != nullptr)
        Message::fatal(kEvaluate, 0, "Cannot specify logic operators one after another: %s followed by %s is illegal",
                       pending->getOperatorName().c_str(), entry.first->getOperatorName().c_str());
      pending = entry.first;
      continue;
    }
    int const type = pending == nullptr ? -1 : pending->getOperatorType();
    if (!seenMask) {
      if (pending == nullptr) {
        std::memcpy(aggregate, mask, count);
      } else if (type == SelectOperatorBase::LogicNot) {
        for (unsigned int i = 0; i < count; ++i) aggregate[i] = mask[i] == 0 ? 1 : 0;
      } else {
        Message::info(kEvaluate, 0, "Logic operator: %s as first item in selection list has no effect",
                      pending->getOperatorName().c_str());
      }
      seenMask = true;
    } else if (pending == nullptr || type == SelectOperatorBase::LogicOr) {
      for (unsigned int i = 0; i < count; ++i) aggregate[i] = (mask[i] != 0 || aggregate[i] != 0) ? 1 : 0;
    } else if (type == SelectOperatorBase::LogicAnd) {
      for (unsigned int i = 0; i < count; ++i) aggregate[i] = (mask[i] != 0 && aggregate[i] != 0) ? 1 : 0;
    } else if (type == SelectOperatorBase::LogicNot) {
      for (unsigned int i = 0; i < count; ++i) aggregate[i] = (mask[i] == 0 || aggregate[i] != 0) ? 1 : 0;
    } else {
      Message::info(kEvaluate, 0, "Unknown logic operator enum");
    }
    pending = nullptr;
  }
}

void SelectOperatorCollection::myCollect(unsigned char const* aggregate, unsigned int first, unsigned int count) {
  for (unsigned int i = 0; i < count; ++i) {
    bool selected = m_negate ? aggregate[i] == 0 : aggregate[i] != 0;
    // The filter is counted from the start of the batch here.
    if (selected && m_hasFilter && m_filter[i] == 0) selected = false;
    if (selected) m_selected.push_back(first + i);
  }
}
