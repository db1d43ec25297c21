// Reading a 60 000-trace x 1 000-sample SEG-Y file (IBM floats, big-endian,
// 240 MB) from the page cache: the SEG-Y store in-process against the
// libsegyio C library and against cat.
//
//   Cat                  cat file > /dev/null
//   StoreTraces          SegyDiskStore read(TRACE) by ranges of 1 000 traces
//   SegyioTraces         segy_readtrace + segy_to_native, trace by trace
//   StoreHeaderWord      SegyDiskStore read(CMP) by ranges of 1 000 traces
//   StoreHeaderWordWhole SegyDiskStore read(CMP) of every trace in one read,
//                        as the Java host asks for a header word
//   SegyioFieldForall    segy_field_forall of the same header word
//
// SEGY_BENCH_FILE names the file to use; it is written there when it is not
// already the right size, and kept (bench/dataserver_bench.sh reads it with
// the Java host next). Without it a file in TMPDIR is written and removed.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <segyio/segy.h>
#include <sys/stat.h>
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
unsigned int const kTraces = 60000;
int64_t const kTraceLength = 240 + 4 * kSamples;
unsigned int const kRange = 1000;
int64_t const kFileSize = SegyKernels::FILE_HEADER_LENGTH + kTraceLength * kTraces;

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
    char const* given = std::getenv("SEGY_BENCH_FILE");
    char const* tmp = std::getenv("TMPDIR");
    m_keep = given != nullptr && *given != '\0';
    m_name = m_keep ? given : std::string(tmp && *tmp ? tmp : "/tmp") + "/segyio_bench_" +
                                  std::to_string(::getpid()) + ".sgy";
    struct stat s;
    if (::stat(m_name.c_str(), &s) != 0 || s.st_size != kFileSize) myWrite();
    std::system(("cat '" + m_name + "' > /dev/null").c_str());
  }
  ~BenchFile() {
    if (!m_keep) ::unlink(m_name.c_str());
  }
  std::string const& name() const { return m_name; }

 private:
  void myWrite() const {
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
      put16(trace.data() + 114, static_cast<int16_t>(kSamples));
      for (unsigned int s = 0; s < kSamples; ++s) samples[s] = static_cast<float>(t) + 0.001f * static_cast<float>(s);
      vUtl::ieeeToIbm(samples.data(), trace.data() + 240, kSamples, true);
      good = ::write(fd, trace.data(), trace.size()) == static_cast<ssize_t>(trace.size());
    }
    if (fd >= 0) ::close(fd);
  }

  std::string m_name;
  bool m_keep;
};

BenchFile& benchFile() {
  static BenchFile file;
  return file;
}

void done(benchmark::State& state) { state.SetBytesProcessed(state.iterations() * kFileSize); }

void Cat(benchmark::State& state) {
  std::string const command = "cat '" + benchFile().name() + "' > /dev/null";
  for (auto _ : state)
    if (std::system(command.c_str()) != 0) state.SkipWithError("cat failed");
  done(state);
}

void StoreTraces(benchmark::State& state) {
  SegyDiskStore store;
  store.open(vFilename(benchFile().name().c_str()));
  if (store.getNInstances() != kTraces) state.SkipWithError("wrong trace count");
  Attribute trace = store.getAttribute("TRACE");
  for (auto _ : state) {
    for (unsigned int first = 1; first <= kTraces; first += kRange) {
      store.read(trace, first, first + kRange - 1);
      benchmark::DoNotOptimize(trace.getFloat32Pointer(1));
    }
  }
  done(state);
}

// The segyio file and the layout its headers give.
struct Segyio {
  segy_file* file = nullptr;
  long trace0 = 0;
  int bsize = 0;
  int format = 0;
  int traces = 0;
  explicit Segyio(benchmark::State& state) {
    file = segy_open(benchFile().name().c_str(), "rb");
    char binary[SEGY_BINARY_HEADER_SIZE];
    if (file == nullptr || segy_binheader(file, binary) != SEGY_OK) {
      state.SkipWithError("segyio cannot open the file");
      return;
    }
    trace0 = segy_trace0(binary);
    format = segy_format(binary);
    bsize = segy_trace_bsize(segy_samples(binary));
    if (segy_traces(file, &traces, trace0, bsize) != SEGY_OK || traces != static_cast<int>(kTraces))
      state.SkipWithError("segyio counts other traces");
  }
  ~Segyio() {
    if (file != nullptr) segy_close(file);
  }
};

void SegyioTraces(benchmark::State& state) {
  Segyio s(state);
  std::vector<float> block(static_cast<size_t>(kSamples) * kRange);
  for (auto _ : state) {
    for (unsigned int first = 0; first < kTraces; first += kRange) {
      for (unsigned int k = 0; k < kRange; ++k) {
        float* at = block.data() + static_cast<size_t>(k) * kSamples;
        if (segy_readtrace(s.file, static_cast<int>(first + k), at, s.trace0, s.bsize) != SEGY_OK ||
            segy_to_native(s.format, kSamples, at) != SEGY_OK)
          state.SkipWithError("segyio read failed");
      }
      benchmark::DoNotOptimize(block.data());
    }
  }
  done(state);
}

void StoreHeaderWord(benchmark::State& state) {
  SegyDiskStore store;
  store.open(vFilename(benchFile().name().c_str()));
  Attribute cmp = store.getAttribute("CMP");
  for (auto _ : state) {
    for (unsigned int first = 1; first <= kTraces; first += kRange) {
      store.read(cmp, first, first + kRange - 1);
      if (cmp.getInt32(1) != static_cast<int>(first)) state.SkipWithError("wrong CMP");
    }
  }
  done(state);
}

// What the Java host asks for: the word of every trace in one read.
void StoreHeaderWordWhole(benchmark::State& state) {
  SegyDiskStore store;
  store.open(vFilename(benchFile().name().c_str()));
  Attribute cmp = store.getAttribute("CMP");
  for (auto _ : state) {
    store.read(cmp, 1, kTraces);
    if (cmp.getInt32(kTraces) != static_cast<int>(kTraces)) state.SkipWithError("wrong CMP");
  }
  done(state);
}

void SegyioFieldForall(benchmark::State& state) {
  Segyio s(state);
  std::vector<int> values(kTraces);
  for (auto _ : state) {
    if (segy_field_forall(s.file, SEGY_TR_ENSEMBLE, 0, static_cast<int>(kTraces), 1, values.data(), s.trace0,
                          s.bsize) != SEGY_OK ||
        values[kTraces - 1] != static_cast<int>(kTraces))
      state.SkipWithError("segyio field read failed");
  }
  done(state);
}

}  // namespace

BENCHMARK(Cat)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(StoreTraces)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(SegyioTraces)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(StoreHeaderWord)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(StoreHeaderWordWhole)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(SegyioFieldForall)->Unit(benchmark::kMillisecond)->UseRealTime();

BENCHMARK_MAIN();
