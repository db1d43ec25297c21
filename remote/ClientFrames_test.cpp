// What the client proxies put on the wire, read by a plain-socket peer in
// place of the server.

#include <sys/stat.h>
#include <time.h>

#include <cstring>
#include <fstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "attribute/PropertyI.h"
#include "foundation/Packer.h"
#include "project/StoreCreationOptions.h"
#include "project/StoreOpenOptions.h"
#include "remote/ClientCodes.h"
#include "remote/ClientTesting.h"

using namespace remote_testing;

namespace {

struct Message {
  int tag;
  Bytes bytes;
};

// Takes the place of the server: started by the catalog's command (a
// script that leaves the address in a file), it records every message and
// answers each request with its code, except where a test asks otherwise.
class RawServer {
 public:
  explicit RawServer(TempDir const& dir) : m_dir(dir) {
    std::string const script = dir.file("server.sh");
    std::ofstream out(script);
    out << "#!/bin/sh\necho \"$2\" > " << dir.file("address") << "\n";
    out.close();
    ::chmod(script.c_str(), 0755);
  }
  ~RawServer() { join(); }
  std::string command() const { return m_dir.file("server.sh"); }

  void start() { m_thread = std::thread([this] { myRun(); }); }
  void join() {
    if (m_thread.joinable()) m_thread.join();
  }

  std::vector<Message> messages;
  // Request code -> the code of the reply.
  std::vector<std::pair<int, int> > replaced;

 private:
  void myRun() {
    std::string address;
    for (int i = 0; i < 2000 && address.empty(); ++i) {
      timespec t{0, 10 * 1000 * 1000};
      ::nanosleep(&t, nullptr);
      std::getline(std::ifstream(m_dir.file("address")), address);
    }
    if (address.compare(0, 8, "Address:") != 0) return;
    int const fd = rawConnectLocal(address.substr(8));
    if (fd < 0) return;
    for (;;) {
      Bytes message = readBytes(fd, 16);
      if (message.empty()) break;
      int32_t header[4];
      std::memcpy(header, message.data(), 16);
      Bytes const body = readBytes(fd, static_cast<size_t>(header[2]));
      if (header[2] > 0 && body.empty()) break;
      message.insert(message.end(), body.begin(), body.end());
      messages.push_back(Message{header[3], message});
      if (header[3] > 0) myAnswer(fd, header[3], message);
    }
    ::close(fd);
  }

  void myAnswer(int fd, int tag, Bytes const& message) {
    Packer in(static_cast<int>(message.size()), message.data());
    int code = 0;
    in.unpack(code);
    in.discard();
    int replyCode = code == ClientCode::ProjectOpen ? static_cast<int>(ClientCode::ProjectAck) : code;
    for (auto const& r : replaced)
      if (r.first == code) replyCode = r.second;
    Packer out(200);
    out.pack(replyCode);
    if (code == ClientCode::ReadRange) {
      Attribute cdp("CDP", "", vINT32);
      int const v[] = {10, 11, 12, 13, 14};
      cdp.copyData(5, v);
      out.pack(cdp);
    } else if (code == ClientCode::GetProperties) {
      PropertyI().packProperties(out);
    } else if (code == ClientCode::GetNInstances) {
      out.pack(3u);
    } else if (code == ClientCode::GetVersion) {
      out.pack(2);
    } else if (code == ClientCode::GetClass || code == ClientCode::GetSubClass) {
      out.pack(vString(code == ClientCode::GetClass ? "seismic" : "2d"));
    }
    unsigned char const* bytes = nullptr;
    int size = 0;
    out.getBuffer(&bytes, size, tag);
    writeAll(fd, bytes, static_cast<size_t>(size));
  }

  TempDir const& m_dir;
  std::thread m_thread;
};

Bytes const kReadRequest = {0xD6, 0x12, 0x6A, 0x02, 0x01, 0x00, 0x00, 0x00, 0x18, 0x00, 0x00, 0x00,
                            0x03, 0x00, 0x00, 0x00, 0x05, 0xE0, 0x00, 0x00, 0x00, 0x8E, 0x04, 0x00,
                            0x00, 0x00, 0x43, 0x44, 0x50, 0x00, 0x06, 0x0A, 0x00, 0x00, 0x00, 0x06,
                            0x05, 0x00, 0x00, 0x00};

Bytes const kOpenRequest = {0xD6, 0x12, 0x6A, 0x02, 0x01, 0x00, 0x00, 0x00, 0x11, 0x00, 0x00, 0x00,
                            0x02, 0x00, 0x00, 0x00, 0x05, 0x62, 0x00, 0x00, 0x00, 0x8E, 0x07, 0x00,
                            0x00, 0x00, 's',  'u',  'r',  'v',  'e',  'y',  0x00};

Bytes const kCreateSet = {0xD6, 0x12, 0x6A, 0x02, 0x01, 0x00, 0x00, 0x00, 0x21, 0x00, 0x00, 0x00, 0xFF, 0xFF,
                          0xFF, 0xFF, 0x05, 0x01, 0x00, 0x00, 0x00, 0x05, 0x03, 0x00, 0x00, 0x00, 0x8E, 0x0D,
                          0x00, 0x00, 0x00, 'A',  't',  't',  'r',  'i',  'b',  'u',  't',  'e',  'S',  'e',
                          't',  0x00, 0x05, 0x02, 0x00, 0x00, 0x00};

// The bytes of a message as it goes out with the tag.
Bytes framed(Packer& p, int tag) {
  unsigned char const* bytes = nullptr;
  int size = 0;
  p.getBuffer(&bytes, size, tag);
  return Bytes(bytes, bytes + size);
}

class ClientFrames : public ClientTest {
 protected:
  ClientFrames()
      : m_server(m_dir),
        m_command("VSERVER", m_server.command().c_str()),
        m_deck("DORNJOBDECKID", "77"),
        m_deckName("DORNJOBDECKNAME", "deck"),
        m_job("DORNJOBID", "5"),
        m_number("DORNJOBNUMBER", "9000000000") {}

  RawServer m_server;

 private:
  ScopedEnv m_command;
  ScopedEnv m_deck;
  ScopedEnv m_deckName;
  ScopedEnv m_job;
  ScopedEnv m_number;
};

TEST_F(ClientFrames, RequestsGoOutByteForByte) {
  m_server.start();
  {
    vHandle<ProjectCatalog> catalog(new ClientProjectCatalog("", ProjectType::RONDO, ""));
    vHandle<Project> project(new ClientProject(catalog));
    project->open("Survey");
    ClientAttributeSet set(project);
    Attribute cdp("CDP", "", vINT32);
    set.read(cdp, 10, 5);
    ASSERT_EQ(5u, cdp.getNInstances());
    EXPECT_EQ(14, cdp.getInt32(5));
  }
  m_server.join();
  std::vector<Message> const& m = m_server.messages;
  ASSERT_EQ(10u, m.size());
  // The catalog's twin, then its session start.
  EXPECT_EQ(-1, m[0].tag);
  EXPECT_EQ(1, m[1].tag);
  Packer start(100);
  start.pack(static_cast<int>(ClientCode::SessionStart));
  start.pack(vString(""));
  start.pack(77LL);
  start.pack(vString("deck"));
  start.pack(5LL);
  start.pack(9000000000LL);
  start.packBool(false);
  start.packBool(true);
  EXPECT_EQ(framed(start, 1), m[1].bytes);
  // The project: its twin, its open; the set's twin; the read.
  EXPECT_EQ(-1, m[2].tag);
  EXPECT_EQ(kOpenRequest, m[3].bytes);
  EXPECT_EQ(kCreateSet, m[4].bytes);
  EXPECT_EQ(kReadRequest, m[5].bytes);
  // Then each twin goes, the end of the session last.
  Bytes const end = {0xD6, 0x12, 0x6A, 0x02, 0x01, 0x00, 0x00, 0x00, 0x05, 0x00, 0x00,
                     0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0x05, 0x03, 0x00, 0x00, 0x00};
  EXPECT_EQ(end, m[9].bytes);
}

// The message of a code among those the peer got.
Bytes messageOf(std::vector<Message> const& messages, int code) {
  for (Message const& m : messages) {
    if (m.tag <= 0) continue;
    Packer p(static_cast<int>(m.bytes.size()), m.bytes.data());
    int c = 0;
    p.unpack(c);
    p.discard();
    if (c == code) return m.bytes;
  }
  ADD_FAILURE() << "no message of code " << code;
  return Bytes();
}

// Replies with another code are fatal; options travel with open and create.
TEST_F(ClientFrames, RepliesWithAnotherCodeAreFatalAndOptionsTravel) {
  StoreOpenOptions open;
  open.setSparseReadOfAttributes();
  open.setAutoDecompress(false);
  StoreCreationOptions create;
  create.setCompressed();
  m_server.replaced = {{ClientCode::GetProjectList, 7}, {ClientCode::HasAttribute, 221}, {ClientCode::HasStore, 101}};
  m_server.start();
  {
    vHandle<ProjectCatalog> catalog(new ClientProjectCatalog("", ProjectType::RONDO, ""));
    EXPECT_EQ("ClientProjectCatalog::getProjectList: Unexpected code 7, expected 1.",
              fatalText([&] { catalog->getProjectList(); }));
    vHandle<Project> project(new ClientProject(catalog));
    EXPECT_EQ("ClientProject::hasStore: Did not get expected message 107 from data server, got 101 instead.",
              fatalText([&] { project->hasStore("x", 1); }));
    ClientAttributeSet set(project);
    EXPECT_EQ("ClientAttributeSet::hasAttribute: Did not get expected message 222 from data server, got 221 "
              "instead.",
              fatalText([&] { set.hasAttribute("CDP"); }));
    set.open("line12", 7, "seismic", "", &open);
    // Asked for at the open: count, version, class and subclass.
    EXPECT_EQ("2d", std::string(set.getSubClass().c_str()));
    set.close();
    set.create("new", "seismic", "3d", KeyList(), &create);
  }
  m_server.join();
  Packer opened(100);
  opened.pack(static_cast<int>(ClientCode::Open));
  opened.pack(vString("line12"));
  opened.pack(7);
  opened.pack(vString("seismic"));
  opened.pack(vString(""));
  opened.packBool(true);
  opened.pack(open);
  EXPECT_EQ(framed(opened, 3), messageOf(m_server.messages, ClientCode::Open));
  Packer created(100);
  created.pack(static_cast<int>(ClientCode::Create));
  for (char const* text : {"new", "seismic", "3d"}) created.pack(vString(text));
  created.pack(KeyList());
  created.packBool(true);
  created.pack(create);
  EXPECT_EQ(framed(created, 3), messageOf(m_server.messages, ClientCode::Create));
}

}  // namespace
