// A stand-in data server for the tests of the portal. It is started with
//
//   testPortalServer <address> [--log <file>] [--crash-file <file>]
//
// connects back to the address, and answers the portal's messages. Every
// message it gets is written to the log, one line each, so that a test can
// see what reached the server, across restarts. Object messages carry test
// codes of its own (below), some of which misbehave on purpose.

#include <fcntl.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "foundation/Packer.h"
#include "foundation/UtlExcept.h"
#include "foundation/vHandle.h"
#include "foundation/vString.h"
#include "remote/CommChan.h"
#include "remote/CommChanAddress.h"
#include "remote/CommChanMaker.h"
#include "remote/TestServerCodes.h"

namespace {

std::FILE* logFile = nullptr;

void note(char const* format, ...) __attribute__((format(printf, 1, 2)));
void note(char const* format, ...) {
  if (logFile == nullptr) return;
  va_list args;
  va_start(args, format);
  std::fprintf(logFile, "%d ", static_cast<int>(::getpid()));
  std::vfprintf(logFile, format, args);
  std::fputc('\n', logFile);
  std::fflush(logFile);
  va_end(args);
}

struct Twin {
  std::string type;
  int parent;
  int state;
};

std::map<int, Twin> twins;

void reply(CommChan& chan, Packer& out, int tag) {
  int const s = out.send(&chan, tag);
  if (s != CommChan::OK) {
    note("reply failed %s", CommChan::status(s));
    std::exit(2);
  }
}

void portalMessage(Packer& in) {
  int code = 0;
  in.unpack(code);
  if (code == 1) {
    int id = 0;
    int parent = 0;
    vString type;
    in.unpack(id);
    in.unpack(type);
    in.unpack(parent);
    twins[id] = Twin{type.c_str(), parent, 0};
    note("create %d %s %d", id, type.c_str(), parent);
  } else if (code == 2) {
    int id = 0;
    in.unpack(id);
    twins.erase(id);
    note("destroy %d", id);
  } else if (code == 3) {
    note("end");
    std::exit(0);
  } else {
    note("portal code %d", code);
  }
}

void serverSays(CommChan& chan, int code, int severity, char const* text) {
  Packer out(100);
  out.pack(code);
  if (code == 100) out.pack(severity);
  if (text != nullptr) out.pack(vString(text));
  reply(chan, out, -1);
}

void writeRaw(CommChan& chan, std::vector<unsigned char> const& bytes) {
  chan.sendChar8(reinterpret_cast<char const*>(bytes.data()), static_cast<int>(bytes.size()));
}

// A reply that is not sent after all is finished quietly.
void drop(Packer& out) {
  unsigned char const* bytes = nullptr;
  int n = 0;
  out.getBuffer(&bytes, n, 0);
}

void objectMessage(CommChan& chan, Packer& in, int tag, char const* crashFile) {
  int code = 0;
  in.unpack(code);
  note("message %d code %d", tag, code);
  Packer out(1000);
  out.pack(code);
  switch (code) {
    case TestServer::SetState: {
      int value = 0;
      in.unpack(value);
      twins[tag].state = value;
      note("state %d %d", tag, value);
      break;
    }
    case TestServer::Describe: {
      auto const at = twins.find(tag);
      out.pack(vString(at == twins.end() ? "none" : at->second.type.c_str()));
      out.pack(at == twins.end() ? -1 : at->second.state);
      out.pack(static_cast<int>(twins.size()));
      out.pack(static_cast<int>(::getpid()));
      break;
    }
    case TestServer::InfoFirst:
      serverSays(chan, 100, 3, "just so you know");
      break;
    case TestServer::ErrorFirst:
      serverSays(chan, 100, 2, "something is odd");
      break;
    case TestServer::FailFirst:
      serverSays(chan, 99, 0, "cannot do that");
      break;
    case TestServer::SevereFirst:
      serverSays(chan, 100, 1, "giving up");
      break;
    case TestServer::OddSeverity:
      serverSays(chan, 100, 7, "odd");
      break;
    case TestServer::OddPortalCode:
      serverSays(chan, 42, 0, nullptr);
      break;
    case TestServer::WrongTag:
      reply(chan, out, tag + 1000);
      return;
    case TestServer::CrashOnce:
      if (::access(crashFile, F_OK) != 0) {
        drop(out);
        int const fd = ::open(crashFile, O_CREAT | O_WRONLY, 0644);
        if (fd >= 0) ::close(fd);
        note("crash");
        std::_Exit(1);
      }
      break;
    case TestServer::CrashAlways:
      drop(out);
      note("crash");
      std::_Exit(1);
    case TestServer::SumFloats: {
      unsigned int const n = in.getNElements();
      std::vector<float> values(n);
      in.unpack(values.data());
      double sum = 0.0;
      for (float v : values) sum += v;
      out.pack(sum);
      out.pack(n);
      break;
    }
    case TestServer::MakeFloats: {
      unsigned int n = 0;
      in.unpack(n);
      std::vector<float> values(n);
      for (unsigned int i = 0; i < n; ++i) values[i] = 0.5f * static_cast<float>(i);
      out.pack(values.data(), n);
      reply(chan, out, tag);
      return;
    }
    case TestServer::BadMagic:
      drop(out);
      writeRaw(chan, std::vector<unsigned char>(16, 0x5A));
      return;
    case TestServer::ForgedLength: {
      drop(out);
      std::vector<unsigned char> bytes(16 + 10, 0);
      int32_t const header[4] = {Packer::MAGIC, Packer::VERSION, 2000000000, tag};
      std::memcpy(bytes.data(), header, 16);
      writeRaw(chan, bytes);
      note("forged");
      std::_Exit(0);
    }
    default:
      note("unknown code %d", code);
      break;
  }
  reply(chan, out, tag);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: %s <address> [--log <file>] [--crash-file <file>]\n", argv[0]);
    return 2;
  }
  char const* crashFile = "/nonexistent";
  for (int i = 2; i + 1 < argc; i += 2) {
    if (std::strcmp(argv[i], "--log") == 0) logFile = std::fopen(argv[i + 1], "a");
    if (std::strcmp(argv[i], "--crash-file") == 0) crashFile = argv[i + 1];
  }
  try {
    vHandle<CommChan> chan = CommChanMaker::connect(CommChanAddress(vString(argv[1])));
    note("start");
    Packer in(1000);
    for (;;) {
      int const s = in.receive(*chan);
      if (s != CommChan::OK) {
        note("lost %s", CommChan::status(s));
        return 0;
      }
      int const tag = in.getMessageTag();
      if (tag == -1)
        portalMessage(in);
      else
        objectMessage(*chan, in, tag, crashFile);
      if (in.getState() == Packer::PACKUNPACKING) in.discard();
    }
  } catch (UtlExcept const& e) {
    note("failed %s: %s", e.getMethod().c_str(), e.getReason().c_str());
    return 3;
  }
}
