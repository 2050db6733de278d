#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class LXKeyedArchiver;
class LXKeyedUnarchiver;

// An object whose values can be written to a keyed archive and read back, each under its own key.
class LXCoding {
 public:
  virtual ~LXCoding() = default;
  // The class name that the archive carries.
  virtual std::string_view className() const = 0;
  virtual void encodeWithCoder(LXKeyedArchiver& coder) const = 0;
  // Reads the values; a missing key reads as 0, false or none.
  virtual void initWithCoder(LXKeyedUnarchiver& coder) = 0;

 protected:
  LXCoding() = default;
  LXCoding(const LXCoding&) = default;
  LXCoding& operator=(const LXCoding&) = default;
};

// Receives the values of an object being encoded.
class LXKeyedArchiver {
 public:
  virtual ~LXKeyedArchiver() = default;
  virtual void encodeInt(std::int32_t value, const char* key) = 0;
  virtual void encodeBool(bool value, const char* key) = 0;
  virtual void encodeString(const std::optional<std::string>& value, const char* key) = 0;
  virtual void encodeObject(const LXCoding& value, const char* key) = 0;
  virtual void encodeArray(const std::vector<const LXCoding*>& values, const char* key) = 0;
};

// Provides the values of an object being decoded.
class LXKeyedUnarchiver {
 public:
  virtual ~LXKeyedUnarchiver() = default;
  virtual std::int32_t decodeInt(const char* key) = 0;
  virtual bool decodeBool(const char* key) = 0;
  virtual std::optional<std::string> decodeString(const char* key) = 0;
  // Fills `value` from the object under the key; false if there is none of its class.
  virtual bool decodeObject(LXCoding& value, const char* key) = 0;

  // The array under the key; empty if there is none. An element of another class makes the whole
  // archive unreadable.
  template <typename Object>
  std::vector<std::shared_ptr<Object>> decodeArray(const char* key) {
    std::vector<std::shared_ptr<Object>> objects(arraySize(key));
    for (std::size_t index = 0; index < objects.size(); ++index) {
      objects[index] = std::make_shared<Object>();
      if (!decodeElement(*objects[index], key, index)) {
        return {};
      }
    }
    return objects;
  }

 protected:
  virtual std::size_t arraySize(const char* key) = 0;
  virtual bool decodeElement(LXCoding& value, const char* key, std::size_t index) = 0;
};
