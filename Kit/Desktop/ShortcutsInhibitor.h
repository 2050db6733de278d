#pragma once

#include <memory>

class QWindow;

// While it exists, a Wayland compositor gives a window also the keys that are its own shortcuts.
// Some ask the user first, and each has a key that ends this.
class ShortcutsInhibitor {
 public:
  // Null where there is no such compositor, or it does not offer this. A window can have one.
  static std::unique_ptr<ShortcutsInhibitor> of(QWindow& window);
  ~ShortcutsInhibitor();
  ShortcutsInhibitor(const ShortcutsInhibitor&) = delete;
  ShortcutsInhibitor& operator=(const ShortcutsInhibitor&) = delete;

 private:
  struct Objects;
  explicit ShortcutsInhibitor(std::unique_ptr<Objects> objects);

  std::unique_ptr<Objects> m_objects;
};
