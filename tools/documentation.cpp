#include "tools/documentation.h"

#include "core/paths.h"
#include "core/user_paths.h"

namespace orvane {

std::string docsPath(std::string_view fileName) {
  return joinPath(applicationSupportPath(), "Orvane/docs/").append(fileName);
}

std::string docPointer(std::string_view fileName) {
  return "\n\nFor user-facing details on this setting (when to use it, what it does, gotchas), read the doc at: " +
         docsPath(fileName);
}

std::string configurationNotice() {
  return "\n\nIMPORTANT: Do NOT edit ~/.config/orvane/settings.json, replacements.txt, augment files, or any Orvane "
         "configuration file directly — direct edits race with the running app and corrupt state. To change settings, "
         "dictionary entries, augments, or the active persona, use Orvane's mutation tools (set_*, add_*, "
         "activate_*). If a needed mutation tool doesn't exist yet, ask the user to make the change in the Orvane "
         "Dashboard rather than reaching past the app to edit files.\n\nFor user-facing explanations of every Orvane "
         "feature (when to use it, what each setting does, gotchas), the index lives at: " +
         docsPath("INDEX.md");
}

}  // namespace orvane
