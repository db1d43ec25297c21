// Costs of the foundation value types on their hot paths.
//
// Every allocation and every mutex lock made by the process is counted by
// interposing malloc/realloc/calloc and pthread_mutex_lock, so each benchmark
// reports, beside its time, how many of them one iteration makes:
//   allocs/iter  - an empty vString must show 0, a short one 1
//   locks/iter   - a single-threaded vHandle copy must show 0, a
//                  multi-threaded one 2 (copy and release)

#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <cstddef>

#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "foundation/vString.h"
#include "foundation/vUCStringTable.h"

namespace {
std::atomic<long> g_allocs(0);
std::atomic<long> g_locks(0);
}  // namespace

extern "C" {
void* __libc_malloc(size_t);
void* __libc_realloc(void*, size_t);
void* __libc_calloc(size_t, size_t);

void* malloc(size_t n) {
  g_allocs.fetch_add(1, std::memory_order_relaxed);
  return __libc_malloc(n);
}
void* realloc(void* p, size_t n) {
  g_allocs.fetch_add(1, std::memory_order_relaxed);
  return __libc_realloc(p, n);
}
void* calloc(size_t n, size_t s) {
  g_allocs.fetch_add(1, std::memory_order_relaxed);
  return __libc_calloc(n, s);
}

int pthread_mutex_lock(pthread_mutex_t* m) {
  typedef int (*LockFn)(pthread_mutex_t*);
  static LockFn real = reinterpret_cast<LockFn>(dlsym(RTLD_NEXT, "pthread_mutex_lock"));
  g_locks.fetch_add(1, std::memory_order_relaxed);
  return real(m);
}
}

namespace {

// Counts what happens between construction and report.
class Tally {
 public:
  explicit Tally(benchmark::State& state) : state_(state), allocs_(g_allocs.load()), locks_(g_locks.load()) {}
  ~Tally() {
    state_.counters["allocs/iter"] =
        benchmark::Counter(static_cast<double>(g_allocs.load() - allocs_), benchmark::Counter::kAvgIterations);
    state_.counters["locks/iter"] =
        benchmark::Counter(static_cast<double>(g_locks.load() - locks_), benchmark::Counter::kAvgIterations);
  }

 private:
  benchmark::State& state_;
  long allocs_;
  long locks_;
};

void BM_EmptyString(benchmark::State& state) {
  Tally tally(state);
  for (auto _ : state) {
    vString a;
    vString b("");
    vString c(a);
    benchmark::DoNotOptimize(a.c_str());
    benchmark::DoNotOptimize(b.c_str());
    benchmark::DoNotOptimize(c.c_str());
  }
}
BENCHMARK(BM_EmptyString);

void BM_ShortString(benchmark::State& state) {
  Tally tally(state);
  for (auto _ : state) {
    vString a("trace");
    benchmark::DoNotOptimize(a.c_str());
  }
}
BENCHMARK(BM_ShortString);

void BM_FoldingAssign(benchmark::State& state) {
  Tally tally(state);
  vLCString s;
  for (auto _ : state) {
    s = "StoreName.SGY";
    benchmark::DoNotOptimize(s.c_str());
  }
}
BENCHMARK(BM_FoldingAssign);

void BM_HandleCopySingleThreaded(benchmark::State& state) {
  vHandle<vString> h(new vString("object"));
  Tally tally(state);
  for (auto _ : state) {
    vHandle<vString> copy(h);
    benchmark::DoNotOptimize(copy.pointer());
  }
}
BENCHMARK(BM_HandleCopySingleThreaded);

void BM_HandleCopyMultiThreaded(benchmark::State& state) {
  vHandle<vString> h(new vString("object"), vHandleEnum::DeleteObject, vHandleEnum::MultiThreaded);
  Tally tally(state);
  for (auto _ : state) {
    vHandle<vString> copy(h);
    benchmark::DoNotOptimize(copy.pointer());
  }
}
BENCHMARK(BM_HandleCopyMultiThreaded);

// Interned names compare by id, whatever their length.
void BM_InternedNameCompare(benchmark::State& state) {
  vUCStringTable table;
  vUCStringTableData const* a = table.add("AMPLITUDE_AFTER_NMO_CORRECTION_A");
  vUCStringTableData const* b = table.add("AMPLITUDE_AFTER_NMO_CORRECTION_B");
  Tally tally(state);
  for (auto _ : state) {
    bool less = vUCStringTableData::isLess(a, b);
    benchmark::DoNotOptimize(less);
  }
}
BENCHMARK(BM_InternedNameCompare);

void BM_TextNameCompare(benchmark::State& state) {
  vUCString a("AMPLITUDE_AFTER_NMO_CORRECTION_A");
  vUCString b("AMPLITUDE_AFTER_NMO_CORRECTION_B");
  Tally tally(state);
  for (auto _ : state) {
    bool less = a < b;
    benchmark::DoNotOptimize(less);
  }
}
BENCHMARK(BM_TextNameCompare);

}  // namespace

BENCHMARK_MAIN();
