// Acting in applications: opening, clicking, delivering text, pressing keys, selecting, scrolling.
#include <algorithm>
#include <array>

#include "standin/computer.h"
#include "standin/json_access.h"
#include "standin/refusal.h"
#include "standin/text.h"

namespace orvane::standin {

namespace {

constexpr std::int64_t mostRepetitions = 50;
constexpr std::string_view pointerRoute = "skylight_pointer_click";

bool isKeyName(const std::string& key) {
  constexpr std::array<std::string_view, 15> names{"return", "enter",          "tab", "escape",  "space",
                                                   "delete", "forward_delete", "up",  "down",    "left",
                                                   "right",  "home",           "end", "page_up", "page_down"};
  if (key.size() == 1) return (key[0] >= 'a' && key[0] <= 'z') || (key[0] >= '0' && key[0] <= '9');
  return std::find(names.begin(), names.end(), key) != names.end();
}

// Clicking a stepper or a checkbox, as far as a stand-in needs to remember it.
void actOn(Element& element, const std::string& action) {
  if (element.role == "checkbox" && action == "press") element.value = element.value == "on" ? "off" : "on";
  if (action == "increment" || action == "decrement") {
    const std::int64_t value = JSON(JSON::Number{element.value}).asInteger().value_or(0);
    element.value = std::to_string(value + (action == "increment" ? 1 : -1));
  }
}

}  // namespace

JSON Computer::open(const Arguments& arguments) {
  const std::string kind = arguments.choice("kind", {"app", "url"});
  const std::string value = arguments.text("value");
  const bool activate = arguments.optionalFlag("activate").value_or(false);
  App* app = findApp(kind == "app" ? value : browser_);
  if (app == nullptr) throw invalid("unknown application: " + value, JSON::Object{{"runningApps", runningApps()}});
  if (flagIn(app->data, "restricted")) {
    throw invalid(app->name + " is restricted and cannot be opened",
                  JSON::Object{{"app", app->name}, {"restricted", true}});
  }
  if (kind == "url") {
    const std::size_t scheme = value.find("://");
    if (scheme == std::string::npos || scheme == 0) throw invalid("not an absolute URL: " + value);
    if (!app->windows.empty()) {
      JSON::Object& page = app->windows.front().data;
      page.set("url", value);
      page.set("title", value.substr(scheme + 3));
      page.set("visible_text", "The page at " + value);
      page.set("page", "The page at " + value);
    }
  }
  app->running = true;
  if (activate) frontmost_ = app->name;
  return JSON::Object{{"ok", true}, {"kind", kind}, {"value", value}, {"app", app->name}, {"activated", activate}};
}

JSON Computer::click(const Arguments& arguments) {
  const std::string action =
      arguments.optionalChoice("action", {"press", "confirm", "cancel", "pick", "show_menu", "increment", "decrement"})
          .value_or("press");
  std::optional<std::string> route = arguments.optionalChoice("route", {"ax_action", pointerRoute});
  if (arguments.optionalFlag("synthetic").value_or(false)) {
    if (route == "ax_action") throw invalid("\"synthetic\" true conflicts with route ax_action");
    route = pointerRoute;
  }
  const State& bound = state(arguments);
  Element& element = target(arguments, bound);
  if (!contains(element.actions, action)) {
    throw invalid("the target does not support " + action, JSON::Object{{"actions", toArray(element.actions)}});
  }
  actOn(element, action);
  for (Element& holder : windowOf(bound).elements) {
    if (element.role == "menu_item" && holder.id == element.parent) holder.value = element.label;
  }
  const std::string used = route.value_or(element.route);
  return JSON::Object{{"ok", true},
                      {"target_id", element.id},
                      {"action", action},
                      {"route_used", used},
                      {"mechanism", used == pointerRoute ? "pointer" : "accessibility"}};
}

JSON Computer::deliverText(const Arguments& arguments) {
  const std::string text = arguments.text("text");
  const std::string mode =
      arguments.optionalChoice("mode", {"auto", "ax_value_stream", "ax_value_set", "pid_keyboard_events"})
          .value_or("auto");
  const bool verify = arguments.optionalFlag("verify").value_or(true);
  const bool replace = arguments.optionalFlag("replace_existing").value_or(false);
  const std::string lineBreaks = arguments.optionalChoice("line_breaks", {"soft", "paragraph"}).value_or("soft");
  const State& bound = state(arguments);
  Element& element = target(arguments, bound);
  if (!element.isEditable()) throw invalid("the target is not editable", JSON::Object{{"target_id", element.id}});
  if (text.empty() && !replace) throw invalid("empty text is allowed only with replace_existing:true");
  if (!element.value.empty() && !replace) {
    throw invalid("the target already holds text; pass replace_existing:true to replace it",
                  JSON::Object{{"target_id", element.id}, {"existingCharacters", codePointCount(element.value)}});
  }
  element.value = text;
  const std::string used = mode == "auto" ? "pid_keyboard_events" : mode;
  const bool unreadable = flagIn(appOf(bound).data, "canvas") && used == "pid_keyboard_events";
  return JSON::Object{{"ok", true},        {"target_id", element.id},   {"characters", codePointCount(text)},
                      {"mode_used", used}, {"line_breaks", lineBreaks}, {"verified", verify && !unreadable}};
}

JSON Computer::pressKey(const Arguments& arguments) {
  const std::string key = arguments.text("key");
  const std::vector<std::string> modifiers = arguments.texts("modifiers");
  const std::int64_t count = arguments.integer("count", 1, 1, mostRepetitions);
  const State& bound = state(arguments);
  if (!isKeyName(key)) throw invalid("unknown key: " + key, JSON::Object{{"argument", "key"}});
  const std::vector<std::string> known{"command", "shift", "option", "control", "function"};
  for (const std::string& modifier : modifiers) {
    if (contains(known, modifier)) continue;
    throw invalid("unknown modifier: " + modifier, JSON::Object{{"validModifiers", toArray(known)}});
  }
  return JSON::Object{
      {"ok", true}, {"app", appOf(bound).name}, {"key", key}, {"modifiers", toArray(modifiers)}, {"count", count}};
}

JSON Computer::select(const Arguments& arguments) {
  const std::string value = arguments.text("value");
  const State& bound = state(arguments);
  Element& trigger = target(arguments, bound);
  std::vector<std::string> options;
  std::vector<std::string> candidates;
  for (const Element& element : windowOf(bound).elements) {
    if (element.parent != trigger.id || element.role != "menu_item") continue;
    options.push_back(element.label);
    if (containsIgnoringCase(element.label, value)) candidates.push_back(element.label);
  }
  if (options.empty()) throw invalid("the target has nothing to select", JSON::Object{{"target_id", trigger.id}});
  if (contains(options, value)) candidates = {value};
  if (value.empty() || candidates.empty()) {
    throw invalid("no such option: " + value, JSON::Object{{"options", toArray(options)}});
  }
  if (candidates.size() > 1) {
    throw invalid("ambiguous option: " + value, JSON::Object{{"candidates", toArray(candidates)}});
  }
  trigger.value = candidates.front();
  return JSON::Object{{"ok", true},
                      {"target_id", trigger.id},
                      {"value", trigger.value},
                      {"verified", true},
                      {"route_used", pointerRoute}};
}

JSON Computer::scroll(const Arguments& arguments) {
  const std::string direction = arguments.choice("direction", {"up", "down", "left", "right"});
  const std::string by = arguments.optionalChoice("by", {"line", "page"}).value_or("line");
  const std::int64_t amount = arguments.integer("amount", 3, 1, mostRepetitions);
  const State& bound = state(arguments);
  JSON::Object result{{"ok", true}, {"direction", direction}, {"by", by}, {"amount", amount}};
  if (arguments.has("target_id")) result.set("target_id", target(arguments, bound).id);
  return result;
}

}  // namespace orvane::standin
