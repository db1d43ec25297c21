#include "remote/CommChanAddress.h"

#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "foundation/vUtl.h"
#include "remote/RemoteTesting.h"

using namespace remote_testing;

namespace {

std::string str(vString const& s) { return s.c_str(); }

class CommChanAddressTest : public RemoteTest {};

TEST_F(CommChanAddressTest, FormsGiveTheirPartsAndPrintBack) {
  CommChanAddress full(vString("Address:7000:10.1.2.3:nodeA"));
  EXPECT_EQ(7000, full.getPort());
  EXPECT_EQ("nodeA", str(full.getHost()));

  // Without a host name the IP address stands in for it.
  EXPECT_EQ("10.9.8.7", str(CommChanAddress(vString("Address:7003:10.9.8.7")).getHost()));
  // Printed: a host after an empty field looked up, blanks gone, a path tagged.
  std::pair<char const*, char const*> const printed[] = {
      {"Address:7002::localhost", "Address:7002:127.0.0.1:localhost"},
      {"Address:7004:10.1.2.3:node A", "Address:7004:10.1.2.3:nodeA"},
      {"Address:/tmp/x", "Address:/tmp/x"},
      {"/tmp/x", "Address:/tmp/x"}};
  for (auto const& p : printed) EXPECT_EQ(p.second, str(CommChanAddress(vString(p.first)).getAddress()));

  // By port alone, or with a blank host: this host.
  CommChanAddress here(5000, nullptr);
  EXPECT_EQ(str(vUtl::gethostname()), str(here.getHost()));
  vString const blankHost("  ");
  EXPECT_EQ(str(here.getHost()), str(CommChanAddress(5000, &blankHost).getHost()));
  vString const local("localhost");
  EXPECT_EQ("Address:5001:127.0.0.1:localhost", str(CommChanAddress(5001, &local).getAddress()));

  // Operations that do not fit the form.
  CommChanAddress plain(vString("/tmp/x"));
  EXPECT_EQ("CommChanAddress::getPort: Address is not a remote address.", fatalText([&] { plain.getPort(); }));
  EXPECT_EQ("CommChanAddress::getFilename: Address is not a local address.",
            fatalText([&] { full.getFilename(); }));
  // Incomplete addresses are refused.
  EXPECT_EQ("CommChanAddress::CommChanAddress: Invalid remote host:Address:7000:.",
            fatalText([] { CommChanAddress(vString("Address:7000:")); }));
  EXPECT_EQ("CommChanAddress::CommChanAddress: Invalid local filename:Address:.",
            fatalText([] { CommChanAddress(vString("Address:")); }));
}

}  // namespace
