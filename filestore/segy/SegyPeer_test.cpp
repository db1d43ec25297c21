// Files written by an independent SEG-Y writer (segyio, run by the system's
// Python) read back through the store: IBM and IEEE samples, big-endian,
// with every value telling its trace, sample and header position.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "filestore/segy/SegyDiskStore.h"
#include "filestore/segy/SegyTesting.h"
#include "syslayer/FSTesting.h"

namespace {

char const* const kPython = "/usr/bin/python3";

// Writes <path> with <format> (1 or 5), <traces> traces of <samples>
// samples: sample s of trace t is t * 1000 + s, the header field at byte
// offset o is t * 1000 + o.
char const* const kWriter = R"PY(
import sys
import numpy as np
import segyio

path, fmt, ntraces, nsamples = sys.argv[1], int(sys.argv[2]), int(sys.argv[3]), int(sys.argv[4])
spec = segyio.spec()
spec.format = fmt
spec.samples = list(range(nsamples))
spec.tracecount = ntraces
spec.iline = 189
spec.xline = 193
spec.sorting = 0
fields = {
    4: segyio.TraceField.TRACE_SEQUENCE_FILE,
    8: segyio.TraceField.FieldRecord,
    12: segyio.TraceField.TraceNumber,
    16: segyio.TraceField.EnergySourcePoint,
    20: segyio.TraceField.CDP,
    24: segyio.TraceField.CDP_TRACE,
    72: segyio.TraceField.SourceX,
    76: segyio.TraceField.SourceY,
    80: segyio.TraceField.GroupX,
    84: segyio.TraceField.GroupY,
}
with segyio.create(path, spec) as f:
    f.text[0] = "C 1 WRITTEN BY SEGYIO FOR THE STORE TESTS"
    f.bin.update(hdt=2000, hns=nsamples, format=fmt)
    for i in range(ntraces):
        t = i + 1
        f.header[i] = {field: t * 1000 + offset for offset, field in fields.items()}
        f.trace[i] = np.array([t * 1000 + s for s in range(1, nsamples + 1)], dtype=np.float32)
)PY";

bool havePeer() {
  std::string const probe = std::string(kPython) + " -c 'import segyio, numpy' > /dev/null 2>&1";
  return std::system(probe.c_str()) == 0;
}

class SegyPeerTest : public ::testing::TestWithParam<int> {
 protected:
  void SetUp() override {
    if (!havePeer()) GTEST_SKIP() << "segyio is not installed for " << kPython;
    script = dir / "writer.py";
    fs_testing::writeFile(script, kWriter);
  }
  std::string writeWithPeer(int format, int traces, int samples) {
    std::string const path = dir / ("peer" + std::to_string(format) + ".sgy");
    std::string const command = std::string(kPython) + " " + script + " " + path + " " + std::to_string(format) +
                                " " + std::to_string(traces) + " " + std::to_string(samples);
    EXPECT_EQ(0, std::system(command.c_str())) << command;
    return path;
  }

  fs_testing::TempDir dir;
  std::string script;
};

TEST_P(SegyPeerTest, ReadsEveryValueThatThePeerWrote) {
  int const format = GetParam();
  unsigned int const traces = 23;
  unsigned int const samples = 50;
  std::string const path = writeWithPeer(format, static_cast<int>(traces), static_cast<int>(samples));
  segy_testing::Recording recording;
  SegyDiskStore store;
  store.open(vFilename(path.c_str()));
  EXPECT_TRUE(recording.errors().empty());
  EXPECT_TRUE(store.getBinaryHeader()->isByteSwapped()) << "the peer writes big-endian";
  EXPECT_EQ(format, store.getBinaryHeader()->getFormatCode());
  ASSERT_EQ(traces, store.getNInstances());
  EXPECT_EQ(std::string("C 1 WRITTEN BY SEGYIO FOR THE STORE TESTS"),
            std::string(store.getEBCDICHeaderInASCII().c_str(), 41));
  Attribute trace = store.getAttribute("TRACE");
  EXPECT_EQ(static_cast<int>(samples), trace.getLength());
  EXPECT_EQ(2.0, trace.getSampleRate());
  store.read(trace, 1, traces);
  for (unsigned int t = 1; t <= traces; ++t)
    for (unsigned int s = 1; s <= samples; ++s)
      ASSERT_EQ(segy_testing::goldenSample(t, s), trace.getFloat32Pointer(t)[s - 1]) << t << " " << s;
  char const* const names[] = {"SEGY.REEL.COUNT", "FFID",      "CHANNEL",   "SHOT.UNIQUE.ID", "CMP",
                               "CMP_NUMBER",      "SHOT.RW.X", "SHOT.RW.Y", "RCVR.RW.X",      "RCVR.RW.Y"};
  for (std::size_t f = 0; f < 10; ++f) {
    SCOPED_TRACE(names[f]);
    int const offset = segy_testing::shotOffsets()[f];
    Attribute a = store.getAttribute(names[f]);
    store.read(a, std::vector<unsigned int>{traces, 5, 1});
    EXPECT_EQ(segy_testing::goldenHeader(traces, offset), a.getInt32(1));
    EXPECT_EQ(segy_testing::goldenHeader(5, offset), a.getInt32(2));
    EXPECT_EQ(segy_testing::goldenHeader(1, offset), a.getInt32(3));
    store.read(a, 1, traces);
    for (unsigned int t = 1; t <= traces; ++t) ASSERT_EQ(segy_testing::goldenHeader(t, offset), a.getInt32(t));
  }
}

INSTANTIATE_TEST_SUITE_P(IbmAndIeee, SegyPeerTest, ::testing::Values(1, 5),
                         [](::testing::TestParamInfo<int> const& info) {
                           return info.param == 1 ? std::string("Ibm") : std::string("Ieee");
                         });

}  // namespace
