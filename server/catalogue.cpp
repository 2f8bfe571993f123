#include "server/catalogue.h"

#include <algorithm>

namespace orvane {

namespace {

using enum MCPToolset;

struct CatalogueRow {
  std::string_view name;
  MCPToolMetadata metadata;
};

constexpr MCPToolAnnotations hints(bool readOnly, bool destructive, bool idempotent, bool openWorld) {
  return {readOnly, destructive, idempotent, openWorld};
}

constexpr MCPToolAnnotations reading = hints(true, false, true, false);
constexpr MCPToolAnnotations setting = hints(false, false, true, false);
constexpr MCPToolAnnotations speaking = hints(false, false, false, false);
// Every computer-use tool counts as acting, the inspecting ones too, so that read-only mode hides them all.
constexpr MCPToolAnnotations acting = hints(false, true, false, true);

constexpr std::array catalogue{
    CatalogueRow{"current_settings", {{state}, reading}},
    CatalogueRow{"list_dictionary", {{state}, reading}},
    CatalogueRow{"list_augments", {{state, augments}, reading}},
    CatalogueRow{"orvane_version", {{state}, reading}},
    CatalogueRow{"read_preferences", {{state}, reading}},
    CatalogueRow{"list_personas", {{state, augments}, reading}},
    CatalogueRow{"list_input_devices", {{state}, reading}},
    CatalogueRow{"list_tts_voices", {{state, voice}, reading}},
    CatalogueRow{"get_insights", {{state}, reading}},
    CatalogueRow{"list_meetings", {{meetings}, reading}},
    CatalogueRow{"search_meetings", {{meetings}, reading}},
    CatalogueRow{"get_meeting", {{meetings}, reading}},
    CatalogueRow{"get_meeting_notes", {{meetings}, reading}},
    CatalogueRow{"get_meeting_transcript", {{meetings}, reading}},
    CatalogueRow{"get_slate", {{state, slate}, reading}},
    CatalogueRow{"read_open_file", {{state}, reading}},
    CatalogueRow{"remember_preference", {{settings}, setting}},
    CatalogueRow{"set_assistant_backend", {{settings}, setting}},
    CatalogueRow{"set_assistant_trigger_word", {{settings}, setting}},
    CatalogueRow{"set_input_device", {{settings}, setting}},
    CatalogueRow{"set_selection_edit_enabled", {{settings}, setting}},
    CatalogueRow{"set_active_persona", {{settings, augments}, setting}},
    CatalogueRow{"activate_augment", {{augments}, setting}},
    CatalogueRow{"deactivate_augment", {{augments}, setting}},
    CatalogueRow{"speak", {{voice}, speaking}},
    CatalogueRow{"computer_list_apps", {{computer}, acting}},
    CatalogueRow{"computer_inspect", {{computer}, acting}},
    CatalogueRow{"computer_read", {{computer}, acting}},
    CatalogueRow{"computer_get_screenshot", {{computer}, acting}},
    CatalogueRow{"computer_open", {{computer}, acting}},
    CatalogueRow{"computer_click", {{computer}, acting}},
    CatalogueRow{"computer_deliver_text", {{computer}, acting}},
    CatalogueRow{"computer_press_key", {{computer}, acting}},
    CatalogueRow{"computer_scroll", {{computer}, acting}},
    CatalogueRow{"computer_select", {{computer}, acting}},
    CatalogueRow{"slate_open", {{slate}, setting}},
    CatalogueRow{"slate_close", {{slate}, setting}},
    CatalogueRow{"slate_clear", {{slate}, setting}},
    CatalogueRow{"slate_save", {{slate}, setting}},
    CatalogueRow{"slate_set_routing", {{slate}, setting}},
    CatalogueRow{"slate_set_frontmatter", {{slate}, setting}},
    CatalogueRow{"slate_remove_frontmatter", {{slate}, setting}},
};

}  // namespace

const MCPToolMetadata* catalogueEntry(std::string_view name) {
  const auto* const row = std::find_if(catalogue.begin(), catalogue.end(),
                                       [&](const CatalogueRow& candidate) { return candidate.name == name; });
  return row == catalogue.end() ? nullptr : &row->metadata;
}

}  // namespace orvane
