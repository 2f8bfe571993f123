// An application that answers every request at once with the same bytes, so that a forwarded call costs what the bridge
// costs. Reads each request to its end, as the real one must.
//
// usage: floor-application SOCKET RESPONSE-FILE
#define _GNU_SOURCE
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  static char response[1 << 21];
  FILE* file = fopen(argv[2], "rb");
  if (file == NULL) return 1;
  const size_t length = fread(response, 1, sizeof response, file);
  fclose(file);

  struct sockaddr_un address = {.sun_family = AF_UNIX};
  strncpy(address.sun_path, argv[1], sizeof address.sun_path - 1);
  const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  unlink(argv[1]);
  if (bind(listener, (struct sockaddr*)&address, sizeof address) != 0 || listen(listener, 64) != 0) return 1;
  puts("listening");
  fflush(stdout);
  while (1) {
    const int connection = accept(listener, NULL, NULL);
    if (connection < 0) return 1;
    static char request[65536];
    while (read(connection, request, sizeof request) > 0) {
    }
    size_t written = 0;
    while (written < length) {
      const ssize_t count = send(connection, response + written, length - written, MSG_NOSIGNAL);
      if (count <= 0) break;
      written += (size_t)count;
    }
    close(connection);
  }
}
