// Attribute comparisons and scalar reads.
//
// Names are interned, so Attribute::operator== compares two table pointers
// and operator< two ranks: neither touches text. Each comparison benchmark
// makes a million calls per iteration over the same pairs of attributes,
// whose names share a long prefix (as header names do), against strcmp of
// the same names and against vString's own text comparison.
//
// The scalar benchmarks read one value of each of a million instances held
// in one block: through getInt32(n), through getPointer(n), and from the raw
// array, which is the floor.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "attribute/Attribute.h"
#include "foundation/vString.h"

namespace {

int const kNAttributes = 1000;
int const kCalls = 1000000;

struct Pairs {
  Pairs() {
    attributes.reserve(kNAttributes);
    for (int i = 0; i < kNAttributes; ++i) {
      char name[64];
      std::snprintf(name, sizeof name, "SEISMIC_TRACE_HEADER_WORD_%04d", i);
      attributes.push_back(Attribute(name, "HEADER", vINT32));
      names.push_back(attributes.back().getName().c_str());
    }
    // Fixed partners: a tenth of the pairs are the same name.
    for (int k = 0; k < kCalls; ++k) {
      int const a = k % kNAttributes;
      int const b = (k % 10 == 0) ? a : (a * 7 + k / kNAttributes + 1) % kNAttributes;
      left.push_back(a);
      right.push_back(b);
    }
  }
  std::vector<Attribute> attributes;
  std::vector<char const*> names;
  std::vector<int> left;
  std::vector<int> right;
};

Pairs const& pairs() {
  static Pairs const p;
  return p;
}

void BM_AttributeEqual(benchmark::State& state) {
  Pairs const& p = pairs();
  for (auto _ : state) {
    int n = 0;
    for (int k = 0; k < kCalls; ++k) n += p.attributes[p.left[k]] == p.attributes[p.right[k]];
    benchmark::DoNotOptimize(n);
  }
  state.SetItemsProcessed(state.iterations() * kCalls);
}
BENCHMARK(BM_AttributeEqual);

void BM_AttributeLess(benchmark::State& state) {
  Pairs const& p = pairs();
  for (auto _ : state) {
    int n = 0;
    for (int k = 0; k < kCalls; ++k) n += p.attributes[p.left[k]] < p.attributes[p.right[k]];
    benchmark::DoNotOptimize(n);
  }
  state.SetItemsProcessed(state.iterations() * kCalls);
}
BENCHMARK(BM_AttributeLess);

void BM_StrcmpEqual(benchmark::State& state) {
  Pairs const& p = pairs();
  for (auto _ : state) {
    int n = 0;
    for (int k = 0; k < kCalls; ++k) n += std::strcmp(p.names[p.left[k]], p.names[p.right[k]]) == 0;
    benchmark::DoNotOptimize(n);
  }
  state.SetItemsProcessed(state.iterations() * kCalls);
}
BENCHMARK(BM_StrcmpEqual);

void BM_StrcmpLess(benchmark::State& state) {
  Pairs const& p = pairs();
  for (auto _ : state) {
    int n = 0;
    for (int k = 0; k < kCalls; ++k) n += std::strcmp(p.names[p.left[k]], p.names[p.right[k]]) < 0;
    benchmark::DoNotOptimize(n);
  }
  state.SetItemsProcessed(state.iterations() * kCalls);
}
BENCHMARK(BM_StrcmpLess);

void BM_VStringLess(benchmark::State& state) {
  Pairs const& p = pairs();
  for (auto _ : state) {
    int n = 0;
    for (int k = 0; k < kCalls; ++k)
      n += p.attributes[p.left[k]].getName() < p.attributes[p.right[k]].getName();
    benchmark::DoNotOptimize(n);
  }
  state.SetItemsProcessed(state.iterations() * kCalls);
}
BENCHMARK(BM_VStringLess);

struct Store {
  Store() : cdp("cdp", "header", vINT32) {
    cdp.resize(kCalls);
    int* p = cdp.getInt32Pointer(1);
    for (int i = 0; i < kCalls; ++i) p[i] = i;
  }
  Attribute cdp;
};

Store& store() {
  static Store s;
  return s;
}

void BM_ScalarGetInt32(benchmark::State& state) {
  Attribute const& a = store().cdp;
  for (auto _ : state) {
    long long sum = 0;
    for (unsigned int i = 1; i <= static_cast<unsigned int>(kCalls); ++i) sum += a.getInt32(i);
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * kCalls);
}
BENCHMARK(BM_ScalarGetInt32);

void BM_ScalarGetPointer(benchmark::State& state) {
  Attribute const& a = store().cdp;
  for (auto _ : state) {
    long long sum = 0;
    for (unsigned int i = 1; i <= static_cast<unsigned int>(kCalls); ++i)
      sum += *static_cast<int const*>(a.getPointer(i));
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * kCalls);
}
BENCHMARK(BM_ScalarGetPointer);

void BM_ScalarRawArray(benchmark::State& state) {
  int const* p = store().cdp.getInt32Pointer(1);
  for (auto _ : state) {
    long long sum = 0;
    for (int i = 0; i < kCalls; ++i) sum += p[i];
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * kCalls);
}
BENCHMARK(BM_ScalarRawArray);

}  // namespace

BENCHMARK_MAIN();
