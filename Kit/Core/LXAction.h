#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Kit/Core/KeyedArchive.h"

namespace pugi {
class xml_document;
class xml_node;
}  // namespace pugi

// Small helpers that every layer uses: texts, folders and files, XML attributes, archives and log
// settings.
class LXAction {
 public:
  // The text, or an empty one when there is none.
  static std::string getNonullStr(const std::optional<std::string>& text);

  // Creates the folder and its parents; false if it does not exist afterwards.
  [[nodiscard]] static bool creatDirectoryPro(const std::filesystem::path& folder);
  // Copies the file that came with the program into the folder unless the folder has it. Returns
  // whether the folder has it afterwards.
  [[nodiscard]] static bool checkAddCopyFileFromResourceWithPath(
      const std::filesystem::path& folder, const std::string& fileName);

  // A hexadecimal number ("F" is 15); 0 for anything else and for numbers beyond 32 bits.
  static std::int32_t getIntValueByHex(std::string_view text);
  // The decimal number at the start of the text, clamped to 32 bits; 0 without one.
  static std::int32_t getIntValue(std::string_view text);
  // The attribute of an element, or nothing.
  static std::optional<std::string> getNodeAtrValue(const pugi::xml_node& node,
                                                    const char* nodeName);
  // The text of the first child element of that name, or nothing.
  static std::optional<std::string> getNodeValue(const pugi::xml_node& node, const char* nodeName);

  // The user's first preferred language as the text catalogue names it ("de", "zh-Hant", "pt-BR"),
  // or the system's own code if the catalogue does not know it. Nothing if the system names none.
  static std::optional<std::string> getSysLanName();

  // Writes the archive of the object to the file, completely or not at all.
  [[nodiscard]] static bool SaveObject(const LXCoding& object,
                                       const std::filesystem::path& forPath);
  // Reads the object back; null if the file holds no object of that class.
  template <typename Object>
  static std::shared_ptr<Object> CopyObject(const std::filesystem::path& forPath) {
    auto object = std::make_shared<Object>();
    return readObject(forPath, *object) ? object : nullptr;
  }
  // A deep copy through the archive, without what the archive leaves out.
  template <typename Object>
  static std::shared_ptr<Object> CopyObject(const Object& copyDes) {
    auto object = std::make_shared<Object>();
    return keyedarchive::unarchive(keyedarchive::archive(copyDes), *object) ? object : nullptr;
  }

  // Opens a document or a web address with its default application.
  [[nodiscard]] static bool openFile(const std::string& path);
  [[nodiscard]] static bool openPage(const std::string& address);

  // Shows a text until the user has read it, or a question until the user answers yes or no.
  static void showInfoMessage(const std::string& text);
  static bool ChooseInfoMessage(const std::string& text);

  // Makes the log write every line; sets whether it writes to this program's file or nowhere.
  static void setLoggerTempLevel();
  static void setLoggerHasFile(bool hasFile);

 private:
  static bool readObject(const std::filesystem::path& path, LXCoding& object);
};
