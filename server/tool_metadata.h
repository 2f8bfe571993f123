// How the registry classifies tools: the toolsets a user can choose from, and the behaviour hints that hosts read.
#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>

namespace orvane {

/// A group of tools that a user can select by its raw value.
enum class MCPToolset : std::uint8_t { state, settings, voice, meetings, slate, computer, augments };

/// All toolsets, in declaration order.
inline constexpr std::array allToolsets{MCPToolset::state,    MCPToolset::settings, MCPToolset::voice,
                                        MCPToolset::meetings, MCPToolset::slate,    MCPToolset::computer,
                                        MCPToolset::augments};

/// The name by which `toolset` is selected, such as "state".
std::string_view rawValue(MCPToolset toolset);

/// The toolset whose name is exactly `rawValue`, if there is one.
std::optional<MCPToolset> mcpToolset(std::string_view rawValue);

/// A set of toolsets.
class MCPToolsetSet {
 public:
  constexpr MCPToolsetSet() = default;
  constexpr MCPToolsetSet(std::initializer_list<MCPToolset> toolsets) {
    for (const MCPToolset toolset : toolsets) insert(toolset);
  }
  static constexpr MCPToolsetSet all() {
    MCPToolsetSet set;
    for (const MCPToolset toolset : allToolsets) set.insert(toolset);
    return set;
  }

  constexpr void insert(MCPToolset toolset) { bits_ |= 1U << static_cast<unsigned>(toolset); }
  constexpr bool empty() const { return bits_ == 0; }
  constexpr bool intersects(MCPToolsetSet other) const { return (bits_ & other.bits_) != 0; }
  constexpr bool operator==(const MCPToolsetSet&) const = default;

 private:
  unsigned bits_ = 0;
};

/// The behaviour hints of one tool (Model Context Protocol, ToolAnnotations). An absent hint is not sent.
struct MCPToolAnnotations {
  bool readOnlyHint = false;
  std::optional<bool> destructiveHint;
  std::optional<bool> idempotentHint;
  std::optional<bool> openWorldHint;
};

/// What the catalogue knows of one tool.
struct MCPToolMetadata {
  MCPToolsetSet toolsets;
  MCPToolAnnotations annotations;
};

}  // namespace orvane
