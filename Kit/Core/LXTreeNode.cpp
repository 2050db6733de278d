#include "Kit/Core/LXTreeNode.h"

#include <algorithm>
#include <utility>

LXTreeNode::LXTreeNode(std::shared_ptr<LXMenuData> nodeData, LXTreeNode* parent, Children children)
    : m_nodeData(std::move(nodeData)), m_parent(parent), m_children(std::move(children)) {
  for (const auto& child : m_children) {
    child->m_parent = this;
  }
}

LXTreeNode::~LXTreeNode() {
  removeAllChild();
}

std::shared_ptr<LXTreeNode> LXTreeNode::addChild(std::shared_ptr<LXMenuData> data) {
  return m_children.emplace_back(std::make_shared<LXTreeNode>(std::move(data), this));
}

void LXTreeNode::removeAllChild() {
  for (const auto& child : m_children) {
    child->m_parent = nullptr;
  }
  m_children.clear();
}

std::shared_ptr<LXTreeNode> LXTreeNode::getNodeByData(const LXMenuData* data) const {
  const auto found = std::find_if(m_children.begin(), m_children.end(), [&](const auto& child) {
    return child->nodeData().get() == data;
  });
  return found != m_children.end() ? *found : nullptr;
}
