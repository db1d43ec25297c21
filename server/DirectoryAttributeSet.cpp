#include "server/DirectoryAttributeSet.h"

#include <cstring>

#include "attribute/Attribute.h"
#include "decorator/StoreDecoratorFactory.h"
#include "foundation/Message.h"
#include "project/StoreDescription.h"
#include "project/StoreFactory.h"
#include "server/DirectoryProject.h"

DirectoryAttributeSet::DirectoryAttributeSet(vHandle<Project> const& project) : CapiAttributeSetW(project) {}

DirectoryAttributeSet::~DirectoryAttributeSet() {
  if (isOpen()) {
    try {
      close();
    } catch (...) {
      // A store that cannot close has said why.
    }
  }
}

void DirectoryAttributeSet::create(vLCString const& name, vLCString const&, vLCString const&, KeyList const&,
                                   StoreCreationOptions const*) {
  Message::fatal("DirectoryAttributeSet::create", 0,
                 "Store %s cannot be made: the data server's directory projects are read-only.", name.c_str());
}

void DirectoryAttributeSet::update(vLCString const& name, int, vLCString const&, vLCString const&,
                                   StoreOpenOptions const*) {
  Message::fatal("DirectoryAttributeSet::update", 0,
                 "Store %s cannot be opened for update: the data server's directory projects are read-only.",
                 name.c_str());
}

void DirectoryAttributeSet::open(vLCString const& name, int version, vLCString const&, vLCString const&,
                                 StoreOpenOptions const* options) {
  char const* const label = "DirectoryAttributeSet::open";
  if (isOpen()) Message::fatal(label, 0, "The store '%s' has already been opened!", getName().c_str());
  DirectoryProject const* project = dynamic_cast<DirectoryProject const*>(m_project.pointer());
  if (project == nullptr) Message::fatal(label, 0, "Store %s is not in a directory project.", name.c_str());
  vFilename const file = project->getStoreFile(name, version);
  vHandle<Store> store = StoreFactory::openStore(StoreDescription(file), vLCString(), options);
  vFilename const map = project->getMappingFile(name, version);
  if (map.length() != 0) store = StoreDecoratorFactory::addAttributeMapping(store, map);
  m_set = vHandle_cast<AttributeSet>(store);
  setPropertyList(*store);
}

void DirectoryAttributeSet::close() {
  CapiAttributeSetW::close();
  setPropertyList(PropertyI());
}

void DirectoryAttributeSet::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  if (last < first || last - first < kPiece || attribute.isVariableLength() || attribute.getDataType() == vSTRING) {
    CapiAttributeSetW::read(attribute, first, last);
    return;
  }
  Attribute part = getAttribute(attribute.getName());
  // Each piece goes straight to its place in the caller's block.
  attribute.resize(last - first + 1);
  unsigned char* out = static_cast<unsigned char*>(attribute.getPointer(1));
  for (unsigned int at = first;; at += kPiece) {
    unsigned int const end = last - at < kPiece ? last : at + kPiece - 1;
    CapiAttributeSetW::read(part, at, end);
    std::size_t const n = static_cast<std::size_t>(part.getTotalNBytes());
    std::memcpy(out, part.getPointer(1), n);
    out += n;
    if (end == last) break;
  }
}
