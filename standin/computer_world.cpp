// Building the applications from data, finding them, and the states that inspections leave behind.
#include "standin/computer.h"
#include "standin/json_access.h"
#include "standin/methods.h"
#include "standin/refusal.h"
#include "standin/text.h"

namespace orvane::standin {

namespace {

void addElement(std::vector<Element>& elements, const JSON::Object& data) {
  Element element;
  element.id = textIn(data, "id");
  element.label = textIn(data, "label");
  element.role = textIn(data, "role", "button");
  element.value = textIn(data, "value");
  element.parent = textIn(data, "parent");
  element.route = textIn(data, "route", "ax_action");
  element.actions = textsIn(data, "actions");
  if (element.actions.empty()) element.actions = {"press"};
  element.restricted = flagIn(data, "restricted");
  elements.push_back(element);
  // The options of a selector are controls of their own.
  std::size_t number = 0;
  for (const std::string& option : textsIn(data, "options")) {
    Element item;
    item.id = element.id + ".option-" + std::to_string(++number);
    item.label = option;
    item.role = "menu_item";
    item.parent = element.id;
    item.route = "skylight_pointer_click";
    item.actions = {"press", "pick"};
    elements.push_back(std::move(item));
  }
}

}  // namespace

Computer::Computer(const JSON::Object& world) {
  const JSON::Object& data = objectIn(world, "computer");
  frontmost_ = textIn(data, "frontmost");
  browser_ = textIn(data, "browser");
  screenshot_ = objectIn(data, "screenshot");
  newerInspects_ = integerIn(data, "stateExpiresAfterInspects", 8);
  lifetime_ = std::chrono::seconds(integerIn(data, "stateExpiresAfterSeconds", 120));
  for (const JSON& appValue : listIn(data, "apps")) {
    const JSON::Object& appData = objectOf(appValue);
    App app{textIn(appData, "name"), textIn(appData, "bundle_id"), appData, flagIn(appData, "running", true), {}};
    for (const JSON& windowValue : listIn(appData, "windows")) {
      Window window{integerIn(objectOf(windowValue), "window_id"), objectOf(windowValue), {}};
      for (const JSON& element : listIn(window.data, "elements")) addElement(window.elements, objectOf(element));
      app.windows.push_back(std::move(window));
    }
    apps_.push_back(std::move(app));
  }
}

App* Computer::findApp(const std::string& target) {
  const std::string wanted = lowercasedASCII(target);
  for (App& app : apps_) {
    if (lowercasedASCII(app.name) == wanted || lowercasedASCII(app.bundleId) == wanted) return &app;
  }
  return nullptr;
}

JSON::Array Computer::runningApps() const {
  JSON::Array names;
  for (const App& app : apps_) {
    if (app.running && textIn(app.data, "kind", "user") == "user") names.emplace_back(app.name);
  }
  return names;
}

const Computer::State& Computer::state(const Arguments& arguments) const {
  const std::string id = arguments.text("state_id");
  const auto found = states_.find(id);
  if (found == states_.end()) throw invalid("unknown computer_state_id: " + id, JSON::Object{{"state_id", id}});
  const State& state = found->second;
  if (inspections_ - state.number >= newerInspects_ || Clock::now() - state.made >= lifetime_) {
    throw invalid("expired computer_state_id: " + id + "; call computer_inspect again",
                  JSON::Object{{"state_id", id}, {"expired", true}});
  }
  return state;
}

Element& Computer::target(const Arguments& arguments, const State& state) {
  const std::string id = arguments.text("target_id");
  JSON::Array known;
  for (Element& element : windowOf(state).elements) {
    if (element.id != id) {
      known.emplace_back(element.id);
      continue;
    }
    if (element.restricted) {
      throw invalid("the target is a restricted field", JSON::Object{{"target_id", id}, {"restricted", true}});
    }
    return element;
  }
  throw invalid("unknown target_id: " + id, JSON::Object{{"target_id", id}, {"validTargets", std::move(known)}});
}

void addComputerMethods(MethodTable& table, const JSON::Object& world) {
  const auto computer = std::make_shared<Computer>(world);
  addMethod(table, computer, "computer_list_apps", Gate::none, &Computer::listApps);
  addMethod(table, computer, "computer_inspect", Gate::none, &Computer::inspect);
  addMethod(table, computer, "computer_read", Gate::none, &Computer::read);
  addMethod(table, computer, "computer_get_screenshot", Gate::none, &Computer::getScreenshot);
  addMethod(table, computer, "computer_open", Gate::changes, &Computer::open);
  addMethod(table, computer, "computer_click", Gate::changes, &Computer::click);
  addMethod(table, computer, "computer_deliver_text", Gate::changes, &Computer::deliverText);
  addMethod(table, computer, "computer_press_key", Gate::changes, &Computer::pressKey);
  addMethod(table, computer, "computer_select", Gate::changes, &Computer::select);
  addMethod(table, computer, "computer_scroll", Gate::changes, &Computer::scroll);
}

}  // namespace orvane::standin
