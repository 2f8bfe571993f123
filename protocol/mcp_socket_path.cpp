#include "protocol/mcp_socket_path.h"

#include "core/paths.h"
#include "core/user_paths.h"

namespace orvane {

std::string MCPSocketPath::resolve() { return joinPath(applicationSupportPath(), "Orvane/mcp.sock"); }

}  // namespace orvane
