// The round-trip client: drives several servers in one run, interleaved in small batches on one core, so that whatever
// else the machine does strikes all of them alike. Prints one JSON object; ratios are medians, over the rounds, of each
// server's median to the first server's of the same round.
//
// usage: round-trip MODE TRANSPORT ROUNDS BATCH REQUEST-FILE SERVER...
//   MODE      lockstep (one line, one answer), burst (BATCH lines in one write), start (a new process each time)
//   TRANSPORT pipes or socketpair
//   SERVER    NAME=PROGRAM[ ARGUMENT...]
#include <sched.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "bench/server_under_test.h"

namespace {

using orvane::bench::nowNanoseconds;
using orvane::bench::ServerUnderTest;
using orvane::bench::Transport;

struct Contender {
  std::string name;
  std::vector<std::string> command;
  std::vector<double> times;         // microseconds, all of them
  std::vector<double> cpuTimes;      // microseconds a request, one a round
  std::vector<double> roundMedians;  // microseconds
  std::vector<double> exitTimes;     // microseconds
  long peakKiB = 0;
};

double quantile(std::vector<double> values, double part) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1))];
}

std::vector<double> ratios(const std::vector<double>& values, const std::vector<double>& floors) {
  std::vector<double> result;
  for (std::size_t i = 0; i < values.size(); ++i) result.push_back(floors[i] > 0 ? values[i] / floors[i] : 0);
  return result;
}

double microsecondsSince(long long start) { return static_cast<double>(nowNanoseconds() - start) / 1000; }

void pinToOneCore() {
  cpu_set_t cores;
  CPU_ZERO(&cores);
  CPU_SET(1, &cores);
  // A machine with one core needs no pinning.
  sched_setaffinity(0, sizeof cores, &cores);
}

void measureServing(std::vector<Contender>& contenders, bool inBursts, Transport transport, int rounds, int batch,
                    const std::string& request) {
  std::vector<ServerUnderTest> servers;
  for (const Contender& contender : contenders) servers.emplace_back(contender.command, transport);
  std::string burst;
  if (inBursts) {
    for (int i = 0; i < batch; ++i) burst += request;
  }
  for (ServerUnderTest& server : servers) {
    for (int i = 0; i < batch; ++i) server.exchange(request, 1);
  }
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < contenders.size(); ++i) {
      std::vector<double> times;
      const long long cpuBefore = servers[i].cpuNanoseconds();
      if (inBursts) {
        const long long start = nowNanoseconds();
        servers[i].exchange(burst, static_cast<std::size_t>(batch));
        times.push_back(microsecondsSince(start));
      } else {
        for (int n = 0; n < batch; ++n) {
          const long long start = nowNanoseconds();
          servers[i].exchange(request, 1);
          times.push_back(microsecondsSince(start));
        }
      }
      contenders[i].cpuTimes.push_back(static_cast<double>(servers[i].cpuNanoseconds() - cpuBefore) / 1000 / batch);
      contenders[i].roundMedians.push_back(quantile(times, 0.5));
      contenders[i].times.insert(contenders[i].times.end(), times.begin(), times.end());
    }
  }
  for (std::size_t i = 0; i < contenders.size(); ++i) {
    contenders[i].peakKiB = servers[i].peakKiB();
    const long long start = nowNanoseconds();
    servers[i].finish();
    contenders[i].exitTimes.push_back(microsecondsSince(start));
  }
}

void measureStart(std::vector<Contender>& contenders, Transport transport, int rounds, const std::string& request) {
  for (int round = 0; round < rounds; ++round) {
    for (Contender& contender : contenders) {
      const long long start = nowNanoseconds();
      ServerUnderTest server(contender.command, transport);
      server.exchange(request, 1);
      contender.times.push_back(microsecondsSince(start));
      contender.roundMedians.push_back(contender.times.back());
      contender.cpuTimes.push_back(static_cast<double>(server.cpuNanoseconds()) / 1000);
      contender.peakKiB = std::max(contender.peakKiB, server.peakKiB());
      const long long end = nowNanoseconds();
      server.finish();
      contender.exitTimes.push_back(microsecondsSince(end));
    }
  }
}

void print(const std::vector<Contender>& contenders) {
  std::printf("[");
  const char* separator = "";
  for (const Contender& contender : contenders) {
    std::printf(
        "%s{\"name\":\"%s\",\"p50\":%.2f,\"p90\":%.2f,\"p99\":%.2f,\"cpu\":%.2f,\"exit\":%.1f,\"peakKiB\":%ld,"
        "\"ratio\":%.3f,\"cpuRatio\":%.3f}",
        separator, contender.name.c_str(), quantile(contender.times, 0.5), quantile(contender.times, 0.9),
        quantile(contender.times, 0.99), quantile(contender.cpuTimes, 0.5), quantile(contender.exitTimes, 0.5),
        contender.peakKiB, quantile(ratios(contender.roundMedians, contenders.front().roundMedians), 0.5),
        quantile(ratios(contender.cpuTimes, contenders.front().cpuTimes), 0.5));
    separator = ",";
  }
  std::printf("]\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 7) {
    std::fputs("usage: round-trip MODE TRANSPORT ROUNDS BATCH REQUEST-FILE NAME=COMMAND...\n", stderr);
    return 2;
  }
  const std::string mode = argv[1];
  const Transport transport = std::string(argv[2]) == "pipes" ? Transport::pipes : Transport::socketPair;
  const int rounds = std::atoi(argv[3]);
  const int batch = std::atoi(argv[4]);
  std::ifstream file(argv[5], std::ios::binary);
  const std::string request{std::istreambuf_iterator<char>(file), {}};
  std::vector<Contender> contenders;
  for (int i = 6; i < argc; ++i) {
    const std::string argument = argv[i];
    const std::size_t equals = argument.find('=');
    std::istringstream words(argument.substr(equals + 1));
    contenders.push_back({.name = argument.substr(0, equals),
                          .command = {std::istream_iterator<std::string>(words), {}},
                          .times = {},
                          .cpuTimes = {},
                          .roundMedians = {},
                          .exitTimes = {}});
  }
  pinToOneCore();
  if (mode == "start") {
    measureStart(contenders, transport, rounds, request);
  } else {
    measureServing(contenders, mode == "burst", transport, rounds, batch, request);
  }
  print(contenders);
  return 0;
}
