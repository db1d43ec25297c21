#ifndef DATABASE_ZON_VKVSPROJECT_H
#define DATABASE_ZON_VKVSPROJECT_H

// vKvsProject: who one database session is for, a project on a server.
// vKvsActivate makes one of them the project that the Kvs library serves
// and stamps it with the activation number it got, so that the next request
// for the same project costs nothing.

#include "foundation/vString.h"

class vKvsProject {
 public:
  // A blank server means the database of this host's domain.
  vKvsProject(vString const& project, vString const& server);

  vString const& getProject() const { return m_project; }
  vString const& getServer() const { return m_server; }
  int getActivation() const { return m_activation; }
  void setActivation(int activation) { m_activation = activation; }

 private:
  vString m_project;
  vString m_server;
  int m_activation;
};

#endif
