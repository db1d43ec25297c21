#include "database/zon/ZonStoreKVS.h"

#include <strings.h>

#include <map>
#include <sstream>

#include "database/kvs/KvsDict.h"
#include "database/zon/CapiZon.h"
#include "database/zon/ZonClassNamesTranslator.h"
#include "database/zon/ZonGridAdapter.h"
#include "database/zon/ZonHorizonAdapter.h"
#include "database/zon/ZonMuteAdapter.h"
#include "database/zon/ZonPlainAdapter.h"
#include "database/zon/ZonProject.h"
#include "database/zon/ZonSeismicAdapter.h"
#include "database/zon/ZonVelocityAdapter.h"
#include "database/zon/ZonWDepthAdapter.h"
#include "filestore/memory/InMemoryAttributeSet.h"
#include "foundation/Message.h"
#include "project/FullStoreName.h"

Capi::eDataConversion ZonStoreKVS::myDataConversion = Capi::eDataTypeConversion;
int ZonStoreKVS::myTraceLevel = -1;

ZonStoreKVS::ZonStoreKVS(vHandle<Project> const& project)
    : Store(project),
      myIsOpen(false),
      myWriteable(false),
      myVersion(0),
      myModified(false),
      myLoaded(false) {
  if (!project.isEmpty()) vHandle_cast(myProject, project);
}

// A store let go with changes still in memory writes them, as a close
// would: the changes are the caller's data. A failure here can only be
// reported, not raised.
ZonStoreKVS::~ZonStoreKVS() {
  if (!myIsOpen || !myWriteable || !myModified) return;
  Message::info("ZonStoreKVS::~ZonStoreKVS", 0, "Store %s was still open, closed it.", myName.c_str());
  try {
    close();
  } catch (...) {
  }
}

Capi::eDataConversion ZonStoreKVS::getDataConversion() { return myDataConversion; }

void ZonStoreKVS::setDataConversion(Capi::eDataConversion conversion) {
  myDataConversion = conversion;
  ZonAdapterBase::setDataConversion(conversion == Capi::eDataTypeConversion);
}

// The memory copy needs a class and subclass where a dataset may have
// none; the store answers with the adapter's.
vLCString ZonStoreKVS::myMemoryClass(vLCString const& name) {
  return name.isEmpty() ? vLCString("none") : name;
}

// --- State -----------------------------------------------------------------------------

void ZonStoreKVS::myMustBeOpen(char const* label) const {
  if (!myIsOpen) Message::fatal(label, 0, "The store has not been opened yet!");
}

void ZonStoreKVS::myMustBeWriteable(char const* label) const {
  myMustBeOpen(label);
  if (!myWriteable) Message::fatal(label, 0, "The store '%s' has not been opened for modification!", myName.c_str());
}

// A database column holds one plain value per instance; a vector is refused
// before the memory copy takes it, so nothing is lost at close. A one-value
// vector is refused too: its sample rate and first time have no column.
void ZonStoreKVS::myMustBeScalar(char const* label, Attribute const& attribute, vLCString const& store) {
  if (attribute.isVariableLength())
    Message::fatal(label, 0,
                   "Attribute %s has a length of its own for each instance; store %s keeps one value per "
                   "instance in each database column.",
                   attribute.getName().c_str(), store.c_str());
  if (attribute.getLength() != 1)
    Message::fatal(label, 0,
                   "Attribute %s has %d values per instance; store %s keeps one value per instance in each "
                   "database column.",
                   attribute.getName().c_str(), attribute.getLength(), store.c_str());
  if (attribute.isVector())
    Message::fatal(label, 0,
                   "Attribute %s has a sample rate of %g; store %s keeps one plain value per instance in each "
                   "database column, without a sample rate.",
                   attribute.getName().c_str(), attribute.getSampleRate(), store.c_str());
}

void ZonStoreKVS::myReset() {
  myIsOpen = false;
  myWriteable = false;
  myModified = false;
  myLoaded = false;
  myData = vHandle<InMemoryAttributeSet>();
  myKeys.clear();
  myAttributes.clear();
}

vHandle<NameDetails> ZonStoreKVS::myNameDetails(vLCString const& name, int version, vString const& domain,
                                                ZonAdapterBase::Spelling& found) const {
  if (myProject.isEmpty()) Message::fatal("ZonStoreKVS::open", 0, "The store '%s' has no project.", name.c_str());
  myProject->setSession();
  vString given(name), ident, type, versionText;
  versionText << version;
  found = ZonAdapterBase::Spelling();
  if (myProject->locateNameComponents(given, ident, type, versionText)) found = {ident, type, versionText};
  bool const geometry = strcasecmp(type.c_str(), "SGD") == 0;
  vString text;
  NameDetails::buildName(type, versionText, ident, domain.isEmpty() && !geometry ? vString("*") : domain, text);
  return vHandle<NameDetails>(new NameDetails(text, myProject.get()));
}

void ZonStoreKVS::mySetAdapter(vHandle<NameDetails> details) {
  vString const& type = details->getType();
  if (type == vString("HZ"))
    myAdapter.reset(new ZonHorizonAdapter(myProject));
  else if (type == vString("MUTE"))
    myAdapter.reset(new ZonMuteAdapter(myProject));
  else if (type == vString("VELO"))
    myAdapter.reset(new ZonVelocityAdapter(myProject));
  else if (type == vString("WDEP"))
    myAdapter.reset(new ZonWDepthAdapter(myProject));
  else if (type == vString("GRID"))
    myAdapter.reset(new ZonGridAdapter(myProject));
  else if (type == vString("SEIS"))
    myAdapter.reset(new ZonSeismicAdapter(myProject));
  else
    myAdapter.reset(new ZonPlainAdapter(myProject));
  myDetails = details;
}

void ZonStoreKVS::myOpen(char const* label, vLCString const& name, int version, bool writeable) {
  if (myIsOpen) close();
  myReset();
  ZonAdapterBase::Spelling dataset;
  vHandle<NameDetails> const details = myNameDetails(name, version, vString(), dataset);
  mySetAdapter(details);
  myAdapter->setNameDetails(name, details);
  myAdapter->setSpelling(dataset);
  myAdapter->open(name);
  clearProperties();
  myAdapter->init(myKeys, myAttributes, *this);
  CapiZon::timer(label, 1);
  myName = name;
  vString const versionText = details->getVersion();
  // A version asked for by number is the one opened, also where the text
  // differs (idents apart only in case are numbered after the others).
  myVersion = version > 0 || !versionText.isInteger() ? version : versionText.readi();
  myIsOpen = true;
  myWriteable = writeable;
}

void ZonStoreKVS::myLoadData() const {
  if (myLoaded) return;
  KeyList keys;
  std::list<Attribute> attributes;
  PropertyI ignored;  // the properties were read at open and may have changed since
  myAdapter->load(keys, attributes, ignored);
  vHandle<InMemoryAttributeSet> data(new InMemoryAttributeSet(vHandle<Project>()));
  data->create(myName, myMemoryClass(myAdapter->getClass()), myMemoryClass(myAdapter->getSubClass()), keys, nullptr);
  unsigned int n = myAdapter->getNInstances();
  for (Attribute const& a : attributes) {
    if (!data->hasAttribute(a.getName())) data->addAttribute(Attribute(a));
    n = a.getNInstances();
  }
  data->addInstances(n);
  for (Attribute const& a : attributes)
    if (n > 0) data->write(a, 1, n);
  myData = data;
  myKeys = keys;
  myLoaded = true;
  if (myTraceLevel > 0)
    Message::info("ZonStoreKVS::myLoadData", 0, "Loaded %u instances of %u attributes from %s.", n,
                  static_cast<unsigned int>(attributes.size()), myName.c_str());
}

void ZonStoreKVS::myWriteData() {
  myProject->setSession();
  unsigned int const n = myData->getNInstances();
  std::list<Attribute> attributes;
  for (Attribute const& definition : myData->getAttributeList()) {
    Attribute a(definition);
    if (n > 0) myData->read(a, 1, n);
    attributes.push_back(std::move(a));
  }
  myAdapter->writeAll(attributes, myData->getKeyList(), *this);
  myProject->removeFromCache(myName);
  myModified = false;
  if (myTraceLevel > 0)
    Message::info("ZonStoreKVS::myWriteData", 0, "Wrote %u instances of %u attributes to %s.", n,
                  static_cast<unsigned int>(attributes.size()), myName.c_str());
}

std::vector<unsigned int> ZonStoreKVS::myBuildListByKeys(char const* label, KeyList const& keys) const {
  std::vector<Attribute const*> stored;
  for (Attribute const& key : keys) stored.push_back(&myData->readAttributeAndData(key.getName()));
  unsigned int const n = myData->getNInstances();
  std::map<std::vector<double>, unsigned int> byTuple;
  for (unsigned int i = 1; i <= n; ++i) {
    std::vector<double> tuple;
    for (Attribute const* s : stored) tuple.push_back(s->getValue(i));
    if (!byTuple.insert(std::make_pair(tuple, i)).second) {
      std::ostringstream text;
      for (std::size_t k = 0; k < tuple.size(); ++k) text << (k ? ", " : "") << tuple[k];
      Message::fatal(label, 0, "Duplicate keys found: [%s]", text.str().c_str());
    }
  }
  unsigned int const wanted = keys.getNKeys() ? keys.begin()->getNInstances() : 0;
  std::vector<unsigned int> list;
  for (unsigned int i = 1; i <= wanted; ++i) {
    std::vector<double> tuple;
    for (Attribute const& key : keys) tuple.push_back(key.getValue(i));
    std::map<std::vector<double>, unsigned int>::const_iterator const found = byTuple.find(tuple);
    if (found != byTuple.end()) list.push_back(found->second);
  }
  if (list.size() != wanted)
    Message::fatal(label, 0,
                   "Key list has duplicate or missing values in AttributeSet '%s'. Wanted %lld value(s) but found "
                   "%lld.",
                   myName.c_str(), static_cast<long long>(wanted), static_cast<long long>(list.size()));
  return list;
}

// --- Opening and closing -----------------------------------------------------------------

bool ZonStoreKVS::isOpen() const { return myIsOpen; }

void ZonStoreKVS::create(vLCString const& name, vLCString const& className, vLCString const& subClass,
                         KeyList const& keys, StoreCreationOptions const*) {
  if (myIsOpen) close();
  myReset();
  for (Attribute const& key : keys) myMustBeScalar("ZonStoreKVS::create", key, name);
  vString zonClass, table;
  ZonClassNamesTranslator::convertRondoVToZon(className, subClass, zonClass, table);
  char const* domain = kvs::KvsDtDomName(kvs::KvsDtTabDom(kvs::KvsDtTab(table.c_str())));
  ZonAdapterBase::Spelling dataset;
  vHandle<NameDetails> details = myNameDetails(name, 0, vString(domain ? domain : ""), dataset);
  if (details->getType().isEmpty()) {
    vString text;
    NameDetails::buildName(zonClass, details->getVersion(), details->getIdent(), details->getDomain(), text);
    details = vHandle<NameDetails>(new NameDetails(text, myProject.get()));
  }
  mySetAdapter(details);
  myAdapter->setNameDetails(name, details);
  myAdapter->setSpelling(dataset);
  myAdapter->setCreateClass(className, subClass);
  myAdapter->create(name, keys);
  clearProperties();
  myData = vHandle<InMemoryAttributeSet>(new InMemoryAttributeSet(vHandle<Project>()));
  myData->create(name, myMemoryClass(myAdapter->getClass()), myMemoryClass(myAdapter->getSubClass()), keys,
                 nullptr);
  myKeys = keys;
  myName = name;
  vString const versionText = details->getVersion();
  myVersion = versionText.isInteger() ? versionText.readi() : 1;
  myLoaded = true;
  myModified = true;
  myIsOpen = true;
  myWriteable = true;
}

void ZonStoreKVS::create(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                         KeyList const& keys, StoreCreationOptions const* options) {
  create(name.getStoreName(), className, subClass, keys, options);
}

void ZonStoreKVS::open(vLCString const& name, int version, vLCString const&, vLCString const&,
                       StoreOpenOptions const*) {
  myOpen("ZonStoreKVS::open", name, version, false);
}

void ZonStoreKVS::open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                       StoreOpenOptions const* options) {
  open(name.getStoreName(), name.getVersion(), className, subClass, options);
}

void ZonStoreKVS::update(vLCString const& name, int version, vLCString const&, vLCString const&,
                         StoreOpenOptions const*) {
  myOpen("ZonStoreKVS::update", name, version, true);
}

void ZonStoreKVS::update(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
                         StoreOpenOptions const* options) {
  update(name.getStoreName(), name.getVersion(), className, subClass, options);
}

void ZonStoreKVS::close() {
  if (!myIsOpen) return;
  if (myWriteable && myModified) myWriteData();
  myReset();
}

void ZonStoreKVS::flush() {
  if (myIsOpen && myWriteable && myModified) myWriteData();
}

// --- Questions -----------------------------------------------------------------------------

unsigned int ZonStoreKVS::getNInstances() const {
  myMustBeOpen("ZonStoreKVS::getNInstances");
  myLoadData();
  return myData->getNInstances();
}

vLCString ZonStoreKVS::getClass() const { return myAdapter ? myAdapter->getClass() : vLCString(); }

vLCString ZonStoreKVS::getSubClass() const { return myAdapter ? myAdapter->getSubClass() : vLCString(); }

vLCString ZonStoreKVS::getName() const { return myName; }

int ZonStoreKVS::getVersion() const { return myVersion; }

KeyList ZonStoreKVS::getKeyList() const {
  myMustBeOpen("ZonStoreKVS::getKeyList");
  return myLoaded ? myData->getKeyList() : myKeys;
}

std::list<Attribute> ZonStoreKVS::getAttributeList() const {
  myMustBeOpen("ZonStoreKVS::getAttributeList");
  return myLoaded ? myData->getAttributeList() : myAttributes;
}

std::list<Attribute> ZonStoreKVS::getAttributeList(vUCString const& text,
                                                   AttributeMatch::AttributeMatchType match) const {
  myMustBeOpen("ZonStoreKVS::getAttributeList");
  myLoadData();
  return myData->getAttributeList(text, match);
}

Attribute ZonStoreKVS::getAttribute(vUCString const& name) const {
  myMustBeOpen("ZonStoreKVS::getAttribute");
  myLoadData();
  return myData->getAttribute(name);
}

bool ZonStoreKVS::hasAttribute(vUCString const& name) const {
  myMustBeOpen("ZonStoreKVS::hasAttribute");
  if (myLoaded) return myData->hasAttribute(name);
  for (Attribute const& a : myAttributes)
    if (a.getName() == name) return true;
  return false;
}

unsigned int ZonStoreKVS::getNAttributes() const {
  myMustBeOpen("ZonStoreKVS::getNAttributes");
  return myLoaded ? myData->getNAttributes() : static_cast<unsigned int>(myAttributes.size());
}

void ZonStoreKVS::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  myMustBeOpen("ZonStoreKVS::getUnique");
  myLoadData();
  myData->getUnique(attribute, order);
}

void ZonStoreKVS::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                    vUtlSort::SortOrder::SortOrderType order) const {
  myMustBeOpen("ZonStoreKVS::getGroupsAndSizes");
  myLoadData();
  myData->getGroupsAndSizes(attribute, sizes, order);
}

vHandle<Project> ZonStoreKVS::getProject() const { return m_project; }

// --- Reads -------------------------------------------------------------------------------------

void ZonStoreKVS::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  myMustBeOpen("ZonStoreKVS::read(byRange)");
  myLoadData();
  myData->read(attribute, first, last);
}

void ZonStoreKVS::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  myMustBeOpen("ZonStoreKVS::read(byList)");
  myLoadData();
  myData->read(attribute, instances);
}

void ZonStoreKVS::read(Attribute& attribute, Attribute const& key, unsigned int firstGroup,
                       unsigned int lastGroup) const {
  myMustBeOpen("ZonStoreKVS::read(byGroups)");
  myLoadData();
  myData->read(attribute, key, firstGroup, lastGroup);
}

void ZonStoreKVS::read(Attribute& attribute, KeyList const& keys) const {
  myMustBeOpen("ZonStoreKVS::read(byKeys)");
  myLoadData();
  if (!myData->hasAttribute(attribute.getName())) myData->getAttribute(attribute.getName());
  myData->read(attribute, myBuildListByKeys("ZonStoreKVS::read(byKeys)", keys));
}

void ZonStoreKVS::readBufferRange(AttributeSetBuffer&, unsigned int, unsigned int) const {
  Message::fatal("ZonStoreKVS::readBufferRange", 0, "Not yet implemented.");
}

// --- Writes ------------------------------------------------------------------------------------

void ZonStoreKVS::addInstances(unsigned int count) {
  myMustBeWriteable("ZonStoreKVS::addInstances");
  myLoadData();
  myData->addInstances(count);
  myModified = true;
}

void ZonStoreKVS::addAttribute(Attribute const& attribute) {
  myMustBeWriteable("ZonStoreKVS::addAttribute");
  myMustBeScalar("ZonStoreKVS::addAttribute", attribute, myName);
  myLoadData();
  myData->addAttribute(attribute);
  myModified = true;
}

void ZonStoreKVS::write(Attribute const& attribute, unsigned int first, unsigned int last) {
  myMustBeWriteable("ZonStoreKVS::write(byRange)");
  myLoadData();
  myData->write(attribute, first, last);
  myModified = true;
}

void ZonStoreKVS::write(Attribute const& attribute, std::vector<unsigned int> const& instances) {
  myMustBeWriteable("ZonStoreKVS::write(byList)");
  myLoadData();
  myData->write(attribute, instances);
  myModified = true;
}

void ZonStoreKVS::write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
                        unsigned int lastGroup) {
  myMustBeWriteable("ZonStoreKVS::write(byGroups)");
  myLoadData();
  myData->write(attribute, key, firstGroup, lastGroup);
  myModified = true;
}

void ZonStoreKVS::write(Attribute const& attribute, KeyList const& keys) {
  char const* const label = "ZonStoreKVS::write(byKeys)";
  myMustBeWriteable(label);
  myLoadData();
  // The tuples given must match the values given before they are looked up.
  unsigned long long const tuples = keys.getNKeys() ? keys.begin()->getNInstances() : 0;
  if (tuples != attribute.getNInstances())
    Message::fatal(label, 0,
                   "The number of instances (%lld) with keys does not match the number of instances (%lld) for "
                   "Attribute %s.",
                   static_cast<long long>(tuples), static_cast<long long>(attribute.getNInstances()),
                   attribute.getName().c_str());
  myData->write(attribute, myBuildListByKeys(label, keys));
  myModified = true;
}

void ZonStoreKVS::setAttributeClass(vUCString const&, vUCString const&) {
  Message::fatal("ZonStoreKVS::setAttributeClass", 0, "Should not do this on a ZonStoreKVS.");
}

// --- Attribute sets ----------------------------------------------------------------------------

// A new table of the dataset. What changed of the set active before is
// written first, as at a switch; a refused name leaves that set active. The
// new set is written at the next flush, switch or close.
void ZonStoreKVS::createAttributeSet(vLCString const& name, KeyList const& keys) {
  char const* const label = "ZonStoreKVS::createAttributeSet";
  myMustBeWriteable(label);
  for (Attribute const& key : keys) myMustBeScalar(label, key, myName);
  if (myModified) myWriteData();
  myAdapter->createAttributeSet(name, keys);
  vHandle<InMemoryAttributeSet> data(new InMemoryAttributeSet(vHandle<Project>()));
  data->create(name, myMemoryClass(myAdapter->getClass()), myMemoryClass(myAdapter->getSubClass()), keys, nullptr);
  myData = data;
  myKeys = keys;
  myAttributes.clear();
  myLoaded = true;
  myModified = true;
}

// The store's properties are those of its primary set: a set's own
// parameters are read aside, and a set is written with the store's.
void ZonStoreKVS::mySwitchSet(char const* label, vLCString const& name) {
  if (myWriteable && myModified) myWriteData();
  if (myWriteable)
    myAdapter->updateAttributeSet(name);
  else
    myAdapter->openAttributeSet(name);
  myLoaded = false;
  myData = vHandle<InMemoryAttributeSet>();
  myKeys.clear();
  myAttributes.clear();
  PropertyI parameters;
  myAdapter->init(myKeys, myAttributes, parameters);
  CapiZon::timer(label, 1);
}

void ZonStoreKVS::openAttributeSet(vLCString const& name) {
  myMustBeOpen("ZonStoreKVS::openAttributeSet");
  mySwitchSet("ZonStoreKVS::openAttributeSet", name);
}

void ZonStoreKVS::updateAttributeSet(vLCString const& name) {
  myMustBeWriteable("ZonStoreKVS::updateAttributeSet");
  mySwitchSet("ZonStoreKVS::updateAttributeSet", name);
}

vHandle<Store::AttributeSetList> ZonStoreKVS::getAttributeSetList() const {
  myMustBeOpen("ZonStoreKVS::getAttributeSetList");
  return myAdapter->getAttributeSetList();
}

void ZonStoreKVS::getAttributeSetList(AttributeSetList& names) const {
  myMustBeOpen("ZonStoreKVS::getAttributeSetList");
  myAdapter->getAttributeSetList(names);
}

vLCString ZonStoreKVS::getAttributeSetName() const { return myAdapter ? myAdapter->getAttributeSetName() : myName; }

vLCString ZonStoreKVS::getPrimaryAttributeSetName() const { return myName; }

bool ZonStoreKVS::operator==(Store const& other) const {
  return getName() == other.getName() && getVersion() == other.getVersion() && getProject() == other.getProject();
}

bool ZonStoreKVS::operator!=(Store const& other) const { return !(*this == other); }

Store& ZonStoreKVS::operator=(PropertyI const& properties) {
  setPropertyList(properties);
  return *this;
}
