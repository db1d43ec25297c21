#ifndef DECORATOR_BINDECORATOR_H
#define DECORATOR_BINDECORATOR_H

// BinDecorator: a store in which the values of one attribute are snapped to
// the centres of the bins of a Binner. Everything else, the instances and
// their order included, is the store below; writes go to it unchanged.

#include "attribute/Attribute.h"
#include "decorator/Binner.h"
#include "decorator/StoreDecoratorImp.h"

class BinDecorator : public StoreDecoratorImp {
 public:
  explicit BinDecorator(vHandle<Store> const& store);
  ~BinDecorator() override;

  // The binner and the attribute it applies to (compared as attributes).
  virtual void open(Binner const& binner, Attribute const& attribute);
  void open(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;
  void open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;

  void doReadList(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  void doReadRange(Attribute& attribute, unsigned int first, unsigned int last) const override;

 private:
  void myBin(Attribute& attribute) const;

  bool m_opened;
  Binner m_binner;
  Attribute m_attribute;
};

#endif
