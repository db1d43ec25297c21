#include "project/AttributeSet.h"

#include "foundation/Message.h"
#include "project/Project.h"

AttributeSet::AttributeSet() {}

AttributeSet::AttributeSet(vHandle<Project> const& project) : m_project(project) {}

AttributeSet::~AttributeSet() {}

void AttributeSet::getKeyList(KeyList& keys) const { keys = getKeyList(); }

void AttributeSet::getAttributeList(std::list<Attribute>& attributes) const { attributes = getAttributeList(); }

bool AttributeSet::prepareBuffer(AttributeSetBuffer&) const { return false; }

// Refused rather than left empty: a caller must never take an untouched
// buffer for data read.
void AttributeSet::readBufferRange(AttributeSetBuffer&, unsigned int first, unsigned int last) const {
  Message::fatal("AttributeSet::readBufferRange", 0,
                 "Reading instances %u-%u into an AttributeSetBuffer is not available in this build.", first, last);
}
