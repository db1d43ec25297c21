#include "database/kvsd/KvsdServer.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <thread>
#include <vector>

#include "database/kvs/KvsParams.h"
#include "database/kvs/KvsFrames.h"
#include "database/kvs/KvsSocket.h"

namespace fs = std::filesystem;
using kvs::KvsMsg;

namespace kvsd {

namespace {

constexpr std::size_t kMaxFrame = kvs::KvsSkChunk;

void reply(int fd, const KvsMsg& req, int status, const std::string& text, char object = 0) {
  KvsMsg r = req;
  r.b[kvs::KvsMsgRequest] = 0;
  r.b[kvs::KvsMsgStatus] = static_cast<unsigned char>(status);
  if (object) r.b[kvs::KvsMsgObject] = static_cast<unsigned char>(object);
  r.setText(kvs::KvsMsgPid, 8, std::to_string(getpid()));
  r.setText(kvs::KvsMsgText, 128, text);
  kvs::KvsSkWrite(fd, r.b, sizeof r.b);
}

bool sendChunks(int fd, const unsigned char* p, std::size_t n) {
  do {
    std::size_t piece = std::min(n, kMaxFrame);
    if (kvs::KvsSkWrite(fd, p, piece) < 0) return false;
    p += piece;
    n -= piece;
  } while (n > 0);
  return true;
}

// A frame whose payload comes from a file: the head is held back until
// the kernel moves the file's pages into the socket, with no copy through
// this process.
bool sendFileChunks(int fd, int file, off_t at, std::size_t n) {
  while (n > 0) {
    std::size_t piece = std::min(n, kMaxFrame);
    unsigned char head[kvs::KvsSkHead];
    kvs::KvsSkEncodeHead(head, static_cast<std::uint32_t>(piece), static_cast<std::uint32_t>(getpid()));
    for (std::size_t put = 0; put < sizeof head;) {
      ssize_t w = ::send(fd, head + put, sizeof head - put, MSG_NOSIGNAL | MSG_MORE);
      if (w < 0 && errno == EINTR) continue;
      if (w < 1) return false;
      put += static_cast<std::size_t>(w);
    }
    for (std::size_t left = piece; left > 0;) {
      ssize_t w = ::sendfile(fd, file, &at, left);
      if (w < 0 && errno == EINTR) continue;
      if (w < 1) return false;
      left -= static_cast<std::size_t>(w);
    }
    n -= piece;
  }
  return true;
}

bool writeAll(int file, const unsigned char* p, std::size_t n) {
  while (n > 0) {
    ssize_t w = ::write(file, p, n);
    if (w < 0 && errno == EINTR) continue;
    if (w < 1) return false;
    p += w;
    n -= static_cast<std::size_t>(w);
  }
  return true;
}

}  // namespace

std::string KvsdEncodeName(const std::string& name) {
  std::string out;
  for (unsigned char c : name) {
    if (std::isalnum(c) || c == '-' || c == '_') {
      out += static_cast<char>(c);
    } else {
      char t[4];
      std::snprintf(t, sizeof t, "%%%02X", c);
      out += t;
    }
  }
  return out.empty() ? "%" : out;
}

std::string KvsdDecodeName(const std::string& enc) {
  if (enc == "%") return "";
  std::string out;
  for (std::size_t i = 0; i < enc.size(); ++i) {
    if (enc[i] == '%' && i + 2 < enc.size()) {
      out += static_cast<char>(std::strtol(enc.substr(i + 1, 2).c_str(), nullptr, 16));
      i += 2;
    } else {
      out += enc[i];
    }
  }
  return out;
}

KvsdServer::KvsdServer(std::string dataDir) : dir_(std::move(dataDir)) {
  fs::create_directories(dir_);
  // Tables whose transfer a previous run never finished.
  std::error_code ec;
  std::vector<fs::path> stale;
  for (auto it = fs::recursive_directory_iterator(dir_, ec); it != fs::recursive_directory_iterator();
       it.increment(ec))
    if (it->path().filename().string().rfind(".part", 0) == 0) stale.push_back(it->path());
  for (const fs::path& p : stale) fs::remove(p, ec);
}

void KvsdServer::serve(int listenFd) {
  for (;;) {
    int fd = ::accept(listenFd, nullptr, nullptr);
    if (fd < 0) {
      if (errno == EINTR || errno == ECONNABORTED) continue;
      return;
    }
    kvs::KvsSkAlloc(fd);
    int one = 1;
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    std::thread([this, fd] {
      handle(fd);
      ::close(fd);
    }).detach();
  }
}

void KvsdServer::handle(int fd) {
  KvsMsg req;
  std::vector<unsigned char> frame(kMaxFrame);
  for (;;) {
    long n = kvs::KvsSkRead(fd, frame.data(), frame.size());
    if (n < 0) return;  // closed, or a frame beyond any we accept: out of step
    if (n == static_cast<long>(kvs::KvsMsgSize)) std::memcpy(req.b, frame.data(), kvs::KvsMsgSize);
    if (n != static_cast<long>(kvs::KvsMsgSize) || req.b[kvs::KvsMsgRequest] != 1) {
      KvsMsg bad;
      reply(fd, bad, 1, "Bad command record");
      continue;
    }
    if (!command(fd, req)) return;
  }
}

std::string KvsdServer::datasetDir(const KvsMsg& req, std::size_t typeOff, std::size_t identOff,
                                   std::size_t versionOff) const {
  return dir_ + "/" + KvsdEncodeName(req.text(kvs::KvsMsgAccount, 16)) + "/" +
         KvsdEncodeName(req.text(typeOff, 8)) + "/" + KvsdEncodeName(req.text(identOff, 16)) + "/" +
         KvsdEncodeName(req.text(versionOff, 16));
}

bool KvsdServer::command(int fd, KvsMsg& req) {
  std::error_code ec;
  std::string ds = datasetDir(req, 128, 144, 160);
  switch (req.command()) {
    case 'C': {
      KvsMsg r = req;
      std::string site = req.hdr1(4);
      r.setHdr1(4, site.substr(0, site.find(':')));
      r.setHdr2(0, "0");
      reply(fd, r, 0, "");
      return true;
    }
    case 'A': {
      KvsMsg r = req;
      r.setText(kvs::KvsMsgServer, 24, "local", 23);
      r.setText(kvs::KvsMsgBase, 16, "kvsd", 15);
      reply(fd, r, 0, "");
      return true;
    }
    case 'E':
      reply(fd, req, 0, "");
      return false;
    case 'P':
    case 'F':
      reply(fd, req, 0, "");
      return true;
    case 'T':
      reply(fd, req, fs::is_directory(ds, ec) ? 0 : 15, fs::is_directory(ds, ec) ? "" : "Dataset not found");
      return true;
    case 'D': {
      std::lock_guard<std::mutex> lock(mutex_);
      bool had = fs::remove_all(ds, ec) > 0;
      reply(fd, req, had ? 0 : 15, had ? "" : "Dataset not found");
      return true;
    }
    case 'm':
    case 'c': {
      std::string error;
      bool ok = moveOrCopy(req, error);
      reply(fd, req, ok ? 0 : 1, error);
      return true;
    }
    case 'S':
      return select(fd, req);
    case 'I':
    case 'R':
      return store(fd, req);
    case 'L':
    case 'l':
    case 'g':
      return listing(fd, req);
    default:
      reply(fd, req, 1, std::string("Unknown command ") + (req.command() ? req.command() : '?'));
      return true;
  }
}

bool KvsdServer::moveOrCopy(const KvsMsg& req, std::string& error) {
  std::lock_guard<std::mutex> lock(mutex_);
  std::string from = datasetDir(req, 128, 144, 160);
  KvsMsg to = req;
  if (!req.hdr2(1).empty()) to.setHdr1(1, req.hdr2(1));
  if (!req.hdr2(2).empty()) to.setHdr1(2, req.hdr2(2));
  std::string dest = datasetDir(to, 128, 144, 160);
  std::error_code ec;
  if (!fs::is_directory(from, ec)) return error = "Dataset not found", false;
  if (fs::exists(dest, ec) || dest == from) return error = "Dataset already exists", false;
  fs::create_directories(fs::path(dest).parent_path(), ec);
  if (req.command() == 'm') fs::rename(from, dest, ec);
  else fs::copy(from, dest, fs::copy_options::recursive, ec);
  if (ec) error = ec.message();
  return !ec;
}

bool KvsdServer::listing(int fd, const KvsMsg& req) {
  std::string text;
  std::error_code ec;
  std::set<std::string> lines;
  fs::path account = fs::path(dir_) / KvsdEncodeName(req.text(kvs::KvsMsgAccount, 16));
  if (req.command() == 'l') {
    // Project names are encoded and never start with "."; what does is
    // the daemon's own (spare files).
    for (auto& e : fs::directory_iterator(dir_, ec))
      if (e.path().filename().string()[0] != '.') lines.insert(KvsdDecodeName(e.path().filename()));
  } else {
    for (auto it = fs::recursive_directory_iterator(account, ec); it != fs::recursive_directory_iterator();
         it.increment(ec)) {
      if (it.depth() != 2) continue;
      std::string type = KvsdDecodeName(it->path().parent_path().parent_path().filename());
      std::string ident = KvsdDecodeName(it->path().parent_path().filename());
      std::string version = KvsdDecodeName(it->path().filename());
      struct stat st{};
      long created = ::stat(it->path().c_str(), &st) == 0 ? static_cast<long>(st.st_mtime) : 0;
      lines.insert(req.command() == 'g' ? ident : type + "\t" + ident + "\t" + version + "\t" + std::to_string(created));
    }
  }
  for (const std::string& l : lines) text += l + "\n";
  KvsMsg head = req;
  head.setNum(kvs::KvsMsgHdr2, static_cast<long>(text.size()));
  reply(fd, head, 0, "", req.command());
  if (!text.empty() && !sendChunks(fd, reinterpret_cast<const unsigned char*>(text.data()), text.size()))
    return false;
  reply(fd, req, 0, "", 'E');
  return true;
}

// Criteria blocks: 8 bytes domain, 8 bytes count, then the text. A domain
// other than "KVSOPEN" keeps only tables of that domain; a text other than
// empty or "*" keeps only the table of that name.
bool KvsdServer::select(int fd, const KvsMsg& req) {
  struct Criterion { std::string domain, name; };
  std::vector<Criterion> criteria;
  long count = req.num(kvs::KvsMsgHdr2);
  if (count < 0 || count > 1000) {
    reply(fd, req, 1, "Bad criteria count", 'E');
    return true;
  }
  std::vector<unsigned char> block(kMaxFrame);
  for (long k = 0; k < count; ++k) {
    long n = kvs::KvsSkRead(fd, block.data(), block.size());
    if (n < 16) return false;
    auto field = [&](std::size_t off, std::size_t size) {
      const char* c = reinterpret_cast<const char*>(block.data() + off);
      return std::string(c, strnlen(c, size));
    };
    criteria.push_back({field(0, 8), field(16, static_cast<std::size_t>(n) - 16)});
  }
  std::string ds = datasetDir(req, 128, 144, 160);
  std::vector<fs::path> tables;
  std::error_code ec;
  // While files are read here, no replaced file is kept for writing over.
  {
    std::lock_guard<std::mutex> lock(mutex_);
    ++readers_;
  }
  std::unique_ptr<KvsdServer, void (*)(KvsdServer*)> reading(this, [](KvsdServer* self) {
    std::lock_guard<std::mutex> lock(self->mutex_);
    --self->readers_;
  });
  for (auto& e : fs::directory_iterator(ds, ec))
    if (e.path().extension() == ".tab") tables.push_back(e.path());
  std::sort(tables.begin(), tables.end());
  for (const fs::path& t : tables) {
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> in(std::fopen(t.c_str(), "rb"), std::fclose);
    if (!in) continue;
    KvsMsg tr;
    unsigned char len[4];
    if (std::fread(tr.b, 1, kvs::KvsMsgSize, in.get()) != kvs::KvsMsgSize || std::fread(len, 1, 4, in.get()) != 4)
      continue;
    bool keep = true;
    for (const Criterion& c : criteria) {
      if (c.domain != "KVSOPEN" && !c.domain.empty() && c.domain != tr.text(176, 8)) keep = false;
      if (!c.name.empty() && c.name != "*" && c.name != tr.text(224, 32)) keep = false;
    }
    if (!keep) continue;
    // The table record, its parameter block, each array's record, then the data.
    std::uint32_t plen = kvs::KvsGetBE32(len);
    if (plen > block.size() || std::fread(block.data(), 1, plen, in.get()) != plen) return false;
    if (kvs::KvsSkWrite(fd, tr.b, kvs::KvsMsgSize) < 0 || kvs::KvsSkWrite(fd, block.data(), plen) < 0) return false;
    long arrays = tr.num(272);
    std::vector<std::size_t> totals;
    for (long a = 0; a < arrays; ++a) {
      KvsMsg ar;
      if (std::fread(ar.b, 1, kvs::KvsMsgSize, in.get()) != kvs::KvsMsgSize) return false;
      if (kvs::KvsSkWrite(fd, ar.b, kvs::KvsMsgSize) < 0) return false;
      totals.push_back(static_cast<std::size_t>(std::max(0L, ar.num(256))));
    }
    off_t at = std::ftell(in.get());
    for (std::size_t bytes : totals) {
      if (at < 0 || !sendFileChunks(fd, fileno(in.get()), at, bytes)) return false;
      at += static_cast<off_t>(bytes);
    }
  }
  reply(fd, req, 0, "", 'E');
  return true;
}

bool KvsdServer::store(int fd, const KvsMsg& req) {
  KvsMsg tr = req;
  long arrays = tr.num(272), rows = tr.num(288);
  std::string table = tr.text(224, 32);
  std::vector<unsigned char> buf(kMaxFrame);
  long plen = kvs::KvsSkRead(fd, buf.data(), buf.size());
  if (plen < 0) return false;
  std::vector<kvs::KvsParam> params;
  std::vector<unsigned char> paramBlock(buf.begin(), buf.begin() + plen);
  bool paramsOk = kvs::KvsParamsDecode(paramBlock.data(), paramBlock.size(), params) >= 0;
  std::vector<KvsMsg> heads;
  for (long a = 0; a < arrays && a < 1000; ++a) {
    KvsMsg h;
    if (kvs::KvsSkRead(fd, h.b, sizeof h.b) != static_cast<long>(kvs::KvsMsgSize)) return false;
    heads.push_back(h);
  }
  std::string error;
  if (tr.object() != 'T' || table.empty()) error = "Bad table record";
  else if (arrays < 0 || arrays > 1000 || rows < 0) error = "Bad table size";
  else if (!paramsOk) error = "Bad parameter block";
  for (const KvsMsg& h : heads)
    if (error.empty() && (h.object() != 'A' || h.num(288) < 0 || h.num(256) < 0)) error = "Invalid Array Header";
  std::string ds = datasetDir(tr, 128, 144, 160);
  fs::path file = fs::path(ds) / (KvsdEncodeName(table) + ".tab");
  std::error_code ec;
  if (error.empty() && req.command() == 'I' && fs::exists(file, ec)) error = "Table " + table + " already exists";
  if (!error.empty()) {
    reply(fd, req, 1, error);
    return true;
  }
  fs::create_directories(ds, ec);
  fs::path tmp = fs::path(ds) / (".part" + std::to_string(getpid()) + "_" + std::to_string(seq_++));
  // Writing over the pages of a file that is already there costs less
  // than growing a new one; the file is cut to length at the end.
  std::string spare;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!spares_.empty()) spare = spares_.back(), spares_.pop_back();
  }
  if (!spare.empty() && ::rename(spare.c_str(), tmp.c_str()) != 0) ::unlink(spare.c_str());
  int tfd = ::open(tmp.c_str(), O_RDWR | O_CREAT, 0660);
  std::FILE* out = tfd < 0 ? nullptr : ::fdopen(tfd, "r+b");
  if (tfd >= 0 && !out) ::close(tfd);
  if (!out) {
    reply(fd, req, 3, "Cannot write table " + table);
    return true;
  }
  reply(fd, req, 0, "");
  unsigned char len[4];
  kvs::KvsPutBE32(len, static_cast<std::uint32_t>(plen));
  tr.b[kvs::KvsMsgRequest] = 0;
  bool ok = std::fwrite(tr.b, 1, kvs::KvsMsgSize, out) == kvs::KvsMsgSize && std::fwrite(len, 1, 4, out) == 4 &&
            std::fwrite(paramBlock.data(), 1, paramBlock.size(), out) == paramBlock.size();
  for (std::size_t a = 0; ok && a < heads.size(); ++a)
    ok = std::fwrite(heads[a].b, 1, kvs::KvsMsgSize, out) == kvs::KvsMsgSize;
  // The records went through the stream's buffer; the column data go
  // straight from the frame buffer to the file, a frame per write.
  ok = std::fflush(out) == 0 && ok;
  // The column data go straight from the frame buffer to the file.
  std::vector<long> bytes;
  for (const KvsMsg& h : heads) bytes.push_back(h.num(256));
  if (ok)
    ok = kvs::KvsReadFrames(fd, bytes, [&](std::size_t, unsigned char* p, long n) {
           return writeAll(fileno(out), p, static_cast<std::size_t>(n));
         }).status == kvs::KvsFramesOk;
  off_t length = ::lseek(fileno(out), 0, SEEK_CUR);
  ok = ok && length >= 0 && ::ftruncate(fileno(out), length) == 0;
  std::fclose(out);
  if (!ok) {
    fs::remove(tmp, ec);
    return false;  // the stream is out of step or the peer has gone
  }
  {
    std::lock_guard<std::mutex> lock(mutex_);
    // The file replaced stays, under a second name, to be written over
    // next, unless a select may be reading it.
    if (readers_ == 0 && spares_.size() < 2 && fs::exists(file, ec)) {
      std::string name = dir_ + "/.partspare" + std::to_string(getpid()) + "_" + std::to_string(seq_++);
      if (::link(file.c_str(), name.c_str()) == 0) spares_.push_back(name);
    }
    fs::rename(tmp, file, ec);
  }
  reply(fd, req, ec ? 3 : 0, ec ? "Cannot store table " + table : "");
  return true;
}

}  // namespace kvsd
