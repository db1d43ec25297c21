#ifndef DECORATOR_DECORATORTESTING_H
#define DECORATOR_DECORATORTESTING_H

// Test helpers of the views: stores on the in-memory test double holding
// the conformance suite's reference content, alone or mixed with decoy
// instances that a view must hide; selection operators of the kind an
// application writes; a handler that records messages; stores that let a
// test see what reached them.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "decorator/SelectOperatorBase.h"
#include "foundation/ErrorHandler.h"
#include "foundation/ExceptionErrorHandler.h"
#include "foundation/RaiseError.h"
#include "foundation/vString.h"
#include "project/Project.h"
#include "project/StoreTesting.h"
#include "testing/StoreConformance.h"
#include "testing/TestMemoryStore.h"

namespace decorator_testing {

using store_testing::expectFailure;

char const* const kStore = "reference";
char const* const kReferenceAttributes[] = {"CDP", "OFFSET", "ELEV", "TRACE"};

// One instance of a layout: a reference instance (1 to 12) or, when
// negative, a decoy whose CDP is minus the entry and whose other values are
// -1 (OFFSET 999, so that no key tuple of the reference matches it).
typedef std::vector<int> Layout;

// Sets value `position` (0-based) of an instance; a text is "s" and the number.
inline void setElement(Attribute& a, unsigned int instance, int position, double v) {
  switch (a.getDataType()) {
    case vINT16:
      a.getInt16Pointer(instance)[position] = static_cast<short>(v);
      break;
    case vINT32:
      a.getInt32Pointer(instance)[position] = static_cast<int>(v);
      break;
    case vINT64:
      a.getInt64Pointer(instance)[position] = static_cast<long long>(v);
      break;
    case vFLOAT32:
      a.getFloat32Pointer(instance)[position] = static_cast<float>(v);
      break;
    case vSTRING: {
      vString text;
      text.printf("s%g", v);
      a.getStringPointer(instance)[position] = text;
      break;
    }
    default:
      a.getFloat64Pointer(instance)[position] = v;
  }
}

// A shelf with the store "reference" laid out as given, written through
// the contract of a store.
inline std::shared_ptr<TestMemoryShelf> layoutShelf(Layout const& layout, char const* name = kStore) {
  auto shelf = std::make_shared<TestMemoryShelf>();
  TestMemoryStore writer(vHandle<Project>(), shelf);
  writer.create(name, "seismic", "3d", StoreConformance::referenceKeys(), nullptr);
  for (char const* name : kReferenceAttributes)
    if (!writer.hasAttribute(name)) writer.addAttribute(StoreConformance::referenceDefinition(name));
  unsigned int const n = static_cast<unsigned int>(layout.size());
  writer.addInstances(n);
  for (char const* name : kReferenceAttributes) {
    Attribute data = StoreConformance::referenceDefinition(name);
    data.resize(n);
    for (unsigned int i = 1; i <= n; ++i) {
      int const entry = layout[i - 1];
      for (int k = 1; k <= data.getLength(); ++k) {
        double v;
        if (entry > 0)
          v = StoreConformance::referenceValue(name, static_cast<unsigned int>(entry), k);
        else if (std::string(name) == "CDP")
          v = -entry;
        else if (std::string(name) == "OFFSET")
          v = 999;
        else
          v = -1;
        setElement(data, i, k - 1, v);
      }
    }
    writer.write(data, 1, n);
  }
  writer.close();
  return shelf;
}

// The reference content alone, instance i at position i.
inline Layout referenceLayout() {
  Layout layout;
  for (int i = 1; i <= static_cast<int>(StoreConformance::kNInstances); ++i) layout.push_back(i);
  return layout;
}

inline vHandle<Store> openStore(std::shared_ptr<TestMemoryShelf> const& shelf, bool update = false,
                                vHandle<Project> const& project = vHandle<Project>(), char const* name = kStore) {
  vHandle<Store> store(new TestMemoryStore(project, shelf));
  if (update)
    store->update(name, 0, "seismic", "3d", nullptr);
  else
    store->open(name, 0, "seismic", "3d", nullptr);
  return store;
}

inline vHandle<Store> referenceStore(bool update = false) { return openStore(layoutShelf(referenceLayout()), update); }

inline vHandle<AttributeSet> asSet(vHandle<Store> const& store) { return vHandle_cast<AttributeSet>(store); }

// Instances 1 to n of a scalar attribute of the store, as doubles.
inline std::vector<double> values(AttributeSet const& set, char const* name) {
  Attribute a = set.getAttribute(name);
  unsigned int n = set.getNInstances();
  if (n > 0) set.read(a, 1, n);
  std::vector<double> out;
  for (unsigned int i = 1; i <= a.getNInstances(); ++i) out.push_back(a.getValue(i));
  return out;
}

// The names of attributes or keys, in their order.
template <class Attributes>
std::vector<std::string> names(Attributes const& attributes) {
  std::vector<std::string> out;
  for (Attribute const& a : attributes) out.push_back(a.getName().c_str());
  return out;
}

// --- operators as an application writes them --------------------------------------------

// One call of doEvaluate as the operator saw it.
struct Call {
  unsigned int first;
  unsigned int last;
  unsigned int count;
  bool hadMask;
};

// Marks the instances whose value of one attribute lies in [low, high].
class RangeOperator : public SelectOperatorBase {
 public:
  RangeOperator(char const* name, char const* attribute, double low, double high)
      : SelectOperatorBase(name, 1, EvaluatingOperator), m_attribute(attribute), m_low(low), m_high(high) {
    addAttribute(attribute);
  }
  void doEvaluate(std::list<Attribute> const& attributes, unsigned int nInstances, unsigned char* mask,
                  unsigned int first, unsigned int last) override {
    calls.push_back(Call{first, last, nInstances, mask != nullptr});
    Attribute const* column = nullptr;
    for (Attribute const& a : attributes)
      if (a.getName() == m_attribute.c_str()) column = &a;
    ASSERT_NE(nullptr, column) << m_attribute;
    ASSERT_EQ(nInstances, column->getNInstances());
    for (unsigned int i = 0; i < nInstances; ++i) {
      double v = column->getValue(i + 1);
      mask[i] = v >= m_low && v <= m_high ? 1 : 0;
    }
    // Operators may write into the ten bytes of slack.
    for (unsigned int i = nInstances; i < nInstances + 10; ++i) mask[i] = 1;
  }
  std::vector<Call> calls;

 private:
  std::string m_attribute;
  double m_low;
  double m_high;
};

// Marks instances by their number, reading no attribute: type 9.
class EveryNthOperator : public SelectOperatorBase {
 public:
  EveryNthOperator(char const* name, unsigned int step)
      : SelectOperatorBase(name, NoAttributeOperator, EvaluatingOperator), m_step(step) {}
  void doEvaluate(std::list<Attribute> const&, unsigned int nInstances, unsigned char* mask, unsigned int first,
                  unsigned int last) override {
    calls.push_back(Call{first, last, nInstances, mask != nullptr});
    for (unsigned int i = 0; i < nInstances; ++i) mask[i] = (first + i) % m_step == 0 ? 1 : 0;
  }
  std::vector<Call> calls;

 private:
  unsigned int m_step;
};

// A logic operator: no mask.
class LogicOperator : public SelectOperatorBase {
 public:
  LogicOperator(char const* name, int type) : SelectOperatorBase(name, type, 1) {}
  void doEvaluate(std::list<Attribute> const&, unsigned int nInstances, unsigned char* mask, unsigned int first,
                  unsigned int last) override {
    calls.push_back(Call{first, last, nInstances, mask != nullptr});
  }
  std::vector<Call> calls;
};

template <class T>
vHandle<SelectOperatorBase> asBase(vHandle<T> const& op) {
  return vHandle_cast<SelectOperatorBase>(op);
}

typedef std::vector<unsigned int> List;

// CDP 2 and 3 of the reference content are instances 4 to 9.
inline vHandle<RangeOperator> cdp23() { return vHandle<RangeOperator>(new RangeOperator("cdp23", "CDP", 2, 3)); }
inline vHandle<SelectOperatorBase> logic(char const* name, int type) {
  return vHandle<SelectOperatorBase>(new LogicOperator(name, type));
}

// --- observing ----------------------------------------------------------------------------

// Records every message and passes fatal ones on to an exception.
class RecordingHandler : public ErrorHandler {
 public:
  RecordingHandler() : ErrorHandler(new ExceptionErrorHandler) { RaiseError::getInstance()->install(this); }
  ~RecordingHandler() override { RaiseError::getInstance()->uninstall(this); }
  std::vector<std::string> infos;
  std::vector<std::string> errors;

 protected:
  void doFatal(char const*, int, char const*) override {}
  void doError(char const* label, int, char const* text) override { errors.push_back(std::string(label) + "|" + text); }
  void doInfo(char const* label, int, char const* text) override { infos.push_back(std::string(label) + "|" + text); }
};

// A test store that shows what reached it: the lists of list reads, the
// number of range reads and of flushes.
class ObservedStore : public TestMemoryStore {
 public:
  explicit ObservedStore(std::shared_ptr<TestMemoryShelf> const& shelf,
                         vHandle<Project> const& project = vHandle<Project>())
      : TestMemoryStore(project, shelf) {}
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override {
    lists.push_back(instances);
    TestMemoryStore::read(attribute, instances);
  }
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override {
    ++rangeReads;
    TestMemoryStore::read(attribute, first, last);
  }
  using TestMemoryStore::read;
  void flush() override { ++flushes; }

  mutable std::vector<std::vector<unsigned int>> lists;
  mutable int rangeReads = 0;
  int flushes = 0;
};

// An observed store of the shelf (or with the layout given), opened for reading.
inline vHandle<Store> observedStore(std::shared_ptr<TestMemoryShelf> const& shelf, ObservedStore*& observed,
                                    char const* name = kStore) {
  observed = new ObservedStore(shelf);
  vHandle<Store> store(observed);
  store->open(name, 0, "seismic", "3d", nullptr);
  return store;
}
inline vHandle<Store> observedStore(Layout const& layout, ObservedStore*& observed) {
  return observedStore(layoutShelf(layout), observed);
}

}  // namespace decorator_testing

#endif
