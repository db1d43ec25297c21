// Files written by an independent SEG-Y writer (segyio, run by the system's
// Python) read back through the store, in each sample format and byte order
// that segyio writes: every sample, trace header word and binary header
// field compared with what was given to segyio and with what segyio itself
// reads back. segyio does its own IBM conversion, so these files check ours.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

#include "attribute/AttributeDefinitionTable.h"
#include "filestore/segy/SegyDiskStore.h"
#include "filestore/segy/SegyTesting.h"
#include "foundation/TestFailure.h"
#include "foundation/TestReleaseTree.h"
#include "syslayer/FSTesting.h"

namespace {

char const* const kPython = "/usr/bin/python3";

// Writes <path> through segyio from <path>.samples (float32) and
// <path>.headers (int32, one row of trace header words a trace), then reads
// it again with segyio into <path>.binary.back, .headers.back and
// .samples.back. Binary header fields come as position=value pairs, trace
// header words by position (segyio's field numbers are byte positions).
char const* const kWriter = R"PY(
import sys
import numpy as np
import segyio

path, fmt, endian = sys.argv[1], int(sys.argv[2]), sys.argv[3]
ntraces, nsamples = int(sys.argv[4]), int(sys.argv[5])
binary = [tuple(int(x) for x in kv.split('=')) for kv in sys.argv[6].split(',')]
fields = [int(p) for p in sys.argv[7].split(',')]
samples = np.fromfile(path + '.samples', dtype=np.float32).reshape(ntraces, nsamples)
headers = np.fromfile(path + '.headers', dtype=np.int32).reshape(ntraces, len(fields))

spec = segyio.spec()
spec.format = fmt
spec.endian = endian
spec.samples = list(range(nsamples))
spec.tracecount = ntraces
with segyio.create(path, spec) as f:
    f.text[0] = 'C 1 WRITTEN BY SEGYIO FOR THE STORE TESTS'
    f.bin.update({p: v for p, v in binary})
    for t in range(ntraces):
        f.header[t] = {p: int(v) for p, v in zip(fields, headers[t])}
        f.trace[t] = samples[t]

with segyio.open(path, ignore_geometry=True, endian=endian) as f:
    np.array([f.bin[p] for p, _ in binary], dtype=np.int32).tofile(path + '.binary.back')
    np.array([[f.header[t][p] for p in fields] for t in range(ntraces)], dtype=np.int32).tofile(path + '.headers.back')
    np.array([f.trace[t] for t in range(ntraces)], dtype=np.float32).tofile(path + '.samples.back')
)PY";

unsigned int const kTraces = 23;
unsigned int const kSamples = 50;

// A sample that tells its place: trace * 1000 + sample, plus quarters,
// with a sign and a power of two that vary along the trace, so that every
// IBM exponent shift and both signs occur; a few are zero. All are exact
// in IBM and IEEE single precision.
float sampleValue(unsigned int t, unsigned int s) {
  if ((t + s) % 17 == 0) return 0.0f;
  float const place = static_cast<float>(t * 1000 + s) + static_cast<float>(s % 4) / 4.0f;
  int const exponent = static_cast<int>((t * 7 + s * 13) % 201) - 100;
  return std::ldexp((t + s) % 3 == 0 ? -place : place, exponent);
}

// A trace header field by its 1-based byte position: its store attribute,
// its width, and whether the default shot format has it (else a format
// file names it).
struct Field {
  char const* attribute;
  int position;
  int width;
  bool shot;
};
std::vector<Field> const& fields() {
  static std::vector<Field> const all = {{"SEGY.REEL.COUNT", 5, 4, true}, {"CMP", 21, 4, true},
                                         {"RCVR.RW.Y", 85, 4, true},      {"INLINE", 189, 4, false},
                                         {"SCALCO", 71, 2, false},        {"DT", 117, 2, false}};
  return all;
}
int32_t headerValue(unsigned int t, Field const& f) {
  int32_t const magnitude = static_cast<int32_t>(f.width == 4 ? t * 100000 + f.position : t * 100 + f.position % 100);
  return t % 2 ? -magnitude : magnitude;
}

// A binary header field by its 1-based file position, the value given and
// how the store's header reads it.
struct BinaryField {
  int position;
  int32_t value;
  std::function<int32_t(SegyBinaryHeader const&)> read;
};

struct PeerCase {
  char const* name;
  int format;
  char const* endian;
};

void PrintTo(PeerCase const& c, std::ostream* out) { *out << c.name; }

class SegyPeerTest : public ::testing::TestWithParam<PeerCase> {
 protected:
  void SetUp() override {
    std::string const probe = std::string(kPython) + " -c 'import segyio, numpy' > /dev/null 2>&1";
    ASSERT_EQ(0, std::system(probe.c_str())) << "segyio and numpy for " << kPython
                                              << " are missing: run scripts/install-deps";
    script = dir / "writer.py";
    fs_testing::writeFile(script, kWriter);
  }

  template <typename T>
  static std::vector<T> load(std::string const& path) {
    std::ifstream in(path, std::ios::binary);
    std::string const bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::vector<T> values(bytes.size() / sizeof(T));
    if (!values.empty()) std::memcpy(values.data(), bytes.data(), values.size() * sizeof(T));
    return values;
  }

  // Writes <name> with segyio and checks that segyio reads back what it was
  // given.
  std::string writeWithPeer(std::string const& name, int format, char const* endian,
                            std::vector<BinaryField> const& binary) {
    std::string const path = dir / name;
    std::vector<float> samples;
    std::vector<int32_t> headers;
    for (unsigned int t = 1; t <= kTraces; ++t) {
      for (unsigned int s = 1; s <= kSamples; ++s) samples.push_back(sampleValue(t, s));
      for (Field const& f : fields()) headers.push_back(headerValue(t, f));
    }
    fs_testing::writeFile(path + ".samples", std::string(reinterpret_cast<char const*>(samples.data()),
                                                         samples.size() * sizeof(float)));
    fs_testing::writeFile(path + ".headers", std::string(reinterpret_cast<char const*>(headers.data()),
                                                         headers.size() * sizeof(int32_t)));
    std::string pairs, positions;
    for (BinaryField const& b : binary)
      pairs += (pairs.empty() ? "" : ",") + std::to_string(b.position) + "=" + std::to_string(b.value);
    for (Field const& f : fields()) positions += (positions.empty() ? "" : ",") + std::to_string(f.position);
    std::string const command = std::string(kPython) + " -W ignore " + script + " " + path + " " +
                                std::to_string(format) + " " + endian + " " + std::to_string(kTraces) + " " +
                                std::to_string(kSamples) + " " + pairs + " " + positions;
    EXPECT_EQ(0, std::system(command.c_str())) << command;
    EXPECT_EQ(samples, load<float>(path + ".samples.back"));
    EXPECT_EQ(headers, load<int32_t>(path + ".headers.back"));
    std::vector<int32_t> const back = load<int32_t>(path + ".binary.back");
    EXPECT_EQ(binary.size(), back.size());
    for (std::size_t k = 0; k < binary.size() && k < back.size(); ++k)
      EXPECT_EQ(static_cast<uint16_t>(binary[k].value), static_cast<uint16_t>(back[k])) << binary[k].position;
    return path;
  }

  fs_testing::TempDir dir;
  std::string script;
};

TEST_P(SegyPeerTest, ReadsEveryValueThatThePeerWrote) {
  PeerCase const c = GetParam();
  using H = SegyBinaryHeader const&;
  // Binary header fields, sized by the file's shape where they shape it.
  std::vector<BinaryField> const binary = {
      {3201, -1000001, [](H h) { return h.getJobIdentNumber(); }},
      {3213, -13, [](H h) { return h.getNumberDataTracesPerRecord(); }},
      {3217, 40000, [](H h) { return h.getSampleInterval(); }},
      {3221, static_cast<int32_t>(kSamples), [](H h) { return h.getNumberSamplePerTrace(); }},
      {3225, c.format, [](H h) { return h.getFormatCode(); }},
  };
  std::string const path = writeWithPeer("peer.sgy", c.format, c.endian, binary);
  uint16_t const one = 1;
  bool const hostBig = *reinterpret_cast<unsigned char const*>(&one) == 0;
  TestReleaseTree tree;
  segy_testing::installVocabulary(tree);
  std::string formatFile;
  for (Field const& f : fields())
    if (!f.shot)
      formatFile += std::string(f.attribute) + " x trace " + std::to_string(f.position) +
                    (f.width == 4 ? " int4\n" : " int2\n");
  TestReleaseTree::write(dir / "peer.syf", formatFile);

  segy_testing::Recording recording;
  SegyDiskStore shot;
  shot.open(vFilename(path.c_str()));
  SegyDiskStore described;
  described.open(StoreDescription(vFilename(path.c_str())));
  EXPECT_TRUE(recording.errors().empty());
  SegyBinaryHeader const& header = *shot.getBinaryHeader();
  EXPECT_EQ(hostBig != (std::string(c.endian) == "big"), header.isByteSwapped());
  for (BinaryField const& b : binary) EXPECT_EQ(b.value, b.read(header)) << b.position;
  EXPECT_EQ(std::string("C 1 WRITTEN BY SEGYIO FOR THE STORE TESTS"),
            std::string(shot.getEBCDICHeaderInASCII().c_str(), 41));
  ASSERT_EQ(kTraces, shot.getNInstances());
  ASSERT_EQ(kTraces, described.getNInstances());

  Attribute trace = shot.getAttribute("TRACE");
  EXPECT_EQ(40.0, trace.getSampleRate());
  shot.read(trace, 1, kTraces);
  std::vector<float> samples;
  for (unsigned int t = 1; t <= kTraces; ++t)
    samples.insert(samples.end(), trace.getFloat32Pointer(t), trace.getFloat32Pointer(t) + kSamples);
  EXPECT_EQ(load<float>(path + ".samples.back"), samples);
  std::vector<unsigned int> const list = {kTraces, 1, 7, 1};

  std::vector<int32_t> const peerHeaders = load<int32_t>(path + ".headers.back");
  for (std::size_t f = 0; f < fields().size(); ++f) {
    Field const& field = fields()[f];
    SCOPED_TRACE(field.attribute);
    SegyDiskStore const& store = field.shot ? shot : described;
    Attribute a = store.getAttribute(field.attribute);
    store.read(a, 1, kTraces);
    for (unsigned int t = 1; t <= kTraces; ++t)
      ASSERT_EQ(peerHeaders[(t - 1) * fields().size() + f], a.getValue(t)) << t;
    store.read(a, list);
    for (std::size_t k = 0; k < list.size(); ++k)
      EXPECT_EQ(headerValue(list[k], field), a.getValue(static_cast<unsigned int>(k + 1)));
  }

  AttributeDefinitionTable::instance().dropTable();
}

INSTANTIATE_TEST_SUITE_P(FormatsAndByteOrders, SegyPeerTest,
                         ::testing::Values(PeerCase{"IbmBigEndian", 1, "big"}, PeerCase{"IbmLittleEndian", 1, "little"},
                                           PeerCase{"IeeeBigEndian", 5, "big"},
                                           PeerCase{"IeeeLittleEndian", 5, "little"}),
                         [](::testing::TestParamInfo<PeerCase> const& info) { return std::string(info.param.name); });

// segyio puts extended textual headers between the binary header and the
// traces when asked to; read as traces they would give wrong values.
TEST(SegyPeerExtendedHeaders, AFileWithThemIsRefused) {
  fs_testing::TempDir dir;
  std::string const path = dir / "ext.sgy";
  fs_testing::writeFile(dir / "ext.py",
                        "import sys, segyio\n"
                        "spec = segyio.spec()\n"
                        "spec.format, spec.samples, spec.tracecount, spec.ext_headers = 5, list(range(7)), 3, 2\n"
                        "with segyio.create(sys.argv[1], spec) as f:\n"
                        "    for t in range(3): f.trace[t] = [float(t)] * 7\n");
  std::string const command = std::string(kPython) + " " + (dir / "ext.py") + " " + path;
  ASSERT_EQ(0, std::system(command.c_str())) << "python3-segyio is needed (scripts/install-deps): " << command;
  expectFailure([&] { SegyDiskStore().open(vFilename(path.c_str())); }, "SegyDiskStore::myGetNInstances",
                "The file '" + path +
                    "' has 2 extended textual headers after its binary header, which this reader does not skip.");
}

}  // namespace
