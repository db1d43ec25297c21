#ifndef SERVER_DIRECTORYATTRIBUTESET_H
#define SERVER_DIRECTORYATTRIBUTESET_H

// DirectoryAttributeSet: a store of a directory project as the data server
// serves it. open() asks the project for the store's file and has the store
// factory open it, as any program opens a flat file; every other operation
// goes to that store, and the set's properties are the store's own list.
// So the server answers what the store answers in-process. The files are
// only read: create and update are refused.
//
// A read of a long range of instances goes to the store in pieces of
// kPiece instances, gathered into the caller's attribute: a header word of
// a whole file then costs the store one piece of traces at a time, not a
// buffer of every trace of the file.

#include "project/CapiAttributeSetW.h"

class DirectoryAttributeSet : public CapiAttributeSetW {
 public:
  explicit DirectoryAttributeSet(vHandle<Project> const& project);
  ~DirectoryAttributeSet() override;

  using CapiAttributeSetW::create;
  using CapiAttributeSetW::open;
  using CapiAttributeSetW::update;

  void create(vLCString const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
              StoreCreationOptions const* options) override;
  void open(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;
  void update(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
              StoreOpenOptions const* options) override;
  void close() override;
  using CapiAttributeSetW::read;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;

  static unsigned int const kPiece = 1000;
};

#endif
