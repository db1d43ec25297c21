#ifndef DECORATOR_MERGEMETHODBASE_H
#define DECORATOR_MERGEMETHODBASE_H

// Merge::MergeMethodBase: how a merge view joins several stores into one
// sequence of instances. A method is configured first (stores added, the
// direction set) and validated on the first question asked of it; from
// then on its stores are fixed until reset(). Every reading operation of a
// method validates first.

#include <list>
#include <vector>

#include "attribute/Attribute.h"
#include "attribute/KeyList.h"
#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "foundation/vUCString.h"
#include "project/AttributeMatch.h"
#include "project/Store.h"

namespace Merge {

class MergeMethodBase {
 public:
  explicit MergeMethodBase(unsigned int cacheMegabytes = 0);
  virtual ~MergeMethodBase();

  virtual unsigned int getNInstances() const = 0;
  virtual void read(Attribute& attribute, unsigned int first, unsigned int last) const = 0;
  virtual void read(Attribute& attribute, std::vector<unsigned int> const& instances) const = 0;
  virtual std::list<Attribute> getAttributeList() const = 0;
  virtual void getAttributeList(std::list<Attribute>& attributes) const = 0;
  virtual std::list<Attribute> getAttributeList(vUCString const& text,
                                                AttributeMatch::AttributeMatchType match) const = 0;
  virtual vLCString getAttributeSetName() const = 0;
  virtual vHandle<Store::AttributeSetList> getAttributeSetList() const = 0;
  virtual void getAttributeSetList(Store::AttributeSetList& names) const = 0;
  virtual KeyList getKeyList() const = 0;
  virtual void getKeyList(KeyList& keys) const = 0;
  virtual void openAttributeSet(vLCString const& name) = 0;
  virtual bool hasAttribute(vUCString const& name) const = 0;
  virtual Attribute getAttribute(vUCString const& name) const = 0;

  // Until validation only.
  void addStore(vHandle<Store> const& store);
  // Runs the method's validation once.
  void validateStores() const;
  // Back to configuring, without stores; size and direction cleared.
  void reset();
  // Descending key order instead of ascending; until validation only.
  void setReverse(bool reverse);

  bool isValidated() const { return m_validated; }
  bool isReverse() const { return m_reverse; }
  unsigned int getCacheSize() const { return m_cacheSize; }
  void setCacheSize(unsigned int megabytes) { m_cacheSize = megabytes; }

 protected:
  virtual void myDoReset() = 0;
  virtual void myDoAddStore(vHandle<Store> const& store) = 0;
  // Sets the validated flag when done.
  virtual void myDoValidateStores() const = 0;

  unsigned int m_cacheSize;
  mutable bool m_validated;
  bool m_reverse;
};

}  // namespace Merge

#endif
