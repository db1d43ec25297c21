#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <vector>

#include "database/kvs/KvsMsg.h"
#include "database/kvs/KvsObject.h"
#include "database/kvs/KvsParams.h"
#include "database/kvs/KvsSocket.h"

using namespace kvs;
using Bytes = std::vector<unsigned char>;

TEST(KvsWire, FrameHeadBytesSocketFramesAndOversize) {
  unsigned char head[16];
  KvsSkEncodeHead(head, 0x0001F400, 0x00003039);
  EXPECT_EQ(Bytes(head, head + 16), (Bytes{0x00, 0x01, 0xF4, 0x00, 0x00, 0x00, 0x30, 0x39, 0, 0, 0, 0, 0, 0, 0, 0}));
  std::uint32_t len, pid;
  EXPECT_TRUE(KvsSkDecodeHead(head, 128000, len, pid));
  EXPECT_EQ(std::make_pair(len, pid), std::make_pair(128000u, 12345u));
  EXPECT_FALSE(KvsSkDecodeHead(head, 127999, len, pid));
  int sv[2];
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, sv), 0);
  Bytes big(64001, 7), in(70000);
  big[64000] = 9;
  ASSERT_EQ(KvsSkWrite(sv[0], big.data(), big.size()), 64001);
  ASSERT_EQ(KvsSkRead(sv[1], in.data(), in.size()), 64001);
  EXPECT_EQ(in[64000], 9);
  EXPECT_EQ(RPID, getpid());
  // Too long for the reader: refused before any payload is taken.
  ASSERT_EQ(KvsSkWrite(sv[0], big.data(), 100), 100);
  EXPECT_EQ(KvsSkRead(sv[1], in.data(), 99), -1);
  unsigned char first;
  EXPECT_EQ(read(sv[1], &first, 1), 1);
  EXPECT_EQ(first, 7);
  // A truncated frame: the writer goes away after half a head.
  unsigned char half[8] = {0, 0, 0, 4};
  ASSERT_EQ(write(sv[0], half, 8), 8);
  close(sv[0]);
  Bytes rest(99);
  ASSERT_EQ(read(sv[1], rest.data(), 99), 99);  // drain the earlier frame's tail
  EXPECT_EQ(KvsSkRead(sv[1], in.data(), in.size()), -1);
  close(sv[1]);
}

TEST(KvsWire, RecordFieldsAndParameterBlockBytes) {
  KvsMsg m;
  m.setText(KvsMsgUser, 16, "averyveryverylonguser");
  m.setText(KvsMsgHost, 24, "hostname", 23);
  m.setNum(KvsMsgHdr2, 288);
  m.setHdr1(3, "DOMAIN");
  m.b[KvsMsgStatus] = 3;
  EXPECT_EQ(std::string(reinterpret_cast<char*>(m.b), 16), std::string("averyveryverylo\0", 16));
  EXPECT_EQ(std::string(reinterpret_cast<char*>(m.b + 256), 16), std::string("       288\0\0\0\0\0\0", 16));
  EXPECT_EQ(std::memcmp(m.b + 176, "DOMAIN\0\0", 8), 0);
  EXPECT_EQ(m.num(KvsMsgHdr2), 288);
  EXPECT_EQ(m.status(), 3);
  std::string dump = KvsMsgDump(m, "REPLY");
  EXPECT_EQ(dump.substr(0, 30), "KVSMSG __________________REPLY");
  EXPECT_NE(dump.find("   Text    : \n"), std::string::npos);
  // A block of parameters.
  KvsParam i{"NX", "SGD", "INT", "", false, 258, 0, 0, ""};
  KvsParam d{"DX", "SEIS", "DBL", "m", true, 0, 0, 0, ""};
  KvsParam t{"NOTE", "SGD", "C", "", false, 0, 0, 0, std::string(41, 'x')};
  Bytes b = KvsParamsEncode({i, d, t});
  ASSERT_EQ(b.size(), 80u * 5);
  EXPECT_EQ(Bytes(b.begin(), b.begin() + 8), (Bytes{0, 0, 0, 0, 0, 0, 0, 3}));
  EXPECT_EQ(std::memcmp(&b[80], "NX\0\0\0\0\0\0SGD\0\0\0\0\0INT\0", 20), 0);
  EXPECT_EQ(Bytes(&b[80 + 32], &b[80 + 36]), (Bytes{0, 0, 1, 2}));
  EXPECT_EQ(Bytes(&b[160 + 32], &b[160 + 40]), (Bytes{0xDE, 0xAD, 0xBE, 0xEF, 0, 0, 0, 0}));
  EXPECT_EQ(Bytes(&b[240 + 36], &b[240 + 40]), (Bytes{0, 0, 0, 41}));
  EXPECT_EQ(b[240 + 40 + 40], 'x');  // the 41st byte spills into the next record
  std::vector<KvsParam> back;
  EXPECT_EQ(KvsParamsDecode(b.data(), b.size(), back), 400);
  ASSERT_EQ(back.size(), 3u);
  EXPECT_TRUE(back[0] == i && back[1] == d && back[2] == t);
  // Short blocks and lengths beyond the end are refused.
  for (std::size_t cut : {0u, 79u, 159u, 399u}) EXPECT_EQ(KvsParamsDecode(b.data(), cut, back), -1) << cut;
  b[240 + 36] = 0x7F;
  EXPECT_EQ(KvsParamsDecode(b.data(), b.size(), back), -1);
}

TEST(KvsWire, ColumnSwap) {
  double v[2] = {1.5, 0};
  std::uint32_t marker = KvsNullWord;
  std::memcpy(&v[1], &marker, 4);
  unsigned char wire[16], back[16];
  KvsToWire(KvsFmtDBL, 8, reinterpret_cast<unsigned char*>(v), wire, 2);
  EXPECT_EQ(Bytes(wire, wire + 16),
            (Bytes{0x3F, 0xF8, 0, 0, 0, 0, 0, 0, 0xDE, 0xAD, 0xBE, 0xEF, 0, 0, 0, 0}));
  KvsFromWire(KvsFmtDBL, 8, wire, back, 2);
  EXPECT_EQ(std::memcmp(back, v, 16), 0);
  EXPECT_EQ(KvsFmtCode("FLT"), KvsFmtFLT);
}

TEST(KvsWire, StreamBlocksEndAtEnd) {
  int sv[2];
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, sv), 0);
  KvsPrintf = [](const char*) {};
  KvsSessionRec s;
  s.fd = sv[1];
  char end[33] = "END";
  KvsSkWrite(sv[0], end, 33);  // longer than an end block: data
  KvsSkWrite(sv[0], end, 32);
  KvsSkWrite(sv[0], end, 10);
  EXPECT_EQ(KvsRecvData(&s), 33);
  EXPECT_EQ(KvsRecvData(&s), 0);
  EXPECT_EQ(KvsRecv(&s, 11), 4);  // a short block
  EXPECT_EQ(s.fd, -1);
  close(sv[0]);
}
