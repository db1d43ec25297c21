// What it costs to pack and send a large trace array, against one plain
// memory copy of the same bytes; and the byte swap kernels against memcpy.
//
// Packing paths for a 100 MB float array:
//   Memcpy100MB                    the yardstick: one copy into warm memory
//   PackCopy_GetBuffer_DevNull     pack() copies into the buffer, write()
//   PackAddressOf_Segments_DevNull packAddressOf(), writev() of the pieces:
//                                  no copy in user space at all
//   PackAddressOf_GetBuffer_DevNull the message assembled by getBuffer()
//   PackAddressOf_Segments_Socket  writev() into a socketpair that another
//                                  thread drains: the kernel's copy is the
//                                  only one
//   Memcpy100MB_Socket             the same bytes written straight from the
//                                  array, the floor for that transport
//   Receive100MB_FreshPacker       the message taken in 64 KB pieces into a
//                                  new Packer, whose buffer grows as they come
//   Receive100MB_FreshPacker_OnePiece  the body asked for in one piece: one
//                                  allocation of the size the header gives
//   Receive100MB_ReusedPacker      the same into a Packer that kept its room

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "foundation/Packer.h"
#include "foundation/vUtl.h"

namespace {

std::size_t const kTraceBytes = 100u * 1000u * 1000u;
std::size_t const kSwapBytes = 256u * 1024u * 1024u;

std::vector<float>& traceData() {
  static std::vector<float> data = [] {
    std::vector<float> v(kTraceBytes / sizeof(float));
    for (std::size_t i = 0; i < v.size(); ++i) v[i] = static_cast<float>(i % 1000) * 0.5f;
    return v;
  }();
  return data;
}

// Writes all pieces, however the descriptor splits them.
void writeAll(int fd, std::vector<iovec> iov) {
  std::size_t first = 0;
  while (first < iov.size()) {
    int const n = static_cast<int>(std::min<std::size_t>(iov.size() - first, 1024));
    ssize_t done = writev(fd, iov.data() + first, n);
    if (done < 0) {
      if (errno == EINTR) continue;
      std::abort();
    }
    while (first < iov.size() && static_cast<std::size_t>(done) >= iov[first].iov_len) {
      done -= static_cast<ssize_t>(iov[first].iov_len);
      ++first;
    }
    if (first < iov.size()) {
      iov[first].iov_base = static_cast<char*>(iov[first].iov_base) + done;
      iov[first].iov_len -= static_cast<std::size_t>(done);
    }
  }
}

std::vector<iovec> toIovec(std::vector<Packer::Segment> const& segments) {
  std::vector<iovec> iov;
  iov.reserve(segments.size());
  for (auto const& s : segments) iov.push_back(iovec{const_cast<unsigned char*>(s.data), s.size});
  return iov;
}

int devNull() {
  static int fd = open("/dev/null", O_WRONLY);
  return fd;
}

// A socketpair with a thread that reads everything that arrives.
class DrainedSocket {
 public:
  DrainedSocket() {
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, m_fds) != 0) std::abort();
    int const size = 1048576;
    setsockopt(m_fds[0], SOL_SOCKET, SO_SNDBUF, &size, sizeof size);
    setsockopt(m_fds[1], SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
    m_reader = std::thread([this] {
      std::vector<char> sink(1 << 20);
      while (read(m_fds[1], sink.data(), sink.size()) > 0) {
      }
    });
  }
  ~DrainedSocket() {
    close(m_fds[0]);
    m_reader.join();
    close(m_fds[1]);
  }
  int fd() const { return m_fds[0]; }

 private:
  int m_fds[2];
  std::thread m_reader;
};

void BM_Memcpy100MB(benchmark::State& state) {
  std::vector<float> const& data = traceData();
  std::vector<unsigned char> target(kTraceBytes + 64, 1);
  for (auto _ : state) {
    // The same alignment as the array in a Packer: header, one int, array head.
    std::memcpy(target.data() + 26, data.data(), kTraceBytes);
    benchmark::DoNotOptimize(target.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kTraceBytes));
}
BENCHMARK(BM_Memcpy100MB)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_PackCopy_GetBuffer_DevNull(benchmark::State& state) {
  std::vector<float> const& data = traceData();
  Packer p(static_cast<int>(kTraceBytes + 1000));
  for (auto _ : state) {
    p.pack(static_cast<int>(data.size()));
    p.pack(data.data(), static_cast<unsigned>(data.size()));
    unsigned char const* buffer = nullptr;
    int size = 0;
    p.getBuffer(&buffer, size, 1);
    if (write(devNull(), buffer, static_cast<std::size_t>(size)) != size) std::abort();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kTraceBytes));
}
BENCHMARK(BM_PackCopy_GetBuffer_DevNull)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_PackAddressOf_Segments_DevNull(benchmark::State& state) {
  std::vector<float> const& data = traceData();
  Packer p(1000);
  std::vector<Packer::Segment> segments;
  for (auto _ : state) {
    p.pack(static_cast<int>(data.size()));
    p.packAddressOf(data.data(), static_cast<unsigned>(data.size()));
    p.getSegments(segments, 1);
    writeAll(devNull(), toIovec(segments));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kTraceBytes));
}
BENCHMARK(BM_PackAddressOf_Segments_DevNull)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_PackAddressOf_GetBuffer_DevNull(benchmark::State& state) {
  std::vector<float> const& data = traceData();
  Packer p(1000);
  for (auto _ : state) {
    p.pack(static_cast<int>(data.size()));
    p.packAddressOf(data.data(), static_cast<unsigned>(data.size()));
    unsigned char const* buffer = nullptr;
    int size = 0;
    p.getBuffer(&buffer, size, 1);
    if (write(devNull(), buffer, static_cast<std::size_t>(size)) != size) std::abort();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kTraceBytes));
}
BENCHMARK(BM_PackAddressOf_GetBuffer_DevNull)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_PackAddressOf_Segments_Socket(benchmark::State& state) {
  std::vector<float> const& data = traceData();
  DrainedSocket socket;
  Packer p(1000);
  std::vector<Packer::Segment> segments;
  for (auto _ : state) {
    p.pack(static_cast<int>(data.size()));
    p.packAddressOf(data.data(), static_cast<unsigned>(data.size()));
    p.getSegments(segments, 1);
    writeAll(socket.fd(), toIovec(segments));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kTraceBytes));
}
BENCHMARK(BM_PackAddressOf_Segments_Socket)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_Memcpy100MB_Socket(benchmark::State& state) {
  std::vector<float> const& data = traceData();
  DrainedSocket socket;
  for (auto _ : state) {
    writeAll(socket.fd(), {iovec{const_cast<float*>(data.data()), kTraceBytes}});
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kTraceBytes));
}
BENCHMARK(BM_Memcpy100MB_Socket)->Unit(benchmark::kMillisecond)->UseRealTime();

// --- receiving ----------------------------------------------------------------------
// A 100 MB message taken in as a channel does: the header, then the body in
// 64 KB pieces (what one socket read gives). The buffer grows with what has
// arrived, eightfold, so a fresh Packer takes fresh pages a few times over;
// one reused for an exchange keeps its room and copies nothing more.

std::vector<unsigned char> const& traceMessage() {
  static std::vector<unsigned char> const message = [] {
    std::vector<float> const& data = traceData();
    Packer p(static_cast<int>(kTraceBytes + 1000));
    p.pack(static_cast<int>(data.size()));
    p.pack(data.data(), static_cast<unsigned>(data.size()));
    unsigned char const* buffer = nullptr;
    int size = 0;
    p.getBuffer(&buffer, size, 1);
    return std::vector<unsigned char>(buffer, buffer + size);
  }();
  return message;
}

void receiveInPieces(Packer& p, std::vector<unsigned char> const& m, int piece = 65536) {
  int const length = p.beginReceive(m.data());
  for (int got = 0; got < length; got += piece) {
    int const n = std::min(piece, length - got);
    std::memcpy(p.getReceiveBuffer(got, n), m.data() + 16 + got, static_cast<std::size_t>(n));
  }
  p.endReceive();
  p.discard();
}

void BM_Receive100MB_FreshPacker(benchmark::State& state) {
  std::vector<unsigned char> const& m = traceMessage();
  for (auto _ : state) {
    Packer p(1000);
    receiveInPieces(p, m);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kTraceBytes));
}
BENCHMARK(BM_Receive100MB_FreshPacker)->Unit(benchmark::kMillisecond)->UseRealTime();

// The whole body asked for at once: one allocation of the announced size,
// the cost a reader that trusts the header would pay.
void BM_Receive100MB_FreshPacker_OnePiece(benchmark::State& state) {
  std::vector<unsigned char> const& m = traceMessage();
  for (auto _ : state) {
    Packer p(1000);
    receiveInPieces(p, m, static_cast<int>(m.size()));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kTraceBytes));
}
BENCHMARK(BM_Receive100MB_FreshPacker_OnePiece)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_Receive100MB_ReusedPacker(benchmark::State& state) {
  std::vector<unsigned char> const& m = traceMessage();
  Packer p(1000);
  receiveInPieces(p, m);
  for (auto _ : state) receiveInPieces(p, m);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kTraceBytes));
}
BENCHMARK(BM_Receive100MB_ReusedPacker)->Unit(benchmark::kMillisecond)->UseRealTime();

// --- byte swapping over 256 MB ----------------------------------------------------

std::vector<unsigned char>& swapSource() {
  static std::vector<unsigned char> data = [] {
    std::vector<unsigned char> v(kSwapBytes);
    for (std::size_t i = 0; i < v.size(); ++i) v[i] = static_cast<unsigned char>(i * 31);
    return v;
  }();
  return data;
}

void BM_Memcpy256MB(benchmark::State& state) {
  std::vector<unsigned char> const& src = swapSource();
  std::vector<unsigned char> dst(kSwapBytes, 1);
  for (auto _ : state) {
    std::memcpy(dst.data(), src.data(), kSwapBytes);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kSwapBytes));
}
BENCHMARK(BM_Memcpy256MB)->Unit(benchmark::kMillisecond)->UseRealTime();

// In place: one read and one write of every byte, as memcpy.
void BM_SwapInPlace256MB(benchmark::State& state) {
  int const size = static_cast<int>(state.range(0));
  std::vector<unsigned char> data = swapSource();
  for (auto _ : state) {
    vUtl::swapBytes(data.data(), size, static_cast<int>(kSwapBytes / static_cast<std::size_t>(size)));
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kSwapBytes));
}
BENCHMARK(BM_SwapInPlace256MB)->Arg(2)->Arg(4)->Arg(8)->Unit(benchmark::kMillisecond)->UseRealTime();

// Swapping while copying: the same traffic as memcpy.
void BM_SwapCopy256MB(benchmark::State& state) {
  int const size = static_cast<int>(state.range(0));
  std::vector<unsigned char> const& src = swapSource();
  std::vector<unsigned char> dst(kSwapBytes, 1);
  unsigned const n = static_cast<unsigned>(kSwapBytes / static_cast<std::size_t>(size));
  for (auto _ : state) {
    vUtl::swapBytes(src.data(), size, size, n, 1, dst.data(), size);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kSwapBytes));
}
BENCHMARK(BM_SwapCopy256MB)->Arg(2)->Arg(4)->Arg(8)->Unit(benchmark::kMillisecond)->UseRealTime();

// Records of 240 bytes with a 4-byte header word at offset 8 gathered into a
// column: the file store case. Only the words are counted.
void BM_SwapStridedColumn(benchmark::State& state) {
  std::vector<unsigned char> const& src = swapSource();
  unsigned const nRecords = static_cast<unsigned>(kSwapBytes / 240);
  std::vector<unsigned char> column(static_cast<std::size_t>(nRecords) * 4);
  for (auto _ : state) {
    vUtl::swapBytes(src.data() + 8, 4, 240, nRecords, 1, column.data(), 4);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(nRecords) * 4);
}
BENCHMARK(BM_SwapStridedColumn)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
