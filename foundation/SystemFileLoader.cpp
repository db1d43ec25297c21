#include "foundation/SystemFileLoader.h"

#include <sys/stat.h>

#include <fstream>

#include "foundation/Message.h"
#include "foundation/vUtl.h"

namespace {

bool isReadableFile(vString const& path) {
  struct stat st;
  if (path.isEmpty() || ::stat(path.c_str(), &st) != 0) return false;
  return !S_ISDIR(st.st_mode);
}

}  // namespace

SystemFileLoader::SystemFileLoader() {}

SystemFileLoader::~SystemFileLoader() {}

bool SystemFileLoader::find(vString const& file, vString& path) {
  if (isReadableFile(file)) {
    path = file;
    return true;
  }
  if (!file.isEmpty() && file[0] != '/') {
    vString inRelease = vUtl::systemFilesDirectory();
    inRelease += file;
    if (isReadableFile(inRelease)) {
      path = inRelease;
      return true;
    }
  }
  path.erase();
  return false;
}

void SystemFileLoader::load(vString const& file, vString const& text) {
  vString path;
  std::ifstream in;
  if (find(file, path)) in.open(path.c_str(), std::ios::in | std::ios::binary);
  if (!in.is_open())
    Message::fatal("SystemFileLoader::myOpen()", 0, "File %s was not found in ./ or %s.", file.c_str(),
                   vUtl::systemFilesDirectory().c_str());
  m_path = path;
  doLoad(in, text);
}
