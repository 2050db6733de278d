#include "Kit/Bus/SessionBusNotificationCenter.h"

int main() {
  SessionBusNotificationCenter center;
  center.postNotificationName("NerinSettingChange", "121", std::nullopt);
  return 0;
}
