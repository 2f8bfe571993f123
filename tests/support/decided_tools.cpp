#include "tests/support/decided_tools.h"

#include <algorithm>

namespace orvane::test {

const std::vector<DecidedTool>& decidedTools() {
  static const std::vector<DecidedTool> tools = {
      {"current_settings", {"state"}, "tftf", {"local", "notice"}},
      {"list_dictionary", {"state"}, "tftf", {"local", "notice"}},
      {"list_augments", {"state", "augments"}, "tftf", {"local", "notice"}},
      {"orvane_version", {"state"}, "tftf", {"local", "notice"}},
      {"computer_list_apps", {"computer"}, "ftft", {}},
      {"computer_inspect", {"computer"}, "ftft", {}},
      {"computer_read", {"computer"}, "ftft", {}},
      {"computer_get_screenshot", {"computer"}, "ftft", {}},
      {"computer_open", {"computer"}, "ftft", {}},
      {"computer_click", {"computer"}, "ftft", {}},
      {"computer_deliver_text", {"computer"}, "ftft", {}},
      {"computer_press_key", {"computer"}, "ftft", {}},
      {"computer_scroll", {"computer"}, "ftft", {}},
      {"computer_select", {"computer"}, "ftft", {}},
      {"read_preferences", {"state"}, "tftf", {"local"}},
      {"remember_preference", {"settings"}, "fftf", {"local"}},
      {"list_personas", {"state", "augments"}, "tftf", {}},
      {"list_input_devices", {"state"}, "tftf", {}},
      {"list_tts_voices", {"state", "voice"}, "tftf", {}},
      {"get_insights", {"state"}, "tftf", {}},
      {"list_meetings", {"meetings"}, "tftf", {}},
      {"search_meetings", {"meetings"}, "tftf", {}},
      {"get_meeting", {"meetings"}, "tftf", {}},
      {"get_meeting_notes", {"meetings"}, "tftf", {}},
      {"get_meeting_transcript", {"meetings"}, "tftf", {}},
      {"set_active_persona", {"settings", "augments"}, "fftf", {}},
      {"set_assistant_backend", {"settings"}, "fftf", {}},
      {"set_assistant_trigger_word", {"settings"}, "fftf", {}},
      {"set_input_device", {"settings"}, "fftf", {}},
      {"set_selection_edit_enabled", {"settings"}, "fftf", {}},
      {"speak", {"voice"}, "ffff", {}},
      {"activate_augment", {"augments"}, "fftf", {}},
      {"deactivate_augment", {"augments"}, "fftf", {}},
      {"slate_open", {"slate"}, "fftf", {}},
      {"slate_close", {"slate"}, "fftf", {}},
      {"slate_clear", {"slate"}, "fftf", {}},
      {"slate_save", {"slate"}, "fftf", {}},
      {"slate_set_routing", {"slate"}, "fftf", {}},
      {"slate_set_frontmatter", {"slate"}, "fftf", {}},
      {"slate_remove_frontmatter", {"slate"}, "fftf", {}},
      {"get_slate", {"state", "slate"}, "tftf", {}},
      {"read_open_file", {"state"}, "tftf", {}},
  };
  return tools;
}

const std::vector<std::string>& decidedToolsets() {
  static const std::vector<std::string> toolsets = {"state", "settings", "voice",   "meetings",
                                                    "slate", "computer", "augments"};
  return toolsets;
}

std::vector<std::string> decidedNames(const std::vector<std::string>& toolsets, bool isReadOnly,
                                      bool isLaunchedByAssistant) {
  std::vector<std::string> names;
  for (const DecidedTool& tool : decidedTools()) {
    const bool belongs = std::any_of(toolsets.begin(), toolsets.end(),
                                     [&](const std::string& toolset) { return tool.toolsets.contains(toolset); });
    if (!belongs || (isReadOnly && tool.hints[0] != 't') || (isLaunchedByAssistant && tool.name == "speak")) continue;
    names.push_back(tool.name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace orvane::test
