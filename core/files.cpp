#include "core/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <memory>

#include "core/descriptor.h"
#include "core/descriptor_io.h"
#include "core/error_text.h"
#include "core/paths.h"
#include "core/utf8.h"

namespace orvane {

namespace {

// Opening a FIFO for reading would wait for a writer, and a terminal could become the process's own.
constexpr int readFlags = O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;

bool isDirectory(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// Reads to the end, which may lie before or beyond `expectedSize`. Returns 0 or an errno value.
int readToEnd(int descriptor, std::size_t expectedSize, std::string& content) {
  // One byte more than expected, so that the end is seen without another allocation.
  content.resize(expectedSize + 1);
  std::size_t filled = 0;
  while (true) {
    if (filled == content.size()) content.resize(content.size() * 2);
    const ssize_t count =
        retryInterrupted([&] { return read(descriptor, content.data() + filled, content.size() - filled); });
    if (count < 0) return errno;
    if (count == 0) break;
    filled += static_cast<std::size_t>(count);
  }
  content.resize(filled);
  return 0;
}

}  // namespace

std::string FileError::description() const { return errorText(number); }

std::variant<std::string, FileError> readWholeFile(const std::string& path) {
  const Descriptor file(retryInterrupted([&] { return open(path.c_str(), readFlags); }));
  if (!file.isOpen()) return FileError{errno};
  struct stat status {};
  if (fstat(file.get(), &status) != 0) return FileError{errno};
  if (S_ISDIR(status.st_mode)) return FileError{EISDIR};
  if (!S_ISREG(status.st_mode)) return FileError{EINVAL};
  try {
    std::string content;
    const int error = readToEnd(file.get(), static_cast<std::size_t>(status.st_size), content);
    if (error != 0) return FileError{error};
    return content;
  } catch (const std::exception&) {
    // There is no memory for so much, or no string is as long.
    return FileError{ENOMEM};
  }
}

std::optional<std::string> readTextFile(const std::string& path) {
  std::variant<std::string, FileError> outcome = readWholeFile(path);
  std::string* content = std::get_if<std::string>(&outcome);
  if (content == nullptr || !isValidUTF8(*content)) return std::nullopt;
  return std::move(*content);
}

std::optional<std::vector<std::string>> listDirectory(const std::string& path) {
  Descriptor descriptor(retryInterrupted([&] { return open(path.c_str(), readFlags | O_DIRECTORY); }));
  if (!descriptor.isOpen()) return std::nullopt;
  const std::unique_ptr<DIR, int (*)(DIR*)> directory(fdopendir(descriptor.get()), &closedir);
  if (directory == nullptr) return std::nullopt;
  descriptor.release();  // the directory stream closes it
  std::vector<std::string> names;
  while (true) {
    // Both the end and a failure give no entry; only errno tells them apart.
    errno = 0;
    const dirent* entry = readdir(directory.get());
    if (entry == nullptr) break;
    std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(std::move(name));
  }
  if (errno != 0) return std::nullopt;
  return names;
}

FileOutcome createDirectories(const std::string& path) {
  if (isDirectory(path)) return std::nullopt;
  const std::string parent = parentDirectory(path);
  if (!parent.empty() && parent != path) {
    if (FileOutcome failure = createDirectories(parent)) return failure;
  }
  if (mkdir(path.c_str(), 0777) == 0) return std::nullopt;
  const int error = errno;
  // Another process may have been quicker.
  if (error == EEXIST && isDirectory(path)) return std::nullopt;
  return FileError{error};
}

}  // namespace orvane
