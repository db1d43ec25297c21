// Reading a 1 GB SEG-D record (format 8015, 2048 samples a trace) from the
// page cache through SegdDiskStore, against the SEG-Y store reading the
// same samples as big-endian IEEE floats; and the 8015 and 8058 kernels
// against memcpy.
//
//   SegdStoreTraces   read(TRACE, first, first + 999) over every trace
//   SegyStoreTraces   the same through SegyDiskStore over the SEG-Y file
//   SegdStoreChannel  read(CHANNEL, ...) by ranges of 1000: one BCD field
//   Kernel8015/n      fc_8015toieee of n samples from a block of 8015 groups
//   Kernel8015Path/p/n  the same by one path: 0 portable, 1 SSE2, 2 AVX2;
//                     a path this machine lacks is skipped
//   Kernel8058/n      fc_8058toieee of n samples
//   Memcpy/n          memcpy of n floats
//
// Store rates count the samples as floats (4 bytes each), so the two
// stores compare directly; kernel rates count the floats written, as memcpy
// counts the bytes it copies. n = 64K samples stays in the cache, 16M does
// not. The files are written once and read once before timing.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "filestore/segd/SegdDiskStore.h"
#include "filestore/segd/SegdKernels.h"
#include "filestore/segy/SegyDiskStore.h"
#include "filestore/segy/SegyKernels.h"
#include "foundation/vUtl.h"

namespace {

int const kSamples = 2048;  // record length 4.0 s in tenths of 0.512 s: 40
int const kSegdHeaders = 64;
int64_t const kSegdTrace = kSamples / 4 * 10 + 20;
int64_t const kSegyTrace = 240 + 4 * kSamples;
unsigned int const kTraces = static_cast<unsigned int>(((int64_t(1) << 30) - kSegdHeaders) / kSegdTrace);
unsigned int const kRange = 1000;

unsigned char bcd(int v) { return static_cast<unsigned char>((v / 10) << 4 | (v % 10)); }

// 8015 groups whose fractions and exponents vary with the trace and sample.
void makeGroups(unsigned char* out, unsigned int trace, int nSamples) {
  for (int s = 0; s < nSamples; s += 4, out += 10) {
    unsigned e[4];
    for (int k = 0; k < 4; ++k) {
      e[k] = (trace + static_cast<unsigned>(s + k)) % 16;
      uint16_t const q = static_cast<uint16_t>(trace * 7u + static_cast<unsigned>(s + k) * 13u);
      out[2 + 2 * k] = static_cast<unsigned char>(q >> 8);
      out[3 + 2 * k] = static_cast<unsigned char>(q);
    }
    out[0] = static_cast<unsigned char>(e[0] << 4 | e[1]);
    out[1] = static_cast<unsigned char>(e[2] << 4 | e[3]);
  }
}

void warm(std::string const& name) {
  std::vector<char> block(1 << 20);
  int const in = ::open(name.c_str(), O_RDONLY);
  while (in >= 0 && ::read(in, block.data(), block.size()) > 0) {
  }
  if (in >= 0) ::close(in);
}

class BenchFiles {
 public:
  BenchFiles() {
    // The vocabulary that types FFID and CHANNEL: the checkout's, unless set.
    ::setenv("VREL", RONDO_BENCH_RELEASE, 0);
    char const* tmp = std::getenv("TMPDIR");
    std::string const base = std::string(tmp && *tmp ? tmp : "/tmp") + "/segd_bench_" + std::to_string(::getpid());
    m_segd = base + ".segd";
    m_segy = base + ".sgy";
    int const d = ::open(m_segd.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    int const y = ::open(m_segy.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    unsigned char general[kSegdHeaders] = {};
    general[2] = 0x80;
    general[3] = 0x15;
    general[22] = 0x10;  // 1 ms
    general[25] = 0x80;
    general[26] = bcd(40);
    general[27] = bcd(1);
    general[28] = bcd(1);
    std::vector<unsigned char> headers(SegyKernels::FILE_HEADER_LENGTH, 0x40);
    unsigned char* binary = headers.data() + SegyKernels::TEXT_HEADER_LENGTH;
    std::memset(binary, 0, SegyKernels::BINARY_HEADER_LENGTH);
    // Interval, samples and format (5: IEEE) at 16, 20 and 24, big-endian.
    int16_t const fields[3] = {1000, kSamples, 5};
    int const at[3] = {16, 20, 24};
    for (int k = 0; k < 3; ++k) {
      std::memcpy(binary + at[k], &fields[k], 2);
      vUtl::swapBytes16(binary + at[k], 1);
    }
    bool good = d >= 0 && y >= 0 && ::write(d, general, sizeof general) == static_cast<ssize_t>(sizeof general) &&
                ::write(y, headers.data(), headers.size()) == static_cast<ssize_t>(headers.size());
    std::vector<unsigned char> segd(static_cast<size_t>(kSegdTrace) * kRange);
    std::vector<unsigned char> segy(static_cast<size_t>(kSegyTrace) * kRange);
    for (unsigned int first = 1; good && first <= kTraces; first += kRange) {
      unsigned int const n = std::min(kRange, kTraces - first + 1);
      std::memset(segd.data(), 0, segd.size());
      std::memset(segy.data(), 0, segy.size());
      for (unsigned int k = 0; k < n; ++k) {
        unsigned int const t = first + k;
        unsigned char* dt = segd.data() + static_cast<size_t>(k) * kSegdTrace;
        unsigned char* yt = segy.data() + static_cast<size_t>(k) * kSegyTrace;
        dt[0] = bcd(12);
        dt[1] = bcd(34);
        dt[4] = bcd(static_cast<int>(t / 100 % 100));
        dt[5] = bcd(static_cast<int>(t % 100));
        makeGroups(dt + 20, t, kSamples);
        int32_t const cmp = static_cast<int32_t>(t);
        std::memcpy(yt + 20, &cmp, 4);
        vUtl::swapBytes32(yt + 20, 1);
        // The same samples, as the SEG-Y file's big-endian IEEE floats.
        float* samples = reinterpret_cast<float*>(yt + 240);
        SegdKernels::fc_8015toieee(dt + 20, samples, kSamples);
        vUtl::swapBytes32(samples, kSamples);
      }
      good = ::write(d, segd.data(), n * kSegdTrace) == static_cast<ssize_t>(n * kSegdTrace) &&
             ::write(y, segy.data(), n * kSegyTrace) == static_cast<ssize_t>(n * kSegyTrace);
    }
    if (d >= 0) ::close(d);
    if (y >= 0) ::close(y);
    m_good = good;
    warm(m_segd);
    warm(m_segy);
  }
  ~BenchFiles() {
    ::unlink(m_segd.c_str());
    ::unlink(m_segy.c_str());
  }
  std::string m_segd, m_segy;
  bool m_good = false;
};

BenchFiles& files() {
  static BenchFiles f;
  return f;
}

int64_t sampleBytes() { return static_cast<int64_t>(kTraces) * kSamples * 4; }

template <class StoreType>
void readTraces(benchmark::State& state, std::string const& file, char const* name) {
  if (!files().m_good) state.SkipWithError("could not write the files");
  StoreType store;
  store.open(vFilename(file.c_str()));
  if (store.getNInstances() != kTraces) state.SkipWithError("wrong trace count");
  Attribute a = store.getAttribute(name);
  for (auto _ : state) {
    for (unsigned int first = 1; first <= kTraces; first += kRange) {
      store.read(a, first, std::min(kTraces, first + kRange - 1));
      benchmark::DoNotOptimize(a.getPointer(1));
    }
  }
  state.SetBytesProcessed(state.iterations() * sampleBytes());
}

void SegdStoreTraces(benchmark::State& state) { readTraces<SegdDiskStore>(state, files().m_segd, "TRACE"); }
void SegyStoreTraces(benchmark::State& state) { readTraces<SegyDiskStore>(state, files().m_segy, "TRACE"); }
void SegdStoreChannel(benchmark::State& state) { readTraces<SegdDiskStore>(state, files().m_segd, "CHANNEL"); }

void Kernel8015(benchmark::State& state) {
  std::size_t const n = static_cast<std::size_t>(state.range(0));
  std::vector<unsigned char> in(n / 4 * 10);
  makeGroups(in.data(), 3, static_cast<int>(n));
  std::vector<float> out(n);
  for (auto _ : state) {
    SegdKernels::fc_8015toieee(in.data(), out.data(), n);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(n) * 4);
}

void Kernel8015Path(benchmark::State& state) {
  auto const path = static_cast<SegdKernels::Path8015>(state.range(0));
  std::size_t const n = static_cast<std::size_t>(state.range(1));
  if (!SegdKernels::has8015Path(path)) state.SkipWithError("not on this machine");
  std::vector<unsigned char> in(n / 4 * 10);
  makeGroups(in.data(), 3, static_cast<int>(n));
  std::vector<float> out(n);
  for (auto _ : state) {
    SegdKernels::fc_8015toieee(path, in.data(), out.data(), n);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(n) * 4);
}

void Kernel8058(benchmark::State& state) {
  std::size_t const n = static_cast<std::size_t>(state.range(0));
  std::vector<float> in(n, 1.5f), out(n);
  for (auto _ : state) {
    SegdKernels::fc_8058toieee(in.data(), out.data(), n);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(n) * 4);
}

void Memcpy(benchmark::State& state) {
  std::size_t const n = static_cast<std::size_t>(state.range(0));
  std::vector<float> in(n, 1.5f), out(n);
  for (auto _ : state) {
    std::memcpy(out.data(), in.data(), n * 4);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(n) * 4);
}

}  // namespace

BENCHMARK(Kernel8015)->Arg(1 << 16)->Arg(1 << 24);
BENCHMARK(Kernel8015Path)->ArgsProduct({{0, 1, 2}, {1 << 16, 1 << 24}});
BENCHMARK(Kernel8058)->Arg(1 << 16)->Arg(1 << 24);
BENCHMARK(Memcpy)->Arg(1 << 16)->Arg(1 << 24);
BENCHMARK(SegdStoreTraces)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(SegyStoreTraces)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(SegdStoreChannel)->Unit(benchmark::kMillisecond)->UseRealTime();

BENCHMARK_MAIN();
