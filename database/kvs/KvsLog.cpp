#include <cctype>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "database/kvs/KvsObject.h"

namespace kvs {

// A batch step's messages go to its listing file when it has one.
static void defaultPrintf(const char* text) {
  KvsRootRec* r = KvsRootObject();
  if (r && !r->logfile.empty()) {
    if (FILE* f = std::fopen(r->logfile.c_str(), "a")) {
      std::fprintf(f, "%s\n", text);
      std::fclose(f);
      return;
    }
  }
  std::fprintf(stderr, "%s\n", text);
}

void (*KvsPrintf)(const char* text) = defaultPrintf;
int kvsErrorNo = 0;
std::string kvsErrorString;
const unsigned int kvsNull[2] = {0xDEADBEEFu, 0};

int KvsError() { return kvsErrorNo; }
const char* KvsErrorString() { return kvsErrorString.c_str(); }

int _KvsLog(int code, const char* format, ...) {
  char text[1024];
  va_list ap;
  va_start(ap, format);
  std::vsnprintf(text, sizeof text, format, ap);
  va_end(ap);
  kvsErrorNo = code;
  kvsErrorString = text;
  if (KvsPrintf) KvsPrintf(text);
  return code;
}

// Resource files: lines "class.name: value" or "class*name: value".
namespace {
std::vector<std::string> resources;
std::size_t cursor = 0;
}  // namespace

const std::vector<std::string>& KvsRessourceLines() { return resources; }

int KvsLoadRessources(const char* path) {
  std::ifstream in(path);
  if (!in) return -1;
  resources.clear();
  cursor = 0;
  std::string line;
  while (resources.size() < 500 && std::getline(in, line)) {
    if (line.size() > 255) line.resize(255);
    if (line.empty() || static_cast<unsigned char>(line[0]) <= ' ' || line[0] == '#') continue;
    resources.push_back(line.substr(0, 79));
  }
  return static_cast<int>(resources.size());
}

const char* KvsParseRessources(const char* cls, const char* name) {
  static std::string value;
  if (!cls && !name) {
    cursor = 0;
    return nullptr;
  }
  std::string c = cls ? cls : "", n = name ? name : "";
  for (std::size_t k = 0; k < resources.size(); ++k) {
    const std::string& l = resources[(cursor + k) % resources.size()];
    std::size_t sep = l.find_first_of(".*"), colon = l.find(':');
    if (sep == std::string::npos || colon == std::string::npos || colon < sep) continue;
    std::string lc = l.substr(0, sep), ln = l.substr(sep + 1, colon - sep - 1);
    while (!ln.empty() && ln.back() == ' ') ln.pop_back();
    if ((!lc.empty() && lc != c) || ln != n) continue;
    cursor = (cursor + k + 1) % resources.size();
    value = KvsExpendRessourcesBuf(l.c_str() + colon + 1);
    return value.c_str();
  }
  return nullptr;
}

std::string KvsExpendRessourcesBuf(const char* in) {
  std::string out;
  const char* p = in;
  while (*p == ' ' || *p == '\t') ++p;
  while (*p && out.size() < 254) {
    if (*p != '$') {
      out += *p++;
      continue;
    }
    std::string var;
    if (p[1] == '{') {
      const char* end = std::strchr(p + 2, '}');
      if (!end) {
        out += *p++;
        continue;
      }
      var.assign(p + 2, end);
      p = end + 1;
    } else {
      ++p;
      while (std::isalnum(static_cast<unsigned char>(*p)) || *p == '_') var += *p++;
    }
    if (const char* v = std::getenv(var.c_str())) out += v;
  }
  if (out.size() > 254) out.resize(254);
  return out;
}

std::string KvsFindRessourcesFile(const std::string& dir, const char* name) {
  std::string path = dir;
  for (;;) {
    std::string candidate = path + "/" + name;
    if (std::ifstream(candidate)) return candidate;
    std::size_t slash = path.find_last_of('/');
    if (slash == std::string::npos || path.empty()) return "";
    path.resize(slash);
  }
}

}  // namespace kvs

namespace kvs {

long kvsAllocated = 0;

namespace {
// Each block carries its size in front, so that a free can count it.
constexpr std::size_t kHead = 16;
}  // namespace

void* KvsAlloc(std::size_t n, const char* object) { return KvsRealloc(nullptr, n, object); }

void* KvsRealloc(void* p, std::size_t n, const char* object) {
  unsigned char* base = p ? static_cast<unsigned char*>(p) - kHead : nullptr;
  std::size_t old = 0;
  if (base) std::memcpy(&old, base, sizeof old);
  void* q = n <= SIZE_MAX - kHead ? std::realloc(base, n + kHead) : nullptr;
  if (!q) {
    _KvsLog(KvsErrGeneral, "%%S Kvs Package could not allocate memory for object %s", object ? object : "");
    return nullptr;
  }
  std::memcpy(q, &n, sizeof n);
  kvsAllocated += static_cast<long>(n) - static_cast<long>(old);
  return static_cast<unsigned char*>(q) + kHead;
}

void KvsFree(void* p) {
  if (!p) return;
  unsigned char* base = static_cast<unsigned char*>(p) - kHead;
  std::size_t n = 0;
  std::memcpy(&n, base, sizeof n);
  kvsAllocated -= static_cast<long>(n);
  std::free(base);
}

}  // namespace kvs
