#ifndef REMOTE_TESTSERVERCODES_H
#define REMOTE_TESTSERVERCODES_H

// Object message codes understood by the test server (testserver/), shared
// by it and the tests that drive it. Each reply starts with the request's
// code, as a real server's replies do.

namespace TestServer {
enum Code {
  SetState = 10,       // int value: the twin keeps it; empty reply
  Describe = 11,       // reply: string type, int state, int twins, int pid
  InfoFirst = 20,      // a severity 3 report, then the reply
  ErrorFirst = 21,     // a severity 2 report, then the reply
  FailFirst = 22,      // portal code 99, then the reply
  SevereFirst = 23,    // a severity 1 report, then the reply
  OddSeverity = 24,    // a report of severity 7
  OddPortalCode = 25,  // portal code 42
  WrongTag = 26,       // the reply under another PortalID
  CrashOnce = 30,      // the first server dies without a reply, later ones answer
  CrashAlways = 31,    // every server dies without a reply
  SumFloats = 40,      // float array: reply double sum, uint count
  MakeFloats = 41,     // uint n: reply a float array of n values 0.5 * i
  BadMagic = 50,       // 16 bytes that are no Packer header
  ForgedLength = 51    // a header claiming ~2 GB, 10 bytes, then the server goes
};
}

#endif
