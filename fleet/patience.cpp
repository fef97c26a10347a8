#include "fleet/patience.h"

#include <fmt/format.h>

#include <algorithm>

namespace fleet {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kFirstBreak{500};
constexpr std::chrono::milliseconds kLongestPause{30'000};

}  // namespace

void WorkPatiently(const ConnectionWords& database, const std::string& purpose,
                   const std::function<void(Connection& connection)>& work,
                   const std::function<bool(std::chrono::milliseconds time)>& wait,
                   const std::function<void(const std::string& line)>& tell) {
  std::chrono::milliseconds pause = kFirstBreak;
  while (!wait(std::chrono::milliseconds(0))) {
    const Clock::time_point begin = Clock::now();
    try {
      Connection connection(database, purpose);
      work(connection);
      return;
    } catch (const DatabaseFailure& failure) {
      if (!failure.IsOfTheMoment()) throw;
      // It was well for a while: this is another hour.
      if (Clock::now() - begin > kLongestPause) pause = kFirstBreak;
      tell(fmt::format("the database: {}; trying again in {} s", failure.what(),
                       static_cast<double>(pause.count()) / 1000));
      if (wait(pause)) return;
      pause = std::min(pause * 2, kLongestPause);
    }
  }
}

}  // namespace fleet
