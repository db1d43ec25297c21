#include "database/kvs/KvsPipe.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "database/kvs/KvsSocket.h"

namespace kvs {

namespace {

// Below this a thread costs more than it saves.
constexpr long kOverlapBytes = 1L << 20;

struct Block {
  std::size_t part = 0;
  long size = 0;
  std::vector<unsigned char> data = std::vector<unsigned char>(KvsSkChunk);
};

}  // namespace

KvsPipeResult KvsPipeFrames(int fd, const std::vector<long>& bytes,
                            const std::function<bool(std::size_t, unsigned char*, long)>& take) {
  KvsPipeResult result;
  long total = 0;
  for (long b : bytes) total += b;
  if (total <= kOverlapBytes) {
    Block b;
    for (std::size_t k = 0; k < bytes.size(); ++k)
      for (long left = bytes[k]; left > 0;) {
        long got = KvsSkRead(fd, b.data.data(), b.data.size());
        if (got < 1 || got > left) return KvsPipeResult{KvsPipeLost, k};
        left -= got;
        if (!take(k, b.data.data(), got)) return KvsPipeResult{KvsPipeFailed, k};
      }
    return result;
  }
  std::vector<Block> pool(4);
  std::deque<Block*> ready, spare;
  for (Block& b : pool) spare.push_back(&b);
  std::mutex m;
  std::condition_variable cv;
  bool done = false, failed = false;
  std::thread writer([&] {
    std::unique_lock<std::mutex> lock(m);
    for (;;) {
      cv.wait(lock, [&] { return done || !ready.empty(); });
      if (ready.empty()) return;
      Block* b = ready.front();
      ready.pop_front();
      lock.unlock();
      bool ok = failed || take(b->part, b->data.data(), b->size);
      lock.lock();
      if (!ok && !failed) failed = true, result = KvsPipeResult{KvsPipeFailed, b->part};
      spare.push_back(b);
      cv.notify_all();
    }
  });
  KvsPipeResult lost;
  for (std::size_t k = 0; k < bytes.size() && lost.status == KvsPipeOk; ++k)
    for (long left = bytes[k]; left > 0;) {
      Block* b;
      {
        std::unique_lock<std::mutex> lock(m);
        cv.wait(lock, [&] { return failed || !spare.empty(); });
        if (failed) break;
        b = spare.front();
        spare.pop_front();
      }
      long got = KvsSkRead(fd, b->data.data(), b->data.size());
      if (got < 1 || got > left) {
        lost = KvsPipeResult{KvsPipeLost, k};
        break;
      }
      left -= got;
      b->part = k, b->size = got;
      std::lock_guard<std::mutex> lock(m);
      ready.push_back(b);
      cv.notify_all();
    }
  {
    std::lock_guard<std::mutex> lock(m);
    done = true;
    cv.notify_all();
  }
  writer.join();
  return result.status != KvsPipeOk ? result : lost;
}

}  // namespace kvs
