// The computer-use tools that act in other applications. The application does the acting, and alone checks arguments.
#pragma once

#include <string_view>

#include "core/json.h"
#include "tools/computer/state_id.h"
#include "tools/forwarded_tool.h"
#include "tools/schema.h"

namespace orvane {

/// computer_open: opens an application or a URL.
struct ComputerOpenTool : ForwardedTool<ComputerOpenTool> {
  static constexpr std::string_view name = "computer_open";
  static constexpr std::string_view docFile = "computer-open.md";
  static constexpr std::string_view text =
      "Open an app or URL, then call computer_inspect to get fresh state. Defaults to background opening; do not "
      "bring anything to the foreground unless the user explicitly asked or just approved it. Opening changes desktop "
      "state and does not create a state id by itself.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty("kind", "Open an app by name or bundle id, or open a URL with the default handler.")
            .oneOf({"app", "url"})
            .required(),
        stringProperty("value", "App display name, bundle id, or absolute URL.").required(),
        booleanProperty(
            "activate",
            "Default false. If true, bring the opened app/URL to the foreground; use only when the user explicitly "
            "asked for that or approved a focus-taking repair. Do not set true merely because inspect, click, select, "
            "or text delivery failed."),
    });
    return schema;
  }
};

/// computer_click: clicks or otherwise works a target.
struct ComputerClickTool : ForwardedTool<ComputerClickTool> {
  static constexpr std::string_view name = "computer_click";
  static constexpr std::string_view docFile = "computer-click.md";
  static constexpr std::string_view text =
      "Perform a background-safe action on a target returned by computer_inspect. By default, uses the target's "
      "recommended_click_route from inspect. Phase 1 routes are ax_action and skylight_pointer_click. synthetic:true "
      "remains a legacy alias for skylight_pointer_click. Use show_menu only for actual context menus; do not use it "
      "to open web form dropdowns/selects. Do not fall back to AppleScript, app activation, or foreground/frontmost "
      "input; ask the user first if background-safe routes fail. The response reports route_used while preserving the "
      "older mechanism field.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stateIDProperty(),
        stringProperty("target_id", "Target id returned in top_targets from computer_inspect.").required(),
        stringProperty(
            "action",
            "Background-safe action to perform. Default press performs a normal click/press. show_menu is only for "
            "actual context menus, not web form dropdowns/selects.")
            .oneOf({"press", "confirm", "cancel", "pick", "show_menu", "increment", "decrement"}),
        stringProperty(
            "route",
            "Optional deterministic click route. Omit to use the inspected recommendation. Only background-safe routes "
            "are available; if they fail, ask the user before using any focus-stealing fallback outside this tool.")
            .oneOf({"ax_action", "skylight_pointer_click"}),
        booleanProperty("synthetic", "Legacy alias for route skylight_pointer_click. Conflicts with route ax_action."),
    });
    return schema;
  }
};

/// computer_deliver_text: puts text into a field.
struct ComputerDeliverTextTool : ForwardedTool<ComputerDeliverTextTool> {
  static constexpr std::string_view name = "computer_deliver_text";
  static constexpr std::string_view docFile = "computer-deliver-text.md";
  static constexpr std::string_view text =
      "Draft or fill text into an editable target returned by computer_inspect. This is the preferred abstraction "
      "over raw paste, direct value setting, or ad-hoc key presses: Orvane prefers PID-targeted keyboard events for "
      "realistic app input and keeps AX value setting as an explicit fallback. Verification is on by default, but "
      "keyboard delivery may be inconclusive. Choose a high-scoring editable_text target. This tool does not press "
      "Send, Submit, Enter, or click buttons. It refuses restricted fields.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stateIDProperty(),
        stringProperty("target_id", "Target id returned in top_targets from computer_inspect.").required(),
        stringProperty(
            "text",
            "Exact text to draft or fill. Empty string is allowed only with replace_existing:true to clear the target. "
            "The tool verifies the final value by default.")
            .required(),
        stringProperty("mode",
                       "Delivery strategy hint. auto is keyboard-first for editable targets; AX modes are explicit "
                       "developer/debug fallbacks.")
            .oneOf({"auto", "ax_value_stream", "ax_value_set", "pid_keyboard_events"}),
        booleanProperty(
            "verify",
            "If true (default), read the value back. A conclusive mismatch fails closed. Keystroke deliveries into "
            "canvas editors (e.g. Google Docs) that cannot be read back return ok with verified:false — keystrokes "
            "were posted, but the final field value was not confirmed; use computer_get_screenshot if certainty "
            "matters."),
        booleanProperty(
            "replace_existing",
            "If true, replace existing text in the target field. Default false; the tool refuses to clear non-empty "
            "drafts without this."),
        stringProperty(
            "line_breaks",
            "How newlines in text are delivered. soft (default) is Shift+Return: a visible line break that never "
            "submits, safe in chat and forms. paragraph is plain Return: real paragraph breaks and per-line editor "
            "formatting — only for targets where Enter does not submit.")
            .oneOf({"soft", "paragraph"}),
    });
    return schema;
  }
};

/// computer_press_key: presses a key with its modifiers.
struct ComputerPressKeyTool : ForwardedTool<ComputerPressKeyTool> {
  static constexpr std::string_view name = "computer_press_key";
  static constexpr std::string_view docFile = "computer-press-key.md";
  static constexpr std::string_view text =
      "Press a key or key-combination in the inspected app — the counterpart to computer_deliver_text. deliver_text "
      "inserts characters; press_key fires real keys that typing cannot: Return/Enter (commit a cell or submit), Tab, "
      "arrows, Escape, Delete, and modifier shortcuts (e.g. command+a). Requires a computer_state_id; the key goes to "
      "that app's active window.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stateIDProperty(),
        stringProperty(
            "key",
            "Key name: return/enter, tab, escape, space, delete, forward_delete, up, down, left, right, home, end, "
            "page_up, page_down, or a single letter a–z / digit 0–9.")
            .required(),
        stringListProperty("modifiers",
                           "Optional modifier keys held during the press: command, shift, option, control, function."),
        integerProperty("count", "How many times to press the key. Default 1, max 50."),
    });
    return schema;
  }
};

/// computer_select: chooses a value of a menu or list.
struct ComputerSelectTool : ForwardedTool<ComputerSelectTool> {
  static constexpr std::string_view name = "computer_select";
  static constexpr std::string_view docFile = "computer-select.md";
  static constexpr std::string_view text =
      "Choose a value from a dropdown, combobox, or menu and verify it committed. Pass the trigger's target_id (the "
      "dropdown/combobox element from computer_inspect) and the desired option text in value. It finds the exact "
      "option through Accessibility, scrolls it into view, commits with the safe SkyLight pointer route when "
      "available, then reads the control back. It does not open foreground or focus-stealing menus without an "
      "explicit consented path.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stateIDProperty(),
        stringProperty("target_id", "Target id of the dropdown/combobox/menu trigger from computer_inspect.")
            .required(),
        stringProperty(
            "value",
            "The option text to select. Use enough of the label to be unambiguous (e.g. 'Australia +61', not just "
            "'Aust').")
            .required(),
    });
    return schema;
  }
};

/// computer_scroll: scrolls a window or a region of it.
struct ComputerScrollTool : ForwardedTool<ComputerScrollTool> {
  static constexpr std::string_view name = "computer_scroll";
  static constexpr std::string_view docFile = "computer-scroll.md";
  static constexpr std::string_view text =
      "Scroll the inspected window's active region to reveal off-screen content — long pages, or a row far down an "
      "open dropdown menu. Scrolls by synthesized keys (PageUp/Down, arrows), which reach backgrounded browser "
      "windows where scroll-wheel events do not. Pass target_id to focus a specific scroll region first.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stateIDProperty(),
        stringProperty("direction", "Scroll direction.").oneOf({"up", "down", "left", "right"}).required(),
        stringProperty("by", "Granularity. line = arrow keys (fine), page = PageUp/PageDown (coarse). Default line.")
            .oneOf({"line", "page"}),
        integerProperty("amount", "Number of key repetitions. Default 3, max 50."),
        stringProperty("target_id",
                       "Optional target to focus before scrolling, so the keys land in that scroll region."),
    });
    return schema;
  }
};

}  // namespace orvane
