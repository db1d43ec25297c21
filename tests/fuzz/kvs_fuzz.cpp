// Fuzz target for the kvs wire decoders of both sides.
//
// The first input byte chooses the side:
//   0  the rest is a parameter block: it decodes or is refused, and a block
//      that decodes encodes and decodes again to the same parameters;
//   1  the library: the rest is a table record (its first 512 bytes) and
//      the stream that follows it, received as a selected table;
//   2  the daemon: the rest is what a client sends on one connection;
//   3  the library: the rest is a saved object tree ("Kvs.dmp" of a batch
//      step), read back and saved again.
// A crash, a hang, or a parameter that does not come back is a finding.

#include <sys/socket.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <thread>
#include <vector>

#include "database/kvs/Kvs.h"
#include "database/kvs/KvsObject.h"
#include "database/kvs/KvsParams.h"
#include "database/kvsd/KvsdServer.h"

namespace kvs {
void KvsSetRootObject(KvsRootRec* r);
}

namespace {

// Writes the input into one end of a socket pair and closes it, while a
// thread drains what the other side answers.
struct Pipe {
  int fd[2] = {-1, -1};
  std::thread drain;
  Pipe(const std::uint8_t* data, std::size_t size) {
    socketpair(AF_UNIX, SOCK_STREAM, 0, fd);
    drain = std::thread([this, data, size] {
      std::size_t at = 0;
      while (at < size) {
        ssize_t w = send(fd[0], data + at, size - at, MSG_NOSIGNAL);
        if (w <= 0) break;
        at += static_cast<std::size_t>(w);
      }
      shutdown(fd[0], SHUT_WR);
      char sink[4096];
      while (read(fd[0], sink, sizeof sink) > 0) {
      }
    });
  }
  void finish() {
    shutdown(fd[1], SHUT_RDWR);
    drain.join();
    close(fd[0]);
    close(fd[1]);
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  kvs::KvsPrintf = [](const char*) {};
  std::uint8_t side = data[0] % 4;
  ++data, --size;
  if (side == 0) {
    std::vector<kvs::KvsParam> params, again;
    if (kvs::KvsParamsDecode(data, size, params) >= 0) {
      std::vector<unsigned char> b = kvs::KvsParamsEncode(params);
      if (kvs::KvsParamsDecode(b.data(), b.size(), again) != static_cast<long>(b.size()) ||
          kvs::KvsParamsEncode(again) != b)
        std::abort();
    }
  } else if (side == 1) {
    auto* s = new kvs::KvsSessionRec;
    auto* t = new kvs::KvsTableRec;
    t->parent = s;
    s->children.push_back(t);
    std::size_t head = size < kvs::KvsMsgSize ? size : kvs::KvsMsgSize;
    std::memcpy(s->msg.b, data, head);
    Pipe pipe(data + head, size - head);
    s->fd = pipe.fd[1];
    kvs::KvsTableReceive(t, s);
    s->fd = -1;
    pipe.finish();
    kvs::KvsDestroy(s);
  } else if (side == 3) {
    static std::string dir = [] {
      char tmpl[] = "/tmp/kvs_fuzzXXXXXX";
      return std::string(mkdtemp(tmpl));
    }();
    std::string path = dir + "/Kvs.dmp";
    if (FILE* f = std::fopen(path.c_str(), "wb")) {
      std::fwrite(data, 1, size, f);
      std::fclose(f);
    }
    auto* r = new kvs::KvsRootRec;
    r->workdir = dir;
    kvs::KvsSetRootObject(r);
    if (kvs::KvsLoad(path.c_str()) == 0) kvs::KvsDump((dir + "/again.dmp").c_str());
    // Files the input names are never removed.
    kvs::kvsKeepSpool = true;
    kvs::KvsDestroy(r);
    kvs::kvsKeepSpool = false;
    kvs::KvsSetRootObject(nullptr);
  } else {
    static std::string dir = [] {
      char tmpl[] = "/tmp/kvsd_fuzzXXXXXX";
      return std::string(mkdtemp(tmpl));
    }();
    kvsd::KvsdServer server(dir);
    Pipe pipe(data, size);
    server.handle(pipe.fd[1]);
    pipe.finish();
    std::error_code ec;
    for (auto& e : std::filesystem::directory_iterator(dir, ec)) std::filesystem::remove_all(e.path(), ec);
  }
  return 0;
}
