#include "project/JITProjectDecorator.h"

#include "foundation/Message.h"

JITProjectDecorator::JITProjectDecorator(vHandle<Project> const& project)
    : Project(project->getProjectCatalog()), m_project(project), m_openRequested(false), m_reallyOpen(false) {}

JITProjectDecorator::~JITProjectDecorator() {}

void JITProjectDecorator::open(vLCString const& name) {
  m_name = name;
  m_openRequested = true;
  m_reallyOpen = false;
}

void JITProjectDecorator::close() {
  m_openRequested = false;
  m_name.erase();
  if (m_reallyOpen) {
    m_reallyOpen = false;
    m_project->close();
  }
}

vLCString JITProjectDecorator::getName() const { return m_name; }

bool JITProjectDecorator::isOpen() const { return m_openRequested; }

bool JITProjectDecorator::isReallyOpen() const { return m_reallyOpen; }

void JITProjectDecorator::makeSureIsOpen() { myMakeSureIsOpen(); }

void JITProjectDecorator::myMakeSureIsOpen() const {
  if (!m_openRequested)
    Message::fatal("JITProjectDecorator::makeSureIsOpen", 0,
                   "Cannot open the project since the open method has not been called so we don't know what to open!");
  if (!m_reallyOpen) {
    m_project->open(m_name);
    m_reallyOpen = true;
  }
}

ProjectType::PROJECT_TYPE JITProjectDecorator::getProjectType() const { return m_project->getProjectType(); }

vHandle<ProjectCatalog> JITProjectDecorator::getProjectCatalog() { return m_project->getProjectCatalog(); }

vString JITProjectDecorator::getProjectHost() const { return m_project->getProjectHost(); }

vString JITProjectDecorator::getServerHost() const { return m_project->getServerHost(); }

vHandle<Project::StoreList> JITProjectDecorator::getStoreList(vLCString const& storeClass, vLCString const& subClass) {
  makeSureIsOpen();
  return m_project->getStoreList(storeClass, subClass);
}

vHandle<Project::StoreDetailsList> JITProjectDecorator::getStoreDetailsList(vLCString const& storeClass,
                                                                             vLCString const& subClass) {
  makeSureIsOpen();
  return m_project->getStoreDetailsList(storeClass, subClass);
}

vHandle<Project::StoreDetailsList> JITProjectDecorator::getLightStoreDetailsList(vLCString const& storeClass,
                                                                                  vLCString const& subClass) {
  makeSureIsOpen();
  return m_project->getLightStoreDetailsList(storeClass, subClass);
}

bool JITProjectDecorator::deleteStore(vLCString const& name, int version, vLCString const& storeClass,
                                      vLCString const& subClass) {
  makeSureIsOpen();
  return m_project->deleteStore(name, version, storeClass, subClass);
}

bool JITProjectDecorator::purgeStore(int keep, vLCString const& name, vLCString const& storeClass,
                                     vLCString const& subClass) {
  makeSureIsOpen();
  return m_project->purgeStore(keep, name, storeClass, subClass);
}

bool JITProjectDecorator::hasStore(vLCString const& name, int version) {
  makeSureIsOpen();
  return m_project->hasStore(name, version);
}

StoreDetails JITProjectDecorator::getStoreDetails(vLCString const& name, int version) const {
  myMakeSureIsOpen();
  return m_project->getStoreDetails(name, version);
}

Project::AttributeSetDetailsList JITProjectDecorator::getAttributeSetDetails(vLCString const& name, int version) {
  makeSureIsOpen();
  return m_project->getAttributeSetDetails(name, version);
}
