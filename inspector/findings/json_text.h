// json_text.h: the JSON objects that the inspector writes for programs.
#pragma once

#include <concepts>
#include <string>
#include <string_view>

namespace vela::inspector {

// Puts one value together, from its beginning to its end. Texts may hold any bytes: what is no
// UTF-8 becomes U+FFFD.
class JsonText {
 public:
  JsonText& BeginObject(std::string_view key = {}) { return Open(key, '{'); }
  JsonText& EndObject() { return Close('}'); }
  JsonText& BeginArray(std::string_view key = {}) { return Open(key, '['); }
  JsonText& EndArray() { return Close(']'); }

  // A member of an object, or with an empty key an element of an array.
  JsonText& Text(std::string_view key, std::string_view value);
  JsonText& Flag(std::string_view key, bool value);
  template <std::integral Integer>
  JsonText& Number(std::string_view key, Integer value) {
    Key(key);
    text_ += std::to_string(value);
    return *this;
  }

  const std::string& text() const { return text_; }

 private:
  JsonText& Open(std::string_view key, char bracket);
  JsonText& Close(char bracket);
  void Key(std::string_view key);
  void Quote(std::string_view text);

  std::string text_;
};

}  // namespace vela::inspector
