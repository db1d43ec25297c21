// Bin grid conversions and projection of a million points, against PROJ's
// cs2cs on the same million points (run as a program, reading a file, so its
// figure includes parsing and printing text: the way a user would run it).
//
//   geometry_bench [--benchmark_filter=...]

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "geometry/CMPBasicGrid.h"
#include "geometry/OGRProjector.h"

namespace {

int const kPoints = 1000000;

CMPBasicGrid const& grid() {
  // 1000 x 1000 bins, rotated, so a million CMPs.
  static CMPBasicGrid const g(1, 1, 1000, 1, 1000, 2000, 1, 1000, vCoordinate(431000.0, 5760000.0), 25.0f, 12.5f,
                              0.5236);
  return g;
}

// Longitudes and latitudes round the central meridian of UTM zone 31.
void lonLat(std::vector<double>& x, std::vector<double>& y) {
  x.resize(kPoints);
  y.resize(kPoints);
  for (int i = 0; i < kPoints; ++i) {
    x[i] = 1.0 + 4.0 * (i % 1000) / 1000.0;
    y[i] = 50.0 + 3.0 * (i / 1000) / 1000.0;
  }
}

void BM_WorldToBinAndCMP(benchmark::State& state) {
  CMPBasicGrid const& g = grid();
  std::vector<vCoordinate> points;
  for (int i = 1; i <= kPoints; ++i) points.push_back(g.convertSurveyToRW(g.convertCMPToSurvey(i)));
  for (auto _ : state) {
    long long sum = 0;
    int cmp = 0;
    BinPos bin;
    for (vCoordinate const& p : points)
      if (g.convertRWToCMPandBin(p, cmp, bin)) sum += cmp;
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * kPoints);
}

void BM_CMPToWorld(benchmark::State& state) {
  CMPBasicGrid const& g = grid();
  for (auto _ : state) {
    double sum = 0.0;
    for (int cmp = 1; cmp <= kPoints; ++cmp) sum += g.convertSurveyToRW(g.convertCMPToSurvey(cmp)).getX();
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * kPoints);
}

void BM_ProjectBatch(benchmark::State& state) {
  CoordinateProjection projection;
  projection.setPCSCode(32631);
  OGRProjector projector;
  projector.setProjection(&projection);
  std::vector<double> x0, y0;
  lonLat(x0, y0);
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<double> x(x0), y(y0);
    state.ResumeTiming();
    if (!projector.convertLatLongToRW(kPoints, x.data(), y.data(), 0)) state.SkipWithError("projection failed");
    benchmark::DoNotOptimize(x.data());
  }
  state.SetItemsProcessed(state.iterations() * kPoints);
}

void BM_Cs2cs(benchmark::State& state) {
  std::string const file = "/tmp/geometry_bench_points.txt";
  std::vector<double> x, y;
  lonLat(x, y);
  FILE* out = std::fopen(file.c_str(), "w");
  for (int i = 0; i < kPoints; ++i) std::fprintf(out, "%.9f %.9f\n", y[i], x[i]);
  std::fclose(out);
  std::string const command = "cs2cs -f %.3f EPSG:4326 EPSG:32631 < " + file + " > /dev/null";
  for (auto _ : state)
    if (std::system(command.c_str()) != 0) state.SkipWithError("cs2cs failed");
  std::remove(file.c_str());
  state.SetItemsProcessed(state.iterations() * kPoints);
}

BENCHMARK(BM_WorldToBinAndCMP)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CMPToWorld)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ProjectBatch)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Cs2cs)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
