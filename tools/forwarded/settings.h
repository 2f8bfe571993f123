// The forwarded tools for settings, voice, personas and augments: live state of the application, and changes that only
// the application may make.
#pragma once

#include <string_view>

#include "core/json.h"
#include "tools/forwarded_tool.h"
#include "tools/schema.h"

namespace orvane {

/// get_insights: how much the user has dictated, where, and with which words.
struct GetInsightsTool : ForwardedTool<GetInsightsTool> {
  static constexpr std::string_view name = "get_insights";
  static constexpr std::string_view docFile = "insights.md";
  static constexpr std::string_view text =
      "Return Orvane's local Insights snapshot: lifetime totals (words, sessions, audio seconds, filler count), "
      "per-day rollups, top apps, top sub-contexts, category breakdown, assistant backend split, the weekday-hour "
      "heatmap, top words (vocabulary fingerprint), top replacement-rule keys that fired, current streak, and longest "
      "streak. All numbers are computed locally; nothing is uploaded. Requires Orvane to be running.";

  static const JSON& inputSchema() { return emptyInputSchema(); }
};

/// list_personas: the personas there are and the active ones.
struct ListPersonasTool : ForwardedTool<ListPersonasTool> {
  static constexpr std::string_view name = "list_personas";
  static constexpr std::string_view docFile = "personas.md";
  static constexpr std::string_view text =
      "List every available Orvane persona by ID, with display name and category. Includes built-in personas and any "
      "user-defined characters under ~/.config/orvane/characters/. Returns the currently active persona slots too. "
      "Requires the Orvane app to be running.";

  static const JSON& inputSchema() { return emptyInputSchema(); }
};

/// list_input_devices: the microphones that are connected now.
struct ListInputDevicesTool : ForwardedTool<ListInputDevicesTool> {
  static constexpr std::string_view name = "list_input_devices";
  static constexpr std::string_view docFile = "dictation.md";
  static constexpr std::string_view text =
      "List the currently visible audio input devices, plus the active selection. Devices change at runtime (USB "
      "mics, AirPods connecting/disconnecting), so this is answered live by the app — requires Orvane to be running.";

  static const JSON& inputSchema() { return emptyInputSchema(); }
};

/// list_tts_voices: the voices of the selected text-to-speech backend.
struct ListTtsVoicesTool : ForwardedTool<ListTtsVoicesTool> {
  static constexpr std::string_view name = "list_tts_voices";
  static constexpr std::string_view docFile = "voice-output.md";
  static constexpr std::string_view text =
      "List the voices available for Orvane's currently selected TTS backend, plus the active voice. Persistent Voice "
      "Output settings are managed in the Dashboard, not MCP.";

  static const JSON& inputSchema() { return emptyInputSchema(); }
};

/// set_assistant_backend: selects the engine behind the assistant.
struct SetAssistantBackendTool : ForwardedTool<SetAssistantBackendTool> {
  static constexpr std::string_view name = "set_assistant_backend";
  static constexpr std::string_view docFile = "assistant.md";
  static constexpr std::string_view text =
      "Set Orvane's assistant backend (the engine that handles non-dictation voice queries). Common values: "
      "\"claude\", \"codex\", \"cursor\", \"opencode\", \"gemini\", \"ollama\", \"local\". The exact set depends on "
      "what's installed on the user's machine; current_settings shows the active one and an unknown value returns the "
      "valid list in error data.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty("name", "Backend identifier (e.g. \"claude\").").required(),
    });
    return schema;
  }
};

/// set_assistant_trigger_word: sets the phrase that calls the assistant.
struct SetAssistantTriggerWordTool : ForwardedTool<SetAssistantTriggerWordTool> {
  static constexpr std::string_view name = "set_assistant_trigger_word";
  static constexpr std::string_view docFile = "assistant.md";
  static constexpr std::string_view text =
      "Set the wake phrase that routes a dictation through the assistant pipeline instead of being typed verbatim. "
      "Must be non-empty. Stored as a single phrase; multiple words allowed.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty("phrase", "Trigger phrase (e.g. \"computer\").").required(),
    });
    return schema;
  }
};

/// set_input_device: selects the microphone.
struct SetInputDeviceTool : ForwardedTool<SetInputDeviceTool> {
  static constexpr std::string_view name = "set_input_device";
  static constexpr std::string_view docFile = "dictation.md";
  static constexpr std::string_view text =
      "Pick the audio input device by name. Use list_input_devices to discover names. Pass an empty string or "
      "\"default\" to clear the override and follow the system default. Unknown names return the visible device list "
      "in error data.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty("name", "Device name. Empty string or \"default\" clears the override.").required(),
    });
    return schema;
  }
};

/// set_selection_edit_enabled: switches highlight-and-correct on or off.
struct SetSelectionEditEnabledTool : ForwardedTool<SetSelectionEditEnabledTool> {
  static constexpr std::string_view name = "set_selection_edit_enabled";
  static constexpr std::string_view docFile = "dictation.md";
  static constexpr std::string_view text =
      "Enable or disable highlight-and-correct (the feature where the user highlights text in any app and dictates a "
      "correction).";

  static const JSON& inputSchema() {
    static const JSON schema = flagSchema();
    return schema;
  }
};

/// speak: says text aloud. The two length limits in its texts differ; both stay, and the application decides.
struct SpeakTool : ForwardedTool<SpeakTool> {
  static constexpr std::string_view name = "speak";
  static constexpr std::string_view docFile = "voice-output.md";
  static constexpr std::string_view text =
      "Speak text out loud through Orvane's TTS. The user hears the audio.\n\n"
      "STRICTLY USER-DIRECTED: only call this tool when the user has explicitly asked for spoken output — either this "
      "turn, or in a still-active instruction from a recent turn (e.g. \"reply by voice from now on\", \"speak your "
      "responses\"). Do NOT call it on your own initiative to flag events, narrate progress, or get the user's "
      "attention. If you are unsure whether speaking is wanted, default to text only and ask. The user explicitly "
      "opts in.\n\n"
      "FORMAT: plain spoken prose with natural paragraph breaks. Use blank lines between distinct thoughts when the "
      "response has a setup, contrast, timeline, or conclusion. Do not flatten a multi-point explanation into one "
      "wall of text; the paragraph breaks make the spoken transcript and replay controls usable. No markdown, no code "
      "fences, no backticks, no brackets, no slashes, no bullet points, no emoji. Spell out symbols and abbreviations "
      "the way you would say them aloud. The text is read verbatim — anything visual will either be skipped or sound "
      "wrong.\n\n"
      "LENGTH: use judgment. Default to succinct spoken output for ordinary status — often one or two short "
      "sentences. Speak longer when the user asks, when voice detail is needed, or when the situation warrants it. "
      "Let user instructions, active character/persona, augments, and settings guide the right length. Hard cap is "
      "2000 chars per call; for longer replies, split across multiple calls so the user can interrupt between "
      "them.\n\n"
      "PAIRING: by default, also write your full response as text. The speak call is an audible accompaniment; the "
      "text reply is the substance. The user may explicitly tell you to skip the text and only speak, or to drop the "
      "speak and only write — follow that.\n\n"
      "DISABLED STATE: if Voice Output is disabled in the Dashboard, this tool returns queued=false with a warning "
      "and does not play audio. Do not retry or try to enable it through MCP; ask the user to enable Voice Output in "
      "the Dashboard.\n\n"
      "VOICE: the voice argument is optional. Omit it and Orvane picks the user's configured voice for whichever "
      "agent you are (set in Dashboard → Assistant → Tools). Only pass voice if the user explicitly asks for a "
      "specific one for this call. Use list_tts_voices to discover valid voice IDs for the active backend.\n\n"
      "IDENTIFIER: optional. Pass a stable string (e.g. a conversation or turn id) to group a run of spoken lines "
      "together as one session in Orvane's UI. Reuse the same identifier across the lines of a single reply; use a "
      "new one for a new reply. Omit it and Orvane groups by your agent + voice instead.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty("text", "Text to speak. Up to 20000 chars. Preserve natural paragraph breaks with blank lines.")
            .required(),
        stringProperty(
            "voice",
            "Optional voice ID for this call only (does not persist). Must be valid for the active TTS backend."),
        stringProperty(
            "identifier",
            "Optional grouping key. Lines sharing an identifier are shown as one session; a new identifier starts a "
            "new session."),
    });
    return schema;
  }
};

/// activate_augment: switches an augment on.
struct ActivateAugmentTool : ForwardedTool<ActivateAugmentTool> {
  static constexpr std::string_view name = "activate_augment";
  static constexpr std::string_view docFile = "augments.md";
  static constexpr std::string_view text =
      "Activate an augment by ID. Augments are short directives that shape assistant behavior. Use list_augments to "
      "discover IDs. If the shared slot budget is full, this returns a slot_budget_full error with the current "
      "loadout in the error data so the agent can suggest what to deactivate.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty("id").required(),
    });
    return schema;
  }
};

/// deactivate_augment: switches an augment off.
struct DeactivateAugmentTool : ForwardedTool<DeactivateAugmentTool> {
  static constexpr std::string_view name = "deactivate_augment";
  static constexpr std::string_view docFile = "augments.md";
  static constexpr std::string_view text =
      "Deactivate an augment by ID. Idempotent — returns deactivated: false if it wasn't active.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty("id").required(),
    });
    return schema;
  }
};

/// set_active_persona: makes one persona the only active one.
struct SetActivePersonaTool : ForwardedTool<SetActivePersonaTool> {
  static constexpr std::string_view name = "set_active_persona";
  static constexpr std::string_view docFile = "personas.md";
  static constexpr std::string_view text =
      "Switch Orvane to use the given persona by ID. The named persona becomes the primary active persona; any other "
      "active personas are cleared. Use list_personas to discover valid IDs. Requires the Orvane app to be running. "
      "The user is asked for one-time consent the first time any mutation tool is called.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty("id", "Persona ID (e.g. \"pirate\"). Must match an existing persona.").required(),
    });
    return schema;
  }
};

}  // namespace orvane
