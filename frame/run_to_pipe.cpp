#include "frame/run_to_pipe.h"

#include <algorithm>

#include "frame/sentences.h"
#include "frame/tool_runner.h"

namespace pq {
namespace {

constexpr std::size_t kChunkRoom = 30720;

}  // namespace

std::optional<std::string> RunToPipe(CallerLog log, const std::string& commandLine,
                                     const PipeFailures& failures) {
  PipedTool tool(commandLine);
  if (!tool.OpenPipe()) {
    log(kProgress, failures.pipe);
    return std::nullopt;
  }
  if (const std::uint32_t error = tool.Start(); error != 0) {
    log(kProgress, failures.start, error, ")");
    return std::nullopt;
  }
  std::string output = tool.Collect(kChunkRoom, [&](const char* chunk, std::size_t count) {
    log(kDetail, chunk);
    log(kDetail, kChunkSize, count);
  });
  output.resize(std::min(output.find('\0'), output.size()));
  log(kDetail, kWholeOutput, output);
  tool.Finish();
  return output;
}

}  // namespace pq
