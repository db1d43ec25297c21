#include "server/UnitTestStoreFile.h"

#include <fstream>

#include "foundation/Message.h"
#include "foundation/Packer.h"

void writeUnitTestStoreFile(InMemoryStore const& store, vString const& file) {
  Packer packer;
  packer.pack(store);
  unsigned char const* bytes = nullptr;
  int size = 0;
  packer.getBuffer(&bytes, size, 0);
  std::ofstream out(file.c_str(), std::ios::binary | std::ios::trunc);
  if (out) out.write(reinterpret_cast<char const*>(bytes), size);
  if (!out) Message::fatal("writeUnitTestStoreFile", 0, "Store file '%s' cannot be written.", file.c_str());
}
