#pragma once

#include <memory>
#include <vector>

#include "Kit/Core/LXMenuData.h"

// A node of the tree behind a pop-up menu. A node owns its children. A child kept across a rebuild
// stays alive but no longer belongs to a menu.
class LXTreeNode {
 public:
  using Children = std::vector<std::shared_ptr<LXTreeNode>>;

  explicit LXTreeNode(std::shared_ptr<LXMenuData> nodeData = nullptr, LXTreeNode* parent = nullptr,
                      Children children = {});
  ~LXTreeNode();
  LXTreeNode(const LXTreeNode&) = delete;
  LXTreeNode& operator=(const LXTreeNode&) = delete;

  // The entry; null for the root.
  const std::shared_ptr<LXMenuData>& nodeData() const { return m_nodeData; }
  // Null for a root, and for a child that was removed.
  LXTreeNode* parent() const { return m_parent; }
  const Children& children() const { return m_children; }

  std::shared_ptr<LXTreeNode> addChild(std::shared_ptr<LXMenuData> data);
  void removeAllChild();
  // The child that carries this entry, or null.
  std::shared_ptr<LXTreeNode> getNodeByData(const LXMenuData* data) const;

 private:
  std::shared_ptr<LXMenuData> m_nodeData;
  LXTreeNode* m_parent;
  Children m_children;
};
