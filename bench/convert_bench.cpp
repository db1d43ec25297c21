// Sample conversion and byte swapping against memcpy of the same bytes.
//
// Every kernel reads 256 MB of 32-bit samples and writes 256 MB, as memcpy
// does, so the ratio of times is the ratio of speeds. The kernels are the
// inner loops of every file store, and they should stay within a small
// factor of the memory bandwidth: after the run a summary prints each
// kernel's speed as a fraction of memcpy's, measured in the same run.
//
//   convert_bench [--benchmark_repetitions=N] [--benchmark_filter=...]

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "foundation/DataType.h"
#include "foundation/vUtl.h"

namespace {

std::size_t const kBytes = 256u << 20;
std::size_t const kSamples = kBytes / 4;

// Source and target live for the whole run and are touched once up front, so
// no iteration pays for page faults.
struct Buffers {
  std::vector<uint32_t> source;
  std::vector<uint32_t> target;
  Buffers() : source(kSamples), target(kSamples) {
    uint32_t x = 12345;
    for (auto& v : source) {
      x = x * 1664525u + 1013904223u;
      // Integers within float precision, and IBM words of sane exponents.
      v = (x >> 8) ^ 0x41000000u;
    }
  }
};

Buffers& buffers() {
  static Buffers b;
  return b;
}

template <class F>
void run(benchmark::State& state, F kernel) {
  Buffers& b = buffers();
  for (auto _ : state) {
    kernel(b.source.data(), b.target.data());
    benchmark::DoNotOptimize(b.target.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kBytes));
}

void Memcpy(benchmark::State& state) {
  run(state, [](void const* s, void* t) { std::memcpy(t, s, kBytes); });
}

void SwapBigToLittle(benchmark::State& state) {
  run(state, [](void const* s, void* t) { vUtl::swapBytes32(s, t, kSamples); });
}

void SwapInPlace(benchmark::State& state) {
  // Swapping the target back and forth: the same bytes read and written.
  run(state, [](void const*, void* t) { vUtl::swapBytes(t, 4, static_cast<int>(kSamples)); });
}

void Int32ToFloat32(benchmark::State& state) {
  run(state, [](void const* s, void* t) { vUtl::copyConvert(s, vINT32, t, vFLOAT32, kSamples); });
}

void SwapInt32ToFloat32(benchmark::State& state) {
  run(state, [](void const* s, void* t) {
    vUtl::copyConvert(s, vINT32, t, vFLOAT32, kSamples, vUtl::ConvertSwapSource);
  });
}

void Float32ToInt32Nearest(benchmark::State& state) {
  run(state, [](void const* s, void* t) { vUtl::copyConvert(s, vFLOAT32, t, vINT32, kSamples, vUtl::ConvertClip); });
}

void SwapIbmToIeee(benchmark::State& state) {
  run(state, [](void const* s, void* t) { vUtl::ibmToIeee(s, t, kSamples, true); });
}

void IeeeToIbmSwap(benchmark::State& state) {
  run(state, [](void const* s, void* t) { vUtl::ieeeToIbm(s, t, kSamples, true); });
}

BENCHMARK(Memcpy)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(SwapBigToLittle)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(SwapInPlace)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Int32ToFloat32)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(SwapInt32ToFloat32)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Float32ToInt32Nearest)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(SwapIbmToIeee)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(IeeeToIbmSwap)->Unit(benchmark::kMillisecond)->UseRealTime();

// The console report, and at the end each kernel's speed relative to
// memcpy's (time of memcpy over time of the kernel; the median when runs
// are repeated).
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(std::vector<Run> const& reports) override {
    benchmark::ConsoleReporter::ReportRuns(reports);
    for (Run const& r : reports) {
      if (r.error_occurred) continue;
      std::string const name = r.run_name.function_name;
      if (r.run_type == Run::RT_Aggregate) {
        if (r.aggregate_name == "median") m_median[name] = r.GetAdjustedRealTime();
        continue;
      }
      if (m_single.find(name) == m_single.end()) m_order.push_back(name);
      m_single[name] = r.GetAdjustedRealTime();
    }
  }

  void Finalize() override {
    benchmark::ConsoleReporter::Finalize();
    if (m_single.find("Memcpy") == m_single.end()) return;
    double const base = time("Memcpy");
    std::printf("\nSpeed relative to memcpy of the same %zu MB (required: at least 0.333)\n", kBytes >> 20);
    for (std::string const& name : m_order) {
      if (name == "Memcpy") continue;
      double const ratio = base / time(name);
      std::printf("  %-24s %6.3f%s\n", name.c_str(), ratio, ratio < 1.0 / 3.0 ? "  BELOW" : "");
    }
    std::fflush(stdout);
  }

 private:
  double time(std::string const& name) const {
    auto const m = m_median.find(name);
    return m != m_median.end() ? m->second : m_single.at(name);
  }

  std::map<std::string, double> m_single;
  std::map<std::string, double> m_median;
  std::vector<std::string> m_order;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
