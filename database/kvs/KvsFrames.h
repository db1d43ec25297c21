#pragma once
// Column data read off a connection frame by frame and handed on, the
// same way on both ends. (A second thread writing while the next frames
// came in was tried: it cost more processor time than it saved in elapsed
// time, on a machine whose cores were all in use.)
#include <cstddef>
#include <functional>
#include <vector>

namespace kvs {

enum KvsFramesStatus { KvsFramesOk = 0, KvsFramesLost = 1, KvsFramesFailed = 2 };

struct KvsFramesResult {
  KvsFramesStatus status = KvsFramesOk;
  std::size_t part = 0;  // the part that failed
};

// Reads frames from fd, bytes[k] payload bytes for part k in turn, and
// hands each frame, in order, to take(k, data, n); take may change the
// bytes in place. A frame that runs past its part, or a closed or short
// connection, gives KvsFramesLost; a take returning false gives
// KvsFramesFailed and no more is read.
KvsFramesResult KvsReadFrames(int fd, const std::vector<long>& bytes,
                              const std::function<bool(std::size_t, unsigned char*, long)>& take);

}  // namespace kvs
