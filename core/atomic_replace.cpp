// replaceFile: a new file is written beside the old one and takes its name.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <utility>

#if __has_include(<sys/random.h>)
#include <sys/random.h>
#endif

#include "core/descriptor.h"
#include "core/descriptor_io.h"
#include "core/files.h"
#include "core/paths.h"
#include "platform/platform.h"

namespace orvane {

namespace {

// As many as the kernels follow.
constexpr int maxLinks = 40;
constexpr int nameAttempts = 16;
constexpr mode_t permissionBits = 07777;

std::string directoryOf(const std::string& path) {
  std::string directory = parentDirectory(path);
  return directory.empty() ? "." : directory;
}

// Follows the symbolic links at `path` to the name of a file, which need not exist. Returns 0 or an errno value.
int followLinks(std::string& path) {
  for (int links = 0; links <= maxLinks; ++links) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlink(path.c_str(), target.data(), target.size());
    if (length < 0) return errno == EINVAL || errno == ENOENT ? 0 : errno;
    const std::string_view next(target.data(), static_cast<std::size_t>(length));
    if (next.empty()) return ENOENT;
    if (next.size() == target.size()) return ENAMETOOLONG;
    path = next.front() == '/' ? std::string(next) : joinPath(directoryOf(path), next);
  }
  return ELOOP;
}

// The new file until it has the old one's name; removed if it never gets that far.
class TemporaryFile {
 public:
  TemporaryFile() = default;
  ~TemporaryFile() {
    if (!path_.empty()) unlink(path_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  // Each returns 0 or an errno value.

  int create(const std::string& directory, mode_t mode) {
    for (int attempt = 0; attempt < nameAttempts; ++attempt) {
      std::uint64_t random = 0;
      if (getentropy(&random, sizeof random) != 0) return errno;
      std::array<char, 64> name{};
      std::snprintf(name.data(), name.size(), ".orvane-mcp.%ld-%016llx.tmp", static_cast<long>(getpid()),
                    static_cast<unsigned long long>(random));
      std::string path = joinPath(directory, name.data());
      constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
      descriptor_ = Descriptor(retryInterrupted([&] { return open(path.c_str(), flags, mode); }));
      if (descriptor_.isOpen()) {
        path_ = std::move(path);
        return 0;
      }
      if (errno != EEXIST) return errno;
    }
    return EEXIST;
  }

  int write(std::string_view content) const { return writeFully(descriptor_.get(), content); }

  int setPermissions(mode_t permissions) const {
    return retryInterrupted([&] { return fchmod(descriptor_.get(), permissions); }) == 0 ? 0 : errno;
  }

  int flushAndClose() {
    if (retryInterrupted([&] { return platform::flushToDisk(descriptor_.get()); }) != 0) return errno;
    // An interrupted close has closed, and the data is on the disk already.
    return close(descriptor_.release()) == 0 || errno == EINTR ? 0 : errno;
  }

  int renameTo(const std::string& target) {
    if (rename(path_.c_str(), target.c_str()) != 0) return errno;
    path_.clear();
    return 0;
  }

 private:
  std::string path_;
  Descriptor descriptor_;
};

// Makes the new name durable. The content is in place whether or not this succeeds.
void flushDirectory(const std::string& directory) {
  const Descriptor descriptor(
      retryInterrupted([&] { return open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  if (descriptor.isOpen()) retryInterrupted([&] { return platform::flushToDisk(descriptor.get()); });
}

int replace(std::string target, std::string_view content) {
  if (const int error = followLinks(target)) return error;
  struct stat old {};
  const bool isThere = stat(target.c_str(), &old) == 0;
  if (!isThere && errno != ENOENT) return errno;
  if (isThere && S_ISDIR(old.st_mode)) return EISDIR;
  if (isThere && !S_ISREG(old.st_mode)) return EINVAL;

  const std::string directory = directoryOf(target);
  const mode_t permissions = old.st_mode & permissionBits;
  TemporaryFile file;
  // Never more open than the old file, not even for the moment before the permissions are set.
  if (const int error = file.create(directory, isThere ? permissions & 0777 : 0666)) return error;
  if (const int error = file.write(content)) return error;
  if (isThere) {
    if (const int error = file.setPermissions(permissions)) return error;
  }
  if (const int error = file.flushAndClose()) return error;
  if (const int error = file.renameTo(target)) return error;
  flushDirectory(directory);
  return 0;
}

}  // namespace

FileOutcome replaceFile(const std::string& path, std::string_view content) {
  const int error = replace(path, content);
  if (error == 0) return std::nullopt;
  return FileError{error};
}

}  // namespace orvane
