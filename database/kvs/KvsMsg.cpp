#include "database/kvs/KvsMsg.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace kvs {

void KvsMsg::clear() { std::memset(b, 0, sizeof b); }

void KvsMsg::setText(std::size_t off, std::size_t size, const std::string& s, std::size_t max) {
  std::memset(b + off, 0, size);
  std::size_t n = max ? max : size - 1;
  if (n > size) n = size;
  if (s.size() < n) n = s.size();
  std::memcpy(b + off, s.data(), n);
}

std::string KvsMsg::text(std::size_t off, std::size_t size) const {
  const char* p = reinterpret_cast<const char*>(b + off);
  return std::string(p, strnlen(p, size));
}

void KvsMsg::setNum(std::size_t off, long v) {
  char tmp[32];
  std::snprintf(tmp, sizeof tmp, "%10ld", v);
  setText(off, 16, tmp);
}

long KvsMsg::num(std::size_t off) const { return std::atol(text(off, 16).c_str()); }

std::string KvsMsgDump(const KvsMsg& m, const char* title) {
  std::string out;
  char line[256];
  std::string bar(60, '_');
  bar.replace(0, 7, "KVSMSG ");
  std::string t = title ? title : "";
  if (bar.size() < 25 + t.size()) bar.resize(25 + t.size(), '_');
  bar.replace(25, t.size(), t);
  out += bar + "\n";
  auto three = [&](const char* a, const std::string& va, const char* c, const std::string& vc) {
    std::snprintf(line, sizeof line, "   %-9s %-11s %-9s %s\n", a, va.c_str(), c, vc.c_str());
    out += line;
  };
  three("Account :", m.text(KvsMsgAccount, 16), "Command :", std::string(1, m.command() ? m.command() : ' '));
  three("Status  :", std::to_string(m.status()), "Host    :", m.text(KvsMsgHost, 24));
  three("User    :", m.text(KvsMsgUser, 16), "Client:", m.text(KvsMsgClient, 8));
  three("Server  :", m.text(KvsMsgServer, 24), "Base    :", m.text(KvsMsgBase, 16));
  three("Pid     :", m.text(KvsMsgPid, 8), "", "");
  std::snprintf(line, sizeof line, "   Text    : %s\n", m.text(KvsMsgText, 128).c_str());
  out += line;
  out += "     Range     Tag          hdr1                hdr2\n";
  for (int i = 0; i < 8; ++i) {
    std::snprintf(line, sizeof line, "       %d       [%3d]   [%-16s]  [%-16s]\n", i, m.b[KvsMsgRequest + i],
                  m.hdr1(i).c_str(), m.hdr2(i).c_str());
    out += line;
  }
  return out;
}

}  // namespace kvs
