// Listing, inspecting and reading applications.
#include <algorithm>
#include <limits>

#include "standin/computer.h"
#include "standin/json_access.h"
#include "standin/refusal.h"
#include "standin/text.h"

namespace orvane::standin {

namespace {

constexpr std::size_t mostTargets = 40;

JSON::Array describeWindows(const App& app) {
  JSON::Array windows;
  for (const Window& window : app.windows) {
    windows.emplace_back(JSON::Object{{"window_id", window.id},
                                      {"title", textIn(window.data, "title")},
                                      {"on_screen", flagIn(window.data, "on_screen", true)}});
  }
  return windows;
}

JSON::Object describeApp(const App& app) {
  return {{"name", app.name},
          {"bundle_id", app.bundleId},
          {"pid", integerIn(app.data, "pid")},
          {"restricted", flagIn(app.data, "restricted")}};
}

bool matches(const App& app, const std::string& query) {
  return containsIgnoringCase(app.name, query) || containsIgnoringCase(app.bundleId, query) ||
         std::any_of(app.windows.begin(), app.windows.end(),
                     [&](const Window& window) { return containsIgnoringCase(textIn(window.data, "title"), query); });
}

// Editable fields first, then in the order of the window.
JSON::Array rankTargets(const Window& window, const std::string& filter) {
  std::vector<const Element*> ranked;
  for (const Element& element : window.elements) {
    if (!element.restricted && containsIgnoringCase(element.label, filter)) ranked.push_back(&element);
  }
  std::stable_partition(ranked.begin(), ranked.end(), [](const Element* element) { return element->isEditable(); });
  ranked.resize(std::min(ranked.size(), mostTargets));
  JSON::Array targets;
  for (const Element* element : ranked) {
    targets.emplace_back(JSON::Object{{"target_id", element->id},
                                      {"label", element->label},
                                      {"role", element->role},
                                      {"editable", element->isEditable()},
                                      {"score", 100 - targets.size()},
                                      {"actions", toArray(element->actions)},
                                      {"recommended_click_route", element->route}});
  }
  return targets;
}

JSON::Array tree(const Window& window, const std::string& parent) {
  JSON::Array nodes;
  for (const Element& element : window.elements) {
    if (element.parent != parent || element.restricted) continue;
    JSON::Object node{{"target_id", element.id}, {"label", element.label}, {"role", element.role}};
    JSON::Array children = tree(window, element.id);
    if (!children.empty()) node.set("children", std::move(children));
    nodes.emplace_back(std::move(node));
  }
  return nodes;
}

std::string visibleText(const Window& window) {
  std::string text = textIn(window.data, "visible_text");
  for (const Element& element : window.elements) {
    if (element.restricted || element.value.empty()) continue;
    text += "\n" + element.label + ": " + element.value;
  }
  return text;
}

}  // namespace

JSON Computer::listApps(const Arguments& arguments) {
  const std::optional<std::string> query = arguments.optionalText("query");
  const bool helpers = arguments.optionalFlag("include_helpers").value_or(false);
  const bool system = arguments.optionalFlag("include_system").value_or(false);
  JSON::Array apps;
  for (const App& app : apps_) {
    const std::string kind = textIn(app.data, "kind", "user");
    if (!app.running || (kind == "helper" && !helpers) || (kind == "system" && !system)) continue;
    if (query.has_value() && !matches(app, *query)) continue;
    JSON::Object entry = describeApp(app);
    if (query.has_value()) entry.set("windows", describeWindows(app));
    apps.emplace_back(std::move(entry));
  }
  return JSON::Object{{"apps", std::move(apps)}};
}

// The application and window that an inspection names: by target, by window, or the frontmost.
App& Computer::inspected(const Arguments& arguments, std::size_t& window) {
  const std::optional<std::string> name = arguments.optionalText("target");
  App* app = findApp(name.value_or(frontmost_));
  if (name.has_value() && (app == nullptr || !app->running)) {
    throw invalid("no running application matches: " + *name, JSON::Object{{"runningApps", runningApps()}});
  }
  window = 0;
  if (arguments.has("window_id")) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    const std::int64_t id = arguments.integer("window_id", 0, 0, most);
    bool found = false;
    for (App& candidate : apps_) {
      if (!candidate.running || (name.has_value() && &candidate != app)) continue;
      for (std::size_t i = 0; i < candidate.windows.size(); ++i) {
        if (candidate.windows[i].id != id) continue;
        app = &candidate;
        window = i;
        found = true;
      }
    }
    if (!found) {
      throw invalid("unknown window_id: " + std::to_string(id),
                    JSON::Object{{"windows", app == nullptr ? JSON::Array() : describeWindows(*app)}});
    }
  }
  if (app == nullptr) throw invalid("there is no current application");
  if (flagIn(app->data, "restricted")) {
    throw invalid(app->name + " is restricted and cannot be inspected or acted on",
                  JSON::Object{{"app", app->name}, {"restricted", true}});
  }
  if (app->windows.empty()) throw invalid(app->name + " has no window", JSON::Object{{"app", app->name}});
  return *app;
}

JSON Computer::inspect(const Arguments& arguments) {
  const std::string origin = arguments.optionalChoice("origin", {"turn_context", "explicit_target"})
                                 .value_or(arguments.has("target") ? "explicit_target" : "turn_context");
  const std::string filter = arguments.optionalText("filter").value_or("");
  const bool includeTree = arguments.optionalFlag("include_tree").value_or(false);
  std::size_t place = 0;
  const App& app = inspected(arguments, place);
  const Window& window = app.windows[place];

  const std::string id = "cs-" + std::to_string(++inspections_);
  states_[id] = {static_cast<std::size_t>(&app - apps_.data()), place, inspections_, Clock::now()};

  JSON::Object capabilities{{"selection", window.data.find("selection") != nullptr},
                            {"visible_text", true},
                            {"page", window.data.find("page") != nullptr},
                            {"url", window.data.find("url") != nullptr},
                            {"screenshot", true}};
  JSON::Object result{{"computer_state_id", id},
                      {"expires_in_seconds", lifetime_.count()},
                      {"origin", origin},
                      {"app", describeApp(app)},
                      {"window", describeWindows(app)[place]},
                      {"windows", describeWindows(app)},
                      {"capabilities", std::move(capabilities)},
                      {"top_targets", rankTargets(window, filter)}};
  if (includeTree) result.set("target_tree", tree(window, ""));
  if (window.data.find("playbook") != nullptr) result.set("playbook", textIn(window.data, "playbook"));
  return result;
}

JSON Computer::read(const Arguments& arguments) {
  const std::string mode = arguments.choice("mode", {"selection", "visible_text", "page", "url"});
  const Window& window = windowOf(state(arguments));
  if (mode == "visible_text") return JSON::Object{{"mode", mode}, {"text", visibleText(window)}};
  if (window.data.find(mode) == nullptr) {
    throw invalid("the inspected window offers no " + mode, JSON::Object{{"mode", mode}});
  }
  return JSON::Object{{"mode", mode}, {mode == "url" ? "url" : "text", textIn(window.data, mode)}};
}

JSON Computer::getScreenshot(const Arguments& arguments) {
  state(arguments);
  return screenshot_;
}

}  // namespace orvane::standin
