#include "decorator/BinDecorator.h"

BinDecorator::BinDecorator(vHandle<Store> const& store) : StoreDecoratorImp(store), m_opened(false) {}

BinDecorator::~BinDecorator() {}

void BinDecorator::open(Binner const& binner, Attribute const& attribute) {
  m_binner = binner;
  m_attribute = attribute;
  m_opened = true;
  myInstancesChanged();
}

void BinDecorator::open(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
                        StoreOpenOptions const* options) {
  m_decoratedStore->open(name, version, className, subClass, options);
}

void BinDecorator::open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                        StoreOpenOptions const* options) {
  m_decoratedStore->open(name, className, subClass, options);
}

void BinDecorator::myBin(Attribute& attribute) const {
  if (!m_opened || !(attribute == m_attribute) || attribute.getNInstances() == 0) return;
  m_binner.binValues(attribute.getPointer(1), attribute.getDataType(),
                     static_cast<unsigned int>(attribute.getTotalLength()));
}

void BinDecorator::doReadRange(Attribute& attribute, unsigned int first, unsigned int last) const {
  if (first == 0 && last == 0) {
    attribute.resize(0);
    return;
  }
  m_decoratedStore->read(attribute, first, last);
  myBin(attribute);
}

void BinDecorator::doReadList(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  m_decoratedStore->read(attribute, instances);
  myBin(attribute);
}
