#include "core/json.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/json_text.h"

namespace orvane::test {
namespace {

std::vector<std::string> keysOf(const JSON::Object& object) {
  std::vector<std::string> keys;
  for (const JSONMember& member : object) keys.push_back(member.key);
  return keys;
}

TEST(JSONTest, EveryKindIsRecognisedAndNoOther) {
  struct Kind {
    JSON value;
    bool isNull, isBool, isNumber, isString, isArray, isObject;
  };
  const std::vector<Kind> kinds = {
      {JSON(), true, false, false, false, false, false},
      {JSON(nullptr), true, false, false, false, false, false},
      {JSON(false), false, true, false, false, false, false},
      {JSON(0), false, false, true, false, false, false},
      {JSON(JSON::Number{"1.50"}), false, false, true, false, false, false},
      {JSON(""), false, false, false, true, false, false},
      {JSON(std::string_view("x")), false, false, false, true, false, false},
      {JSON(JSON::Array()), false, false, false, false, true, false},
      {JSON(JSON::Object()), false, false, false, false, false, true},
  };
  for (const Kind& kind : kinds) {
    SCOPED_TRACE(writeCompactJSON(kind.value));
    EXPECT_EQ(kind.value.isNull(), kind.isNull);
    EXPECT_EQ(kind.value.asBool() != nullptr, kind.isBool);
    EXPECT_EQ(kind.value.asNumber() != nullptr, kind.isNumber);
    EXPECT_EQ(kind.value.asString() != nullptr, kind.isString);
    EXPECT_EQ(kind.value.asArray() != nullptr, kind.isArray);
    EXPECT_EQ(kind.value.asObject() != nullptr, kind.isObject);
  }
}

TEST(JSONTest, CopiesAreEqualAndTheirOwn) {
  const JSON::Object original{{"a", 1}, {"b", JSON::Array{true, JSON::Object{{"c", "d"}}}}};
  JSON::Object copy{{"old", nullptr}};
  copy = original;
  EXPECT_EQ(copy, original);
  copy.set("a", 2);
  EXPECT_EQ(*original.find("a"), JSON(1));
  EXPECT_EQ(*copy.find("a"), JSON(2));
}

TEST(JSONTest, IntegersOfEveryTypeAreKeptExactly) {
  EXPECT_EQ(JSON(-32700).asNumber()->text, "-32700");
  EXPECT_EQ(JSON(std::numeric_limits<std::int64_t>::min()).asNumber()->text, "-9223372036854775808");
  EXPECT_EQ(JSON(std::numeric_limits<std::uint64_t>::max()).asNumber()->text, "18446744073709551615");
  EXPECT_EQ(JSON(std::size_t{7}).asNumber()->text, "7");
  EXPECT_NE(JSON(true).asBool(), nullptr) << "a bool is not an integer";
}

TEST(JSONTest, IntegersAreReadOnlyWhereWrittenAsSuchAndInRange) {
  EXPECT_EQ(JSON(JSON::Number{"0"}).asInteger(), 0);
  EXPECT_EQ(JSON(JSON::Number{"-7"}).asInteger(), -7);
  EXPECT_EQ(JSON(JSON::Number{"9223372036854775807"}).asInteger(), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(JSON(JSON::Number{"-9223372036854775808"}).asInteger(), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(JSON(JSON::Number{"9223372036854775808"}).asInteger(), std::nullopt);
  EXPECT_EQ(JSON(JSON::Number{"-9223372036854775809"}).asInteger(), std::nullopt);
  EXPECT_EQ(JSON(JSON::Number{"1.5"}).asInteger(), std::nullopt);
  EXPECT_EQ(JSON("7").asInteger(), std::nullopt);
  EXPECT_EQ(JSON(true).asInteger(), std::nullopt);
  EXPECT_EQ(JSON().asInteger(), std::nullopt);
}

TEST(JSONTest, EqualityTellsKindAndContentApart) {
  EXPECT_EQ(JSON("a"), JSON("a"));
  EXPECT_NE(JSON("1"), JSON(1));
  EXPECT_NE(JSON(), JSON(false));
  EXPECT_NE(JSON(JSON::Number{"1.0"}), JSON(1));
  EXPECT_NE(JSON(JSON::Array()), JSON(JSON::Object()));
  EXPECT_EQ(parsed(R"({"a":[1,{"b":null}]})"), parsed(R"({"a":[1,{"b":null}]})"));
  EXPECT_NE(parsed(R"({"a":[1,{"b":null}]})"), parsed(R"({"a":[1,{"b":0}]})"));
}

TEST(JSONObjectTest, KeepsTheOrderOfInsertion) {
  JSON::Object object{{"z", 1}, {"a", 2}};
  object.set("m", 3);
  EXPECT_EQ(keysOf(object), (std::vector<std::string>{"z", "a", "m"}));
  EXPECT_EQ(object.size(), 3U);
  EXPECT_FALSE(object.empty());
}

TEST(JSONObjectTest, ALaterDuplicateReplacesTheEarlierInItsPlace) {
  const JSON::Object object{{"a", 1}, {"b", 2}, {"a", 3}};
  EXPECT_EQ(writeCompactJSON(object), R"({"a":3,"b":2})");
}

TEST(JSONObjectTest, ManyMembersKeepOrderAndLaterDuplicatesWin) {
  for (const std::size_t count : {15U, 16U, 17U, 18U, 1000U}) {
    std::vector<JSONMember> members;
    for (std::size_t i = 0; i < count; ++i) members.push_back({"key" + std::to_string(i), i});
    members.push_back({"key3", "last"});
    const JSON::Object object = JSON::Object::fromMembers(std::move(members));
    ASSERT_EQ(object.size(), count);
    std::size_t position = 0;
    for (const JSONMember& member : object) {
      EXPECT_EQ(member.key, "key" + std::to_string(position));
      EXPECT_EQ(member.value, position == 3 ? JSON("last") : JSON(position));
      ++position;
    }
  }
}

TEST(JSONObjectTest, FindsByExactBytesOnly) {
  const JSON::Object object{{"_agent", 1}, {"", 2}, {std::string("a\0b", 3), 3}};
  ASSERT_NE(object.find("_agent"), nullptr);
  EXPECT_EQ(*object.find("_agent"), JSON(1));
  EXPECT_EQ(*object.find(""), JSON(2));
  EXPECT_EQ(*object.find(std::string_view("a\0b", 3)), JSON(3));
  EXPECT_EQ(object.find("_Agent"), nullptr);
  EXPECT_EQ(object.find("a"), nullptr);
}

TEST(JSONObjectTest, SetReplacesInPlaceRemoveAndTakeRemove) {
  JSON::Object object{{"a", 1}, {"b", 2}, {"c", 3}};
  object.set("a", "new");
  EXPECT_EQ(writeCompactJSON(object), R"({"a":"new","b":2,"c":3})");
  object.remove("b");
  object.remove("absent");
  EXPECT_EQ(writeCompactJSON(object), R"({"a":"new","c":3})");
  EXPECT_EQ(object.take("c"), JSON(3));
  EXPECT_EQ(object.take("c"), std::nullopt);
  EXPECT_EQ(writeCompactJSON(object), R"({"a":"new"})");
}

TEST(JSONTest, VisitReachesTheHeldValue) {
  const auto nameOf = [](const JSON& value) {
    return value.visit([](const auto& held) -> std::string {
      using Held = std::decay_t<decltype(held)>;
      if constexpr (std::is_same_v<Held, std::nullptr_t>) return "null";
      if constexpr (std::is_same_v<Held, bool>) return held ? "true" : "false";
      if constexpr (std::is_same_v<Held, JSON::Number>) return held.text;
      if constexpr (std::is_same_v<Held, std::string>) return held;
      return "container";
    });
  };
  EXPECT_EQ(nameOf(JSON()), "null");
  EXPECT_EQ(nameOf(JSON(true)), "true");
  EXPECT_EQ(nameOf(JSON(12)), "12");
  EXPECT_EQ(nameOf(JSON("text")), "text");
  EXPECT_EQ(nameOf(JSON(JSON::Array())), "container");
}

}  // namespace
}  // namespace orvane::test
