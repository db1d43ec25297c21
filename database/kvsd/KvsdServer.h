#pragma once
// The database daemon's side of the kvs protocol. Datasets are directories
// under the data directory (account/type/ident/version); each table is one
// file holding its table record, parameter block, and array records with
// their big-endian data, exactly as they travel. A table file appears only
// by rename once it is complete, so a transfer cut short leaves nothing.
// Each connection is served by its own thread.
#include <atomic>
#include <mutex>
#include <string>
#include <vector>

#include "database/kvs/KvsMsg.h"

namespace kvsd {

class KvsdServer {
 public:
  explicit KvsdServer(std::string dataDir);
  // Accepts connections on listenFd until it is closed.
  void serve(int listenFd);
  // Serves one connection until the peer ends the session or misbehaves.
  void handle(int fd);

 private:
  bool command(int fd, kvs::KvsMsg& req);
  bool store(int fd, const kvs::KvsMsg& req);
  bool select(int fd, const kvs::KvsMsg& req);
  bool listing(int fd, const kvs::KvsMsg& req);
  bool moveOrCopy(const kvs::KvsMsg& req, std::string& error);
  std::string datasetDir(const kvs::KvsMsg& req, std::size_t typeOff, std::size_t identOff,
                         std::size_t versionOff) const;

  std::string dir_;
  std::mutex mutex_;
  std::atomic<unsigned> seq_{0};
  // Replaced table files kept (as ".part" names, which a restart drops)
  // for the next stored table to write over, and the selects under way,
  // which may still be reading a replaced file: both under mutex_.
  std::vector<std::string> spares_;
  int readers_ = 0;
};

// Names become path components with anything but alphanumerics, "-" and
// "_" written as %XX, so no name can leave the data directory.
std::string KvsdEncodeName(const std::string& name);
std::string KvsdDecodeName(const std::string& enc);

}  // namespace kvsd
