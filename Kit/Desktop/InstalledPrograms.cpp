#include "Kit/Desktop/InstalledPrograms.h"

#include <QFile>
#include <algorithm>
#include <memory>
#include <set>
#include <system_error>

#include <unistd.h>

// GLib uses the names of Qt's macros.
#undef signals
#undef slots
#undef emit
#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

namespace fs = std::filesystem;

namespace {

struct Unref {
  void operator()(GAppInfo* info) const { g_object_unref(info); }
  void operator()(GDesktopAppInfo* info) const { g_object_unref(info); }
  void operator()(char* text) const { g_free(text); }
};

std::string textOf(const char* text) {
  return text != nullptr ? text : "";
}

// A name of the icon theme, or a file.
QIcon iconOf(GAppInfo* info) {
  GIcon* icon = g_app_info_get_icon(info);
  if (icon == nullptr) {
    return {};
  }
  const std::unique_ptr<char, Unref> name(g_icon_to_string(icon));
  const QString text = QString::fromUtf8(name.get());
  return text.startsWith(u'/') ? QIcon(text) : QIcon::fromTheme(text);
}

// The executables of this user's processes.
std::set<std::string> runningExecutables() {
  std::set<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry("/proc", error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code unreadable;
    // Another user's processes cannot be read.
    const fs::path executable = fs::read_symlink(entry->path() / "exe", unreadable);
    if (!unreadable) {
      names.insert(executable.filename().string());
    }
  }
  return names;
}

bool isDesktopEntry(const fs::path& path) {
  return path.extension() == ".desktop";
}

}  // namespace

std::vector<installedprograms::Program> installedprograms::list() {
  const std::set<std::string> running = runningExecutables();
  std::vector<Program> programs;
  GList* all = g_app_info_get_all();
  for (GList* node = all; node != nullptr; node = node->next) {
    auto* info = static_cast<GAppInfo*>(node->data);
    if (!G_IS_DESKTOP_APP_INFO(info) || g_app_info_should_show(info) == FALSE) {
      continue;
    }
    const std::string path = textOf(g_desktop_app_info_get_filename(G_DESKTOP_APP_INFO(info)));
    if (path.empty()) {
      continue;
    }
    const fs::path executable = textOf(g_app_info_get_executable(info));
    programs.push_back({textOf(g_app_info_get_display_name(info)), path, iconOf(info),
                        running.contains(executable.filename().string())});
  }
  g_list_free_full(all, g_object_unref);
  std::sort(programs.begin(), programs.end(), [](const Program& a, const Program& b) {
    return QString::fromStdString(a.name).localeAwareCompare(QString::fromStdString(b.name)) < 0;
  });
  return programs;
}

std::string installedprograms::nameOf(const std::string& path) {
  if (isDesktopEntry(path)) {
    const std::unique_ptr<GDesktopAppInfo, Unref> info(
        g_desktop_app_info_new_from_filename(path.c_str()));
    if (info) {
      return textOf(g_app_info_get_display_name(G_APP_INFO(info.get())));
    }
  }
  return fs::path(path).stem().string();
}
