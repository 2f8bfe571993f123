// The JSON work of one forwarded answer, step by step: reading the application's response, printing its result for the
// agent, and writing the message around it. Documents are files, so that other implementations can be given the same.
//
// usage: json-benchmark DOCUMENT... [--benchmark_...]
#include <benchmark/benchmark.h>

#include <fstream>
#include <iterator>
#include <string>

#include "core/json_reader.h"
#include "core/json_writer.h"
#include "core/utf8.h"
#include "platform/platform.h"

namespace {

using namespace orvane;

void validate(benchmark::State& state, const std::string& document) {
  for (auto _ : state) benchmark::DoNotOptimize(isValidUTF8(document));
}

void read(benchmark::State& state, const std::string& document) {
  for (auto _ : state) benchmark::DoNotOptimize(readJSON(document));
}

void writeCompact(benchmark::State& state, const std::string& document) {
  const JSON value = readJSON(document).value;
  for (auto _ : state) benchmark::DoNotOptimize(writeCompactJSON(value));
}

void writePretty(benchmark::State& state, const std::string& document) {
  const JSON value = readJSON(document).value;
  for (auto _ : state) benchmark::DoNotOptimize(writePrettyJSON(value));
}

void wholeAnswer(benchmark::State& state, const std::string& document) {
  for (auto _ : state) {
    const JSON value = readJSON(document).value;
    std::string message;
    appendPrettyJSONString(message, value);
    benchmark::DoNotOptimize(message);
  }
}

void add(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string document{std::istreambuf_iterator<char>(file), {}};
  const std::string name = path.substr(path.rfind('/') + 1);
  for (const auto& [step, function] :
       {std::pair{"validate", &validate}, std::pair{"read", &read}, std::pair{"write_compact", &writeCompact},
        std::pair{"write_pretty", &writePretty}, std::pair{"whole_answer", &wholeAnswer}}) {
    benchmark::RegisterBenchmark((std::string(step) + "/" + name).c_str(), [document, function = function](
                                                                               benchmark::State& state) {
      function(state, document);
      state.SetBytesProcessed(state.iterations() * static_cast<long>(document.size()));
    })->Unit(benchmark::kMicrosecond);
  }
}

}  // namespace

int main(int argc, char** argv) {
  // As the server does at its start.
  orvane::platform::keepFreedMemory();
  benchmark::Initialize(&argc, argv);
  for (int i = 1; i < argc; ++i) add(argv[i]);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
