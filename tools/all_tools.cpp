#include "tools/all_tools.h"

#include <array>

#include "tools/computer/action.h"
#include "tools/computer/inspection.h"
#include "tools/forwarded/meetings.h"
#include "tools/forwarded/settings.h"
#include "tools/forwarded/slate.h"
#include "tools/local/augments.h"
#include "tools/local/dictionary.h"
#include "tools/local/preferences.h"
#include "tools/local/settings.h"
#include "tools/local/version.h"

namespace orvane {

namespace {

template <MCPTool... Tools>
constexpr std::array<ToolHandle, sizeof...(Tools)> handles() {
  return {toolHandle<Tools>()...};
}

constexpr auto tools =
    handles<CurrentSettingsTool, ListReplacementsTool, ListAugmentsTool, OrvaneVersionTool, ComputerListAppsTool,
            ComputerInspectTool, ComputerReadTool, ComputerGetScreenshotTool, ComputerOpenTool, ComputerClickTool,
            ComputerDeliverTextTool, ComputerPressKeyTool, ComputerScrollTool, ComputerSelectTool, ReadPreferencesTool,
            RememberPreferenceTool, ListPersonasTool, ListInputDevicesTool, ListTtsVoicesTool, GetInsightsTool,
            ListMeetingsTool, SearchMeetingsTool, GetMeetingTool, GetMeetingNotesTool, GetMeetingTranscriptTool,
            SetActivePersonaTool, SetAssistantBackendTool, SetAssistantTriggerWordTool, SetInputDeviceTool,
            SetSelectionEditEnabledTool, SpeakTool, ActivateAugmentTool, DeactivateAugmentTool, SlateOpenTool,
            SlateCloseTool, SlateClearTool, SlateSaveTool, SlateSetRoutingTool, SlateSetFrontmatterTool,
            SlateRemoveFrontmatterTool, GetSlateTool, ReadOpenFileTool>();

}  // namespace

std::span<const ToolHandle> allTools() { return tools; }

}  // namespace orvane
