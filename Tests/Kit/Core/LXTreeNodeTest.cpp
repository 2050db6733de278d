#include <gtest/gtest.h>

#include "Kit/Core/LXTreeNode.h"

namespace {

std::shared_ptr<LXMenuData> entry(const std::string& title) {
  auto data = std::make_shared<LXMenuData>();
  data->setTitleStr(title);
  return data;
}

}  // namespace

TEST(LXTreeNode, IsARootWithoutAnEntryAtFirst) {
  const LXTreeNode root;
  EXPECT_EQ(root.nodeData(), nullptr);
  EXPECT_EQ(root.parent(), nullptr);
  EXPECT_TRUE(root.children().empty());
}

TEST(LXTreeNode, KeepsItsChildrenInOrder) {
  LXTreeNode root;
  const auto first = root.addChild(entry("first"));
  const auto second = root.addChild(entry("second"));
  EXPECT_EQ(root.children(), (LXTreeNode::Children{first, second}));
  EXPECT_EQ(first->parent(), &root);
  EXPECT_EQ(second->nodeData()->titleStr(), "second");
}

TEST(LXTreeNode, BecomesTheParentOfTheChildrenItIsMadeWith) {
  const auto child = std::make_shared<LXTreeNode>(entry("child"));
  const LXTreeNode root(nullptr, nullptr, {child});
  EXPECT_EQ(child->parent(), &root);
}

TEST(LXTreeNode, FindsAChildByItsEntryAndNotByItsTitle) {
  LXTreeNode root;
  const auto data = entry("same");
  root.addChild(entry("same"));
  const auto child = root.addChild(data);
  child->addChild(entry("grandchild"));
  EXPECT_EQ(root.getNodeByData(data.get()), child);
  EXPECT_EQ(root.getNodeByData(entry("same").get()), nullptr);
  EXPECT_EQ(root.getNodeByData(child->children()[0]->nodeData().get()), nullptr);
}

TEST(LXTreeNode, LetsGoOfARemovedChildThatSomebodyKeeps) {
  LXTreeNode root;
  const auto child = root.addChild(entry("child"));
  const auto grandchild = child->addChild(entry("grandchild"));
  root.removeAllChild();
  EXPECT_TRUE(root.children().empty());
  EXPECT_EQ(child->parent(), nullptr);
  EXPECT_EQ(grandchild->parent(), child.get());
}

TEST(LXTreeNode, LetsGoOfItsChildrenAtItsEnd) {
  std::shared_ptr<LXTreeNode> child;
  {
    LXTreeNode root;
    child = root.addChild(entry("child"));
  }
  EXPECT_EQ(child->parent(), nullptr);
}
