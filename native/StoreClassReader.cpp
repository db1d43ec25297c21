#include "native/StoreClassReader.h"

StoreClassReader::StoreClassReader(vHandle<Store> const& store) : m_store(store) {}

StoreClassReader::~StoreClassReader() {}
