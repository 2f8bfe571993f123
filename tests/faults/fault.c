// Preloaded into the program under test: makes chosen calls of chosen functions fail or come back short.
//
// FAULTS lists them, separated by commas: function:calls:kind. The function's calls are counted from 1 on; calls is one
// of them (n; 0 for none, to count them), all from one on (n-), or some in a row (n-m). kind is an errno value; or
// "short", a transfer of one byte; or "late", which holds up a call of any thread but the main one until standard input
// has been read to its end. FAULT_REPORT names a file that is given, when the process ends, a line for each fault: how
// often its function was called, on which descriptor it fell last (-1 where it did not, -2 where the function has
// none), and how often it fell on the descriptors 0, 1, 2 and elsewhere.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <pwd.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

enum { MAX_FAULTS = 4, PLACES = 4, SHORT = -1, LATE = -2, NONE = 0 };

struct Fault {
  char function[16];
  long first;
  long last;
  int kind;  // an errno value, SHORT or LATE
  atomic_long calls;
  atomic_int descriptor;
  atomic_long hits[PLACES];  // on the descriptors 0, 1, 2 and elsewhere
};

static struct Fault faults[MAX_FAULTS];
static int faultCount;
// Off until the program's own main is about to begin, and wherever a library that only the tests load is at work.
static atomic_int ready;
static _Thread_local int paused;

void* __libc_malloc(size_t size);

// The main thread needs the input to reach its end, so it is never held up.
static void waitForEndOfInput(void) {
  if (syscall(SYS_gettid) == getpid()) return;
  for (int unread = 1; ioctl(0, FIONREAD, &unread) == 0 && unread > 0;) usleep(1000);
}

// What is to happen to this call: NONE, SHORT or an errno value.
static int verdict(const char* function, int descriptor) {
  if (!atomic_load(&ready) || paused) return NONE;
  int result = NONE;
  for (int i = 0; i < faultCount; ++i) {
    struct Fault* fault = &faults[i];
    if (strcmp(fault->function, function) != 0) continue;
    const long call = atomic_fetch_add(&fault->calls, 1) + 1;
    if (call < fault->first || call > fault->last) continue;
    atomic_store(&fault->descriptor, descriptor);
    atomic_fetch_add(&fault->hits[descriptor >= 0 && descriptor < PLACES - 1 ? descriptor : PLACES - 1], 1);
    if (fault->kind != LATE) {
      result = fault->kind;
    } else {
      waitForEndOfInput();
    }
  }
  return result;
}

#define FAIL_OR(function, descriptor, failure)     \
  const int fault = verdict(function, descriptor); \
  if (fault > 0) {                                 \
    errno = fault;                                 \
    return failure;                                \
  }

#define NEXT(function) ((__typeof__(&function))dlsym(RTLD_NEXT, #function))

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
  return syscall(SYS_write, descriptor, buffer, shortened(fault, size));
}

ssize_t writev(int descriptor, const struct iovec* pieces, int count) {
  FAIL_OR("writev", descriptor, -1)
  if (fault == SHORT) return syscall(SYS_write, descriptor, pieces[0].iov_base, shortened(fault, pieces[0].iov_len));
  return syscall(SYS_writev, descriptor, pieces, count);
}

ssize_t send(int descriptor, const void* buffer, size_t size, int flags) {
  FAIL_OR("send", descriptor, -1)
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

static int openWithMode(const char* path, int flags, mode_t mode) {
  FAIL_OR("open", -2, -1)
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
  const int fault = verdict("close", descriptor);
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
  return NEXT(fstat)(descriptor, status);
}

int fstat64(int descriptor, struct stat64* status) {
  FAIL_OR("fstat", descriptor, -1)
  return NEXT(fstat64)(descriptor, status);
}

int stat(const char* path, struct stat* status) {
  FAIL_OR("stat", -2, -1)
  return NEXT(stat)(path, status);
}

int pipe2(int ends[2], int flags) {
  FAIL_OR("pipe2", -2, -1)
  return (int)syscall(SYS_pipe2, ends, flags);
}

int poll(struct pollfd* waits, nfds_t count, int timeout) {
  FAIL_OR("poll", count > 0 ? waits[0].fd : -2, -1)
  return NEXT(poll)(waits, count, timeout);
}

void* malloc(size_t size) {
  FAIL_OR("malloc", -2, NULL)
  return __libc_malloc(size);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument) {
  const int fault = verdict("pthread_create", -2);
  return fault > 0 ? fault : NEXT(pthread_create)(thread, attributes, run, argument);
}

// The private home comes from a wrapper of the user database, which must keep working.
int getpwuid_r(uid_t uid, struct passwd* entry, char* buffer, size_t size, struct passwd** found) {
  ++paused;
  const int result = NEXT(getpwuid_r)(uid, entry, buffer, size, found);
  --paused;
  return result;
}

static int kindNamed(const char* name) {
  if (strcmp(name, "short") == 0) return SHORT;
  if (strcmp(name, "late") == 0) return LATE;
  return atoi(name);
}

__attribute__((constructor)) static void readFaults(void) {
  const char* text = getenv("FAULTS");
  while (text != NULL && *text != '\0') {
    if (faultCount == MAX_FAULTS) _exit(125);
    struct Fault* fault = &faults[faultCount++];
    char calls[32] = "";
    char kind[16] = "";
    if (sscanf(text, "%15[^:]:%31[^:]:%15[^,]", fault->function, calls, kind) != 3) _exit(125);
    char* end = NULL;
    fault->first = strtol(calls, &end, 10);
    fault->last = *end == '\0' ? fault->first : end[1] == '\0' ? LONG_MAX : strtol(end + 1, NULL, 10);
    fault->kind = kindNamed(kind);
    atomic_store(&fault->descriptor, -1);
    text = strchr(text, ',');
    if (text != NULL) ++text;
  }
  // Looked up now: dlsym takes memory.
  NEXT(getpwuid_r);
  atomic_store(&ready, 1);
}

__attribute__((destructor)) static void report(void) {
  atomic_store(&ready, 0);
  const char* path = getenv("FAULT_REPORT");
  if (path == NULL) return;
  const int file = (int)syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  for (int i = 0; i < faultCount; ++i) {
    struct Fault* fault = &faults[i];
    char line[128];
    const int length =
        snprintf(line, sizeof line, "%ld %d %ld %ld %ld %ld\n", atomic_load(&fault->calls),
                 atomic_load(&fault->descriptor), atomic_load(&fault->hits[0]), atomic_load(&fault->hits[1]),
                 atomic_load(&fault->hits[2]), atomic_load(&fault->hits[3]));
    if (file < 0 || syscall(SYS_write, file, line, (size_t)length) != length) _exit(125);
  }
  syscall(SYS_close, file);
}
