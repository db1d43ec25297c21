#include "remote/CommChanAddress.h"

#include <string>

#include <gtest/gtest.h>

#include "foundation/vUtl.h"
#include "remote/RemoteTesting.h"

using namespace remote_testing;

namespace {

std::string str(vString const& s) { return s.c_str(); }

class CommChanAddressTest : public RemoteTest {};

TEST_F(CommChanAddressTest, RemoteFormsGiveTheirPartsAndPrintBack) {
  CommChanAddress full(vString("Address:7000:10.1.2.3:nodeA"));
  EXPECT_EQ(7000, full.getPort());
  EXPECT_EQ("nodeA", str(full.getHost()));

  // A host in the third field, or after an empty one, is looked up.
  CommChanAddress afterEmpty(vString("Address:7002::localhost"));
  EXPECT_EQ("Address:7002:127.0.0.1:localhost", str(afterEmpty.getAddress()));

  // Without a host name the IP address stands in for it.
  CommChanAddress ipOnly(vString("Address:7003:10.9.8.7"));
  EXPECT_EQ("10.9.8.7", str(ipOnly.getHost()));

  // Blanks do not survive the printed form.
  CommChanAddress blank(vString("Address:7004:10.1.2.3:node A"));
  EXPECT_EQ("Address:7004:10.1.2.3:nodeA", str(blank.getAddress()));

  // By port alone, or with a blank host: this host.
  CommChanAddress here(5000, nullptr);
  EXPECT_EQ(str(vUtl::gethostname()), str(here.getHost()));
  vString const blankHost("  ");
  EXPECT_EQ(str(here.getHost()), str(CommChanAddress(5000, &blankHost).getHost()));
  vString const local("localhost");
  EXPECT_EQ("Address:5001:127.0.0.1:localhost", str(CommChanAddress(5001, &local).getAddress()));
}

TEST_F(CommChanAddressTest, LocalFormsAndTheOperationsThatDoNotFitThem) {
  CommChanAddress tagged(vString("Address:/tmp/x"));
  CommChanAddress plain(vString("/tmp/x"));
  for (CommChanAddress const* a : {&tagged, &plain}) EXPECT_EQ("Address:/tmp/x", str(a->getAddress()));
  EXPECT_EQ("CommChanAddress::getPort: Address is not a remote address.", fatalText([&] { plain.getPort(); }));
  CommChanAddress remote(vString("Address:7000:10.1.2.3:nodeA"));
  EXPECT_EQ("CommChanAddress::getFilename: Address is not a local address.",
            fatalText([&] { remote.getFilename(); }));
  // Incomplete addresses are refused.
  EXPECT_EQ("CommChanAddress::CommChanAddress: Invalid remote host:Address:7000:.",
            fatalText([] { CommChanAddress(vString("Address:7000:")); }));
  EXPECT_EQ("CommChanAddress::CommChanAddress: Invalid local filename:Address:.",
            fatalText([] { CommChanAddress(vString("Address:")); }));
}

}  // namespace
