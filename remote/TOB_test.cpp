#include "remote/TOB.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "remote/RemoteTesting.h"

using namespace remote_testing;

namespace {

class TOBTest : public RemoteTest {};

std::vector<std::string> typesOf(TOB const& t) {
  std::vector<std::string> out;
  for (TOB const* c : t) out.push_back(c->getTOBType().c_str());
  return out;
}

TEST_F(TOBTest, ChildrenJoinLeaveKeepTheirOrderAndOutliveTheirParent) {
  TOB root("root");
  TOB a("a", &root);
  TOB b("b", &root);
  TOB c("c");
  root.insertChild(&c, 1);
  EXPECT_EQ(&root, c.getTOBParent());
  TOB d("d");
  root.insertChild(&d, 7);
  std::vector<std::string> reversed;
  for (auto it = root.rbegin(); it != root.rend(); ++it) reversed.push_back((*it)->getTOBType().c_str());
  EXPECT_EQ((std::vector<std::string>{"d", "b", "c", "a"}), reversed);

  root.removeChild(&c);
  EXPECT_EQ(nullptr, c.getTOBParent());
  EXPECT_EQ((std::vector<std::string>{"a", "b", "d"}), typesOf(root));
  // Not a child: nothing to take out, but the parent is cleared all the same.
  TOB stranger("x", &a);
  root.removeChild(&stranger);
  EXPECT_EQ(nullptr, stranger.getTOBParent());
  EXPECT_EQ(1, a.end() - a.begin());
  a.removeChild(&stranger);
  root.removeChild(&d);
  EXPECT_TRUE(infos().empty());

  // A parent going first reports and frees its children.
  TOB* parent = new TOB("root");
  TOB child("child", parent);
  TOB grandchild("grandchild", &child);
  delete parent;
  EXPECT_EQ(nullptr, child.getTOBParent());
  EXPECT_EQ(&child, grandchild.getTOBParent());
  ASSERT_EQ(1u, infos().size());
  EXPECT_EQ("TOB::~TOB: Deleted TOB object 'root' while it has children", infos()[0]);
  // A child going takes itself out of its parent: no report.
  { TOB leaf("leaf", &child); }
  EXPECT_EQ(1, child.end() - child.begin());
  EXPECT_EQ(1u, infos().size());
}

}  // namespace
