#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <regex>
#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include "Companion/Desktop/ForegroundSearch.h"
#include "Companion/Desktop/GnomeForeground.h"
#include "Companion/Desktop/KWinForeground.h"
#include "Companion/Desktop/RunningPrograms.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/Scratch.h"

// Desktops that tell on the bus which program is in front, as the test plays them.

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// A program on the bus with one name, on the loop of the test.
class BusProgram {
 public:
  BusProgram(EventLoop& loop, const char* name) {
    if (sd_bus_open_user(&m_bus) < 0 || sd_bus_request_name(m_bus, name, 0) < 0 ||
        sd_bus_attach_event(m_bus, loop.handle(), 0) < 0) {
      throw std::runtime_error("no bus");
    }
  }
  virtual ~BusProgram() { sd_bus_flush_close_unref(m_bus); }
  BusProgram(const BusProgram&) = delete;
  BusProgram& operator=(const BusProgram&) = delete;

 protected:
  void add(const char* path, const char* interface, const sd_bus_vtable* table) {
    if (sd_bus_add_object_vtable(m_bus, nullptr, path, interface, table, this) < 0) {
      throw std::runtime_error("no object");
    }
  }
  sd_bus* bus() { return m_bus; }

 private:
  sd_bus* m_bus = nullptr;
};

std::string textIn(sd_bus_message* call) {
  const char* text = nullptr;
  sd_bus_message_read(call, "s", &text);
  return text;
}

// KWin's side: it keeps scripts, and what a script would do the test does.
class FakeKWin final : public BusProgram {
 public:
  explicit FakeKWin(EventLoop& loop) : BusProgram(loop, "org.kde.KWin") {
    static const sd_bus_vtable table[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("loadScript", "ss", "i", load, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("unloadScript", "s", "b", unload, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("start", "", "", start, SD_BUS_VTABLE_UNPRIVILEGED), SD_BUS_VTABLE_END};
    add("/Scripting", "org.kde.kwin.Scripting", table);
  }

  // What the running script does when a window comes to the front.
  void bring(const char* windowClass, const char* desktopFile, int pid) {
    std::smatch address;
    if (!std::regex_search(script, address, std::regex("callDBus\\(\"(:[0-9.]+)\""))) {
      throw std::runtime_error("the script calls nobody: " + script);
    }
    sd_bus_call_method_async(bus(), nullptr, address[1].str().c_str(),
                             "/com/corvex/NerinOption/Focus", "com.corvex.NerinOption.Focus",
                             "InFront", nullptr, nullptr, "ssss", windowClass, "instance",
                             desktopFile, std::to_string(pid).c_str());
  }

  std::vector<std::string> scripts;  // the names of those that are loaded
  std::string script;
  bool isRunning = false;

 private:
  static int load(sd_bus_message* call, void* data, sd_bus_error*) {
    auto& kwin = *static_cast<FakeKWin*>(data);
    std::ifstream file(textIn(call));
    const std::string name = textIn(call);
    if (std::find(kwin.scripts.begin(), kwin.scripts.end(), name) != kwin.scripts.end()) {
      return sd_bus_reply_method_return(call, "i", -1);
    }
    kwin.script.assign(std::istreambuf_iterator<char>(file), {});
    kwin.scripts.push_back(name);
    return sd_bus_reply_method_return(call, "i", 0);
  }
  static int unload(sd_bus_message* call, void* data, sd_bus_error*) {
    auto& kwin = *static_cast<FakeKWin*>(data);
    const auto gone = std::erase(kwin.scripts, textIn(call));
    kwin.isRunning = kwin.isRunning && gone == 0;
    return sd_bus_reply_method_return(call, "b", gone > 0 ? 1 : 0);
  }
  static int start(sd_bus_message* call, void* data, sd_bus_error*) {
    static_cast<FakeKWin*>(data)->isRunning = true;
    return sd_bus_reply_method_return(call, "");
  }
};

// GNOME's side, with the extension or without.
class FakeShell final : public BusProgram {
 public:
  FakeShell(EventLoop& loop, bool hasExtension) : BusProgram(loop, "org.gnome.Shell") {
    static const sd_bus_vtable focus[] = {
        SD_BUS_VTABLE_START(0), SD_BUS_METHOD("Get", "", "s", get, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END};
    static const sd_bus_vtable introspect[] = {SD_BUS_VTABLE_START(0),
                                               SD_BUS_SIGNAL("RunningApplicationsChanged", "", 0),
                                               SD_BUS_VTABLE_END};
    if (hasExtension) {
      add("/org/gnome/shell/extensions/FocusedWindow", "org.gnome.shell.extensions.FocusedWindow",
          focus);
    }
    add("/org/gnome/Shell/Introspect", "org.gnome.Shell.Introspect", introspect);
  }

  void bring(const std::string& window) {
    m_window = window;
    sd_bus_emit_signal(bus(), "/org/gnome/Shell/Introspect", "org.gnome.Shell.Introspect",
                       "RunningApplicationsChanged", "");
  }

 private:
  static int get(sd_bus_message* call, void* data, sd_bus_error* error) {
    const std::string& window = static_cast<FakeShell*>(data)->m_window;
    return window.empty() ? sd_bus_error_set(error, "org.gnome.gjs.JSError.Error", "no window")
                          : sd_bus_reply_method_return(call, "s", window.c_str());
  }

  std::string m_window;
};

// The service manager's side.
class FakeManager final : public BusProgram {
 public:
  explicit FakeManager(EventLoop& loop) : BusProgram(loop, "org.freedesktop.systemd1") {
    static const sd_bus_vtable table[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("Subscribe", "", "", subscribe, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("ListUnitsByPatterns", "asas", "a(ssssssouso)", list,
                      SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_SIGNAL("UnitNew", "so", 0),
        SD_BUS_SIGNAL("UnitRemoved", "so", 0),
        SD_BUS_VTABLE_END};
    add(path, interface, table);
  }

  void begin(const std::string& unit) {
    m_units.push_back(unit);
    tell("UnitNew", unit);
  }
  void end(const std::string& unit) {
    std::erase(m_units, unit);
    tell("UnitRemoved", unit);
  }
  // Something else in the session.
  void tell(const char* signal, const std::string& unit) {
    if (m_isSubscribed) {
      sd_bus_emit_signal(bus(), path, interface, signal, "so", unit.c_str(), "/org/x");
    }
  }

  int lists = 0;

 private:
  static constexpr const char* path = "/org/freedesktop/systemd1";
  static constexpr const char* interface = "org.freedesktop.systemd1.Manager";

  static int subscribe(sd_bus_message* call, void* data, sd_bus_error*) {
    static_cast<FakeManager*>(data)->m_isSubscribed = true;
    return sd_bus_reply_method_return(call, "");
  }
  static int list(sd_bus_message* call, void* data, sd_bus_error*) {
    auto& manager = *static_cast<FakeManager*>(data);
    ++manager.lists;
    sd_bus_message* answer = nullptr;
    sd_bus_message_new_method_return(call, &answer);
    sd_bus_message_open_container(answer, 'a', "(ssssssouso)");
    // The library sorts by chance, as the real one does.
    auto units = manager.m_units;
    std::sort(units.begin(), units.end());
    for (const std::string& unit : units) {
      sd_bus_message_append(answer, "(ssssssouso)", unit.c_str(), "", "loaded", "active", "running",
                            "", "/org/x", 0, "", "/");
    }
    sd_bus_message_close_container(answer);
    const int result = sd_bus_send(sd_bus_message_get_bus(call), answer, nullptr);
    sd_bus_message_unref(answer);
    return result;
  }

  std::vector<std::string> m_units;
  bool m_isSubscribed = false;
};

class ForegroundOverBus : public testing::Test {
 protected:
  Foreground::Changed changed() {
    return [this](const std::optional<AppIdentity>& identity) { seen.push_back(identity); };
  }
  Foreground::Lost ended() {
    return [this] { ++lost; };
  }
  std::unique_ptr<Foreground> openKWin() {
    return KWinForeground::open(loop, folder.folder() / "new", changed(), ended());
  }
  std::unique_ptr<Foreground> openGnome() {
    return GnomeForeground::open(loop, changed(), ended());
  }
  std::unique_ptr<Foreground> openRunning() {
    return RunningPrograms::open(
        loop,
        [this](const AppIdentity& one) {
          return std::find(linked.begin(), linked.end(), one.appId) != linked.end();
        },
        changed(), ended());
  }

  bool comes(const std::optional<std::string>& appId) {
    return loop.runUntil(
        [&] {
          return !seen.empty() && seen.back().has_value() == appId.has_value() &&
                 (!appId || seen.back()->appId == *appId);
        },
        20s);
  }
  bool isLost() {
    return loop.runUntil([&] { return lost > 0; }, 20s);
  }
  bool runs(const FakeKWin& kwin) {
    return loop.runUntil([&] { return kwin.isRunning; }, 20s);
  }
  void wait(std::chrono::milliseconds time) {
    loop.runUntil([] { return false; }, time);
  }

  PrivateBus bus;
  EventLoop loop;
  Scratch folder;
  std::vector<std::string> linked{"org.blender.Blender", "org.kde.krita"};
  std::vector<std::optional<AppIdentity>> seen;
  int lost = 0;
};

TEST_F(ForegroundOverBus, AScriptInKWinTellsTheWindows) {
  FakeKWin kwin(loop);
  const auto foreground = openKWin();
  ASSERT_TRUE(foreground);
  ASSERT_TRUE(runs(kwin));
  EXPECT_THAT(kwin.scripts, ElementsAre("com.corvex.NerinOption.focus"));
  EXPECT_THAT(kwin.script, Not(HasSubstr("caption"))) << "titles are nobody's business";
  kwin.bring("blender", "org.blender.Blender", getpid());
  ASSERT_TRUE(comes("org.blender.Blender"));
  EXPECT_EQ(seen.back()->instance, "blender");
  EXPECT_EQ(seen.back()->pid, getpid());
  EXPECT_FALSE(seen.back()->executable.empty());
  kwin.bring("xterm", "", 0);
  EXPECT_TRUE(comes("xterm"));
  kwin.bring("", "", getpid());
  EXPECT_TRUE(comes("")) << "it says nothing of itself";
  kwin.bring("", "", 0);
  EXPECT_TRUE(comes(std::nullopt));
}

TEST_F(ForegroundOverBus, TheScriptEndsWithTheProgram) {
  FakeKWin kwin(loop);
  {
    const auto foreground = openKWin();
    ASSERT_TRUE(runs(kwin));
  }
  EXPECT_TRUE(loop.runUntil([&] { return kwin.scripts.empty(); }, 20s));
  EXPECT_TRUE(std::filesystem::is_empty(folder.folder() / "new"));
}

TEST_F(ForegroundOverBus, AScriptThatAKilledProgramLeftIsReplaced) {
  FakeKWin kwin(loop);
  kwin.scripts = {"com.corvex.NerinOption.focus", "another"};
  const auto foreground = openKWin();
  ASSERT_TRUE(runs(kwin));
  EXPECT_THAT(kwin.scripts, ElementsAre("another", "com.corvex.NerinOption.focus"));
  EXPECT_EQ(lost, 0);
}

TEST_F(ForegroundOverBus, WithoutKWinItIsLost) {
  const auto foreground = openKWin();
  EXPECT_TRUE(isLost());
  EXPECT_FALSE(std::filesystem::exists(folder.folder() / "new")) << "nothing was written";
}

TEST_F(ForegroundOverBus, AScriptThatTellsNothingIsLost) {
  FakeKWin kwin(loop);
  const auto foreground = openKWin();
  ASSERT_TRUE(runs(kwin));
  EXPECT_TRUE(isLost());
}

TEST_F(ForegroundOverBus, AKWinThatEndsIsLost) {
  auto kwin = std::make_unique<FakeKWin>(loop);
  const auto foreground = openKWin();
  ASSERT_TRUE(runs(*kwin));
  kwin->bring("blender", "", 0);
  ASSERT_TRUE(comes("blender"));
  kwin.reset();
  EXPECT_TRUE(isLost());
}

TEST_F(ForegroundOverBus, AnExtensionOfGnomeTellsTheWindows) {
  FakeShell shell(loop, true);
  const auto foreground = openGnome();
  ASSERT_TRUE(comes(std::nullopt)) << "no window is in front";
  shell.bring(R"({"title": "secret", "wm_class": "Blender", "wm_class_instance": "blender", )"
              R"("pid": )" +
              std::to_string(getpid()) + "}");
  ASSERT_TRUE(comes("Blender"));
  EXPECT_EQ(seen.back()->instance, "blender");
  EXPECT_FALSE(seen.back()->executable.empty());
  shell.bring("");
  EXPECT_TRUE(comes(std::nullopt));
  for (const char* nonsense : {"{", "[]", "{\"wm_class\": 5, \"pid\": \"x\"}"}) {
    shell.bring(R"({"wm_class": "Blender"})");
    ASSERT_TRUE(comes("Blender"));
    shell.bring(nonsense);
    EXPECT_TRUE(comes(std::nullopt)) << nonsense;
  }
  EXPECT_EQ(lost, 0);
}

TEST_F(ForegroundOverBus, GnomeWithoutTheExtensionIsLost) {
  const FakeShell shell(loop, false);
  const auto foreground = openGnome();
  EXPECT_TRUE(isLost());
  EXPECT_TRUE(seen.empty());
}

TEST_F(ForegroundOverBus, WithoutGnomeItIsLost) {
  const auto foreground = openGnome();
  EXPECT_TRUE(isLost());
}

TEST_F(ForegroundOverBus, AShellThatEndsIsLost) {
  auto shell = std::make_unique<FakeShell>(loop, true);
  const auto foreground = openGnome();
  ASSERT_TRUE(comes(std::nullopt));
  shell.reset();
  EXPECT_TRUE(isLost());
}

TEST_F(ForegroundOverBus, OfTheLinkedProgramsThatRunTheLastOneCounts) {
  FakeManager manager(loop);
  manager.begin("app-gnome-org.kde.krita-7.scope");
  const auto foreground = openRunning();
  ASSERT_TRUE(foreground->tellsRunning());
  ASSERT_TRUE(comes("org.kde.krita"));
  manager.begin("app-gnome-org.blender.Blender-9.scope");
  ASSERT_TRUE(comes("org.blender.Blender"));
  EXPECT_EQ(seen.back()->unit, "app-gnome-org.blender.Blender-9.scope");
  manager.begin("app-gnome-files-11.scope");
  wait(300ms);
  EXPECT_TRUE(comes("org.blender.Blender"));
  manager.end("app-gnome-org.blender.Blender-9.scope");
  EXPECT_TRUE(comes("org.kde.krita"));
  manager.end("app-gnome-org.kde.krita-7.scope");
  EXPECT_TRUE(comes("")) << "none of them runs";
}

TEST_F(ForegroundOverBus, ANewLinkCountsForWhatRunsAlready) {
  FakeManager manager(loop);
  manager.begin("app-gnome-files-11.scope");
  const auto foreground = openRunning();
  ASSERT_TRUE(comes(""));
  linked.emplace_back("files");
  foreground->linksChanged();
  EXPECT_TRUE(comes("files"));
}

TEST_F(ForegroundOverBus, OtherUnitsAskNothing) {
  FakeManager manager(loop);
  const auto foreground = openRunning();
  ASSERT_TRUE(comes(""));
  const int before = manager.lists;
  manager.tell("UnitNew", "cron.service");
  wait(500ms);
  EXPECT_EQ(manager.lists, before);
}

TEST_F(ForegroundOverBus, WithoutAServiceManagerItIsLost) {
  const auto foreground = openRunning();
  EXPECT_TRUE(isLost());
}

TEST_F(ForegroundOverBus, TheSearchTakesTheFirstWayThatTells) {
  FakeShell shell(loop, false);
  FakeManager manager(loop);
  manager.begin("app-gnome-org.kde.krita-7.scope");
  const Foreground::Changed tell = changed();
  std::vector<ForegroundSearch::Way> ways;
  ways.emplace_back([](const auto&, const auto&) { return nullptr; });
  ways.emplace_back([&](auto one, auto end) { return GnomeForeground::open(loop, one, end); });
  ways.emplace_back([&](auto one, auto end) {
    return RunningPrograms::open(
        loop, [](const AppIdentity&) { return true; }, one, end);
  });
  ForegroundSearch search(loop, ways, tell, ended());
  EXPECT_EQ(search.name(), "");
  ASSERT_TRUE(comes("org.kde.krita"));
  EXPECT_TRUE(search.tellsRunning());
  EXPECT_EQ(search.name(), "programs that run");
  EXPECT_EQ(lost, 0);
}

TEST_F(ForegroundOverBus, ASearchWithoutAWayIsLostOnce) {
  std::vector<ForegroundSearch::Way> ways;
  ways.emplace_back([&](auto one, auto end) { return GnomeForeground::open(loop, one, end); });
  const ForegroundSearch search(loop, ways, changed(), ended());
  EXPECT_TRUE(isLost());
  wait(200ms);
  EXPECT_EQ(lost, 1);
}

// A way that told something and ends is not replaced by a lesser one.
TEST_F(ForegroundOverBus, ASearchWhoseWayEndsIsLost) {
  auto shell = std::make_unique<FakeShell>(loop, true);
  FakeManager manager(loop);
  std::vector<ForegroundSearch::Way> ways;
  ways.emplace_back([&](auto one, auto end) { return GnomeForeground::open(loop, one, end); });
  ways.emplace_back([&](auto one, auto end) {
    return RunningPrograms::open(
        loop, [](const AppIdentity&) { return true; }, one, end);
  });
  const ForegroundSearch search(loop, ways, changed(), ended());
  ASSERT_TRUE(comes(std::nullopt));
  shell.reset();
  EXPECT_TRUE(isLost());
  EXPECT_FALSE(search.tellsRunning());
}

}  // namespace
