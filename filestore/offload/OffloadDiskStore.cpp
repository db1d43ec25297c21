#include "filestore/offload/OffloadDiskStore.h"

#include <cstring>
#include <string>

#include "foundation/Message.h"
#include "project/AttributeMatch.h"
#include "project/Project.h"

namespace {

char const* const kNotOpen = "OffloadDiskStore is not open.";

// Whether the file starts as an offload data file, in either byte order.
bool isDataFile(vFilename const& file) {
  if (file.getExtension() == vString("offload")) return true;
  FS::iFile probe = FS::open(file, FS::ByteFile, 1024);
  if (!probe.isGood()) probe.terminate("OffloadDiskStore::open");
  uint32_t words[2] = {0, 0};
  long long const got = probe.read(1, words, 8);
  probe.clear();
  probe.close();
  if (got != 8) return false;
  auto swap = [](uint32_t w) { return (w >> 24) | ((w >> 8) & 0xff00u) | ((w << 8) & 0xff0000u) | (w << 24); };
  return words[1] == 77479u || swap(words[1]) == 77479u;
}

}  // namespace

OffloadDiskStore::OffloadDiskStore() : OffloadDiskStore(vHandle<Project>()) {}

OffloadDiskStore::OffloadDiskStore(vHandle<Project> const& project)
    : DiskStore(project), m_isOpen(false), m_created(false), m_restoreMute(false), m_update(false) {}

OffloadDiskStore::~OffloadDiskStore() {
  if (m_isOpen) {
    Message::info("OffloadDiskStore::~OffloadDiskStore", 0, "File %s was still open, closed it.", m_fileName.c_str());
    try {
      close();
    } catch (...) {
    }
  }
}

void OffloadDiskStore::open(StoreDescription const& description) {
  if (!description.isFlatFile())
    Message::fatal("OffloadDiskStore::open(StoreDescription)", 0, "StoreDescription must contain a flat file.");
  open(description.getFlatFileName());
}

void OffloadDiskStore::open(vFilename const& file) {
  if (m_isOpen)
    Message::fatal("OffloadDiskStore::open", 0, "OffloadDiskStore is already open as '%s'.", m_fileName.c_str());
  m_fileName = file;
  try {
    m_dataFiles.clear();
    if (isDataFile(file)) {
      m_dataFiles.push_back(file);
    } else {
      m_header = vHandle<OffloadHeaderFile>(new OffloadHeaderFile(file));
      m_dataFiles = m_header->getDataFilenames();
      if (m_dataFiles.empty())
        Message::fatal("OffloadDiskStore::open", 0, "Header file '%s' lists no data files.", file.c_str());
    }
    myOpenData(m_dataFiles.front());
    m_isOpen = true;
  } catch (...) {
    m_file = vHandle<OffloadAttributeFile>();
    m_header = vHandle<OffloadHeaderFile>();
    throw;
  }
}

void OffloadDiskStore::open(vLCString const& name, int, vLCString const&, vLCString const&,
                            StoreOpenOptions const* options) {
  if (options && options->getRestoreMute()) m_restoreMute = true;
  open(vFilename(name));
}

void OffloadDiskStore::update(vLCString const& name, int, vLCString const&, vLCString const&,
                              StoreOpenOptions const* options) {
  if (options && options->getRestoreMute()) m_restoreMute = true;
  update(vFilename(name));
}

void OffloadDiskStore::update(vFilename const& file) {
  if (m_isOpen)
    Message::fatal("OffloadDiskStore::update", 0, "OffloadDiskStore is already open as '%s'.", m_fileName.c_str());
  m_update = true;
  try {
    open(file);
  } catch (...) {
    m_update = false;
    throw;
  }
}

void OffloadDiskStore::setRestoreMute(bool restoreMute) {
  m_restoreMute = restoreMute;
  if (!m_file.isEmpty()) m_file->setRestoreMute(restoreMute);
}

void OffloadDiskStore::myOpenData(vFilename const& file) {
  AttributeFile::OpenOptions options;
  options.setRestoreMute(m_restoreMute);
  options.setUpdate(m_update);
  vHandle<OffloadAttributeFile> data(new OffloadAttributeFile(file, options));
  data->getNInstances();  // opens it, so that a bad file fails here
  if (!m_header.isEmpty()) {
    double first = 0, increment = 0, last = 0;
    data->getHeader();
    OffloadVersionBits const& bits = m_header->getVersion();
    bits.getFileOffsets(data->getHeader().data(), first, increment, last);
    if (data->getHeader()[64] != m_header->getNOffsets() ||
        static_cast<float>(first) != static_cast<float>(m_header->getFirstOffset()))
      Message::fatal("OffloadDiskStore::open", 0, "Data file '%s' does not belong to the offsets of header file '%s'.",
                     file.c_str(), m_fileName.c_str());
  }
  m_file = data;
  mySetupProperties();
  getIndexingTable().clearCache();
}

void OffloadDiskStore::mySetupProperties() {
  clearProperties();
  PropertyList const& list = m_file->getProperties();
  for (auto it = list.beginProperty(); it != list.endProperty(); ++it) DiskStore::addProperty(*it);
}

void OffloadDiskStore::create(vLCString const&, vLCString const& className, vLCString const& subClass, KeyList const&,
                              StoreCreationOptions const* options) {
  char const* const label = "OffloadDiskStore::create";
  auto require = [label](bool ok, char const* what) {
    if (!ok) Message::fatal(label, 0, "Creation of a seismic/offloadheader Store requires that %s.", what);
  };
  if (m_isOpen) Message::fatal(label, 0, "OffloadDiskStore is already open as '%s'.", m_fileName.c_str());
  require(className == vLCString("seismic"), "class is seismic");
  require(subClass == vLCString("offloadheader"), "subClass is offloadhesder");
  require(options != nullptr, "StoreCreationOptions are supplied");
  require(options->hasGrid(), "StoreCreationOptions grid parameters are supplied");
  require(options->hasOffsets(), "StoreCreationOptions offsets are supplied");
  require(options->hasFilename(), "StoreCreationOptions has a filename supplied");
  std::list<Attribute> const& attributes = options->getAttributeList();
  require(!attributes.empty(), "StoreCreationOptions AttributeList is supplied");
  auto has = [&attributes](char const* n) {
    for (Attribute const& a : attributes)
      if (a.getName() == vUCString(n)) return true;
    return false;
  };
  require(has("INLINE"), "StoreCreationOptions AttributeList has a INLINE Attribute");
  require(has("CROSSLINE"), "StoreCreationOptions AttributeList has a CROSSLINE Attribute");
  require(has("TRACE"), "StoreCreationOptions AttributeList has a TRACE Attribute");
  int i1, i2, i3, i4, i5, i6;
  float f1, f2;
  options->getGrid(i1, i2, i3, i4, i5, i6, f1, f2);
  CMPBasicGrid const grid(1, 1, i1, i2, i3, i4, i5, i6, vCoordinate(), f1, f2, 0.0);
  double minimum, maximum;
  int count;
  options->getOffsets(minimum, maximum, count);
  double const increment = count > 1 ? (maximum - minimum) / (count - 1) : 0.0;
  vFilename const headerName = options->getFilename();
  bool const floats = minimum != static_cast<int>(minimum) || increment != static_cast<int>(increment);
  vHandle<OffloadHeaderFile> header(new OffloadHeaderFile);
  header->create(headerName, floats ? 2 : 1, minimum, increment, count);
  std::vector<vFilename> dataFiles;
  std::vector<vHandle<OffloadAttributeFile> > files;
  for (int k = 1; k <= count; ++k) {
    vFilename data(headerName);
    data.setRoot(vString((std::string(headerName.getRoot().c_str()) + "_" + std::to_string(k)).c_str()));
    data.setExtension("offload");
    vHandle<OffloadAttributeFile> file(new OffloadAttributeFile);
    file->create(data);
    for (Attribute const& a : attributes) file->addAttribute(a);
    file->setGrid(grid);
    if (options->isCompressed()) file->setCompression(OffloadAttributeFile::INT16);
    file->setOffset(minimum, increment, count, k);
    dataFiles.push_back(data);
    files.push_back(file);
  }
  header->setDataFilenames(dataFiles);
  header->save();
  m_fileName = headerName;
  m_header = header;
  m_dataFiles = dataFiles;
  m_createdFiles = files;
  m_file = files.front();
  m_created = true;
  m_isOpen = true;
}

vFilename OffloadDiskStore::getCurrentFilename() const {
  myCheckOpen("OffloadDiskStore::getCurrentFilename");
  return m_file->getName();
}

void OffloadDiskStore::close() {
  // Every offset gets its file, written to or not.
  for (vHandle<OffloadAttributeFile> const& file : m_createdFiles) {
    file->getNInstances();
    file->flush();
  }
  m_createdFiles.clear();
  if (m_update && !m_file.isEmpty()) m_file->flush();
  m_update = false;
  m_created = false;
  m_file = vHandle<OffloadAttributeFile>();
  m_header = vHandle<OffloadHeaderFile>();
  m_dataFiles.clear();
  getIndexingTable().clearCache();
  m_isOpen = false;
}

void OffloadDiskStore::myCheckOpen(char const* label) const {
  if (!m_isOpen || m_file.isEmpty()) Message::fatal(label, 0, kNotOpen);
}

OffloadAttributeFile& OffloadDiskStore::getFile() const {
  myCheckOpen("OffloadDiskStore::getFile");
  return *m_file;
}

vLCString OffloadDiskStore::getName() const {
  myCheckOpen("OffloadDiskStore::getName");
  return vLCString(m_fileName.getRoot());
}

unsigned int OffloadDiskStore::getNInstances() const { return getFile().getNInstances(); }

Attribute OffloadDiskStore::getAttribute(vUCString const& name) const {
  myCheckOpen("OffloadDiskStore::getAttribute");
  if (!m_file->hasAttribute(name))
    Message::fatal("OffloadDiskStore::getAttribute", 0, "Attribute %s is not in the OffloadDiskStore %s.", name.c_str(),
                   getName().c_str());
  return m_file->getAttribute(name);
}

bool OffloadDiskStore::hasAttribute(vUCString const& name) const { return m_isOpen && m_file->hasAttribute(name); }

std::list<Attribute> OffloadDiskStore::getAttributeList() const {
  myCheckOpen("OffloadDiskStore::getAttributeList");
  return m_file->getAttributeList();
}

void OffloadDiskStore::getAttributeList(std::list<Attribute>& attributes) const { attributes = getAttributeList(); }

std::list<Attribute> OffloadDiskStore::getAttributeList(vUCString const& text,
                                                        AttributeMatch::AttributeMatchType match) const {
  std::list<Attribute> list;
  for (Attribute const& attribute : getAttributeList())
    if (AttributeMatch::matches(attribute, text, match)) list.push_back(attribute);
  return list;
}

vHandle<Store::AttributeSetList> OffloadDiskStore::getAttributeSetList() const {
  vHandle<AttributeSetList> names(new AttributeSetList);
  getAttributeSetList(*names);
  return names;
}

void OffloadDiskStore::getAttributeSetList(AttributeSetList& names) const {
  myCheckOpen("OffloadDiskStore::getAttributeSetList");
  names.clear();
  for (vFilename const& file : m_dataFiles) names.push_back(vLCString(file.getRoot()));
}

vLCString OffloadDiskStore::getAttributeSetName() const { return vLCString(getFile().getName().getRoot()); }

void OffloadDiskStore::openAttributeSet(vLCString const& name) {
  myCheckOpen("OffloadDiskStore::openAttributeSet");
  if (name.isBlank() || name == getAttributeSetName()) return;
  for (std::size_t k = 0; k < m_dataFiles.size(); ++k)
    if (vLCString(m_dataFiles[k].getRoot()) == name) {
      if (m_created)
        m_file = m_createdFiles[k];
      else
        myOpenData(m_dataFiles[k]);
      return;
    }
  Message::fatal("OffloadDiskStore::openAttributeSet", 0, "File '%s' does not have AttributeSet named '%s'.",
                 m_fileName.c_str(), name.c_str());
}

KeyList OffloadDiskStore::getKeyList() const { return getFile().getKeyList(); }

unsigned int OffloadDiskStore::getNAttributes() const { return getFile().getNAttributes(); }

namespace {
char const* const kNotWritable = "OffloadDiskStore is not created or opened for update.";
}  // namespace

void OffloadDiskStore::myCheckWritable(char const* label) const {
  if (!m_isOpen || (!m_created && !m_update)) Message::fatal(label, 0, kNotWritable);
}

void OffloadDiskStore::myWritten() { getIndexingTable().clearCache(); }

void OffloadDiskStore::addAttribute(Attribute const& attribute) {
  if (m_created) Message::fatal("OffloadDiskStore::addAttribute", 0, "Cannot add attribute to created store");
  myCheckWritable("OffloadDiskStore::addAttribute");
  m_file->addAttribute(attribute);
  myWritten();
}

void OffloadDiskStore::addInstances(unsigned int count) {
  myCheckWritable("OffloadDiskStore::addInstances");
  m_file->addInstances(count);
  myWritten();
}

void OffloadDiskStore::write(Attribute const& attribute, unsigned int first, unsigned int last) {
  char const* const label = "OffloadDiskStore::write";
  myCheckWritable(label);
  long long const n = m_file->getNInstances();
  if (attribute.getNInstances() != static_cast<unsigned int>(last - first + 1))
    Message::fatal(label, 0, "The Attribute '%s' to be written has %lld instances, but last-first+1 is %lld.",
                   attribute.getName().c_str(), static_cast<long long>(attribute.getNInstances()),
                   static_cast<long long>(last) - first + 1);
  if (first < 1) Message::fatal(label, 0, "first instance must be >0, yours was %lld", static_cast<long long>(first));
  if (last > n)
    Message::fatal(label, 0, "last instance %lld must be <= number of instances %lld.", static_cast<long long>(last),
                   n);
  m_file->writeRange(attribute, first, last);
  myWritten();
}

void OffloadDiskStore::write(Attribute const& attribute, std::vector<unsigned int> const& instances) {
  char const* const label = "OffloadDiskStore::write";
  myCheckWritable(label);
  long long const n = m_file->getNInstances();
  for (unsigned int i : instances) {
    if (i == 0)
      Message::fatal(label, 0, "Attribute '%s': the vInstanceList has a zero in it, coont read from instance 0.",
                     attribute.getName().c_str());
    if (i > n)
      Message::fatal(label, 0, "Instance numbers must be <%lld, list for '%s' contained %lld.", n + 1,
                     attribute.getName().c_str(), static_cast<long long>(i));
  }
  if (attribute.getNInstances() != instances.size())
    Message::fatal(label, 0, "The Attribute '%s' to be written has %lld instances, but the list has %lld.",
                   attribute.getName().c_str(), static_cast<long long>(attribute.getNInstances()),
                   static_cast<long long>(instances.size()));
  m_file->writeList(attribute, instances);
  myWritten();
}

void OffloadDiskStore::write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
                             unsigned int lastGroup) {
  char const* const label = "OffloadDiskStore::write(byGroups)";
  myCheckWritable(label);
  std::vector<unsigned int> instances;
  getIndexingTable().locateByGroups(key, firstGroup, lastGroup, instances);
  if (instances.size() != attribute.getNInstances())
    Message::fatal(label, 0,
                   "The number of instances (%d) with groups %s does not match the number of instances (%lld) for "
                   "Attribute %s being written.",
                   static_cast<int>(instances.size()), key.getName().c_str(),
                   static_cast<long long>(attribute.getNInstances()), attribute.getName().c_str());
  write(attribute, instances);
}

void OffloadDiskStore::write(Attribute const& attribute, KeyList const& keys) {
  char const* const label = "OffloadDiskStore::write(byKeys)";
  myCheckWritable(label);
  std::vector<unsigned int> instances;
  getIndexingTable().locateByKeys(keys, instances, false);
  long long found = 0;
  for (unsigned int i : instances) found += i != 0;
  if (instances.size() != attribute.getNInstances())
    Message::fatal(label, 0,
                   "The number of instances (%lld) with keys does not match the number of instances (%lld) for "
                   "Attribute %s being written.",
                   static_cast<long long>(instances.size()), static_cast<long long>(attribute.getNInstances()), attribute.getName().c_str());
  if (found != static_cast<long long>(instances.size()))
    Message::fatal(label, 0,
                   "Key list has duplicate or missing values in OffloadDiskStore %s. Wanted %lld value(s) but found "
                   "%lld.",
                   getName().c_str(), static_cast<long long>(instances.size()), found);
  write(attribute, instances);
}

void OffloadDiskStore::read(Attribute& attribute, KeyList const& keys) const {
  myCheckOpen("OffloadDiskStore::read");
  std::vector<unsigned int> instances;
  getIndexingTable().locateByKeys(keys, instances, false);
  long long found = 0;
  for (unsigned int i : instances) found += i != 0;
  if (found != static_cast<long long>(instances.size()))
    Message::fatal("OffloadDiskStore::read", 0,
                   "Key list has duplicate or missing values in OffloadDiskStore %s. Wanted %lld value(s) but found "
                   "%lld.",
                   getName().c_str(), static_cast<long long>(instances.size()), found);
  read(attribute, instances);
}

void OffloadDiskStore::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  char const* const label = "OffloadDiskStore::read";
  myCheckOpen(label);
  long long const n = m_file->getNInstances();
  if (last == 0) last = static_cast<unsigned int>(n);
  if (first < 1) Message::fatal(label, 0, "first instance must be >0, yours was %lld", static_cast<long long>(first));
  if (first > last)
    Message::fatal(label, 0, "first instance %lld must be <= last instance %lld.", static_cast<long long>(first),
                   static_cast<long long>(last));
  if (last > n)
    Message::fatal(label, 0, "last instance %lld must be <= number of instances %lld.", static_cast<long long>(last),
                   n);
  if (!m_file->hasAttribute(attribute.getName()))
    Message::fatal("OffloadDiskStore::read", 0, "Attribute %s is not in the OffloadDiskStore %s.",
                   attribute.getName().c_str(), getName().c_str());
  m_file->readRange(attribute, first, last);
}

void OffloadDiskStore::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  myCheckOpen("OffloadDiskStore::read");
  if (!m_file->hasAttribute(attribute.getName()))
    Message::fatal("OffloadDiskStore::read", 0, "Attribute %s is not in the OffloadDiskStore %s.",
                   attribute.getName().c_str(), getName().c_str());
  unsigned int const n = m_file->getNInstances();
  for (unsigned int i : instances) {
    if (i == 0)
      Message::fatal("OffloadDiskStore::read", 0,
                     "Attribute '%s': the vInstanceList has a zero in it, coont read from instance 0.",
                     attribute.getName().c_str());
    if (i > n)
      Message::fatal("OffloadDiskStore::read", 0, "Instance numbers must be <%lld, list for '%s' contained %lld.",
                     static_cast<long long>(n) + 1, attribute.getName().c_str(), static_cast<long long>(i));
  }
  m_file->readList(attribute, instances);
}

bool OffloadDiskStore::myGridGroups(Attribute& attribute, std::vector<unsigned int>* sizes,
                                    vUtlSort::SortOrder::SortOrderType order) const {
  myCheckOpen("OffloadDiskStore::getUnique");
  bool const inlines = attribute.getName() == vUCString("INLINE");
  if (!inlines && attribute.getName() != vUCString("CROSSLINE")) return false;
  OffloadAttributeFile& file = *m_file;
  if (!file.isCalculatable(attribute.getName())) return false;
  CMPBasicGrid const& grid = file.getGrid();
  int const n = inlines ? grid.getNumInlines() : grid.getNumCrosslines();
  int const first = inlines ? grid.getFirstInline() : grid.getFirstCrossline();
  int const increment = inlines ? grid.getInlineInc() : grid.getCrosslineInc();
  attribute = file.getAttribute(attribute.getName());
  attribute.resize(static_cast<unsigned int>(n));
  bool const down = (order == vUtlSort::SortOrder::DESCENDING) != (increment < 0);
  for (int k = 0; k < n; ++k)
    attribute.setInt32(static_cast<unsigned int>(k + 1), first + increment * (down ? n - 1 - k : k));
  if (sizes)
    sizes->assign(static_cast<std::size_t>(n),
                  static_cast<unsigned int>(inlines ? grid.getNumCrosslines() : grid.getNumInlines()));
  return true;
}

void OffloadDiskStore::getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                                         vUtlSort::SortOrder::SortOrderType order) const {
  if (!myGridGroups(attribute, &sizes, order)) DiskStore::getGroupsAndSizes(attribute, sizes, order);
}

void OffloadDiskStore::getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const {
  if (!myGridGroups(attribute, nullptr, order)) DiskStore::getUnique(attribute, order);
}
