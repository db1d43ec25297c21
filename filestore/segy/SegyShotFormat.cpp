#include "filestore/segy/SegyShotFormat.h"

#include "filestore/segy/SegyKernels.h"
#include "foundation/Message.h"

namespace {

struct Field {
  char const* name;
  int offset;
};

Field const kFields[] = {{"SEGY.REEL.COUNT", 4}, {"FFID", 8},          {"CHANNEL", 12},     {"SHOT.UNIQUE.ID", 16},
                         {"CMP", 20},             {"CMP_NUMBER", 24},   {"SHOT.RW.X", 72},   {"SHOT.RW.Y", 76},
                         {"RCVR.RW.X", 80},       {"RCVR.RW.Y", 84},    {"RCVR.LINE", 197},  {"RCVR.BIN", 201},
                         {"RCVR.UNIQUE.ID", 201}};

}  // namespace

SegyShotFormat::SegyShotFormat() {}

SegyShotFormat::~SegyShotFormat() {}

int SegyShotFormat::myHeaderOffset(vUCString const& name) {
  for (Field const& field : kFields)
    if (name == vUCString(field.name)) return field.offset;
  return -1;
}

std::list<Attribute> SegyShotFormat::doGetAttributeList() const {
  std::list<Attribute> list;
  list.push_back(myTraceDefinition());
  for (Field const& field : kFields) list.push_back(Attribute(field.name, field.name, vINT32));
  return list;
}

int SegyShotFormat::doGetAttributeOffset(vUCString const& name) const {
  if (name == vUCString("TRACE")) return SegyKernels::TRACE_HEADER_LENGTH;
  int const offset = myHeaderOffset(name);
  if (offset < 0)
    Message::fatal("SegyShotFormat::getAttrbiteOffset", 0, "Attribute %s is not in this file.", name.c_str());
  return offset;
}

DataType SegyShotFormat::doGetSegyType(vUCString const& name) const {
  if (name == vUCString("TRACE")) return vFLOAT32;
  if (myHeaderOffset(name) < 0)
    Message::fatal("SegyShotFormat::getSegyType", 0, "Attribute %s is not in this file.", name.c_str());
  return vINT32;
}
