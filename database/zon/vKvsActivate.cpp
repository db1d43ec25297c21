#include "database/zon/vKvsActivate.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "database/kvs/Kvs.h"
#include "database/zon/vKvsProject.h"
#include "foundation/Message.h"
#include "foundation/vUtl.h"

bool vKvsActivate::s_first = true;
int vKvsActivate::s_current = -1;
int vKvsActivate::s_counter = 0;

namespace {

// The library reports through one callback, each text led by its severity.
// Success reports and the chatter of routine version handling would only
// bury what matters, so they are dropped.
void local_kvsMessage(char const* text) {
  if (text == nullptr) return;
  char const* const label = "CapiZon";
  if (std::strncmp(text, "%I", 2) == 0) {
    if (std::strstr(text, "successfully") || std::strstr(text, "No data selected in database")) return;
    Message::info(label, 0, "%s", text + 2);
  } else if (std::strncmp(text, "%W", 2) == 0) {
    Message::error(label, 0, "%s", text + 2);
  } else if (std::strncmp(text, "%E", 2) == 0) {
    if (std::strstr(text, "Not existing version")) return;
    Message::error(label, 0, "%s", text + 2);
  } else {
    if (std::strstr(text, "Deleting version : ")) return;
    Message::error(label, 0, "%s", text);
  }
}

}  // namespace

void vKvsActivate::project(vKvsProject& project) {
  if (s_first) {
    kvs::KvsPrintf = &local_kvsMessage;
    s_first = false;
  }
  if (project.getActivation() == s_current) return;

  if (s_current != -1) {
    s_current = -1;
    if (kvs::KvsExit() != 0)
      Message::fatal("vKvsActivate::project", 0, "Error closing down... %s", project.getProject().c_str());
  }

  vString home = vUtl::supportFilesDirectory();
  home += "CapiZon/";
  home += project.getServer();
  vString dict;
  if (!vUtl::getenv("KVSDICT", dict) || dict.isEmpty()) {
    dict = home;
    dict += "/KvsDict.bin";
    // A server folder without a dictionary of its own uses the one the
    // release ships beside the server folders.
    if (!std::filesystem::exists(dict.c_str())) {
      dict = vUtl::supportFilesDirectory();
      dict += "CapiZon/KvsDict.bin";
    }
    vUtl::putenv("KVSDICT", dict);
  }
  vUtl::putenv("KVSROOT", home);
  vUtl::putenv("KVSPROJ", project.getProject());

  kvs::kvsErrorString.clear();
  kvs::kvsErrorNo = 0;
  int rc = kvs::KvsInit();
  if (rc != 0 && rc != 6) {
    vString root;
    vUtl::getenv("KVSROOT", root);
    Message::fatal("KvsActivate::project", 0,
                   "Unable to initialise KVS:  Server='%s'  Project='%s'  error=%d '%s'  KVSROOT='%s'",
                   project.getServer().c_str(), project.getProject().c_str(), rc, kvs::kvsErrorString.c_str(),
                   root.c_str());
  }
  project.setActivation(++s_counter);
  s_current = project.getActivation();
}

void vKvsActivate::deactivate() {
  if (s_current == -1) return;
  s_current = -1;
  kvs::KvsExit();
}
