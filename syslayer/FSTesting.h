#ifndef SYSLAYER_FSTESTING_H
#define SYSLAYER_FSTESTING_H

// Test helpers of the system layer and the file stores above it: a scratch
// directory removed with all it holds, small file writers, a scoped test
// fault of the file service, a scoped environment variable, the service's
// last failure, checkers of failures by method and text and of errors
// reported, and the root, liveness and key-and-name structures of the ss heap.

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/Message.h"
#include "foundation/MessageHandling.h"
#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"
#include "syslayer/FSService.h"
#include "syslayer/SSHeap.h"

namespace fs_testing {

// A fresh directory under TMPDIR (or /tmp), removed at the end of the test.
class TempDir {
 public:
  TempDir() {
    char const* base = std::getenv("TMPDIR");
    std::string tmpl = std::string(base && *base ? base : "/tmp") + "/fs_test_XXXXXX";
    std::vector<char> buf(tmpl.begin(), tmpl.end());
    buf.push_back('\0');
    if (::mkdtemp(buf.data()) == nullptr) ADD_FAILURE() << "mkdtemp failed";
    m_path = buf.data();
  }
  ~TempDir() { removeTree(m_path); }
  TempDir(TempDir const&) = delete;
  TempDir& operator=(TempDir const&) = delete;

  std::string const& path() const { return m_path; }
  std::string operator/(std::string const& name) const { return m_path + "/" + name; }

  static void removeTree(std::string const& path) {
    struct stat st;
    if (::lstat(path.c_str(), &st) != 0) return;
    if (S_ISDIR(st.st_mode)) {
      if (DIR* d = ::opendir(path.c_str())) {
        while (dirent* e = ::readdir(d)) {
          std::string n = e->d_name;
          if (n != "." && n != "..") removeTree(path + "/" + n);
        }
        ::closedir(d);
      }
      ::rmdir(path.c_str());
    } else {
      ::unlink(path.c_str());
    }
  }

 private:
  std::string m_path;
};

inline void writeFile(std::string const& path, std::string const& bytes) {
  int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  ASSERT_GE(fd, 0) << path;
  ASSERT_EQ(::write(fd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  ::close(fd);
}

inline std::string readFile(std::string const& path) {
  std::string out;
  int fd = ::open(path.c_str(), O_RDONLY);
  if (fd < 0) return out;
  char buf[65536];
  ssize_t n;
  while ((n = ::read(fd, buf, sizeof buf)) > 0) out.append(buf, static_cast<size_t>(n));
  ::close(fd);
  return out;
}

// An environment variable set (unset, given nullptr) for one scope, then put
// back as it was.
class Env {
 public:
  Env(char const* name, char const* value) : m_name(name), m_had(std::getenv(name) != nullptr) {
    if (m_had) m_old = std::getenv(name);
    value ? ::setenv(name, value, 1) : ::unsetenv(name);
  }
  ~Env() { m_had ? ::setenv(m_name.c_str(), m_old.c_str(), 1) : ::unsetenv(m_name.c_str()); }
  Env(Env const&) = delete;
  Env& operator=(Env const&) = delete;

 private:
  std::string m_name, m_old;
  bool m_had;
};

// A test fault of the record file service (FSService.h) for one scope:
//   fs_testing::Fault truncated(path, FS_FAULT_TRUNCATE, 1000);
// makes the file at path look 1000 bytes long until the scope ends.
class Fault {
 public:
  Fault(std::string const& name, int kind, int64_t limit) { fs_testfault_(name.c_str(), kind, limit); }
  ~Fault() { fs_testfault_("", FS_FAULT_NONE, 0); }
  Fault(Fault const&) = delete;
  Fault& operator=(Fault const&) = delete;
};

// The text of the file service's last failure.
inline std::string lastFailure() {
  char text[400];
  FS_rrc(text, sizeof text);
  return text;
}

// How many errors f reports, its reports kept quiet.
template <class F>
int quietErrors(F f) {
  int const before = Message::getNErrors();
  {
    MessageHandling quiet;
    f();
  }
  return Message::getNErrors() - before;
}

// --- the ss heap --------------------------------------------------------------------------

inline int32_t root() {
  int32_t r;
  ss_init_(r);
  return r;
}

inline bool alive(int32_t id) {
  int32_t ok = 0;
  ss_verify_(id, ok);
  return ok == 1;
}

// A structure of a key and a name.
inline int32_t leaf(int32_t parent, int32_t key, char const* name) {
  int32_t const types[] = {SS_INT, SS_TEXT};
  int32_t s;
  ss_define_(s, parent, 2, types);
  ss_putnth_(s, 1, key);
  ss_puttext_(s, 2, name, static_cast<int32_t>(std::string(name).size()));
  return s;
}

using ::expectFailure;

}  // namespace fs_testing

#endif
