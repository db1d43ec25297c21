#ifndef TOOLS_TOOLTESTING_H
#define TOOLS_TOOLTESTING_H

// Test helpers of the rondo tool: run build/bin/rondo (or any shell line)
// as a process and keep its standard output, standard error and exit
// status; write SEG-Y files with segyio, the independent peer.

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "remote/RemoteTesting.h"
#include "syslayer/FSTesting.h"

namespace tool_testing {

char const* const kPython = "/usr/bin/python3";

// Sets an environment variable (null: unsets it) for the life of the
// object; the tool's processes inherit it.
using remote_testing::ScopedEnv;

// A number as the tool prints it.
inline std::string g9(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.9g", value);
  return text;
}

inline std::string rondo() { return std::string(RONDO_TEST_BINARY_DIR) + "/bin/rondo"; }

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

// Runs a shell line in dir; `rondo` in it is replaced by nothing: callers
// write the full command, see tool().
inline Outcome shell(fs_testing::TempDir const& dir, std::string const& line) {
  std::string const command = "cd '" + dir.path() + "' && { " + line + " ; } > '" + (dir / ".out") + "' 2> '" +
                              (dir / ".err") + "'";
  int const raw = std::system(command.c_str());
  Outcome r;
  r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
  r.out = fs_testing::readFile(dir / ".out");
  r.err = fs_testing::readFile(dir / ".err");
  return r;
}

// A tool that hangs (as on a pipe) fails its test with status 124 instead
// of holding up the run.
inline Outcome tool(fs_testing::TempDir const& dir, std::string const& arguments) {
  return shell(dir, "timeout 120 '" + rondo() + "' " + arguments);
}

// A script of the peer: writes <file> with segyio (format code, byte order,
// traces, samples), then reads it back with segyio and writes <file>.dump,
// the lines `rondo dump <file> CMP,SHOT.RW.X,TRACE` must give.
char const* const kSegyWriter = R"PY(
import sys
import numpy as np
import segyio

path, fmt, endian, ntraces, nsamples = sys.argv[1], int(sys.argv[2]), sys.argv[3], int(sys.argv[4]), int(sys.argv[5])
rng = np.random.default_rng(7)
spec = segyio.spec()
spec.format = fmt
spec.endian = endian
spec.samples = [4 * s for s in range(nsamples)]
spec.tracecount = ntraces
with segyio.create(path, spec) as f:
    f.bin.update({segyio.BinField.Interval: 4000})
    for t in range(ntraces):
        f.header[t] = {segyio.su.cdp: 1000 + 3 * t, segyio.su.sx: -50000 + 1250 * t, segyio.su.fldr: t // 7}
        wave = np.sin(np.arange(nsamples) * 0.21 + t * 0.13) * (1 + t % 9)
        f.trace[t] = (wave * np.exp(rng.normal(0, 2, nsamples))).astype(np.float32)

with segyio.open(path, ignore_geometry=True, endian=endian) as f, open(path + '.dump', 'w') as out:
    for t in range(f.tracecount):
        h = f.header[t]
        values = ' '.join('%.9g' % float(v) for v in f.trace[t])
        out.write('%d\t%d\t%d\t%s\n' % (t + 1, h[segyio.su.cdp], h[segyio.su.sx], values))
)PY";

inline void writeSegy(fs_testing::TempDir const& dir, std::string const& name, int format, char const* endian,
                      int traces, int samples) {
  fs_testing::writeFile(dir / "segywriter.py", kSegyWriter);
  std::string const line = std::string(kPython) + " segywriter.py " + name + " " + std::to_string(format) + " " +
                           endian + " " + std::to_string(traces) + " " + std::to_string(samples);
  Outcome const r = shell(dir, line);
  ASSERT_EQ(0, r.status) << "segyio and numpy for " << kPython << " are needed (scripts/install-deps): " << r.err;
}

}  // namespace tool_testing

#endif
