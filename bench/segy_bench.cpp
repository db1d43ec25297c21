// Reading the traces of a 256 MB SEG-Y file (IBM floats, big-endian, 1000
// samples a trace) from the page cache through SegyDiskStore, against the
// least that any reader must do: pread of the same bytes and the IBM to
// IEEE kernel over the samples.
//
//   StoreTraces      read(TRACE, first, first + 999) over all traces
//   PreadIbm         pread of the same 1000 traces, then vUtl::ibmToIeee of
//                    each trace's samples into a float block
//   StoreHeaderWord  read(CMP, ...) by ranges of 1000 traces: one 4-byte
//                    header field of every trace
//   PreadHeaders     pread of each trace's 240-byte header, and the field
//                    taken out of it
//
// Bytes processed are the file's trace bytes in each case, so the rates
// compare directly. The file is written once and read once before timing.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "filestore/segy/SegyDiskStore.h"
#include "filestore/segy/SegyKernels.h"
#include "foundation/vUtl.h"

namespace {

unsigned int const kSamples = 1000;
int64_t const kTraceLength = 240 + 4 * kSamples;
unsigned int const kTraces = static_cast<unsigned int>((int64_t(256) << 20) / kTraceLength);
unsigned int const kRange = 1000;

void put16(unsigned char* at, int16_t value) {
  std::memcpy(at, &value, 2);
  vUtl::swapBytes16(at, 1);
}
void put32(unsigned char* at, int32_t value) {
  std::memcpy(at, &value, 4);
  vUtl::swapBytes32(at, 1);
}

class BenchFile {
 public:
  BenchFile() {
    char const* tmp = std::getenv("TMPDIR");
    m_name = std::string(tmp && *tmp ? tmp : "/tmp") + "/segy_bench_" + std::to_string(::getpid()) + ".sgy";
    int const fd = ::open(m_name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    std::vector<unsigned char> headers(SegyKernels::FILE_HEADER_LENGTH, 0x40);
    unsigned char* binary = headers.data() + SegyKernels::TEXT_HEADER_LENGTH;
    std::memset(binary, 0, SegyKernels::BINARY_HEADER_LENGTH);
    put16(binary + 16, 4000);
    put16(binary + 20, static_cast<int16_t>(kSamples));
    put16(binary + 24, 1);
    bool good = fd >= 0 && ::write(fd, headers.data(), headers.size()) == static_cast<ssize_t>(headers.size());
    std::vector<unsigned char> trace(static_cast<size_t>(kTraceLength), 0);
    std::vector<float> samples(kSamples);
    for (unsigned int t = 1; good && t <= kTraces; ++t) {
      put32(trace.data() + 20, static_cast<int32_t>(t));
      for (unsigned int s = 0; s < kSamples; ++s) samples[s] = static_cast<float>(t) + 0.001f * static_cast<float>(s);
      vUtl::ieeeToIbm(samples.data(), trace.data() + 240, kSamples, true);
      good = ::write(fd, trace.data(), trace.size()) == static_cast<ssize_t>(trace.size());
    }
    if (fd >= 0) ::close(fd);
    // One pass to bring the pages in.
    std::vector<char> block(1 << 20);
    int const in = ::open(m_name.c_str(), O_RDONLY);
    while (in >= 0 && ::read(in, block.data(), block.size()) > 0) {
    }
    if (in >= 0) ::close(in);
  }
  ~BenchFile() { ::unlink(m_name.c_str()); }
  std::string const& name() const { return m_name; }

 private:
  std::string m_name;
};

BenchFile& benchFile() {
  static BenchFile file;
  return file;
}

int64_t traceBytes() { return static_cast<int64_t>(kTraces) * kTraceLength; }

void StoreTraces(benchmark::State& state) {
  SegyDiskStore store;
  store.open(vFilename(benchFile().name().c_str()));
  if (store.getNInstances() != kTraces) state.SkipWithError("wrong trace count");
  Attribute trace = store.getAttribute("TRACE");
  for (auto _ : state) {
    for (unsigned int first = 1; first <= kTraces; first += kRange) {
      unsigned int const last = std::min(kTraces, first + kRange - 1);
      store.read(trace, first, last);
      benchmark::DoNotOptimize(trace.getFloat32Pointer(1));
    }
  }
  state.SetBytesProcessed(state.iterations() * traceBytes());
}

void PreadIbm(benchmark::State& state) {
  int const fd = ::open(benchFile().name().c_str(), O_RDONLY);
  std::vector<unsigned char> buffer(static_cast<size_t>(kTraceLength) * kRange);
  std::vector<float> out(static_cast<size_t>(kSamples) * kRange);
  for (auto _ : state) {
    for (unsigned int first = 1; first <= kTraces; first += kRange) {
      unsigned int const n = std::min(kRange, kTraces - first + 1);
      size_t const bytes = static_cast<size_t>(n) * kTraceLength;
      off_t const offset = SegyKernels::FILE_HEADER_LENGTH + static_cast<off_t>(first - 1) * kTraceLength;
      if (::pread(fd, buffer.data(), bytes, offset) != static_cast<ssize_t>(bytes)) state.SkipWithError("short read");
      for (unsigned int k = 0; k < n; ++k)
        vUtl::ibmToIeee(buffer.data() + static_cast<size_t>(k) * kTraceLength + 240, out.data() + k * kSamples, kSamples,
                        true);
      benchmark::DoNotOptimize(out.data());
    }
  }
  ::close(fd);
  state.SetBytesProcessed(state.iterations() * traceBytes());
}

void StoreHeaderWord(benchmark::State& state) {
  SegyDiskStore store;
  store.open(vFilename(benchFile().name().c_str()));
  Attribute cmp = store.getAttribute("CMP");
  for (auto _ : state) {
    for (unsigned int first = 1; first <= kTraces; first += kRange) {
      unsigned int const last = std::min(kTraces, first + kRange - 1);
      store.read(cmp, first, last);
      if (cmp.getInt32(1) != static_cast<int>(first)) state.SkipWithError("wrong CMP");
    }
  }
  state.SetBytesProcessed(state.iterations() * traceBytes());
}

void PreadHeaders(benchmark::State& state) {
  int const fd = ::open(benchFile().name().c_str(), O_RDONLY);
  unsigned char header[240];
  std::vector<int32_t> out(kRange);
  for (auto _ : state) {
    for (unsigned int first = 1; first <= kTraces; first += kRange) {
      unsigned int const n = std::min(kRange, kTraces - first + 1);
      for (unsigned int k = 0; k < n; ++k) {
        off_t const offset = SegyKernels::FILE_HEADER_LENGTH + static_cast<off_t>(first - 1 + k) * kTraceLength;
        if (::pread(fd, header, sizeof header, offset) != static_cast<ssize_t>(sizeof header))
          state.SkipWithError("short read");
        out[k] = SegyKernels::readSwappedInt32(header + 20);
      }
      if (out[0] != static_cast<int32_t>(first)) state.SkipWithError("wrong CMP");
      benchmark::DoNotOptimize(out.data());
    }
  }
  ::close(fd);
  state.SetBytesProcessed(state.iterations() * traceBytes());
}

}  // namespace

BENCHMARK(StoreTraces)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(PreadIbm)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(StoreHeaderWord)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(PreadHeaders)->Unit(benchmark::kMillisecond)->UseRealTime();

BENCHMARK_MAIN();
