// Reading every trace of an offload file through OffloadDiskStore, plain
// floats and 16-bit packed, against the same samples as an IEEE SEG-Y file
// through SegyDiskStore, and against reading the file's bytes as cat does.
// The 16-bit unpacking is timed on its own against memcpy of the floats it
// yields.
//
//   OffloadTraces        read(TRACE) by ranges of 1000 bins, float file
//   OffloadPackedTraces  the same over the 16-bit file
//   SegyTraces           read(TRACE) by ranges of 1000 traces, SEG-Y file
//   CatOffload           read(2) of the float file in 1 MB blocks
//   CatPackedOffload     the same over the 16-bit file
//   Unpack16             compression_moffld_int16 unpacking of 1000 records
//   Memcpy               memcpy of the same 1000 traces of floats
//
// Bytes processed are the float samples delivered (4 bytes a sample) in
// every case, so the rates compare directly. The files are written once
// and read once before timing. Size: OFFLOAD_BENCH_MB (default 256) of
// float samples.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "filestore/offload/OffloadCompression.h"
#include "filestore/offload/OffloadDiskStore.h"
#include "filestore/segy/SegyDiskStore.h"
#include "filestore/segy/SegyKernels.h"
#include "foundation/vUtl.h"

namespace {

int const kSamples = 1000;
int const kCrosslines = 500;
unsigned int const kRange = 1000;
int const kHeaderWords = 100;

int64_t megabytes() {
  char const* env = std::getenv("OFFLOAD_BENCH_MB");
  return env && std::atoi(env) > 0 ? std::atoi(env) : 256;
}

int inlines() { return static_cast<int>((megabytes() << 20) / (4LL * kSamples * kCrosslines)); }
unsigned int bins() { return static_cast<unsigned int>(inlines()) * kCrosslines; }

float sample(unsigned int bin, int s) {
  return static_cast<float>((bin % 97) + 1) * (static_cast<float>(s % 50) - 25.0f) * 0.37f;
}

std::string tempName(char const* extension) {
  char const* tmp = std::getenv("TMPDIR");
  return std::string(tmp && *tmp ? tmp : "/tmp") + "/offload_bench_" + std::to_string(::getpid()) + extension;
}

void warm(std::string const& name) {
  std::vector<char> block(1 << 20);
  int const in = ::open(name.c_str(), O_RDONLY);
  while (in >= 0 && ::read(in, block.data(), block.size()) > 0) {
  }
  if (in >= 0) ::close(in);
}

// An offload file laid out as the format's tables say, in this machine's
// byte order, with SUBLINE as its one header attribute.
std::string writeOffload(bool packed) {
  std::string const name = tempName(packed ? "_packed.offload" : ".offload");
  int const traceWords = packed ? compression_moffld_int16Tlen(kSamples, 0) : kSamples;
  int const L = 1 + traceWords;
  int const nBins = static_cast<int>(bins());
  std::vector<int> h(kHeaderWords, 0);
  h[0] = kHeaderWords, h[1] = 77479, h[2] = kSamples, h[3] = 1, h[4] = 4000, h[5] = 23, h[6] = 1, h[7] = L;
  h[8] = traceWords, h[9] = kCrosslines, h[10] = inlines(), h[11] = 1, h[12] = 1, h[13] = 1, h[14] = 1;
  h[17] = packed ? 1 : 0, h[19] = kCrosslines, h[20] = inlines(), h[21] = 1, h[59] = 1, h[64] = 1, h[89] = 991;
  h[31] = ((h[0] - 1) / L) * 4 + 2;
  h[33] = h[31] + (h[5] - 1) / L + 1;
  h[34] = h[33] + nBins / L + 1;
  std::vector<int> file(static_cast<std::size_t>(h[34] - 1) * L, 0);
  std::memcpy(file.data(), h.data(), sizeof(int) * h.size());
  int* entry = &file[static_cast<std::size_t>(h[31] - 1) * L];
  entry[0] = entry[1] = entry[2] = 1;
  std::memcpy(entry + 3, "SUBLINE                                                                         ", 80);
  int* fold = &file[static_cast<std::size_t>(h[33] - 1) * L];
  for (int b = 0; b < nBins; ++b) fold[b] = 1;
  int const fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  bool good = fd >= 0 && ::write(fd, file.data(), 4 * file.size()) == static_cast<ssize_t>(4 * file.size());
  std::vector<int> records(static_cast<std::size_t>(L) * kRange);
  std::vector<float> samples(kSamples);
  for (unsigned int first = 1; good && first <= bins(); first += kRange) {
    unsigned int const n = std::min(kRange, bins() - first + 1);
    for (unsigned int k = 0; k < n; ++k) {
      int* record = &records[static_cast<std::size_t>(k) * L];
      for (int s = 0; s < kSamples; ++s) samples[s] = sample(first + k, s);
      if (packed)
        compression_moffld_int16(kSamples, samples.data(), false, record, 0, 1);
      else
        std::memcpy(record, samples.data(), 4 * kSamples);
      record[traceWords] = static_cast<int>(first + k);
    }
    std::size_t const bytes = 4u * static_cast<std::size_t>(L) * n;
    good = ::write(fd, records.data(), bytes) == static_cast<ssize_t>(bytes);
  }
  if (fd >= 0) ::close(fd);
  if (!good) std::abort();
  warm(name);
  return name;
}

std::string writeSegy() {
  std::string const name = tempName(".sgy");
  std::vector<unsigned char> headers(SegyKernels::FILE_HEADER_LENGTH, 0x40);
  unsigned char* binary = headers.data() + SegyKernels::TEXT_HEADER_LENGTH;
  std::memset(binary, 0, SegyKernels::BINARY_HEADER_LENGTH);
  auto put16 = [](unsigned char* at, int16_t v) {
    at[0] = static_cast<unsigned char>(v >> 8), at[1] = static_cast<unsigned char>(v);
  };
  put16(binary + 16, 4000);
  put16(binary + 20, kSamples);
  put16(binary + 24, 5);
  int const fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  bool good = fd >= 0 && ::write(fd, headers.data(), headers.size()) == static_cast<ssize_t>(headers.size());
  std::vector<unsigned char> trace(240 + 4 * kSamples, 0);
  std::vector<float> samples(kSamples);
  for (unsigned int t = 1; good && t <= bins(); ++t) {
    for (int s = 0; s < kSamples; ++s) samples[s] = sample(t, s);
    vUtl::swapBytes32(samples.data(), trace.data() + 240, kSamples);
    good = ::write(fd, trace.data(), trace.size()) == static_cast<ssize_t>(trace.size());
  }
  if (fd >= 0) ::close(fd);
  if (!good) std::abort();
  warm(name);
  return name;
}

struct Files {
  Files() : plain(writeOffload(false)), packed(writeOffload(true)), segy(writeSegy()) {}
  ~Files() {
    ::unlink(plain.c_str());
    ::unlink(packed.c_str());
    ::unlink(segy.c_str());
  }
  std::string plain, packed, segy;
};

Files& files() {
  static Files f;
  return f;
}

int64_t sampleBytes() { return static_cast<int64_t>(bins()) * kSamples * 4; }

template <class StoreType>
void readAll(benchmark::State& state, std::string const& name, float tolerance) {
  StoreType store;
  store.open(vFilename(name.c_str()));
  if (store.getNInstances() != bins()) state.SkipWithError("wrong trace count");
  Attribute trace = store.getAttribute("TRACE");
  for (auto _ : state) {
    for (unsigned int first = 1; first <= bins(); first += kRange) {
      store.read(trace, first, std::min(bins(), first + kRange - 1));
      if (std::abs(trace.getFloat32Pointer(1)[7] - sample(first, 7)) > tolerance) state.SkipWithError("wrong sample");
    }
  }
  state.SetBytesProcessed(state.iterations() * sampleBytes());
  store.close();
}

void OffloadTraces(benchmark::State& state) { readAll<OffloadDiskStore>(state, files().plain, 0.0f); }
void OffloadPackedTraces(benchmark::State& state) { readAll<OffloadDiskStore>(state, files().packed, 0.05f); }
void SegyTraces(benchmark::State& state) { readAll<SegyDiskStore>(state, files().segy, 0.0f); }

void cat(benchmark::State& state, std::string const& name) {
  std::vector<char> block(1 << 20);
  for (auto _ : state) {
    int const in = ::open(name.c_str(), O_RDONLY);
    while (::read(in, block.data(), block.size()) > 0) benchmark::DoNotOptimize(block.data());
    ::close(in);
  }
  state.SetBytesProcessed(state.iterations() * sampleBytes());
}

void CatOffload(benchmark::State& state) { cat(state, files().plain); }
void CatPackedOffload(benchmark::State& state) { cat(state, files().packed); }

void Unpack16(benchmark::State& state) {
  int const words = compression_moffld_int16Tlen(kSamples, 0);
  std::vector<int> records(static_cast<std::size_t>(words) * kRange);
  std::vector<float> out(static_cast<std::size_t>(kSamples) * kRange);
  for (unsigned int k = 0; k < kRange; ++k) {
    for (int s = 0; s < kSamples; ++s) out[k * kSamples + s] = sample(k, s);
    compression_moffld_int16(kSamples, &out[k * kSamples], false, &records[k * words], 0, 1);
  }
  for (auto _ : state) {
    for (unsigned int k = 0; k < kRange; ++k)
      compression_moffld_int16(kSamples, &out[k * kSamples], false, &records[k * words], 0, 0);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(state.iterations() * int64_t(4) * kSamples * kRange);
}

void Memcpy(benchmark::State& state) {
  std::vector<float> in(static_cast<std::size_t>(kSamples) * kRange, 1.0f), out(in.size());
  for (auto _ : state) {
    std::memcpy(out.data(), in.data(), 4 * in.size());
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(state.iterations() * int64_t(4) * kSamples * kRange);
}

}  // namespace

BENCHMARK(OffloadTraces)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(OffloadPackedTraces)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(SegyTraces)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(CatOffload)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(CatPackedOffload)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Unpack16)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(Memcpy)->Unit(benchmark::kMicrosecond)->UseRealTime();

BENCHMARK_MAIN();
