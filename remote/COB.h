#ifndef REMOTE_COB_H
#define REMOTE_COB_H

// COB: the client side of a remote object. A COB is a TOB with an identity
// (its PortalID) on a COBPortal, through which it talks to its twin in the
// data server. A COB made under a parent joins the parent's portal at once;
// a root stays unconnected until setPortal. After a lost connection the
// portal makes every twin again (commsReinitialize) and each COB brings its
// twin back to its state in doCommsReinitialize.

#include "foundation/vHandle.h"
#include "remote/CommChan.h"
#include "remote/TOB.h"

class COBPortal;
class Packer;

class COB : public TOB {
 public:
  COB(vString const& type, COB* parent);
  ~COB() override;

  virtual bool serverLost();
  // A message for the twin, no reply.
  virtual CommChan::StatusType send(Packer& packer) const;
  // A request to the twin; its reply comes back in packer.
  virtual CommChan::StatusType sendAndReceive(Packer& packer) const;
  virtual void doCommsReinitialize() = 0;

  int getID() const { return m_id; }
  int getParentID() const { return m_parentId; }
  vHandle<COBPortal> const& getPortal() const { return m_portal; }
  // Connects a root to a portal; raises for one that has an ID already.
  void setPortal(vHandle<COBPortal>& portal);
  // Makes the twin again with the same IDs, then restores its state.
  void commsReinitialize();

 private:
  vHandle<COBPortal> m_portal;
  int m_id;
  int m_parentId;
};

#endif
