#include "database/kvs/KvsFrames.h"

#include "database/kvs/KvsSocket.h"

namespace kvs {

KvsFramesResult KvsReadFrames(int fd, const std::vector<long>& bytes,
                              const std::function<bool(std::size_t, unsigned char*, long)>& take) {
  std::vector<unsigned char> block(KvsSkChunk);
  for (std::size_t k = 0; k < bytes.size(); ++k)
    for (long left = bytes[k]; left > 0;) {
      long got = KvsSkRead(fd, block.data(), block.size());
      if (got < 1 || got > left) return KvsFramesResult{KvsFramesLost, k};
      left -= got;
      if (!take(k, block.data(), got)) return KvsFramesResult{KvsFramesFailed, k};
    }
  return KvsFramesResult{};
}

}  // namespace kvs
