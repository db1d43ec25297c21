#include "tools/InMemoryStoreFile.h"

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

#include "filestore/memory/InMemoryStore.h"
#include "foundation/Message.h"
#include "foundation/Packer.h"
#include "project/Project.h"

namespace {

// The message header (magic, version, length, tag), then the frame mark and
// the frame's 16-bit magic.
std::size_t const kHeader = 16;
int32_t const kMessageMagic = 40506070;
unsigned char const kFrameMark = 0x7F;

uint32_t swapped32(uint32_t v) {
  return (v >> 24) | ((v >> 8) & 0xFF00u) | ((v << 8) & 0xFF0000u) | (v << 24);
}

}  // namespace

bool InMemoryStoreFile::recognise(std::string const& path) {
  std::ifstream in(path, std::ios::binary);
  unsigned char head[kHeader + 3];
  if (!in.read(reinterpret_cast<char*>(head), sizeof head)) return false;
  uint32_t magic = 0;
  std::memcpy(&magic, head, 4);
  bool swap = false;
  if (magic == swapped32(static_cast<uint32_t>(kMessageMagic)))
    swap = true;
  else if (magic != static_cast<uint32_t>(kMessageMagic))
    return false;
  if (head[kHeader] != kFrameMark) return false;
  uint16_t frame = 0;
  std::memcpy(&frame, head + kHeader + 1, 2);
  if (swap) frame = static_cast<uint16_t>((frame >> 8) | (frame << 8));
  return frame == static_cast<uint16_t>(InMemoryStore::Magic);
}

vHandle<Store> InMemoryStoreFile::load(std::string const& path) {
  char const* const label = "InMemoryStoreFile::load";
  std::ifstream in(path, std::ios::binary);
  if (!in) Message::fatal(label, 0, "Store file '%s' cannot be read.", path.c_str());
  std::vector<unsigned char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (bytes.empty()) Message::fatal(label, 0, "Store file '%s' is empty.", path.c_str());
  Packer packer(static_cast<int>(bytes.size()), static_cast<unsigned char const*>(bytes.data()));
  InMemoryStore* loaded = new InMemoryStore(vHandle<Project>());
  vHandle<Store> store(loaded);
  packer.unpack(*loaded);
  return store;
}
