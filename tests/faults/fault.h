// Preloaded into the program under test: makes chosen calls of chosen functions fail or come back short.
//
// FAULTS lists them, separated by commas: function:calls:kind. The function's calls are counted from 1 on; calls is one
// of them (n; 0 for none, to count them), all from one on (n-), or some in a row (n-m). kind is an errno value; or
// "short", a transfer of one byte, or a file that is longer than it says; or "nothing", a transfer of no byte, a link
// to nothing, or a user who is not found; or "late", which holds up a call of any thread but the main one until
// standard input has been read to its end. For geteuid it is the user that is told. FAULT_REPORT names a file that is
// given, when the process ends, a line for each fault: how often its function was called, on which descriptor it fell
// last (-1 where it did not, -2 where the function has none), and how often it fell on the descriptors 0, 1, 2 and
// elsewhere.
//
// fault.c chooses the calls; faulty_functions.c has the functions.
#pragma once

// What is to happen to a call, where it is no errno value.
enum { NOTHING = -2, SHORT = -1, NONE = 0 };

// What is to happen to this call of `function`. Counts it.
int faultVerdict(const char* function, int descriptor);

// Above 0 while the calling thread is in a library that only the tests load: its calls neither fail nor count.
extern _Thread_local int faultsPaused;

// The function that would have been called without this library.
#define NEXT_FUNCTION(function) ((__typeof__(&function))dlsym(RTLD_NEXT, #function))
