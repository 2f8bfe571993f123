// The computer-use tools that look at other applications. The application does the looking, and alone checks arguments.
#pragma once

#include <string_view>

#include "core/json.h"
#include "tools/computer/state_id.h"
#include "tools/forwarded_tool.h"
#include "tools/schema.h"

namespace orvane {

/// computer_list_apps: the running applications, and windows that match a search.
struct ComputerListAppsTool : ForwardedTool<ComputerListAppsTool> {
  static constexpr std::string_view name = "computer_list_apps";
  static constexpr std::string_view docFile = "computer-list-apps.md";
  static constexpr std::string_view text =
      "List running macOS apps that Orvane can consider as computer-use targets. Use this before targeting a "
      "background app by name or bundle id. Pass query to search app names and window titles across all Spaces — "
      "matching apps come back with a windows list (window_id, title, on_screen) ready to pass to computer_inspect. "
      "Restricted apps such as password managers are marked restricted and cannot be inspected or acted on. By "
      "default, returns user-facing apps only; opt into helper/system processes only for debugging.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty(
            "query",
            "Optional search matched against app names, bundle ids, and window titles (all Spaces, including "
            "minimized). When present, only matching apps are returned, each with windows: [{window_id, title, "
            "on_screen}] for computer_inspect."),
        booleanProperty("include_helpers", "Include non-user-facing helper processes and agents. Default false."),
        booleanProperty("include_system",
                        "Include system processes from /System, /usr, and developer service paths. Default false."),
    });
    return schema;
  }
};

/// computer_inspect: takes the state that all later steps refer to.
struct ComputerInspectTool : ForwardedTool<ComputerInspectTool> {
  static constexpr std::string_view name = "computer_inspect";
  static constexpr std::string_view docFile = "computer-inspect.md";
  static constexpr std::string_view text =
      "Inspect the current computer context or a named app/window/document target. Returns a short-lived "
      "computer_state_id plus safe metadata, capabilities, and ranked editable targets. May include a playbook "
      "pointer when the inspected surface matches a known recipe. Does not return selected text, page text, full "
      "URLs, or screenshots; use computer_read or computer_get_screenshot for those.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty(
            "target",
            "Optional human target such as Slack, Safari, Mail, or a bundle id. Omit to inspect the current context."),
        integerProperty(
            "window_id",
            "Bind to a specific window by its window_id (from a prior inspect's windows[] list) instead of the app's "
            "focused window. Use this to target one of several windows without bringing it to the front."),
        stringProperty(
            "origin",
            "Where this state came from. Default is turn_context when target is omitted, explicit_target when target "
            "is present.")
            .oneOf({"turn_context", "explicit_target"}),
        stringProperty(
            "filter",
            "Optional case-insensitive text filter. When set, top_targets only includes elements whose label contains "
            "this string — use it to find one row in a long list (e.g. a single country in an open dropdown menu) that "
            "the ranked top-40 would otherwise truncate."),
        booleanProperty(
            "include_tree",
            "If true, include a bounded target_tree with Accessibility parent/child relationships for exposed "
            "controls. Use this for dropdowns, listboxes, menus, and selectors where structure matters."),
    });
    return schema;
  }
};

/// computer_read: text out of an inspected state.
struct ComputerReadTool : ForwardedTool<ComputerReadTool> {
  static constexpr std::string_view name = "computer_read";
  static constexpr std::string_view docFile = "computer-read.md";
  static constexpr std::string_view text =
      "Read text-like data from a computer_state_id returned by computer_inspect. Allowed modes are selection, "
      "visible_text, page, and url. Full URLs and content reads require this explicit read step.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stateIDProperty(),
        stringProperty("mode", "What text-like data to read from the inspected state.")
            .oneOf({"selection", "visible_text", "page", "url"})
            .required(),
    });
    return schema;
  }
};

/// computer_get_screenshot: a picture of an inspected state.
struct ComputerGetScreenshotTool : ForwardedTool<ComputerGetScreenshotTool> {
  static constexpr std::string_view name = "computer_get_screenshot";
  static constexpr std::string_view docFile = "computer-get-screenshot.md";
  static constexpr std::string_view text =
      "Capture a PNG screenshot for an inspected computer state. Use this only when the user needs visual information "
      "rather than text.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stateIDProperty(),
    });
    return schema;
  }
};

}  // namespace orvane
