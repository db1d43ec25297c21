#ifndef DECORATOR_SELECTOPERATORCOLLECTION_H
#define DECORATOR_SELECTOPERATORCOLLECTION_H

// SelectOperatorCollection: an ordered list of selection operators and the
// protocol that turns them into the list of selected instances of a store.
//
// The store is read in batches (10000 instances unless set otherwise):
// every attribute any operator names is read for the batch, every operator
// is called in order, and the masks of the evaluating operators are joined
// strictly left to right, a logic operator between two masks saying how (and
// by default, or; LogicNot alone means or-not; a LogicNot before the first
// mask complements it). The joined mask, negated when asked, and the
// instance filter where one is set, give the instances of the batch.
//
// Two paths select without reading anything: when no operator reads an
// attribute and none has type NoAttributeOperator, the selection is every
// instance the filter allows (every instance without a filter) and the
// negate flag plays no part. On the batch path the filter words are
// counted from the start of each batch, so only the first batch-size words
// matter there; that difference between the two paths is deliberate.
//
// The attributes of a batch are set up for a store by its name and kept
// while the name stays the same. A collection is evaluated by one caller at
// a time.

#include <list>
#include <utility>
#include <vector>

#include "attribute/Attribute.h"
#include "decorator/SelectOperatorBase.h"
#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "foundation/vUCString.h"

class Store;

class SelectOperatorCollection {
 public:
  SelectOperatorCollection();
  // With an instance filter: one word per instance, non-zero to allow.
  explicit SelectOperatorCollection(std::vector<unsigned int> const& filter);
  virtual ~SelectOperatorCollection();

  void addOperator(vHandle<SelectOperatorBase> const& op);
  std::vector<vHandle<SelectOperatorBase>> const& getOperators() const { return m_operators; }

  // Evaluates the operators over the store and returns the selected
  // instances (ascending numbers of the store), which are also kept.
  std::vector<unsigned int> doSelection(vHandle<Store> const& store);
  std::vector<unsigned int> const& getSelection() const { return m_selected; }

  // The attribute names the operators read, sorted, each once.
  std::vector<vUCString> getAllAttributeNames() const;

  // Must be positive.
  void setBatchSize(int batchSize);
  int getBatchSize() const { return m_batchSize; }
  void setDebugMode(bool debug) { m_debug = debug; }
  bool getDebugMode() const { return m_debug; }
  void setNegateSelection(bool negate) { m_negate = negate; }
  bool getNegateSelection() const { return m_negate; }
  void setInstanceFilter(std::vector<unsigned int> const& filter);
  bool hasInstanceFilter() const { return m_hasFilter; }
  std::vector<unsigned int> const& getInstanceFilter() const { return m_filter; }

 private:
  SelectOperatorCollection(SelectOperatorCollection const&) = delete;
  SelectOperatorCollection& operator=(SelectOperatorCollection const&) = delete;

  class Masks;
  void mySetupRead(Store const& store);
  void myEvaluate(Store const& store, unsigned int n);
  // Joins the operators' masks of one batch into the aggregate.
  void myJoinMasks(unsigned char* aggregate, unsigned int count) const;
  void myCollect(unsigned char const* aggregate, unsigned int first, unsigned int count);

  std::vector<vHandle<SelectOperatorBase>> m_operators;
  // (operator, mask) in operator order, while a selection runs; the mask is
  // null for a logic operator.
  std::vector<std::pair<SelectOperatorBase*, unsigned char*>> m_working;
  std::vector<unsigned int> m_selected;
  std::list<Attribute> m_batchAttributes;
  int m_batchSize;
  bool m_debug;
  bool m_hasFilter;
  bool m_negate;
  std::vector<unsigned int> m_filter;
  vLCString m_storeName;
  // Whether the batch attributes were ever set up (a store may be nameless).
  bool m_haveBatchAttributes;
};

#endif
