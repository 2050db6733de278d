#pragma once

#include <filesystem>
#include <memory>

#include "Companion/Desktop/Foreground.h"
#include "Kit/Bus/BusConnection.h"

// The window in front as KWin tells it: a script inside KWin calls this program at every change.
class KWinForeground final : public Foreground {
 public:
  // `folder` gets the script's file. Null without a session bus or if the file cannot be written.
  static std::unique_ptr<KWinForeground> open(EventLoop& loop, const std::filesystem::path& folder,
                                              Changed changed, Lost lost);
  ~KWinForeground() override;
  KWinForeground(const KWinForeground&) = delete;
  KWinForeground& operator=(const KWinForeground&) = delete;

  std::string name() const override { return "KWin"; }

 private:
  KWinForeground(EventLoop& loop, std::filesystem::path file, Changed changed, Lost lost);
  bool connect(EventLoop& loop);
  void load();
  void take(sd_bus_message* call);
  void end();

  std::filesystem::path m_file;
  Changed m_changed;
  Lost m_lost;
  EventLoop::Timer m_silence;
  bool m_isLoaded = false;
  // Goes first: nobody is called after it.
  std::unique_ptr<BusConnection> m_bus;
};
