#ifndef DECORATOR_RESTOREMUTEDECORATOR_H
#define DECORATOR_RESTOREMUTEDECORATOR_H

// RestoreMuteDecorator: shows vector attributes that start after time zero
// (a leading mute cut away) as starting at zero: the length grows to last
// time / sample rate + 1 samples and the samples before the stored first
// time read as zeros. Other attributes read straight through. Read-only.

#include <list>
#include <map>

#include "attribute/KeyList.h"
#include "decorator/StoreDecoratorImp.h"

class RestoreMuteDecorator : public StoreDecoratorImp {
 public:
  explicit RestoreMuteDecorator(vHandle<Store> const& store);
  ~RestoreMuteDecorator() override;

  void create(vLCString const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
              StoreCreationOptions const* options) override;
  void create(FullStoreName const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
              StoreCreationOptions const* options) override;
  void update(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
              StoreOpenOptions const* options) override;
  void update(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
              StoreOpenOptions const* options) override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& groups, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void addAttribute(Attribute const& attribute) override;
  void addInstances(unsigned int count) override;

  Attribute getAttribute(vUCString const& name) const override;
  std::list<Attribute> getAttributeList() const override;
  void getAttributeList(std::list<Attribute>& attributes) const override;
  std::list<Attribute> getAttributeList(vUCString const& text, AttributeMatch::AttributeMatchType match) const override;
  KeyList getKeyList() const override;
  void getKeyList(KeyList& keys) const override;

  void doReadList(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  void doReadRange(Attribute& attribute, unsigned int first, unsigned int last) const override;

 private:
  static bool myIsMuted(Attribute const& attribute);
  static void myAdjustAttribute(Attribute& attribute);
  static void myTransferData(Attribute const& source, Attribute& output);
  void myRefresh() const;
  void myRefreshAttributeList() const;
  void myRefreshKeyList() const;
  // The unadjusted form of a muted attribute, or null.
  Attribute const* myUnadjusted(Attribute const& attribute) const;

  mutable Store const* m_refreshedFor;
  mutable std::map<vUCStringTableData const*, Attribute> m_unadjusted;
  mutable std::list<Attribute> m_attributes;
  mutable KeyList m_keys;
};

#endif
