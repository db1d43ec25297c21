// A 100 MB float array over a real TCP connection on this host, as a Packer
// through the channels against the same bytes written raw over the same
// kind of socket. The ratio of the two is what framing and the Packer cost
// on top of the transport.
//
//   PackerOverChannel_ReusedReader  packAddressOf() and Packer::send (one
//                                   gathered write straight from the array);
//                                   the reader takes each message into a
//                                   Packer that keeps its room
//   PackerOverChannel_FreshReader   the same, a new Packer per message on the
//                                   reading side, as a reply Packer is
//   RawBytesOverChannel             sendChar8 of the array; the reader takes
//                                   the bytes into a buffer of its own
//
// Every iteration ends when the reader has the whole message and has said
// so with one byte, so the figures are of delivery, not of buffering.

#include <benchmark/benchmark.h>

#include <memory>
#include <thread>
#include <vector>

#include "foundation/Packer.h"
#include "foundation/vString.h"
#include "remote/CommChan.h"
#include "remote/CommChanMaker.h"

namespace {

std::size_t const kBytes = 100u * 1000u * 1000u;

std::vector<float>& traceData() {
  static std::vector<float> data = [] {
    std::vector<float> v(kBytes / sizeof(float));
    for (std::size_t i = 0; i < v.size(); ++i) v[i] = static_cast<float>(i % 1000) * 0.5f;
    return v;
  }();
  return data;
}

// A connected pair over TCP: the writer's end here, the reader's end handed
// to a thread.
struct Connection {
  vHandle<CommChan> writer;
  vHandle<CommChan> reader;
  Connection() {
    int port = 0;
    writer = CommChanMaker::remote(port);
    reader = CommChanMaker::connect("localhost", port);
    writer->accept();
  }
};

enum class Reading { ReusedPacker, FreshPacker, Raw };

void readerLoop(CommChan* chan, Reading how) {
  Packer reused(1008);
  std::vector<char> raw(how == Reading::Raw ? kBytes : 0);
  for (;;) {
    char stop = 0;
    if (how == Reading::Raw) {
      if (chan->receiveChar8(&stop, 1) != CommChan::OK || stop != 0) return;
      if (chan->receiveChar8(raw.data(), static_cast<int>(kBytes)) != CommChan::OK) return;
    } else {
      std::unique_ptr<Packer> fresh;
      Packer* in = &reused;
      if (how == Reading::FreshPacker) {
        fresh.reset(new Packer(1008));
        in = fresh.get();
      }
      if (in->receive(*chan) != CommChan::OK) return;
      in->discard();
      if (in->getMessageTag() < 0) return;
    }
    char const done = 1;
    if (chan->sendChar8(&done, 1) != CommChan::OK) return;
  }
}

void packerOverChannel(benchmark::State& state, Reading how) {
  std::vector<float>& data = traceData();
  Connection c;
  std::thread reader(readerLoop, c.reader.get(), how);
  Packer p(100);
  for (auto _ : state) {
    p.pack(41);
    p.packAddressOf(data.data(), static_cast<unsigned>(data.size()));
    if (p.send(c.writer.get(), 1) != CommChan::OK) state.SkipWithError("send failed");
    char done = 0;
    if (c.writer->receiveChar8(&done, 1) != CommChan::OK) state.SkipWithError("no answer");
  }
  p.pack(0);
  p.send(c.writer.get(), -1);
  reader.join();
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kBytes));
}

void BM_PackerOverChannel_ReusedReader(benchmark::State& state) { packerOverChannel(state, Reading::ReusedPacker); }
void BM_PackerOverChannel_FreshReader(benchmark::State& state) { packerOverChannel(state, Reading::FreshPacker); }

void BM_RawBytesOverChannel(benchmark::State& state) {
  std::vector<float>& data = traceData();
  Connection c;
  std::thread reader(readerLoop, c.reader.get(), Reading::Raw);
  for (auto _ : state) {
    char const go = 0;
    c.writer->sendChar8(&go, 1);
    if (c.writer->sendChar8(reinterpret_cast<char const*>(data.data()), static_cast<int>(kBytes)) != CommChan::OK)
      state.SkipWithError("send failed");
    char done = 0;
    if (c.writer->receiveChar8(&done, 1) != CommChan::OK) state.SkipWithError("no answer");
  }
  char const stop = 1;
  c.writer->sendChar8(&stop, 1);
  reader.join();
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kBytes));
}

}  // namespace

BENCHMARK(BM_RawBytesOverChannel)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_PackerOverChannel_ReusedReader)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_PackerOverChannel_FreshReader)->Unit(benchmark::kMillisecond)->UseRealTime();

BENCHMARK_MAIN();
