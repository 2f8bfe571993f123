// The functions that can be made to fail. Those behind which there is but a system call make it themselves.
#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <pwd.h>
#include <stdarg.h>
#include <stdio.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include "tests/faults/fault.h"

void* __libc_malloc(size_t size);

#define FAIL_OR(function, descriptor, failure)          \
  const int fault = faultVerdict(function, descriptor); \
  if (fault > 0) {                                      \
    errno = fault;                                      \
    return failure;                                     \
  }

static size_t shortened(int fault, size_t size) { return fault == SHORT && size > 1 ? 1 : size; }

ssize_t read(int descriptor, void* buffer, size_t size) {
  FAIL_OR("read", descriptor, -1)
  return syscall(SYS_read, descriptor, buffer, shortened(fault, size));
}

ssize_t pread(int descriptor, void* buffer, size_t size, off_t offset) {
  FAIL_OR("pread", descriptor, -1)
  return syscall(SYS_pread64, descriptor, buffer, shortened(fault, size), offset);
}

ssize_t recv(int descriptor, void* buffer, size_t size, int flags) {
  FAIL_OR("recv", descriptor, -1)
  return syscall(SYS_recvfrom, descriptor, buffer, shortened(fault, size), flags, NULL, NULL);
}

ssize_t write(int descriptor, const void* buffer, size_t size) {
  FAIL_OR("write", descriptor, -1)
  if (fault == NOTHING) return 0;
  return syscall(SYS_write, descriptor, buffer, shortened(fault, size));
}

ssize_t writev(int descriptor, const struct iovec* pieces, int count) {
  FAIL_OR("writev", descriptor, -1)
  if (fault == NOTHING) return 0;
  if (fault == SHORT) return syscall(SYS_write, descriptor, pieces[0].iov_base, shortened(fault, pieces[0].iov_len));
  return syscall(SYS_writev, descriptor, pieces, count);
}

ssize_t send(int descriptor, const void* buffer, size_t size, int flags) {
  FAIL_OR("send", descriptor, -1)
  if (fault == NOTHING) return 0;
  return syscall(SYS_sendto, descriptor, buffer, shortened(fault, size), flags, NULL, 0);
}

ssize_t tee(int from, int to, size_t size, unsigned flags) {
  FAIL_OR("tee", from, -1)
  return syscall(SYS_tee, from, to, shortened(fault, size), flags);
}

int connect(int descriptor, const struct sockaddr* address, socklen_t length) {
  FAIL_OR("connect", descriptor, -1)
  return (int)syscall(SYS_connect, descriptor, address, length);
}

int socket(int domain, int type, int protocol) {
  FAIL_OR("socket", -2, -1)
  return (int)syscall(SYS_socket, domain, type, protocol);
}

int shutdown(int descriptor, int how) {
  FAIL_OR("shutdown", descriptor, -1)
  return (int)syscall(SYS_shutdown, descriptor, how);
}

int getsockopt(int descriptor, int level, int name, void* value, socklen_t* length) {
  FAIL_OR("getsockopt", descriptor, -1)
  return (int)syscall(SYS_getsockopt, descriptor, level, name, value, length);
}

int setsockopt(int descriptor, int level, int name, const void* value, socklen_t length) {
  FAIL_OR("setsockopt", descriptor, -1)
  return (int)syscall(SYS_setsockopt, descriptor, level, name, value, length);
}

static int createExclusively(const char* path, int flags, mode_t mode) {
  FAIL_OR("create", -2, -1)
  return (int)syscall(SYS_openat, AT_FDCWD, path, flags, mode);
}

// Making a file that must not be there yet counts as "create" too.
static int openWithMode(const char* path, int flags, mode_t mode) {
  FAIL_OR("open", -2, -1)
  if (flags & O_EXCL) return createExclusively(path, flags, mode);
  return (int)syscall(SYS_openat, AT_FDCWD, path, flags, mode);
}

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return openWithMode(path, flags, mode);
}

int open64(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return openWithMode(path, flags, mode);
}

// A close that fails has closed all the same.
int close(int descriptor) {
  const int fault = faultVerdict("close", descriptor);
  const int result = (int)syscall(SYS_close, descriptor);
  if (fault <= 0) return result;
  errno = fault;
  return -1;
}

int fsync(int descriptor) {
  FAIL_OR("fsync", descriptor, -1)
  return (int)syscall(SYS_fsync, descriptor);
}

int fchmod(int descriptor, mode_t mode) {
  FAIL_OR("fchmod", descriptor, -1)
  return (int)syscall(SYS_fchmod, descriptor, mode);
}

int mkdir(const char* path, mode_t mode) {
  FAIL_OR("mkdir", -2, -1)
  return (int)syscall(SYS_mkdirat, AT_FDCWD, path, mode);
}

int rename(const char* from, const char* to) {
  FAIL_OR("rename", -2, -1)
  return (int)syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0);
}

int fstat(int descriptor, struct stat* status) {
  FAIL_OR("fstat", descriptor, -1)
  const int result = NEXT_FUNCTION(fstat)(descriptor, status);
  if (fault == SHORT && result == 0 && status->st_size > 0) --status->st_size;
  return result;
}

int fstat64(int descriptor, struct stat64* status) {
  FAIL_OR("fstat", descriptor, -1)
  const int result = NEXT_FUNCTION(fstat64)(descriptor, status);
  if (fault == SHORT && result == 0 && status->st_size > 0) --status->st_size;
  return result;
}

int stat(const char* path, struct stat* status) {
  FAIL_OR("stat", -2, -1)
  return NEXT_FUNCTION(stat)(path, status);
}

off_t lseek(int descriptor, off_t offset, int origin) {
  FAIL_OR("lseek", descriptor, -1)
  return syscall(SYS_lseek, descriptor, offset, origin);
}

ssize_t readlink(const char* path, char* buffer, size_t size) {
  FAIL_OR("readlink", -2, -1)
  if (fault == NOTHING) return 0;
  return syscall(SYS_readlinkat, AT_FDCWD, path, buffer, size);
}

struct dirent* readdir(DIR* directory) {
  FAIL_OR("readdir", -2, NULL)
  return NEXT_FUNCTION(readdir)(directory);
}

int getentropy(void* buffer, size_t size) {
  FAIL_OR("getentropy", -2, -1)
  return syscall(SYS_getrandom, buffer, size, 0) == (long)size ? 0 : -1;
}

int pipe2(int ends[2], int flags) {
  FAIL_OR("pipe2", -2, -1)
  return (int)syscall(SYS_pipe2, ends, flags);
}

int poll(struct pollfd* waits, nfds_t count, int timeout) {
  FAIL_OR("poll", count > 0 ? waits[0].fd : -2, -1)
  return NEXT_FUNCTION(poll)(waits, count, timeout);
}

void* malloc(size_t size) {
  FAIL_OR("malloc", -2, NULL)
  return __libc_malloc(size);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument) {
  const int fault = faultVerdict("pthread_create", -2);
  return fault > 0 ? fault : NEXT_FUNCTION(pthread_create)(thread, attributes, run, argument);
}

uid_t geteuid(void) {
  const int fault = faultVerdict("geteuid", -2);
  return fault > 0 ? (uid_t)fault : (uid_t)syscall(SYS_geteuid);
}

// The private home comes from a wrapper of the user database, which must keep working.
int getpwuid_r(uid_t uid, struct passwd* entry, char* buffer, size_t size, struct passwd** found) {
  const int fault = faultVerdict("getpwuid_r", -2);
  if (fault > 0) return fault;
  if (fault == NOTHING) {
    *found = NULL;
    return 0;
  }
  ++faultsPaused;
  const int result = NEXT_FUNCTION(getpwuid_r)(uid, entry, buffer, size, found);
  --faultsPaused;
  return result;
}

// Looked up early: dlsym takes memory.
__attribute__((constructor)) static void lookUp(void) { NEXT_FUNCTION(getpwuid_r); }
