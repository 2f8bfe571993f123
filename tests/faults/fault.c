// Which calls fail, and what became of that. See fault.h.
#include "tests/faults/fault.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <limits.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

enum { MAX_FAULTS = 4, PLACES = 4, LATE = -100 };

struct Fault {
  char function[16];
  long first;
  long last;
  int kind;  // a verdict, or LATE
  atomic_long calls;
  atomic_int descriptor;
  atomic_long hits[PLACES];  // on the descriptors 0, 1, 2 and elsewhere
};

static struct Fault faults[MAX_FAULTS];
static int faultCount;
// Off until the program's own code is about to begin, and once the last of it has run.
static atomic_int ready;
_Thread_local int faultsPaused;

// The main thread needs the input to reach its end, so it is never held up.
static void waitForEndOfInput(void) {
  if (syscall(SYS_gettid) == getpid()) return;
  for (int unread = 1; ioctl(0, FIONREAD, &unread) == 0 && unread > 0;) usleep(1000);
}

int faultVerdict(const char* function, int descriptor) {
  if (!atomic_load(&ready) || faultsPaused) return NONE;
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

// What the loader has the C library call at the very end, after main and the destructors of everything static. It runs
// what is no part of the program: in a build that measures coverage, the recorder, which takes memory without checking.
static void (*finishLoader)(void);

static void endFaults(void) {
  atomic_store(&ready, 0);
  if (finishLoader != NULL) finishLoader();
}

int __libc_start_main(int (*run)(int, char**, char**), int count, char** arguments, void (*begin)(void),
                      void (*end)(void), void (*finish)(void), void* stack);

int __libc_start_main(int (*run)(int, char**, char**), int count, char** arguments, void (*begin)(void),
                      void (*end)(void), void (*finish)(void), void* stack) {
  finishLoader = finish;
  const __typeof__(&__libc_start_main) start = NEXT_FUNCTION(__libc_start_main);
  atomic_store(&ready, 1);
  return start(run, count, arguments, begin, end, endFaults, stack);
}

static int kindNamed(const char* name) {
  if (strcmp(name, "short") == 0) return SHORT;
  if (strcmp(name, "nothing") == 0) return NOTHING;
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
}

__attribute__((destructor)) static void report(void) {
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
