#include "pqmodules/ramtinfo/login_line.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "frame/tokens.h"

namespace pq {

LoginLine ParseLoginLine(std::string_view line, AmtLogin& login) {
  constexpr LoginLine kTooLong[] = {LoginLine::kAddressTooLong, LoginLine::kUserNameTooLong,
                                    LoginLine::kPasswordTooLong};
  constexpr LoginLine kMissing[] = {LoginLine::kBlank, LoginLine::kOnlyAddress,
                                    LoginLine::kNoPassword};
  if (line.empty() || line.front() == '\0') return LoginLine::kEmpty;
  const std::vector<std::string_view> tokens = SplitTokens(line, " \n\r");
  const std::size_t count = std::min(tokens.size(), std::size(kMissing));
  for (std::size_t i = 0; i < count; ++i) {
    if (tokens[i].size() >= kLoginPartRoom) return kTooLong[i];
  }
  if (count < std::size(kMissing)) return kMissing[count];
  login = {tokens[0], tokens[1], tokens[2]};
  return LoginLine::kComplete;
}

}  // namespace pq
