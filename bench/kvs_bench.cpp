// A 100 MB float array sent to a real kvsd and selected back through the
// Kvs library, against the same bytes sent and echoed back over a plain
// loopback TCP connection. Both count 200 MB per iteration (out and back).
//
//   KvsSendAndSelect  KvsWrite into the table's spool file, KvsReplace to
//                     kvsd (which keeps the table in a file), KvsSelect and
//                     KvsRead of the column
//                     (counters: milliseconds per step, and cpu_ms, the
//                     processor time of this process and kvsd together)
//   LoopbackCopy      send and echo of the raw bytes over a TCP socket

#include <benchmark/benchmark.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>
#include <vector>

#include "database/kvs/Kvs.h"
#include "database/kvs/KvsDict.h"
#include "database/kvs/KvsSocket.h"

namespace {

std::size_t const kBytes = 100u * 1000u * 1000u;

std::vector<float>& column() {
  static std::vector<float> v = [] {
    std::vector<float> x(kBytes / sizeof(float));
    for (std::size_t i = 0; i < x.size(); ++i) x[i] = static_cast<float>(i % 1000) * 0.5f;
    return x;
  }();
  return v;
}

// kvsd in a scratch directory, and the library initialised against it.
struct Daemon {
  std::string root;
  pid_t pid = -1;
  Daemon() {
    char tmpl[] = "/tmp/kvs_benchXXXXXX";
    root = mkdtemp(tmpl);
    std::filesystem::create_directories(root + "/data");
    std::vector<kvs::KvsDtElement> d[4] = {{{"X", 1, kvs::KvsFmtFLT, 4}}, {{"SEIS", 1}}, {{"RCVS", 1, 1}}, {{"RCV", 1}}};
    auto bytes = kvs::KvsDtBuild(d);
    std::ofstream(root + "/data/KvsDict.bin", std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    std::ofstream(root + "/config.kvs") << "Kvs.server: 127.0.0.1\nKvs.base: bench\n";
    int p[2];
    if (pipe(p) != 0) std::abort();
    std::string bin = std::filesystem::read_symlink("/proc/self/exe").parent_path().string() + "/kvsd";
    pid = fork();
    if (pid == 0) {
      dup2(p[1], 1);
      execl(bin.c_str(), "kvsd", "-d", (root + "/kvsd").c_str(), "-p", "0", static_cast<char*>(nullptr));
      _exit(127);
    }
    close(p[1]);
    char line[32] = {};
    if (read(p[0], line, sizeof line - 1) <= 0) std::abort();
    close(p[0]);
    setenv("KVSPORT", line, 1);
    setenv("KVSROOT", root.c_str(), 1);
    setenv("TMPDIR", root.c_str(), 1);
    setenv("KVSPROJ", "bench", 1);
    if (kvs::KvsInit() != 0) std::abort();
  }
  ~Daemon() {
    kvs::KvsExit();
    kill(pid, SIGTERM);
    waitpid(pid, nullptr, 0);
    std::filesystem::remove_all(root);
  }
};

// User and system time of this process and of process pid, in seconds.
double cpuSeconds(pid_t pid) {
  rusage self{};
  getrusage(RUSAGE_SELF, &self);
  double s = double(self.ru_utime.tv_sec + self.ru_stime.tv_sec) +
             double(self.ru_utime.tv_usec + self.ru_stime.tv_usec) / 1e6;
  std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
  std::string text((std::istreambuf_iterator<char>(stat)), std::istreambuf_iterator<char>());
  std::size_t close = text.rfind(')');
  if (close == std::string::npos) return s;
  std::istringstream fields(text.substr(close + 2));
  std::string skip;
  for (int k = 0; k < 11; ++k) fields >> skip;  // state .. cmajflt
  long utime = 0, stime = 0;
  fields >> utime >> stime;
  return s + double(utime + stime) / double(sysconf(_SC_CLK_TCK));
}

void KvsSendAndSelect(benchmark::State& state) {
  Daemon daemon;
  kvs::KvsObject session = kvs::KvsFirst(kvs::KvsRoot());
  std::vector<float>& x = column();
  std::vector<float> back(x.size());
  long n = static_cast<long>(x.size());
  double cpu0 = cpuSeconds(daemon.pid);
  // Seconds spent in each step, reported per iteration as counters.
  double write = 0, send = 0, select = 0, read = 0, close = 0;
  auto since = [](std::chrono::steady_clock::time_point& t0) {
    auto t1 = std::chrono::steady_clock::now();
    double s = std::chrono::duration<double>(t1 - t0).count();
    t0 = t1;
    return s;
  };
  for (auto _ : state) {
    using namespace kvs;
    auto t0 = std::chrono::steady_clock::now();
    KvsObject ds = KvsOpen(session, KvsNmode, 2L, KvsNtype, "SEIS", KvsNident, "big", 0L);
    KvsObject t = KvsCreate(ds, KvsNname, "RCVS", 0L);
    KvsCreate(t, KvsNname, "X", KvsNdata, x.data(), 0L);
    if (KvsWrite(t, n) != n) state.SkipWithError("write failed");
    write += since(t0);
    if (KvsReplace(ds) != 0) state.SkipWithError("send failed");
    send += since(t0);
    KvsClose(ds);
    close += since(t0);
    ds = KvsOpen(session, KvsNmode, 1L, KvsNtype, "SEIS", KvsNident, "big", 0L);
    select += since(t0);
    KvsObject a = ds ? KvsFind(KvsFind(ds, "RCVS"), "X") : nullptr;
    KvsSet(a, KvsNdata, back.data(), 0L);
    if (!a || KvsRead(a, n) != n || back[n - 1] != x[n - 1]) state.SkipWithError("select failed");
    read += since(t0);
    KvsClose(ds);
    close += since(t0);
  }
  auto per = [&](double s) { return benchmark::Counter(s * 1000, benchmark::Counter::kAvgIterations); };
  // Processor time of the library's process (all threads) and of kvsd:
  // on a shared machine a steadier figure than the elapsed time.
  state.counters["cpu_ms"] = per(cpuSeconds(daemon.pid) - cpu0);
  state.counters["write_ms"] = per(write);
  state.counters["send_ms"] = per(send);
  state.counters["select_ms"] = per(select);
  state.counters["read_ms"] = per(read);
  state.counters["close_ms"] = per(close);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 2 * static_cast<int64_t>(kBytes));
}

void LoopbackCopy(benchmark::State& state) {
  int port = 0;
  int lfd = kvs::KvsSkListen(0, &port);
  int out = kvs::KvsSkConnect("127.0.0.1", port, 0);
  int in = accept(lfd, nullptr, nullptr);
  std::vector<float>& x = column();
  std::vector<unsigned char> echo(kBytes), back(kBytes);
  auto pump = [](int fd, const unsigned char* p, std::size_t n) {
    while (n) {
      ssize_t w = send(fd, p, n, MSG_NOSIGNAL);
      if (w <= 0) return;
      p += w, n -= static_cast<std::size_t>(w);
    }
  };
  auto drink = [](int fd, unsigned char* p, std::size_t n) {
    while (n) {
      ssize_t r = read(fd, p, n);
      if (r <= 0) return;
      p += r, n -= static_cast<std::size_t>(r);
    }
  };
  for (auto _ : state) {
    std::thread peer([&] {
      drink(in, echo.data(), kBytes);
      pump(in, echo.data(), kBytes);
    });
    pump(out, reinterpret_cast<const unsigned char*>(x.data()), kBytes);
    drink(out, back.data(), kBytes);
    peer.join();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 2 * static_cast<int64_t>(kBytes));
  close(in), close(out), close(lfd);
}

}  // namespace

BENCHMARK(KvsSendAndSelect)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(LoopbackCopy)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_MAIN();
