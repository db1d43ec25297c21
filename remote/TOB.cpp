#include "remote/TOB.h"

#include <algorithm>

#include "foundation/Message.h"

TOB::TOB(vString const& type, TOB* parent) : m_type(type), m_parent(nullptr) {
  if (parent != nullptr) parent->addChild(this);
}

TOB::~TOB() {
  if (m_parent != nullptr) m_parent->removeChild(this);
  if (!m_children.empty()) {
    Message::info("TOB::~TOB", 0, "Deleted TOB object '%s' while it has children", m_type.c_str());
    // The children may take themselves out as they are told: walk a copy.
    Children const orphans = m_children;
    m_children.clear();
    for (TOB* child : orphans) child->parentDied();
  }
}

void TOB::parentDied() { m_parent = nullptr; }

void TOB::addChild(TOB* child) {
  if (child == nullptr) return;
  m_children.push_back(child);
  child->m_parent = this;
}

void TOB::removeChild(TOB* child) {
  if (child == nullptr) return;
  Children::iterator const at = std::find(m_children.begin(), m_children.end(), child);
  if (at != m_children.end()) m_children.erase(at);
  child->m_parent = nullptr;
}

void TOB::insertChild(TOB* child, int n) {
  if (child == nullptr) return;
  if (n >= 0 && n < static_cast<int>(m_children.size()))
    m_children.insert(m_children.begin() + n, child);
  else
    m_children.push_back(child);
  child->m_parent = this;
}
