#ifndef FOUNDATION_TESTRELEASETREE_H
#define FOUNDATION_TESTRELEASETREE_H

// Test helper (tests only): a release tree in a fresh temporary directory,
// with VREL pointing at it, and an empty working directory made current, so
// that system files are found only where a test puts them. Environment
// variables changed through setEnv/unsetEnv and the working directory are
// restored, and the tree removed, when the object goes.

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "foundation/MessageHandling.h"
#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"

class TestReleaseTree {
 public:
  TestReleaseTree() {
    char pattern[] = "/tmp/rondo-release-XXXXXX";
    char* made = ::mkdtemp(pattern);
    if (!made) std::abort();
    m_root = made;
    std::filesystem::create_directories(m_root + "/rel/SystemFiles");
    std::filesystem::create_directories(m_root + "/rel/SupportFiles");
    std::filesystem::create_directories(m_root + "/work");
    m_oldCwd = std::filesystem::current_path().string();
    std::filesystem::current_path(m_root + "/work");
    setEnv("VREL", releaseDir());
    // A site's settings in the caller's environment must not leak in.
    unsetEnv("VDATABASES_DATABASECONFIG");
    unsetEnv("DORNSERVER");
    unsetEnv("DORNDEVSERVER");
    setEnv("DORN_DOMAIN", "testdomain.example");
  }

  ~TestReleaseTree() {
    std::filesystem::current_path(m_oldCwd);
    for (auto const& saved : m_saved) {
      if (saved.second.first)
        ::setenv(saved.first.c_str(), saved.second.second.c_str(), 1);
      else
        ::unsetenv(saved.first.c_str());
    }
    std::error_code ignored;
    std::filesystem::remove_all(m_root, ignored);
  }

  TestReleaseTree(TestReleaseTree const&) = delete;
  TestReleaseTree& operator=(TestReleaseTree const&) = delete;

  std::string const& root() const { return m_root; }
  std::string releaseDir() const { return m_root + "/rel/"; }
  std::string systemFilesDir() const { return m_root + "/rel/SystemFiles/"; }
  std::string workDir() const { return m_root + "/work/"; }

  std::string writeSystemFile(std::string const& name, std::string const& text) const {
    return write(systemFilesDir() + name, text);
  }
  std::string writeWorkFile(std::string const& name, std::string const& text) const {
    return write(workDir() + name, text);
  }
  static std::string write(std::string const& path, std::string const& text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
    return path;
  }

  void setEnv(std::string const& name, std::string const& value) {
    remember(name);
    ::setenv(name.c_str(), value.c_str(), 1);
  }
  void unsetEnv(std::string const& name) {
    remember(name);
    ::unsetenv(name.c_str());
  }

 private:
  void remember(std::string const& name) {
    if (m_saved.count(name)) return;
    char const* old = ::getenv(name.c_str());
    m_saved[name] = std::make_pair(old != nullptr, std::string(old ? old : ""));
  }

  std::string m_root;
  std::string m_oldCwd;
  std::map<std::string, std::pair<bool, std::string> > m_saved;
};

// Runs f, which must end in a fatal message with this method and reason.
template <class F>
void expectFatal(F f, char const* method, std::string const& reason) {
  expectFailure(f, method, reason);
}

#endif
