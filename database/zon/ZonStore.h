#ifndef DATABASE_ZON_ZONSTORE_H
#define DATABASE_ZON_ZONSTORE_H

// ZonStore: the store of a database project, as the factory hands it out.
// It is a thin shell: every store, attribute-set and property operation goes
// to the ZonStoreKVS it owns, which holds the data; beyond what its
// forwarding base passes on, also the properties' packing, buffered reads
// and flush. The shell keeps the class-wide data-conversion choice of the
// database stores.

#include <memory>

#include "attribute/CapiAttribute.h"
#include "project/ForwardingStore.h"

class ZonStoreKVS;

class ZonStore : public ForwardingStore {
 public:
  explicit ZonStore(vHandle<Project> const& project);
  ~ZonStore() override;
  // The copy assignment below would hide it.
  using ForwardingStore::operator=;

  static Capi::eDataConversion getDataConversion();
  static void setDataConversion(Capi::eDataConversion conversion);

  bool isSet() const override;
  void packProperties(Packer& packer) const override;
  void unpackProperties(Packer& packer) override;
  void readBufferRange(AttributeSetBuffer& buffer, unsigned int first, unsigned int last) const override;
  void flush() override;

  // The store that does the work.
  ZonStoreKVS& getImplementation() const { return *m_imp; }

 protected:
  Store& forwardTarget() const override;

 private:
  ZonStore(ZonStore const&) = delete;
  ZonStore& operator=(ZonStore const&) = delete;

  static Capi::eDataConversion m_dataConversion;
  std::unique_ptr<ZonStoreKVS> m_imp;
};

#endif
