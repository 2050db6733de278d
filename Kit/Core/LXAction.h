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

// Small helpers that every layer uses: texts, folders and files, XML attributes, archives and the
// switches of the log.
class LXAction {
 public:
  // The text, or an empty one when there is none.
  static std::string getNonullStr(const std::optional<std::string>& text);

  // Makes the folder with all above it; false when it is not there afterwards.
  [[nodiscard]] static bool creatDirectoryPro(const std::filesystem::path& folder);
  // Puts the file that came with the program into the folder when the folder has none. Answers
  // whether the folder has it afterwards.
  [[nodiscard]] static bool checkAddCopyFileFromResourceWithPath(
      const std::filesystem::path& folder, const std::string& fileName);

  // A hexadecimal number ("F" is 15); 0 for anything else and for what 32 bits do not hold.
  static std::int32_t getIntValueByHex(std::string_view text);
  // The decimal number that the text begins with, bounded to 32 bits; 0 without one.
  static std::int32_t getIntValue(std::string_view text);
  // The attribute of an element, or nothing.
  static std::optional<std::string> getNodeAtrValue(const pugi::xml_node& node,
                                                    const char* nodeName);
  // The text of the first child element of that name, or nothing.
  static std::optional<std::string> getNodeValue(const pugi::xml_node& node, const char* nodeName);

  // The user's first preferred language as the text catalogue names languages ("de", "zh-Hant",
  // "pt-BR"), or the system's own code for one that the catalogue does not know. Nothing when the
  // system names none.
  static std::optional<std::string> getSysLanName();

  // Writes the archive of the object to the file, whole or not at all.
  [[nodiscard]] static bool SaveObject(const LXCoding& object,
                                       const std::filesystem::path& forPath);
  // Reads the object back; null when the file holds nothing of that class.
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

  // Shows a text and waits until the user has read it; a question, and waits for yes or no.
  static void showInfoMessage(const std::string& text);
  static bool ChooseInfoMessage(const std::string& text);

  // The log writes every line, or none below a warning; into the file of this program or nowhere.
  static void setLoggerTempLevel();
  static void setLoggerHasFile(bool hasFile);

 private:
  static bool readObject(const std::filesystem::path& path, LXCoding& object);
};
