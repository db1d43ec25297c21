#include "project/Store.h"

#include "foundation/Message.h"
#include "project/Project.h"

vUCString const Store::ATTRIBUTESET_NAMES("ATTRIBUTESET_NAMES");
vUCString const Store::ATTRIBUTESET_VERSIONS("ATTRIBUTESET_VERSIONS");
vLCString const Store::ATTRIBUTESET_CLASS("attributeset");
vLCString const Store::ATTRIBUTESET_SUBCLASS("set");

namespace {

Store::InMemoryStoreView& inMemoryStoreView() {
  static Store::InMemoryStoreView view = nullptr;
  return view;
}

}  // namespace

Store::Store() {}

Store::Store(vHandle<Project> const& project) : AttributeSet(project) {}

Store::~Store() {}

void Store::flush() {}

bool Store::hasProperty(vUCString const& name) { return static_cast<Store const&>(*this).hasProperty(name); }

bool Store::hasProperty(Property const& property) {
  return static_cast<Store const&>(*this).hasProperty(property);
}

Store::InMemoryStoreView Store::setInMemoryStoreView(InMemoryStoreView view) {
  InMemoryStoreView previous = inMemoryStoreView();
  inMemoryStoreView() = view;
  return previous;
}

AttributeSet const& Store::myViewOf(InMemoryStore const& source, char const* label) {
  InMemoryStoreView view = inMemoryStoreView();
  // Only an InMemoryStore can be passed here, and its class installs the
  // view: this is reached only by a program that bypassed that.
  if (view == nullptr) Message::fatal(label, 0, "The InMemoryStore class has not been installed in this program.");
  return view(source);
}

void Store::writeIMSRange(InMemoryStore const& source, unsigned int first, unsigned int last) {
  myWriteSetRange(myViewOf(source, "Store::writeIMSRange"), first, last);
}

void Store::writeIMSList(InMemoryStore const& source, std::vector<unsigned int> const& instances) {
  myWriteSetList(myViewOf(source, "Store::writeIMSList"), instances);
}

void Store::myWriteSetRange(AttributeSet const& source, unsigned int first, unsigned int last) {
  unsigned int n = source.getNInstances();
  for (Attribute attribute : source.getAttributeList()) {
    if (n > 0) source.read(attribute, 1, n);
    write(attribute, first, last);
  }
}

void Store::myWriteSetList(AttributeSet const& source, std::vector<unsigned int> const& instances) {
  unsigned int n = source.getNInstances();
  for (Attribute attribute : source.getAttributeList()) {
    if (n > 0) source.read(attribute, 1, n);
    write(attribute, instances);
  }
}
