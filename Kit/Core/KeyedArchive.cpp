#include "Kit/Core/KeyedArchive.h"

#include <cstdlib>
#include <map>

#include "Kit/Core/PropertyList.h"
#include "Kit/Core/Utf8.h"

namespace {

constexpr const char* archiverName = "NSKeyedArchiver";
constexpr std::uint64_t archiveVersion = 100000;
constexpr std::string_view arrayClass = "NSMutableArray";

// Collects the table of objects; index 0 stands for nil.
class ObjectTable {
 public:
  ObjectTable() : m_objects(plist_new_array()) {
    plist_array_append_item(m_objects.get(), plist_new_string("$null"));
  }

  std::uint64_t append(plist_t object) {
    plist_array_append_item(m_objects.get(), object);
    return plist_array_get_size(m_objects.get()) - 1;
  }

  std::uint64_t classOf(std::string_view name) {
    const auto known = m_classes.find(name);
    if (known != m_classes.end()) {
      return known->second;
    }
    plist_t entry = plist_new_dict();
    plist_t ancestry = plist_new_array();
    plist_array_append_item(ancestry, plist_new_string(std::string(name).c_str()));
    if (name == arrayClass) {
      plist_array_append_item(ancestry, plist_new_string("NSArray"));
    }
    plist_array_append_item(ancestry, plist_new_string("NSObject"));
    plist_dict_set_item(entry, "$classname", plist_new_string(std::string(name).c_str()));
    plist_dict_set_item(entry, "$classes", ancestry);
    const std::uint64_t index = append(entry);
    m_classes.emplace(name, index);
    return index;
  }

  std::uint64_t appendObject(const LXCoding& object);

  plist_t release() { return m_objects.release(); }

 private:
  propertylist::Handle m_objects;
  std::map<std::string, std::uint64_t, std::less<>> m_classes;
};

class ObjectArchiver final : public LXKeyedArchiver {
 public:
  ObjectArchiver(ObjectTable& table, plist_t entry) : m_table(table), m_entry(entry) {}

  void encodeInt(std::int32_t value, const char* key) override {
    const auto widened = static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
    plist_dict_set_item(m_entry, key, plist_new_uint(widened));
  }
  void encodeBool(bool value, const char* key) override {
    plist_dict_set_item(m_entry, key, plist_new_bool(value ? 1 : 0));
  }
  void encodeString(const std::optional<std::string>& value, const char* key) override {
    const std::uint64_t index =
        value ? m_table.append(plist_new_string(utf8::repaired(*value).c_str())) : 0;
    plist_dict_set_item(m_entry, key, plist_new_uid(index));
  }
  void encodeObject(const LXCoding& value, const char* key) override {
    plist_dict_set_item(m_entry, key, plist_new_uid(m_table.appendObject(value)));
  }
  void encodeArray(const std::vector<const LXCoding*>& values, const char* key) override {
    plist_t entry = plist_new_dict();
    const std::uint64_t index = m_table.append(entry);
    plist_t elements = plist_new_array();
    for (const LXCoding* value : values) {
      plist_array_append_item(elements, plist_new_uid(m_table.appendObject(*value)));
    }
    plist_dict_set_item(entry, "NS.objects", elements);
    plist_dict_set_item(entry, "$class", plist_new_uid(m_table.classOf(arrayClass)));
    plist_dict_set_item(m_entry, key, plist_new_uid(index));
  }

 private:
  ObjectTable& m_table;
  plist_t m_entry;
};

std::uint64_t ObjectTable::appendObject(const LXCoding& object) {
  plist_t entry = plist_new_dict();
  const std::uint64_t index = append(entry);
  ObjectArchiver archiver(*this, entry);
  object.encodeWithCoder(archiver);
  plist_dict_set_item(entry, "$class", plist_new_uid(classOf(object.className())));
  return index;
}

// libplist walks an array from its start on every access, so the nodes are listed once.
std::vector<plist_t> elementsOf(plist_t array) {
  std::vector<plist_t> elements(plist_array_get_size(array));
  plist_array_iter cursor = nullptr;
  plist_array_new_iter(array, &cursor);
  for (plist_t& element : elements) {
    plist_array_next_item(array, cursor, &element);
  }
  std::free(cursor);  // NOLINT(cppcoreguidelines-no-malloc)
  return elements;
}

// The object table of an archive being read.
class ReadTable {
 public:
  explicit ReadTable(plist_t objects) : m_nodes(elementsOf(objects)) {}

  // The target of a reference; null for nil, for no reference and for one that leads nowhere.
  plist_t follow(plist_t reference) const {
    std::uint64_t index = 0;
    if (propertylist::isKind(reference, PLIST_UID)) {
      plist_get_uid_val(reference, &index);
    } else if (propertylist::isKind(reference, PLIST_DICT)) {
      // XML has no element for references.
      plist_t number = plist_dict_get_item(reference, "CF$UID");
      index = static_cast<std::uint64_t>(propertylist::integerOf(number));
    }
    return index > 0 && index < m_nodes.size() ? m_nodes[index] : nullptr;
  }

  std::string classNameOf(plist_t object) const {
    if (!propertylist::isKind(object, PLIST_DICT)) {
      return {};
    }
    plist_t entry = follow(plist_dict_get_item(object, "$class"));
    return propertylist::isKind(entry, PLIST_DICT)
               ? propertylist::stringOf(plist_dict_get_item(entry, "$classname"))
               : std::string();
  }

  bool decode(plist_t object, LXCoding& value);
  bool isBroken() const { return m_isBroken; }
  void setBroken() { m_isBroken = true; }

 private:
  std::vector<plist_t> m_nodes;
  bool m_isBroken = false;
};

class ObjectUnarchiver final : public LXKeyedUnarchiver {
 public:
  ObjectUnarchiver(ReadTable& table, plist_t entry) : m_table(table), m_entry(entry) {}

  std::int32_t decodeInt(const char* key) override {
    return static_cast<std::int32_t>(propertylist::integerOf(item(key)));
  }
  bool decodeBool(const char* key) override { return propertylist::boolOf(item(key)); }
  std::optional<std::string> decodeString(const char* key) override {
    plist_t node = m_table.follow(item(key));
    if (propertylist::isKind(node, PLIST_DICT)) {
      // A mutable string is an object that wraps its text.
      node = plist_dict_get_item(node, "NS.string");
    }
    return propertylist::isKind(node, PLIST_STRING) ? std::optional(propertylist::stringOf(node))
                                                    : std::nullopt;
  }
  bool decodeObject(LXCoding& value, const char* key) override {
    return m_table.decode(m_table.follow(item(key)), value);
  }

 protected:
  std::size_t arraySize(const char* key) override {
    listElements(key);
    return m_elements.size();
  }
  bool decodeElement(LXCoding& value, const char* key, std::size_t index) override {
    listElements(key);
    const bool isDecoded = m_table.decode(m_elements[index], value);
    if (!isDecoded) {
      m_table.setBroken();
    }
    return isDecoded;
  }

 private:
  plist_t item(const char* key) { return plist_dict_get_item(m_entry, key); }

  void listElements(const char* key) {
    if (m_listed == key) {
      return;
    }
    m_listed = key;
    m_elements.clear();
    plist_t array = m_table.follow(item(key));
    const std::string name = m_table.classNameOf(array);
    if (name != arrayClass && name != "NSArray") {
      if (item(key) != nullptr) {
        m_table.setBroken();
      }
      return;
    }
    plist_t references = plist_dict_get_item(array, "NS.objects");
    if (!propertylist::isKind(references, PLIST_ARRAY)) {
      m_table.setBroken();
      return;
    }
    m_elements = elementsOf(references);
    for (plist_t& element : m_elements) {
      element = m_table.follow(element);
    }
  }

  ReadTable& m_table;
  plist_t m_entry;
  std::string m_listed;
  std::vector<plist_t> m_elements;
};

bool ReadTable::decode(plist_t object, LXCoding& value) {
  if (classNameOf(object) != value.className()) {
    return false;
  }
  ObjectUnarchiver unarchiver(*this, object);
  value.initWithCoder(unarchiver);
  return true;
}

}  // namespace

std::string keyedarchive::archive(const LXCoding& root) {
  ObjectTable table;
  const std::uint64_t index = table.appendObject(root);
  const propertylist::Handle document(plist_new_dict());
  plist_t top = plist_new_dict();
  plist_dict_set_item(top, "root", plist_new_uid(index));
  plist_dict_set_item(document.get(), "$version", plist_new_uint(archiveVersion));
  plist_dict_set_item(document.get(), "$archiver", plist_new_string(archiverName));
  plist_dict_set_item(document.get(), "$top", top);
  plist_dict_set_item(document.get(), "$objects", table.release());
  return propertylist::serialize(document.get(), propertylist::Form::Binary);
}

bool keyedarchive::unarchive(std::string_view bytes, LXCoding& root) {
  const auto document = propertylist::parse(bytes);
  if (!propertylist::isKind(document.get(), PLIST_DICT) ||
      propertylist::stringOf(plist_dict_get_item(document.get(), "$archiver")) != archiverName) {
    return false;
  }
  plist_t top = plist_dict_get_item(document.get(), "$top");
  plist_t objects = plist_dict_get_item(document.get(), "$objects");
  if (!propertylist::isKind(top, PLIST_DICT) || !propertylist::isKind(objects, PLIST_ARRAY)) {
    return false;
  }
  ReadTable table(objects);
  return table.decode(table.follow(plist_dict_get_item(top, "root")), root) && !table.isBroken();
}
