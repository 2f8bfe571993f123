// The forwarded tools for the Slate, the application's floating markdown window, and for the files open on it.
#pragma once

#include <string_view>

#include "core/json.h"
#include "tools/forwarded_tool.h"
#include "tools/schema.h"

namespace orvane {

/// slate_open: opens the window.
struct SlateOpenTool : ForwardedTool<SlateOpenTool> {
  static constexpr std::string_view name = "slate_open";
  static constexpr std::string_view docFile = "slate.md";
  static constexpr std::string_view text =
      "Open the floating Slate window. No-op if already open. Returns {open: true, routingEnabled: bool}. Use this "
      "when the user wants to see assistant replies streamed as a markdown canvas, or before calling slate_save.";

  static const JSON& inputSchema() { return emptyInputSchema(); }
};

/// slate_close: closes the window and keeps what is on it.
struct SlateCloseTool : ForwardedTool<SlateCloseTool> {
  static constexpr std::string_view name = "slate_close";
  static constexpr std::string_view docFile = "slate.md";
  static constexpr std::string_view text =
      "Close the Slate window. No-op if already closed. Closing does NOT clear the artifact or transcript — they stay "
      "in memory until the user clears them or restarts the app.";

  static const JSON& inputSchema() { return emptyInputSchema(); }
};

/// slate_clear: wipes what is on the Slate.
struct SlateClearTool : ForwardedTool<SlateClearTool> {
  static constexpr std::string_view name = "slate_clear";
  static constexpr std::string_view docFile = "slate.md";
  static constexpr std::string_view text =
      "Wipe the Slate's artifact and conversation transcript. Cannot be undone. Returns {cleared: bool} where cleared "
      "is false if there was nothing to clear.";

  static const JSON& inputSchema() { return emptyInputSchema(); }
};

/// slate_save: writes what is on the Slate to the vault.
struct SlateSaveTool : ForwardedTool<SlateSaveTool> {
  static constexpr std::string_view name = "slate_save";
  static constexpr std::string_view docFile = "slate.md";
  static constexpr std::string_view text =
      "Save the current Slate artifact to the user's vault as a markdown file. Optional `name` overrides the "
      "auto-generated filename (which uses the slate's title). Errors if the slate is empty or the window isn't open. "
      "Returns {path, filename}.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty("name", "Optional filename (without extension)."),
    });
    return schema;
  }
};

/// slate_set_routing: sends assistant replies to the Slate, or no longer.
struct SlateSetRoutingTool : ForwardedTool<SlateSetRoutingTool> {
  static constexpr std::string_view name = "slate_set_routing";
  static constexpr std::string_view docFile = "slate.md";
  static constexpr std::string_view text =
      "Turn the assistant→Slate routing on or off. Does NOT open or close the window; routing only takes effect on "
      "subsequent assistant turns while the window is open. Pair with slate_open if the user wants to start using the "
      "slate immediately.";

  static const JSON& inputSchema() {
    static const JSON schema = flagSchema();
    return schema;
  }
};

/// get_slate: what is on the Slate, and its state.
struct GetSlateTool : ForwardedTool<GetSlateTool> {
  static constexpr std::string_view name = "get_slate";
  static constexpr std::string_view docFile = "slate.md";
  static constexpr std::string_view text =
      "Live read of the Slate's current state: window open?, routing enabled?, artifact rendered as markdown (with "
      "stable block-id markers), and transcript / block counts. Use this to pull the slate's contents into your "
      "context — e.g. \"summarize what's on the slate\" or \"continue editing the brief\".";

  static const JSON& inputSchema() { return emptyInputSchema(); }
};

/// slate_set_frontmatter: sets one frontmatter entry.
struct SlateSetFrontmatterTool : ForwardedTool<SlateSetFrontmatterTool> {
  static constexpr std::string_view name = "slate_set_frontmatter";
  static constexpr std::string_view docFile = "slate.md";
  static constexpr std::string_view text =
      "Set or update a single frontmatter entry on the user's open slate (e.g. title, status, tags). If the key "
      "already exists, its value is replaced; if not, a new entry is added at the end. Use this for small metadata "
      "edits instead of re-emitting the whole <slate> tag. Reserved keys (title, created, updated, lumen_blocks, "
      "source) are rejected.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty("key").required(),
        stringProperty("value").required(),
    });
    return schema;
  }
};

/// slate_remove_frontmatter: removes one frontmatter entry.
struct SlateRemoveFrontmatterTool : ForwardedTool<SlateRemoveFrontmatterTool> {
  static constexpr std::string_view name = "slate_remove_frontmatter";
  static constexpr std::string_view docFile = "slate.md";
  static constexpr std::string_view text =
      "Remove a single frontmatter entry from the user's open slate by key. Returns an unknown-key error with the "
      "live key list if the key is not present, so you can self-correct.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty("key").required(),
    });
    return schema;
  }
};

/// read_open_file: a piece of a file that the user has opened on the Slate.
struct ReadOpenFileTool : ForwardedTool<ReadOpenFileTool> {
  static constexpr std::string_view name = "read_open_file";
  static constexpr std::string_view docFile = "slate.md";
  static constexpr std::string_view text =
      "Read a chunk of one of the read-only file tabs the user has opened on the Slate (drag-and-drop, Cmd-O, or "
      "Finder \"Open With\"). The path must match a tab discovered via get_slate's `openFiles` field — there is no "
      "general file-read capability here, only files the user has explicitly opened on the slate.\n\n"
      "Optional `offset` (default 0) and `limit` (default 20000) work in characters, not bytes. Returns {ok, name, "
      "path, totalChars, returnedChars, offset, content}. Errors with `unknown path` and the live `openPaths` list if "
      "the path doesn't match an open tab; errors with `not loaded yet` if the tab is still loading or its load "
      "failed.\n\n"
      "File tabs are NEVER auto-injected into your per-turn context. Call get_slate first to discover what's open, "
      "then this tool when the user asks about a file's contents.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty("path",
                       "Absolute path to an open file tab. Must match a path returned by get_slate's openFiles.")
            .required(),
        integerProperty("offset", "Character offset to start at. Default 0."),
        integerProperty("limit", "Max characters to return. Default 20000."),
    });
    return schema;
  }
};

}  // namespace orvane
