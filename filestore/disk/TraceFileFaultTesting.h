#ifndef FILESTORE_DISK_TRACEFILEFAULTTESTING_H
#define FILESTORE_DISK_TRACEFILEFAULTTESTING_H

// Test helpers (tests only) for the stores of fixed-length traces behind
// headers, on broken disks through the file service's test faults: files
// that look truncated, reads that fail part way, reads that come in small
// pieces. A store's test writes a file of 8 traces, says how it is laid
// out and what it holds, and runs expectTraceFileFaults with its store.
// Recording keeps the errors said while it lives.

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/ExceptionErrorHandler.h"
#include "foundation/RaiseError.h"
#include "foundation/TestFailure.h"
#include "foundation/vFilename.h"
#include "attribute/Attribute.h"
#include "syslayer/FSTesting.h"

namespace disk_testing {

// Records the errors said while it lives; fatal messages still raise.
class Recording {
 public:
  Recording() { RaiseError::getInstance()->install(&m_handler); }
  ~Recording() { RaiseError::getInstance()->uninstall(&m_handler); }
  std::vector<std::string> const& errors() const { return m_handler.errors; }

 private:
  class Handler : public ExceptionErrorHandler {
   public:
    std::vector<std::string> errors;

   protected:
    void doError(char const* label, int, char const* text) override {
      errors.push_back(std::string(label) + ": " + text);
    }
    void doInfo(char const*, int, char const*) override {}
  };
  Handler m_handler;
};

// A file of 8 traces and what a store must find in it.
struct TraceFile {
  std::string path;
  std::string store;        // the class, as the messages label it
  long long headerBytes;    // before the first trace
  long long traceBytes;     // one trace, its header included
  unsigned int nSamples;    // of TRACE
  std::function<float(unsigned int, unsigned int)> sample;  // trace, sample, both from 1
  std::string header;                                       // an integer header attribute
  std::function<int(unsigned int)> headerValue;             // of a trace
  // The texts of a failed read of the range 2:6 and of the list 8,1,4,5,
  // when trace 4 cannot be read.
  std::string rangeFailure;
  std::string listFailure;
  // A read failing at this byte cuts the headers to what came.
  long long headerFailsAt;
  int headerGot;
};

template <class S>
void expectTruncatedFileKeepsItsWholeTraces(TraceFile const& f) {
  long long const whole = f.headerBytes + 5 * f.traceBytes;
  fs_testing::Fault truncated(f.path, FS_FAULT_TRUNCATE, whole + 17);
  Recording recording;
  S store;
  store.open(vFilename(f.path.c_str()));
  EXPECT_EQ(5u, store.getNInstances());
  EXPECT_EQ((std::vector<std::string>{f.store + "::myGetNInstances: The file '" + f.path +
                                      "' is either incomplete or corrupt.\nFilesize is " + std::to_string(whole + 17) +
                                      " bytes but we expect " + std::to_string(whole) + " when the tracelength is " +
                                      std::to_string(f.traceBytes)}),
            recording.errors());
  Attribute trace = store.getAttribute("TRACE");
  store.read(trace, 1, 5);
  for (unsigned int i = 1; i <= 5; ++i)
    EXPECT_EQ(f.sample(i, f.nSamples), trace.getFloat32Pointer(i)[f.nSamples - 1]) << "trace " << i;
}

template <class S>
void expectAFailedReadKeepsNothingHalfRead(TraceFile const& f) {
  S store;
  store.open(vFilename(f.path.c_str()));
  Attribute header = store.getAttribute(f.header.c_str());
  {
    // Trace 4 cannot be read.
    fs_testing::Fault failing(f.path, FS_FAULT_FAILREAD, f.headerBytes + 3 * f.traceBytes + 100);
    expectFailure([&] { store.read(header, 2, 6); }, (f.store + "::myAllocateBufferRange").c_str(), f.rangeFailure);
    // A list goes by runs of neighbours: the run from 4 fails.
    expectFailure([&] { store.read(header, std::vector<unsigned int>{8, 1, 4, 5}); },
                  (f.store + "::myAllocateBufferList").c_str(), f.listFailure);
    // What lies before the fault still reads.
    store.read(header, std::vector<unsigned int>{3, 1});
    EXPECT_EQ((std::vector<int>{f.headerValue(3), f.headerValue(1)}),
              (std::vector<int>{header.getInt32(1), header.getInt32(2)}));
  }
  // Nothing half-read is kept: the range reads whole now.
  store.read(header, 2, 6);
  for (unsigned int i = 2; i <= 6; ++i) EXPECT_EQ(f.headerValue(i), header.getInt32(i - 1)) << "trace " << i;
}

template <class S>
void expectAFailedHeaderReadSaysHowMuchCame(TraceFile const& f) {
  fs_testing::Fault failing(f.path, FS_FAULT_FAILREAD, f.headerFailsAt);
  S store;
  expectFailure([&] { store.open(vFilename(f.path.c_str())); }, (f.store + "::open").c_str(),
                "Only read " + std::to_string(f.headerGot) + " bytes from header of file " + f.path + ".");
  EXPECT_FALSE(store.isOpen());
}

template <class S>
void expectReadsInPiecesToFillEveryTrace(TraceFile const& f) {
  fs_testing::Fault shortReads(f.path, FS_FAULT_SHORTREAD, 7);
  S store;
  store.open(vFilename(f.path.c_str()));
  ASSERT_EQ(8u, store.getNInstances());
  Attribute trace = store.getAttribute("TRACE");
  store.read(trace, 1, 8);
  for (unsigned int i = 1; i <= 8; ++i)
    for (unsigned int s = 1; s <= f.nSamples; ++s) ASSERT_EQ(f.sample(i, s), trace.getFloat32Pointer(i)[s - 1]);
}

// Every case above, each on the unbroken file.
template <class S>
void expectTraceFileFaults(TraceFile const& f) {
  struct Case {
    char const* name;
    void (*expect)(TraceFile const&);
  } const cases[] = {{"a truncated file", expectTruncatedFileKeepsItsWholeTraces<S>},
                     {"a failed trace read", expectAFailedReadKeepsNothingHalfRead<S>},
                     {"a failed header read", expectAFailedHeaderReadSaysHowMuchCame<S>},
                     {"reads in pieces", expectReadsInPiecesToFillEveryTrace<S>}};
  for (Case const& c : cases) {
    SCOPED_TRACE(c.name);
    c.expect(f);
  }
}

}  // namespace disk_testing

#endif
