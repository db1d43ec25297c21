// Reading a 256 MB file from the page cache through FS::iFile::read, against
// plain pread(2) into the same buffer: what the checked file object and the
// record file service cost on the path that every file store reads by.
//
//   FSRead/<chunk>  FS::iFile::read of consecutive chunks, position given
//                   each time (no seek, as the position is the current one)
//   Pread/<chunk>   pread of the same chunks
//
// Chunks of 1 MB and 64 KB. The file is written once and read once before
// timing, so both paths read warm pages.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "syslayer/FS.h"

namespace {

int64_t const kFileBytes = int64_t(256) << 20;

class BenchFile {
 public:
  BenchFile() {
    char const* tmp = std::getenv("TMPDIR");
    m_name = std::string(tmp && *tmp ? tmp : "/tmp") + "/fs_read_bench_" + std::to_string(::getpid()) + ".dat";
    int const fd = ::open(m_name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    std::vector<char> block(1 << 20);
    for (size_t i = 0; i < block.size(); ++i) block[i] = static_cast<char>(i * 31);
    for (int64_t done = 0; fd >= 0 && done < kFileBytes; done += static_cast<int64_t>(block.size()))
      if (::write(fd, block.data(), block.size()) != static_cast<ssize_t>(block.size())) break;
    if (fd >= 0) ::close(fd);
    // One pass to bring the pages in.
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

void FSRead(benchmark::State& state) {
  int64_t const chunk = state.range(0);
  std::vector<char> buffer(static_cast<size_t>(chunk));
  FS::iFile file = FS::open(benchFile().name().c_str(), FS::ByteFile);
  if (!file.isGood()) file.terminate("FSRead");
  for (auto _ : state) {
    for (int64_t pos = 1; pos <= kFileBytes; pos += chunk) {
      long long const got = file.read(pos, buffer.data(), chunk);
      if (got != chunk) state.SkipWithError("short read");
    }
    benchmark::DoNotOptimize(buffer.data());
  }
  file.close();
  state.SetBytesProcessed(state.iterations() * kFileBytes);
}

void Pread(benchmark::State& state) {
  int64_t const chunk = state.range(0);
  std::vector<char> buffer(static_cast<size_t>(chunk));
  int const fd = ::open(benchFile().name().c_str(), O_RDONLY);
  for (auto _ : state) {
    for (int64_t off = 0; off < kFileBytes; off += chunk) {
      if (::pread(fd, buffer.data(), static_cast<size_t>(chunk), static_cast<off_t>(off)) != chunk)
        state.SkipWithError("short read");
    }
    benchmark::DoNotOptimize(buffer.data());
  }
  ::close(fd);
  state.SetBytesProcessed(state.iterations() * kFileBytes);
}

BENCHMARK(FSRead)->Arg(1 << 20)->Arg(64 << 10)->Unit(benchmark::kMillisecond);
BENCHMARK(Pread)->Arg(1 << 20)->Arg(64 << 10)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
