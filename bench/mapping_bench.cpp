// An attribute computed by a mapping expression over a million instances of
// a float attribute, against a hand-written loop doing the same arithmetic
// on the same read. Both read the source from an in-memory store.
//
//   mapping_bench [--benchmark_filter=...]

#include <benchmark/benchmark.h>

#include "decorator/AttributeMappingDecorator.h"
#include "filestore/memory/InMemoryStore.h"
#include "project/Project.h"

namespace {

unsigned int const kInstances = 1000000;

vHandle<Store> source() {
  static vHandle<Store> store = [] {
    vHandle<InMemoryStore> s(new InMemoryStore(vHandle<Project>()));
    KeyList keys;
    keys.addKey(Attribute("CDP", "CDP", vINT32));
    s->create("bench", "seismic", "3d", keys, nullptr);
    s->addInstances(kInstances);
    Attribute amp("AMP", "", vFLOAT32);
    s->addAttribute(amp);
    amp.resize(kInstances);
    float* p = amp.getFloat32Pointer(1);
    for (unsigned int i = 0; i < kInstances; ++i) p[i] = static_cast<float>(i % 1000) * 0.5f;
    s->write(amp, 1, kInstances);
    return vHandle_cast<Store>(s);
  }();
  return store;
}

// state.range(0): 1 for an expression of plain arithmetic (evaluated a
// column at a time), 0 for the same with a bit operator (muParser's bulk
// mode, row by row).
void BM_MappingExpression(benchmark::State& state) {
  AttributeMappingDecorator view(source());
  view.processExpression(state.range(0) ? "SCALED:f = AMP * 2.5 + AMP / 4 - 1"
                                        : "SCALED:f = (AMP * 2.5 + AMP / 4 - 1) | 0");
  Attribute scaled = view.getAttribute("SCALED");
  for (auto _ : state) {
    view.read(scaled, 1, kInstances);
    benchmark::DoNotOptimize(scaled.getFloat32Pointer(1));
  }
  state.SetItemsProcessed(state.iterations() * kInstances);
}

void BM_HandWrittenLoop(benchmark::State& state) {
  vHandle<Store> store = source();
  Attribute amp = store->getAttribute("AMP");
  Attribute scaled("SCALED", "", vFLOAT32);
  for (auto _ : state) {
    store->read(amp, 1, kInstances);
    scaled.resize(kInstances);
    float const* in = amp.getFloat32Pointer(1);
    float* out = scaled.getFloat32Pointer(1);
    for (unsigned int i = 0; i < kInstances; ++i) {
      double const a = in[i];
      out[i] = static_cast<float>(a * 2.5 + a / 4 - 1);
    }
    benchmark::DoNotOptimize(out);
  }
  state.SetItemsProcessed(state.iterations() * kInstances);
}

BENCHMARK(BM_MappingExpression)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HandWrittenLoop)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
