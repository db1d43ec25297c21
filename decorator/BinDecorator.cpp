#include "decorator/BinDecorator.h"

#include "foundation/Message.h"
#include "foundation/vUtl.h"

BinDecorator::BinDecorator(vHandle<Store> const& store) : StoreDecoratorImp(store), m_opened(false) {}

BinDecorator::~BinDecorator() {}

void BinDecorator::open(Binner const& binner, Attribute const& attribute) {
  // The binner takes one number an instance: a trace's samples or a text
  // would pass through the view unbinned, or binned as if each were an
  // instance's value. The store's own definition says what a read gives.
  vUCString const& name = attribute.getName();
  Attribute const definition = m_decoratedStore->hasAttribute(name) ? m_decoratedStore->getAttribute(name) : attribute;
  DataType const type = definition.getDataType();
  if (!vUtl::dataTypeIsAttributeNumber(type))
    Message::fatal("BinDecorator::open", 0, "Unable to bin Attribute %s of type %s.", name.c_str(),
                   vUtl::dataTypeName(type).c_str());
  if (definition.getLength() != 1)
    Message::fatal("BinDecorator::open", 0, "Unable to bin Attribute %s: bins take one value an instance.",
                   name.c_str());
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
