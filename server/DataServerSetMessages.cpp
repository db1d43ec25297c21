// The attribute set twins of a session: each request runs the local set
// that serves the store.

#include <vector>

#include "attribute/Attribute.h"
#include "attribute/KeyList.h"
#include "foundation/Message.h"
#include "foundation/Packer.h"
#include "foundation/vLCString.h"
#include "foundation/vUtlSort.h"
#include "project/AttributeMatch.h"
#include "project/StoreCreationOptions.h"
#include "project/StoreOpenOptions.h"
#include "remote/ClientCodes.h"
#include "server/DataServerRequest.h"
#include "server/DataServerSession.h"

namespace {

using DataServerRequest::readBool;
using DataServerRequest::readInstances;
using DataServerRequest::readInt;
using DataServerRequest::readString;
using DataServerRequest::readUInt;

// The enumerations come as plain ints: a value outside them is refused
// before it is taken for one.
vUtlSort::SortOrder::SortOrderType readOrder(Packer& in) {
  int32_t const order = readInt(in);
  if (order != vUtlSort::SortOrder::ASCENDING && order != vUtlSort::SortOrder::DESCENDING)
    Message::fatal("DataServer", 0, "Unknown sort order %d.", static_cast<int>(order));
  return static_cast<vUtlSort::SortOrder::SortOrderType>(order);
}

AttributeMatch::AttributeMatchType readMatch(Packer& in) {
  int32_t const match = readInt(in);
  if (match != AttributeMatch::MATCH_CLASS && match != AttributeMatch::MATCH_OR_BLANK_CLASS)
    Message::fatal("DataServer", 0, "Unknown attribute match type %d.", static_cast<int>(match));
  return static_cast<AttributeMatch::AttributeMatchType>(match);
}

// The definition of the attribute named, to be filled by a read.
Attribute definitionOf(AttributeSet const& set, Packer& in) { return set.getAttribute(vUCString(readString(in))); }

}  // namespace

void DataServerSession::myOpen(Twin& twin, vHandle<AttributeSet> const& set, bool update, vLCString const& name,
                               int version, vLCString const& className, vLCString const& subClass,
                               StoreOpenOptions const* options) {
  myLetGo(twin);
  Use& use = m_uses[set.pointer()];
  try {
    if (use.twins == 0 || (update && !use.writeable)) {
      if (use.twins > 0) set->close();
      if (update)
        set->update(name, version, className, subClass, options);
      else
        set->open(name, version, className, subClass, options);
      use.writeable = update;
    }
  } catch (...) {
    if (use.twins == 0) m_uses.erase(set.pointer());
    throw;
  }
  ++use.twins;
  twin.set = set;
}

void DataServerSession::myLetGo(Twin& twin) {
  if (twin.set.isEmpty()) return;
  vHandle<AttributeSet> const set = twin.set;
  twin.set = vHandle<AttributeSet>();
  auto const use = m_uses.find(set.pointer());
  if (use != m_uses.end() && --use->second.twins > 0) return;
  if (use != m_uses.end()) m_uses.erase(use);
  if (set->isOpen()) set->close();
}

AttributeSet& DataServerSession::myOpenSet(Twin const& twin, int id) {
  if (twin.set.isEmpty() || !twin.set->isOpen())
    Message::fatal("DataServer", 0, "The AttributeSet with PortalID %d is not open.", id);
  return *twin.set;
}

void DataServerSession::mySetMessage(Twin& twin, int id, int code, Packer& in, Packer& out) {
  switch (code) {
    case ClientCode::Create: {
      vLCString const name = readString(in);
      vLCString const className = readString(in);
      vLCString const subClass = readString(in);
      KeyList const keys(in);
      StoreCreationOptions options;
      bool const hasOptions = readBool(in);
      if (hasOptions) in.unpack(options);
      vHandle<Project> const project = myOpenProject(myParent(twin, "Project", id), twin.parent);
      myLetGo(twin);
      vHandle<AttributeSet> set = m_backend->newSet(project);
      set->create(name, className, subClass, keys, hasOptions ? &options : nullptr);
      m_backend->created(project, set, name, className, subClass);
      Use& use = m_uses[set.pointer()];
      use.twins = 1;
      use.writeable = true;
      twin.set = set;
      return;
    }
    case ClientCode::Open:
    case ClientCode::Update: {
      vLCString const name = readString(in);
      int32_t const version = readInt(in);
      vLCString const className = readString(in);
      vLCString const subClass = readString(in);
      StoreOpenOptions options;
      bool const hasOptions = readBool(in);
      if (hasOptions) in.unpack(options);
      vHandle<Project> const project = myOpenProject(myParent(twin, "Project", id), twin.parent);
      vHandle<AttributeSet> set = m_backend->setFor(project, name, version);
      myOpen(twin, set, code == ClientCode::Update, name, version, className, subClass,
             hasOptions ? &options : nullptr);
      return;
    }
    case ClientCode::Close:
      myOpenSet(twin, id);
      myLetGo(twin);
      return;
    default:
      break;
  }
  AttributeSet& set = myOpenSet(twin, id);
  switch (code) {
    case ClientCode::GetNInstances:
      out.pack(static_cast<uint32_t>(set.getNInstances()));
      return;
    case ClientCode::GetName:
      out.pack(set.getName());
      return;
    case ClientCode::GetVersion:
      out.pack(static_cast<int32_t>(set.getVersion()));
      return;
    case ClientCode::GetClass:
      out.pack(set.getClass());
      return;
    case ClientCode::GetSubClass:
      out.pack(set.getSubClass());
      return;
    case ClientCode::GetKeyList:
      out.pack(set.getKeyList());
      return;
    case ClientCode::GetAttributeList: {
      std::list<Attribute> const list = set.getAttributeList();
      pack(out, list.begin(), list.end());
      return;
    }
    case ClientCode::GetAttributeListMatching: {
      vUCString const text = readString(in);
      AttributeMatch::AttributeMatchType const match = readMatch(in);
      std::list<Attribute> const list = set.getAttributeList(text, match);
      pack(out, list.begin(), list.end());
      return;
    }
    case ClientCode::GetAttribute:
      out.pack(set.getAttribute(vUCString(readString(in))));
      return;
    case ClientCode::HasAttribute:
      out.packBool(set.hasAttribute(vUCString(readString(in))));
      return;
    case ClientCode::SetAttributeClass: {
      vUCString const name = readString(in);
      vUCString const className = readString(in);
      set.setAttributeClass(name, className);
      return;
    }
    case ClientCode::GetUnique: {
      Attribute attribute = definitionOf(set, in);
      set.getUnique(attribute, readOrder(in));
      out.pack(attribute);
      return;
    }
    case ClientCode::GetGroupsAndSizes: {
      Attribute attribute = definitionOf(set, in);
      std::vector<unsigned int> sizes;
      set.getGroupsAndSizes(attribute, sizes, readOrder(in));
      out.pack(attribute);
      pack(out, sizes.begin(), sizes.end());
      return;
    }
    case ClientCode::GetProperties:
      set.packProperties(out);
      return;
    case ClientCode::SendProperties:
      set.clearProperties();
      set.unpackProperties(in);
      return;
    default:
      break;
  }
  if (code >= ClientCode::ReadRange && code <= ClientCode::ReadKeys)
    mySetReadMessage(twin, code, in, out);
  else
    mySetWriteMessage(twin, code, in, out);
  (void)id;
}

void DataServerSession::mySetReadMessage(Twin& twin, int code, Packer& in, Packer& out) {
  AttributeSet const& set = *twin.set;
  Attribute attribute = definitionOf(set, in);
  switch (code) {
    case ClientCode::ReadRange: {
      uint32_t const first = readUInt(in);
      uint32_t const last = readUInt(in);
      set.read(attribute, first, last);
      break;
    }
    case ClientCode::ReadList:
      set.read(attribute, readInstances(in));
      break;
    case ClientCode::ReadGroups: {
      Attribute const selector(in);
      uint32_t const first = readUInt(in);
      uint32_t const last = readUInt(in);
      set.read(attribute, selector, first, last);
      break;
    }
    default: {
      KeyList keys;
      keys.unpack(in);
      set.read(attribute, keys);
      break;
    }
  }
  out.pack(attribute);
}

void DataServerSession::mySetWriteMessage(Twin& twin, int code, Packer& in, Packer&) {
  AttributeSet& set = *twin.set;
  switch (code) {
    case ClientCode::AddAttribute:
      set.addAttribute(Attribute(in));
      return;
    case ClientCode::AddInstances:
      set.addInstances(readUInt(in));
      return;
    case ClientCode::WriteRange: {
      uint32_t const first = readUInt(in);
      uint32_t const last = readUInt(in);
      set.write(Attribute(in), first, last);
      return;
    }
    case ClientCode::WriteList: {
      std::vector<unsigned int> const list = readInstances(in);
      set.write(Attribute(in), list);
      return;
    }
    case ClientCode::WriteGroups: {
      Attribute const data(in);
      Attribute const selector(in);
      uint32_t const first = readUInt(in);
      uint32_t const last = readUInt(in);
      set.write(data, selector, first, last);
      return;
    }
    case ClientCode::WriteKeys: {
      Attribute const data(in);
      KeyList keys;
      keys.unpack(in);
      set.write(data, keys);
      return;
    }
    default:
      Message::fatal("DataServer", 0, "Unknown message code %d for an AttributeSet.", code);
  }
}
