#include "database/zon/ZonStore.h"

#include "database/zon/ZonStoreKVS.h"

Capi::eDataConversion ZonStore::m_dataConversion = Capi::eDataTypeConversion;

ZonStore::ZonStore(vHandle<Project> const& project) : ForwardingStore(project), m_imp(new ZonStoreKVS(project)) {}

ZonStore::~ZonStore() {}

Capi::eDataConversion ZonStore::getDataConversion() { return m_dataConversion; }

void ZonStore::setDataConversion(Capi::eDataConversion conversion) {
  m_dataConversion = conversion;
  ZonStoreKVS::setDataConversion(conversion);
}

Store& ZonStore::forwardTarget() const { return *m_imp; }

bool ZonStore::isSet() const { return m_imp->isSet(); }

void ZonStore::packProperties(Packer& packer) const { m_imp->packProperties(packer); }

void ZonStore::unpackProperties(Packer& packer) { m_imp->unpackProperties(packer); }

void ZonStore::readBufferRange(AttributeSetBuffer& buffer, unsigned int first, unsigned int last) const {
  m_imp->readBufferRange(buffer, first, last);
}

void ZonStore::flush() { m_imp->flush(); }
