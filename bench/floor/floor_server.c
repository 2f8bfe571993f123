// The least a server of this kind can do: take exactly one line, answer it with a fixed text. What it costs is the
// machine's price for the job, and every figure of the real server is read against it.
//
// usage: floor-server text BYTES          answer every line with a fixed answer of BYTES bytes
//        floor-server file PATH           read the file at PATH before each answer of 430 bytes
//        floor-server forward SOCKET      send every line to the application at SOCKET and answer with what it says
#define _GNU_SOURCE
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <unistd.h>

enum { bufferSize = 65536, responseSize = 1 << 21 };

static char seen[bufferSize];
static size_t seenStart;
static size_t seenEnd;
static int scratch[2];
static int inputIsPipe;

// Looks at what comes next without taking it.
static ssize_t peekInput(void) {
  if (!inputIsPipe) return recv(0, seen, sizeof seen, MSG_PEEK);
  const ssize_t count = tee(0, scratch[1], sizeof seen, 0);
  if (count <= 0) return count;
  size_t copied = 0;
  while (copied < (size_t)count) {
    const ssize_t part = read(scratch[0], seen + copied, (size_t)count - copied);
    if (part <= 0) return -1;
    copied += (size_t)part;
  }
  return count;
}

// Takes the next piece of a line; returns its length, 0 at end of input.
static size_t takePiece(char** piece) {
  if (seenStart == seenEnd) {
    const ssize_t count = peekInput();
    if (count <= 0) return 0;
    seenStart = 0;
    seenEnd = (size_t)count;
  }
  *piece = seen + seenStart;
  const char* newline = memchr(*piece, '\n', seenEnd - seenStart);
  const size_t wanted = newline == NULL ? seenEnd - seenStart : (size_t)(newline - *piece) + 1;
  const ssize_t taken = read(0, *piece, wanted);
  if (taken <= 0) return 0;
  seenStart += (size_t)taken;
  return (size_t)taken;
}

static int writeAll(struct iovec* vector, int count) {
  while (count > 0) {
    ssize_t written = writev(1, vector, count);
    if (written < 0) return -1;
    while (count > 0 && (size_t)written >= vector->iov_len) {
      written -= (ssize_t)vector->iov_len;
      ++vector;
      --count;
    }
    if (count > 0) {
      vector->iov_base = (char*)vector->iov_base + written;
      vector->iov_len -= (size_t)written;
    }
  }
  return 0;
}

// One exchange with the application, as the bridge does it.
static size_t forward(const char* path, const char* line, size_t length, char* response) {
  const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const struct timeval timeout = {30, 0};
  setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
  setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &timeout, sizeof timeout);
  struct sockaddr_un address = {.sun_family = AF_UNIX};
  strncpy(address.sun_path, path, sizeof address.sun_path - 1);
  if (connect(descriptor, (struct sockaddr*)&address, sizeof address) != 0) exit(1);
  struct ucred peer;
  socklen_t peerLength = sizeof peer;
  getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &peerLength);
  if (peer.uid != getuid()) exit(1);
  if (send(descriptor, line, length, MSG_NOSIGNAL) != (ssize_t)length) exit(1);
  shutdown(descriptor, SHUT_WR);
  size_t received = 0;
  ssize_t count;
  while ((count = read(descriptor, response + received, 16384)) > 0) received += (size_t)count;
  close(descriptor);
  return received;
}

// Reads a whole file as the real server does.
static void readFile(const char* path) {
  static char content[65536];
  const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  struct stat status;
  if (descriptor < 0 || fstat(descriptor, &status) != 0) exit(1);
  while (read(descriptor, content, sizeof content) > 0) {
  }
  close(descriptor);
}

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const int readsFile = strcmp(argv[1], "file") == 0;
  const int forwards = strcmp(argv[1], "forward") == 0;
  struct stat status;
  if (fstat(0, &status) != 0) return 1;
  inputIsPipe = S_ISFIFO(status.st_mode);
  if (inputIsPipe && pipe2(scratch, O_CLOEXEC) != 0) return 1;

  char* response = malloc(responseSize + 16384);
  size_t responseLength = forwards ? 0 : readsFile ? 430 : strtoul(argv[2], NULL, 10);
  if (response == NULL || responseLength > responseSize) return 1;
  static const char head[] = "{\"jsonrpc\":\"2.0\",\"id\":1,\"result\":\"";
  // Only what is sent is touched, so that the memory counts like the real server's.
  memset(response, 'x', responseLength > sizeof head ? responseLength : sizeof head);
  memcpy(response, head, sizeof head - 1);
  if (!forwards && responseLength > sizeof head + 2) memcpy(response + responseLength - 2, "\"}", 2);

  char* piece;
  size_t length;
  while ((length = takePiece(&piece)) > 0) {
    if (piece[length - 1] != '\n') continue;
    if (readsFile) readFile(argv[2]);
    if (forwards) {
      responseLength = forward(argv[2], piece, length, response);
      if (responseLength > 0 && response[responseLength - 1] == '\n') --responseLength;
    }
    struct iovec vector[2] = {{response, responseLength}, {"\n", 1}};
    if (writeAll(vector, 2) != 0) return 1;
  }
  return 0;
}
