// The applications of the world, and what an agent sees of them and does to them through the computer methods.
#pragma once

#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "standin/arguments.h"

namespace orvane::standin {

/// A control of a window. Its id holds for as long as the stand-in runs.
struct Element {
  std::string id;
  std::string label;
  std::string role;  ///< such as button, checkbox, editable_text, stepper, popup, menu_item
  std::string value;
  std::string parent;                ///< the id of the control that holds it; empty for none
  std::string route;                 ///< the recommended click route
  std::vector<std::string> actions;  ///< what computer_click may do to it
  bool restricted = false;           ///< such as a password field: neither read nor acted on

  bool isEditable() const { return role == "editable_text"; }
};

struct Window {
  std::int64_t id = 0;
  JSON::Object data;  ///< title, on_screen, url, texts, playbook
  std::vector<Element> elements;
};

struct App {
  std::string name;
  std::string bundleId;
  JSON::Object data;  ///< pid, kind, whether restricted, whether a canvas editor
  bool running = true;
  std::vector<Window> windows;
};

class Computer {
 public:
  explicit Computer(const JSON::Object& world);

  JSON listApps(const Arguments& arguments);
  JSON inspect(const Arguments& arguments);
  JSON read(const Arguments& arguments);
  JSON getScreenshot(const Arguments& arguments);
  JSON open(const Arguments& arguments);
  JSON click(const Arguments& arguments);
  JSON deliverText(const Arguments& arguments);
  JSON pressKey(const Arguments& arguments);
  JSON select(const Arguments& arguments);
  JSON scroll(const Arguments& arguments);

 private:
  using Clock = std::chrono::steady_clock;

  /// What one inspection bound. Applications and windows never go away, so their places serve.
  struct State {
    std::size_t app;
    std::size_t window;
    std::int64_t number;
    Clock::time_point made;
  };

  App* findApp(const std::string& target);
  App& inspected(const Arguments& arguments, std::size_t& window);
  JSON::Array runningApps() const;
  const State& state(const Arguments& arguments) const;
  App& appOf(const State& state) { return apps_[state.app]; }
  Window& windowOf(const State& state) { return apps_[state.app].windows[state.window]; }
  Element& target(const Arguments& arguments, const State& state);

  std::vector<App> apps_;
  std::string frontmost_;
  std::string browser_;
  JSON screenshot_;
  std::int64_t newerInspects_;  ///< a state expires with this many younger ones
  std::chrono::seconds lifetime_;
  std::int64_t inspections_ = 0;
  std::map<std::string, State> states_;
};

}  // namespace orvane::standin
