#include "filestore/segy/SegyFormatBase.h"

#include "filestore/segy/SegyKernels.h"
#include "foundation/Message.h"

namespace {

bool is(vUCString const& name, char const* text) { return name == vUCString(text); }

}  // namespace

SegyFormatBase::SegyFormatBase() {}

SegyFormatBase::~SegyFormatBase() {}

std::list<Attribute> SegyFormatBase::getAttributeList() const {
  if (m_binaryHeader.isEmpty())
    Message::fatal("SegyFormatBase::getAttributeList", 0, "A SegyBinaryHeader is required.");
  return doGetAttributeList();
}

int SegyFormatBase::getAttributeOffset(vUCString const& name) const { return doGetAttributeOffset(name); }

DataType SegyFormatBase::getSegyType(vUCString const& name) const { return doGetSegyType(name); }

Attribute SegyFormatBase::myTraceDefinition() const {
  // A negative count in the header is read as the unsigned word it is, as
  // for the trace length.
  uint16_t const nSamples = static_cast<uint16_t>(m_binaryHeader->getNumberSamplePerTrace());
  return Attribute("TRACE", "TRACE", vFLOAT32, static_cast<int>(nSamples),
                   m_binaryHeader->getSampleInterval() / 1000.0);
}

std::list<Attribute> SegyFormatBase::doGetAttributeList() const {
  std::list<Attribute> list;
  list.push_back(myTraceDefinition());
  list.push_back(Attribute("CMP", "CMP", vINT32));
  list.push_back(Attribute("SEGY.REEL.COUNT", "SEGY.REEL.COUNT", vINT32));
  return list;
}

int SegyFormatBase::doGetAttributeOffset(vUCString const& name) const {
  if (is(name, "SEGY.REEL.COUNT")) return 4;
  if (is(name, "CMP")) return 20;
  if (is(name, "TRACE")) return SegyKernels::TRACE_HEADER_LENGTH;
  Message::fatal("SegyFormatBase::doGetAttributeOffset", 0, "Attribute %s is not in this file.", name.c_str());
}

DataType SegyFormatBase::doGetSegyType(vUCString const& name) const {
  if (is(name, "SEGY.REEL.COUNT") || is(name, "CMP")) return vINT32;
  if (is(name, "TRACE")) return vFLOAT32;
  Message::fatal("SegyFormatBase::doGetSegyType", 0, "Attribute %s is not in this file.", name.c_str());
}
