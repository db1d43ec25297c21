#include "project/CapiProject.h"

#include <cstdlib>
#include <fstream>
#include <string>

#include "foundation/vUtl.h"
#include "project/ProjectDescription.h"

bool Capi::disableRondoDataServer() {
  static bool const disabled = [] {
    char const* value = std::getenv("CAPI_DISABLERONDODATASERVER");
    if (value == nullptr || *value == '\0') return false;
    vString text(value);
    return text.isInteger() && text.readi() != 0;
  }();
  return disabled;
}

bool Capi::haveCapiZon() { return true; }

namespace {

Capi::CapiZonServers& zonServers() {
  static Capi::CapiZonServers servers = {nullptr, nullptr};
  return servers;
}

}  // namespace

Capi::CapiZonServers Capi::registerCapiZonServers(CapiZonServers servers) {
  CapiZonServers previous = zonServers();
  zonServers() = servers;
  return previous;
}

vString Capi::getDefaultCapiZonServer() {
  return zonServers().defaultServer != nullptr ? zonServers().defaultServer() : vString();
}

void Capi::getCapiZonAvailableServers(std::list<vString>& servers) {
  if (zonServers().availableServers != nullptr) zonServers().availableServers(servers);
}

vString Capi::getDefaultProjectString() {
  vString home = vUtl::homeDirectory();
  std::string path(home.c_str());
  if (!path.empty() && path.back() != '/') path += '/';
  path += ".vproject";
  std::ifstream vproject(path.c_str());
  if (vproject) {
    std::string line;
    std::getline(vproject, line);
    return vString(line.c_str());
  }

  std::ifstream project(".project");
  if (project) {
    std::string word;
    project >> word;
    vString text(word.c_str());
    if (text.search(':') < 0) {
      vString prefixed("r::");
      prefixed += text;
      return prefixed;
    }
    return text;
  }
  return vString("r:::");
}

ProjectDescription Capi::getDefaultProjectName() {
  vString text = getDefaultProjectString();
  text.strip();
  if (text.isEmpty()) return ProjectDescription();
  ProjectDescription description(text);
  if (description.getProjectType() == ProjectType::NOTYPE) description.setDefaultProjectType();
  return description;
}
