#ifndef DECORATOR_ATTRIBUTESELECTDECORATOR_H
#define DECORATOR_ATTRIBUTESELECTDECORATOR_H

// AttributeSelectDecorator: a view that lists only chosen attributes of a
// store. Until the first selectAttribute every attribute of the store (as it
// was when the view was made) is listed; from then on the chosen ones, in
// the order chosen, a name chosen twice being listed twice.
//
// It filters what is listed, not what is reachable: hasAttribute and the
// attribute lists answer from the selection, but getAttribute answers from
// the store's attributes, and reads and writes go through to the store for
// any attribute. Instances are those of the store, so writes go through
// too. Stores with more than one attribute set are refused.

#include <list>
#include <vector>

#include "decorator/StoreDecorator.h"

class AttributeSelectDecorator : public StoreDecorator {
 public:
  explicit AttributeSelectDecorator(vHandle<Store> const& store);
  ~AttributeSelectDecorator() override;

  // Appends a copy of the store's attribute of that name to the selection.
  void selectAttribute(vUCString const& name);
  void selectAttributes(std::vector<vUCString> const& names);

  std::list<Attribute> getAttributeList() const override;
  void getAttributeList(std::list<Attribute>& attributes) const override;
  // The selected attributes of that class; with MATCH_OR_BLANK_CLASS also
  // the selected ones of a blank class.
  std::list<Attribute> getAttributeList(vUCString const& classPattern,
                                        AttributeMatch::AttributeMatchType match) const override;
  Attribute getAttribute(vUCString const& name) const override;
  bool hasAttribute(vUCString const& name) const override;
  Store& operator=(PropertyI const& properties) override;

 private:
  void init();
  Attribute const* myFindParent(vUCString const& name) const;

  std::list<Attribute> m_selected;
  std::list<Attribute> m_parent;
  bool m_isDefault;
};

#endif
