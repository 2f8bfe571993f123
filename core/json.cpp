#include "core/json.h"

#include <algorithm>
#include <charconv>
#include <unordered_map>

namespace orvane {

namespace {

// Up to this many members a plain search beats building an index.
constexpr std::size_t plainSearchLimit = 16;

template <class Members>
auto findMember(Members& members, std::string_view key) {
  return std::find_if(members.begin(), members.end(), [&](const JSONMember& member) { return member.key == key; });
}

}  // namespace

JSONObject::JSONObject(std::initializer_list<JSONMemberInit> members) {
  members_.reserve(members.size());
  for (const JSONMemberInit& member : members) set(member.key, std::move(member.value));
}

JSONObject JSONObject::fromMembers(std::vector<JSONMember> members) {
  JSONObject object;
  if (members.size() <= plainSearchLimit) {
    auto kept = members.begin();
    for (auto member = members.begin(); member != members.end(); ++member) {
      const auto earlier = std::find_if(members.begin(), kept, [&](const auto& m) { return m.key == member->key; });
      if (earlier != kept) {
        earlier->value = std::move(member->value);
      } else {
        if (kept != member) *kept = std::move(*member);
        ++kept;
      }
    }
    members.erase(kept, members.end());
    object.members_ = std::move(members);
    return object;
  }
  // Reserved in full so that the keys the index points into never move.
  object.members_.reserve(members.size());
  std::unordered_map<std::string_view, std::size_t> index;
  index.reserve(members.size());
  for (JSONMember& member : members) {
    if (const auto earlier = index.find(member.key); earlier != index.end()) {
      object.members_[earlier->second].value = std::move(member.value);
    } else {
      object.members_.push_back(std::move(member));
      index.emplace(object.members_.back().key, object.members_.size() - 1);
    }
  }
  return object;
}

const JSON* JSONObject::find(std::string_view key) const {
  const auto member = findMember(members_, key);
  return member == members_.end() ? nullptr : &member->value;
}

void JSONObject::set(std::string_view key, JSON value) {
  if (const auto member = findMember(members_, key); member != members_.end()) {
    member->value = std::move(value);
  } else {
    members_.push_back({std::string(key), std::move(value)});
  }
}

void JSONObject::remove(std::string_view key) {
  if (const auto member = findMember(members_, key); member != members_.end()) members_.erase(member);
}

std::optional<JSON> JSONObject::take(std::string_view key) {
  const auto member = findMember(members_, key);
  if (member == members_.end()) return std::nullopt;
  JSON value = std::move(member->value);
  members_.erase(member);
  return value;
}

std::optional<std::int64_t> JSON::asInteger() const {
  const Number* number = asNumber();
  if (number == nullptr) return std::nullopt;
  std::int64_t value = 0;
  const char* end = number->text.data() + number->text.size();
  const auto [parsedTo, error] = std::from_chars(number->text.data(), end, value);
  if (error != std::errc{} || parsedTo != end) return std::nullopt;
  return value;
}

}  // namespace orvane
