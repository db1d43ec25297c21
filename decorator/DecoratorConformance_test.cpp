// The shared store suite through every kind of view: select views hide
// decoys and must behave as a store of exactly the reference content.

#include <gtest/gtest.h>

#include "decorator/AttributeSelectDecorator.h"
#include "decorator/AttributeSetDecorator.h"
#include "decorator/DecoratorTesting.h"
#include "decorator/ProfilingAttributeSetDecorator.h"
#include "decorator/SelectStoreDecorator.h"
#include "decorator/StoreDecorator.h"
#include "decorator/StoreDecoratorFactory.h"
#include "testing/StoreConformance.h"

using namespace decorator_testing;

namespace {

StoreConformanceCase forwarding() {
  StoreConformanceCase c("StoreDecorator");
  c.openForReading = [] { return asSet(vHandle<Store>(new StoreDecorator(referenceStore()))); };
  c.openForUpdate = [] { return asSet(vHandle<Store>(new StoreDecorator(referenceStore(true)))); };
  c.makeUnopened = [] {
    vHandle<Store> below(new TestMemoryStore(vHandle<Project>(), layoutShelf(referenceLayout())));
    return asSet(vHandle<Store>(new StoreDecorator(below)));
  };
  return c;
}

StoreConformanceCase attributeSelectKeys() {
  StoreConformanceCase c("AttributeSelectKeys");
  c.openForReading = [] {
    vHandle<AttributeSelectDecorator> view;
    vHandle<Store> store = StoreDecoratorFactory::addAttributeSelect(referenceStore(), view);
    view->selectAttributes({"OFFSET", "CDP"});
    return asSet(store);
  };
  c.attributes = {"CDP", "OFFSET"};
  c.texts.unknownDefinition = "Attribute %s does not exist in parent store.";
  return c;
}

// A select view over a store of that layout, with one range operator (none
// without a name) and a batch size (0: the default).
StoreConformanceCase selectCase(char const* name, Layout const& layout, char const* op, double low, double high,
                                int batch = 0, bool negate = false) {
  StoreConformanceCase c(name);
  c.openForReading = [=] {
    vHandle<SelectStoreDecorator> view;
    vHandle<Store> store = StoreDecoratorFactory::addSelect(openStore(layoutShelf(layout)), view);
    if (batch) view->getSelection()->setBatchSize(batch);
    view->getSelection()->setNegateSelection(negate);
    if (op) view->addOperator(vHandle<SelectOperatorBase>(new RangeOperator("op", op, low, high)));
    return asSet(store);
  };
  // Select views word their own refusals of writes and of ranges past the
  // end (the suite asks for instances 1 to 13 of 12); group numbers and the
  // rest are checked as every set checks them.
  c.texts.notWritable = "Has not been written yet.";
  c.texts.lastPastEnd = "Instance out of range first 1 last %lld (size %lld)";
  c.texts.groupLastPastEnd = "last instance %lld must be <= number of instances %lld.";
  return c;
}

// Reference instances scattered among decoys of CDP 99.
Layout decoyLayout() { return {-99, 1, 2, -99, -99, 3, 4, 5, 6, -99, 7, 8, -99, 9, 10, 11, -99, -99, 12, -99}; }

vHandle<AttributeSet> referenceSet(bool open, bool update) {
  vHandle<AttributeSet> set(new TestMemoryAttributeSet(vHandle<Project>(), layoutShelf(referenceLayout())));
  if (update)
    set->update(kStore, 0, "", "", nullptr);
  else if (open)
    set->open(kStore, 0, "", "", nullptr);
  return set;
}

// Bare attribute sets word refusals as sets do.
void setTexts(StoreConformanceCase& c) {
  c.texts.notWritable = "AttributeSet '%s' is not open for modification.";
  c.texts.notOpen = "AttributeSet is not open.";
}

StoreConformanceCase attributeSetDecorator() {
  StoreConformanceCase c("AttributeSetDecorator");
  c.openForReading = [] { return vHandle<AttributeSet>(new AttributeSetDecorator(referenceSet(true, false))); };
  c.openForUpdate = [] { return vHandle<AttributeSet>(new AttributeSetDecorator(referenceSet(true, true))); };
  c.makeUnopened = [] { return vHandle<AttributeSet>(new AttributeSetDecorator(referenceSet(false, false))); };
  setTexts(c);
  return c;
}

// Opened through the wrapper, so that its timers run.
StoreConformanceCase profiling() {
  StoreConformanceCase c("ProfilingAttributeSetDecorator");
  c.openForReading = [] {
    vHandle<AttributeSet> set(new ProfilingAttributeSetDecorator(
        vHandle<AttributeSet>(new ProfilingAttributeSetDecorator(referenceSet(false, false)))));
    set->open(kStore, 0, "", "", nullptr);
    return set;
  };
  c.openForUpdate = [] {
    vHandle<AttributeSet> set(new ProfilingAttributeSetDecorator(referenceSet(false, false)));
    set->update(kStore, 0, "", "", nullptr);
    return set;
  };
  c.makeUnopened = [] { return vHandle<AttributeSet>(new ProfilingAttributeSetDecorator(referenceSet(false, false))); };
  setTexts(c);
  return c;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Views, StoreConformance,
                         ::testing::Values(forwarding(), attributeSelectKeys(),
                                           // No operator: every instance, without reading data.
                                           selectCase("SelectEmptyCollection", referenceLayout(), nullptr, 0, 0),
                                           selectCase("SelectSubset", decoyLayout(), "CDP", 1, 4, 7),
                                           // The decoys marked and the marks negated.
                                           selectCase("SelectNegated", decoyLayout(), "CDP", 99, 99, 0, true),
                                           attributeSetDecorator(), profiling()),
                         StoreConformance::caseName);
