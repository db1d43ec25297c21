#include "remote/COB.h"

#include "foundation/Message.h"
#include "remote/COBPortal.h"

COB::COB(vString const& type, COB* parent) : TOB(type, parent), m_portal(nullptr), m_id(0), m_parentId(0) {
  if (parent == nullptr) return;
  m_portal = parent->m_portal;
  m_parentId = parent->m_id;
  if (m_portal.pointer() == nullptr) return;
  m_id = m_portal->getNewID(*this);
  try {
    m_portal->create(m_id, getTOBType(), m_parentId);
  } catch (...) {
    // No object will be there to drop the ID: the table must not keep it.
    m_portal->forgetID(m_id);
    throw;
  }
}

COB::~COB() {
  if (m_portal.pointer() == nullptr || m_id == 0) return;
  try {
    m_portal->dropID(m_id);
  } catch (...) {
    // A destructor cannot pass the failure on; dropID has reported it.
  }
}

bool COB::serverLost() { return true; }

CommChan::StatusType COB::send(Packer& packer) const { return m_portal->send(m_id, packer); }

CommChan::StatusType COB::sendAndReceive(Packer& packer) const { return m_portal->sendAndReceive(m_id, packer); }

void COB::setPortal(vHandle<COBPortal>& portal) {
  if (m_id != 0)
    Message::fatal("COB::setPortal", 0, "COB Instance '%s' was assigned a COBPortal during construction.",
                   getTOBType().c_str());
  m_portal = portal;
  m_id = m_portal->getNewID(*this);
  m_portal->create(m_id, getTOBType(), m_parentId);
}

void COB::commsReinitialize() {
  m_portal->create(m_id, getTOBType(), m_parentId);
  doCommsReinitialize();
}
