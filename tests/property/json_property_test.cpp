#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "core/json.h"
#include "core/json_reader.h"
#include "core/json_writer.h"
#include "tests/property/generators.h"

namespace orvane::test {
namespace {

rc::Gen<std::string> digits(int fewest, int most) {
  return rc::gen::exec([fewest, most] {
    const auto count = static_cast<std::size_t>(*rc::gen::inRange(fewest, most + 1));
    return *rc::gen::container<std::string>(count, rc::gen::inRange('0', static_cast<char>('9' + 1)));
  });
}

/// A number in any form that the grammar of JSON has, far beyond what machine numbers hold.
rc::Gen<JSON> anyNumber() {
  return rc::gen::exec([] {
    std::string text = *rc::gen::element<std::string>("", "-");
    if (*rc::gen::arbitrary<bool>()) {
      text += *rc::gen::inRange('1', static_cast<char>('9' + 1));
      text += *digits(0, 40);
    } else {
      text += '0';
    }
    if (*rc::gen::arbitrary<bool>()) text += "." + *digits(1, 40);
    if (*rc::gen::arbitrary<bool>()) {
      text += *rc::gen::element('e', 'E');
      text += *rc::gen::element<std::string>("", "+", "-");
      text += *digits(1, 8);
    }
    return JSON(JSON::Number{text});
  });
}

rc::Gen<JSON> anyJSON(int depth) {
  return rc::gen::exec([depth] {
    // Whether there is more inside is drawn first and evenly: small cases should nest as well as large ones.
    const bool isContainer = depth > 0 && *rc::gen::element(true, false);
    switch (isContainer ? *rc::gen::element(5, 6) : *rc::gen::element(0, 1, 2, 3, 4)) {
      case 0:
        return JSON();
      case 1:
        return JSON(*rc::gen::arbitrary<bool>());
      case 2:
        return JSON(*rc::gen::arbitrary<std::int64_t>());
      case 3:
        return *anyNumber();
      case 4:
        return JSON(*anyText());
      case 5: {
        JSON::Array array;
        for (int count = *rc::gen::element(0, 1, 2, 3, 4); count > 0; --count) array.push_back(*anyJSON(depth - 1));
        return JSON(std::move(array));
      }
      default: {
        JSON::Object object;
        for (int count = *rc::gen::element(0, 1, 2, 3, 4); count > 0; --count) {
          object.set(*anyText(), *anyJSON(depth - 1));
        }
        return JSON(std::move(object));
      }
    }
  });
}

/// `value` with the members of every object in the order of their keys.
JSON sorted(const JSON& value) {
  if (const JSON::Array* array = value.asArray()) {
    JSON::Array result;
    for (const JSON& element : *array) result.push_back(sorted(element));
    return result;
  }
  if (const JSON::Object* object = value.asObject()) {
    std::vector<JSONMember> members(object->begin(), object->end());
    std::sort(members.begin(), members.end(),
              [](const JSONMember& left, const JSONMember& right) { return left.key < right.key; });
    for (JSONMember& member : members) member.value = sorted(member.value);
    return JSON::Object::fromMembers(std::move(members));
  }
  return value;
}

RC_GTEST_PROP(JSONProperty, CompactTextReadsBackAsTheSameValue, ()) {
  const JSON value = *anyJSON(5);
  RC_CLASSIFY(value.asArray() != nullptr || value.asObject() != nullptr, "arrays and objects");
  const std::string text = writeCompactJSON(value, *rc::gen::element(Slashes::plain, Slashes::escaped));
  const JSONReadResult result = readJSON(text);
  RC_ASSERT(result.outcome == JSONReadOutcome::ok);
  RC_ASSERT(result.value == value);
  RC_ASSERT(text.find('\n') == std::string::npos);
}

RC_GTEST_PROP(JSONProperty, PrettyTextReadsBackAsTheSameValueWithSortedKeys, ()) {
  const JSON value = *anyJSON(5);
  const JSONReadResult result = readJSON(writePrettyJSON(value));
  RC_ASSERT(result.outcome == JSONReadOutcome::ok);
  RC_ASSERT(result.value == sorted(value));
}

RC_GTEST_PROP(JSONProperty, NumbersKeepEveryDigit, ()) {
  const JSON value = *anyNumber();
  const std::string& text = value.asNumber()->text;
  RC_LOG() << text;
  RC_ASSERT(writeCompactJSON(value) == text);
  RC_ASSERT(writePrettyJSON(value) == text);
  RC_ASSERT(readJSON(text).value == value);
  RC_ASSERT(readJSON("[" + text + "]").value == JSON(JSON::Array{value}));
}

RC_GTEST_PROP(JSONProperty, AnyTextIsReadOrRefused, ()) {
  const std::string text = *rc::gen::oneOf(
      rc::gen::arbitrary<std::string>(),
      textOf({"{", "}", "[", "]", ",", ":", "\"", "\\", "u", "1", "-", ".", "e", "true", "null", " ", "\xFF"}));
  const JSONReadResult result = readJSON(text);
  if (result.outcome == JSONReadOutcome::ok) {
    RC_ASSERT(readJSON(writeCompactJSON(result.value)).value == result.value);
  } else {
    RC_ASSERT(result.value.isNull());
  }
}

}  // namespace
}  // namespace orvane::test
