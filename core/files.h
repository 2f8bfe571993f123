// Whole-file reads and atomic replacement, by path. A directory, a FIFO, a device or a socket in place of a file
// neither blocks nor counts as a file. Nothing here throws for what the file system does.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace orvane {

/// Why a file operation failed.
struct FileError {
  int number;  ///< an errno value
  /// The error for a person: errorText of the number.
  std::string description() const;
};

/// Nothing on success, else the failure.
using FileOutcome = std::optional<FileError>;

/// All bytes of the regular file at `path`, symbolic links followed. Anything but a regular file is an error (EISDIR
/// for a directory, EINVAL otherwise).
std::variant<std::string, FileError> readWholeFile(const std::string& path);

/// All of the regular file at `path` as UTF-8 text; nothing if it cannot be read or is not valid UTF-8.
std::optional<std::string> readTextFile(const std::string& path);

/// The names of all entries of the directory at `path` except "." and "..", in no order; nothing if it cannot be
/// listed.
std::optional<std::vector<std::string>> listDirectory(const std::string& path);

/// Makes the directory at `path` and every missing parent, with the permissions the umask leaves.
FileOutcome createDirectories(const std::string& path);

/// Puts `content` in place of the file at `path` in one step: readers see the old content or the new, whole. A symbolic
/// link stays one, and the file it names is replaced; the old file's permissions are kept. After a failure the old file
/// stands unchanged and no temporary file is left.
FileOutcome replaceFile(const std::string& path, std::string_view content);

}  // namespace orvane
