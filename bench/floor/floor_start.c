// The least that starting and answering once can cost: a static program that does the system calls of a server's first
// answer to a ping and ends with its input.
#define _GNU_SOURCE
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

int main(void) {
  static char buffer[65536];
  int scratch[2];
  close(open("/dev/null", O_RDWR));
  struct stat status;
  if (fstat(0, &status) != 0) return 1;
  const int isPipe = S_ISFIFO(status.st_mode);
  if (isPipe && pipe2(scratch, O_CLOEXEC) != 0) return 1;
  while (1) {
    ssize_t count = isPipe ? tee(0, scratch[1], sizeof buffer, 0) : recv(0, buffer, sizeof buffer, MSG_PEEK);
    if (count <= 0) return 0;
    if (isPipe && read(scratch[0], buffer, (size_t)count) != count) return 1;
    if (read(0, buffer, (size_t)count) != count) return 1;
    static char answer[] = "{\"jsonrpc\":\"2.0\",\"id\":1,\"result\":{}}";
    struct iovec vector[2] = {{answer, sizeof answer - 1}, {"\n", 1}};
    if (writev(1, vector, 2) < 0) return 1;
  }
}
