#pragma once

#include <cstdint>
#include <string>

// One entry of a pop-up menu. Menus derive their own entry classes from it.
class LXMenuData {
 public:
  LXMenuData() = default;
  virtual ~LXMenuData() = default;

  const std::string& titleStr() const { return m_titleStr; }
  void setTitleStr(std::string titleStr) { m_titleStr = std::move(titleStr); }

  // Whether the menu draws a line between this entry and the next.
  virtual bool isLineAfter() const { return false; }

  // The kind of the entry; 1 can be chosen.
  std::int32_t type() const { return m_type; }
  void setType(std::int32_t type) { m_type = type; }

 protected:
  LXMenuData(const LXMenuData&) = default;
  LXMenuData& operator=(const LXMenuData&) = default;

 private:
  std::string m_titleStr;
  std::int32_t m_type = 0;
};
