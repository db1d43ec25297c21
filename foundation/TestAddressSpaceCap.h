#ifndef FOUNDATION_TESTADDRESSSPACECAP_H
#define FOUNDATION_TESTADDRESSSPACECAP_H

// Test helper (tests only): makes allocations fail on purpose, by lowering
// the soft address-space limit of the process to what it maps now plus a
// given room. For death-test children, which end with the test.
//
// The sanitizers' allocators reserve their own address space up front, so
// under them the limit cannot be used: RONDO_TEST_ADDRESS_SPACE_CAP is
// defined only where it can.

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define RONDO_TEST_UNDER_ASAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define RONDO_TEST_UNDER_ASAN 1
#endif

#ifndef RONDO_TEST_UNDER_ASAN
#define RONDO_TEST_ADDRESS_SPACE_CAP 1

#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>

// Large blocks get mappings of their own, given back when freed, so that the
// address space in use is what is alive and not what the heap once held.
// Call it first, before the blocks the test builds.
inline void testMapLargeBlocksExactly() {
  ::mallopt(M_MMAP_THRESHOLD, 64 * 1024);
  ::mallopt(M_TRIM_THRESHOLD, 64 * 1024);
  ::malloc_trim(0);
}

class TestAddressSpaceCap {
 public:
  explicit TestAddressSpaceCap(size_t room) : m_capped(false) {
    if (::getrlimit(RLIMIT_AS, &m_old) != 0) return;
    std::FILE* f = std::fopen("/proc/self/statm", "r");
    if (!f) return;
    unsigned long pages = 0;
    int const got = std::fscanf(f, "%lu", &pages);
    std::fclose(f);
    if (got != 1) return;
    rlimit limit = m_old;
    limit.rlim_cur = static_cast<rlim_t>(pages) * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + room;
    m_capped = ::setrlimit(RLIMIT_AS, &limit) == 0;
  }
  ~TestAddressSpaceCap() { lift(); }
  TestAddressSpaceCap(TestAddressSpaceCap const&) = delete;
  TestAddressSpaceCap& operator=(TestAddressSpaceCap const&) = delete;

  bool isCapped() const { return m_capped; }
  void lift() {
    if (m_capped) ::setrlimit(RLIMIT_AS, &m_old);
    m_capped = false;
  }

 private:
  rlimit m_old;
  bool m_capped;
};

#endif

#endif
