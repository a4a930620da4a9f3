// The JSON of replay documents: no white space, keys in the order in which they are written.
//
//   std::string text;
//   JsonWriter json(text);
//   json.BeginObject();
//   json.Field("id", id);
//   json.Field("faceIds", faceIds);
//   json.EndObject();
//
// Numbers: doubles with six significant digits in the shorter of fixed and exponent notation
// (1e-07, 0.333333, 1e+20), the same in every locale; a NaN is written as nan and an infinity as
// inf, which no JSON reader takes. Texts: tab, newline, carriage return, double quote and backslash
// become \t, \n, \r, \" and \\; every other byte goes through as it is. Caveat: the text is only as
// well formed as the calls are paired.
#pragma once

#include "step/replay/internal/JsonNumber.h"

#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvex {

class JsonWriter
{
public:
  // Appends to the text.
  explicit JsonWriter(std::string& text_) : text(text_)
  {}

  void BeginObject()
  {
    Open('{');
  }
  void EndObject()
  {
    Close('}');
  }
  void BeginArray()
  {
    Open('[');
  }
  void EndArray()
  {
    Close(']');
  }

  // Requires: nothing in it that would have to be escaped.
  void Key(std::string_view key)
  {
    text.append(separated ? ",\"" : "\"");
    text.append(key);
    text.append("\":");
    separated = false;
  }

  void Value(bool value)
  {
    Separate();
    text.append(value ? "true" : "false");
  }
  void Value(double value)
  {
    char buffer[1 + kJsonNumberSize];
    char* const start = StartIn(buffer);
    text.append(buffer, WriteJsonNumber(start, value));
  }
  template <typename Integer>
  requires std::integral<Integer>
  void Value(Integer value)
  {
    char buffer[24];
    char* const start = StartIn(buffer);
    text.append(buffer, std::to_chars(start, buffer + sizeof buffer, value).ptr);
  }
  void Value(std::string_view value)
  {
    Separate();
    Quoted(value);
  }
  // Would be taken for a bool.
  void Value(const char* value)
  {
    Value(std::string_view(value));
  }
  template <typename Item>
  void Value(const std::vector<Item>& items)
  {
    BeginArray();
    for (const Item& item : items)
      Value(item);
    EndArray();
  }

  // A whole JSON text.
  void Raw(std::string_view json)
  {
    Separate();
    text.append(json);
  }

  template <typename Any>
  void Field(std::string_view key, const Any& value)
  {
    Key(key);
    Value(value);
  }
  void RawField(std::string_view key, std::string_view json)
  {
    Key(key);
    Raw(json);
  }

  // An array of what `write(item)` writes, for each item.
  template <typename Item, typename Write>
  void ArrayField(std::string_view key, const std::vector<Item>& items, Write&& write)
  {
    Key(key);
    BeginArray();
    for (const Item& item : items)
      write(item);
    EndArray();
  }

private:
  void Separate()
  {
    if (separated)
      text.push_back(',');
    separated = true;
  }
  // The same, in a buffer: one append takes less time than two.
  char* StartIn(char* buffer)
  {
    *buffer = ',';
    return std::exchange(separated, true) ? buffer + 1 : buffer;
  }
  void Open(char bracket)
  {
    Separate();
    text.push_back(bracket);
    separated = false;
  }
  void Close(char bracket)
  {
    text.push_back(bracket);
    separated = true;
  }
  // In runs of what needs no escape: texts can be as long as a model.
  void Quoted(std::string_view value)
  {
    text.push_back('"');
    std::size_t start = 0;
    for (std::size_t i = 0; i < value.size(); ++i)
      if (const char* escape = EscapeOf(value[i])) {
        text.append(value, start, i - start);
        text.append(escape);
        start = i + 1;
      }
    text.append(value, start);
    text.push_back('"');
  }

  // Returns: null for a byte that stays.
  static const char* EscapeOf(char c)
  {
    switch (c) {
    case '\t':
      return "\\t";
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '"':
      return "\\\"";
    case '\\':
      return "\\\\";
    default:
      return nullptr;
    }
  }

  std::string& text;
  // The next value comes behind another one.
  bool separated = false;
};

} // namespace Orvex
