// Values that are known by where they are: after a label, or in a text of a known form.
#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <vector>

#include "host/redact/value_finder.h"
#include "host/text/ascii.h"

namespace host {
namespace {

/// A label without its blanks and signs, in small letters.
struct LabelRow {
  std::string_view label;
  ValueKind kind;
};
constexpr LabelRow kLabels[] = {
    {"serialnumber", ValueKind::kSerial},
    {"serialnum", ValueKind::kSerial},
    {"serialno", ValueKind::kSerial},
    {"serialnr", ValueKind::kSerial},
    {"serial", ValueKind::kSerial},
    {"servicetag", ValueKind::kSerial},
    {"uniqueidentifier", ValueKind::kSerial},
    {"sn", ValueKind::kSerial},
    {"assettag", ValueKind::kAsset},
    {"assetnumber", ValueKind::kAsset},
    {"inventorynumber", ValueKind::kAsset},
    {"wwn", ValueKind::kWwn},
    {"wwid", ValueKind::kWwn},
    {"wwpn", ValueKind::kWwn},
    {"wwnn", ValueKind::kWwn},
    {"worldwidename", ValueKind::kWwn},
    {"worldwideid", ValueKind::kWwn},
    {"sasaddress", ValueKind::kWwn},
    {"sasaddr", ValueKind::kWwn},
    {"logicalid", ValueKind::kWwn},
    {"guid", ValueKind::kGuid},
    {"uuid", ValueKind::kGuid},
    {"hostname", ValueKind::kHost},
    {"computername", ValueKind::kHost},
    {"machinename", ValueKind::kHost},
    {"systemname", ValueKind::kHost},
    {"servername", ValueKind::kHost},
    {"nodename", ValueKind::kHost},
    {"dnsname", ValueKind::kHost},
    {"domainname", ValueKind::kHost},
    {"dnsdomain", ValueKind::kHost},
    {"dnssuffix", ValueKind::kHost},
    {"workgroup", ValueKind::kHost},
    {"username", ValueKind::kPerson},
    {"user", ValueKind::kPerson},
    {"account", ValueKind::kPerson},
    {"owner", ValueKind::kPerson},
    {"contact", ValueKind::kPerson},
    {"loggedonuser", ValueKind::kPerson},
    {"login", ValueKind::kLogin},
    {"loginname", ValueKind::kLogin},
    {"logon", ValueKind::kLogin},
    {"password", ValueKind::kPassword},
    {"passwort", ValueKind::kPassword},
    {"kennwort", ValueKind::kPassword},
    {"passwd", ValueKind::kPassword},
    {"pwd", ValueKind::kPassword},
    {"passphrase", ValueKind::kPassword},
    {"communitystring", ValueKind::kPassword},
    {"community", ValueKind::kPassword},
    {"secret", ValueKind::kPassword},
    {"securitykey", ValueKind::kPassword},
    {"seriennummer", ValueKind::kSerial},
    {"benutzername", ValueKind::kPerson},
    {"benutzer", ValueKind::kPerson},
};
constexpr std::size_t kLongestLabel = 40;

/// What stands for nothing where a value would be, and what makers leave there; in small letters.
constexpr std::string_view kNothings[] = {
    "unknown",
    "none",
    "null",
    "empty",
    "default",
    "default string",
    "not available",
    "not applicable",
    "not specified",
    "not set",
    "not present",
    "not supported",
    "not provided",
    "no asset tag",
    "unspecified",
    "system serial number",
    "0123456789",
    "1234567890",
    "base board serial number",
    "chassis serial number",
    "to be filled by o.e.m.",
    "true",
    "false",
    "enabled",
    "disabled",
    "required",
    "supported",
    "protected",
    "expired",
    "configured",
    "asset tag",
    "serial number",
    "invalid",
    "no asset information",
    "undefined",
    "optional",
};

/// Names that every system has, or that say who made a part.
constexpr std::string_view kEverybodys[] = {
    "localhost", "localdomain", "workgroup", "broadcom", "microsoft", "intel",
    "adaptec",   "microchip",   "microsemi", "avago",    "dell",      "lenovo",
    "fujitsu",   "seagate",     "toshiba",   "samsung",  "micron",    "supermicro",
    "print$",    "netlogon",    "sysvol",    "admin$",   "ipc$",      "system",
    "example",   "internal",    "intern",    "corp",     "local",
};

constexpr std::string_view kFolders[] = {
    "windows",
    "system32",
    "syswow64",
    "drivers",
    "users",
    "public",
    "program files",
    "program files (x86)",
    "programdata",
    "appdata",
    "local",
    "roaming",
    "temp",
    "logs",
    "support",
    "firmware",
    "halyard",
    "pq_tools",
    "utilities",
    "vroc",
    "arcconf",
    "hosts",
    "work",
    "system",
    "documents and settings",
    "documents",
    "desktop",
    "downloads",
};

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsLetterOfLabel(char c) {
  return IsAsciiLetterOrDigit(c) || c == ' ' || c == '_' || c == '-' || c == '.' || c == '\t';
}

/// The labels by their last letter: all that may announce a value is held against them.
using LabelIndex = std::array<std::vector<const LabelRow*>, 256>;

const LabelIndex& GetLabelIndex() {
  static const LabelIndex kIndex = [] {
    LabelIndex index;
    for (const LabelRow& row : kLabels) {
      index[static_cast<unsigned char>(row.label.back())].push_back(&row);
    }
    return index;
  }();
  return kIndex;
}

/// Where `label` begins that ends at `end`, blanks and signs in it aside; nothing when there is
/// something else.
std::optional<std::size_t> FindLabelBegin(std::string_view text, std::size_t end,
                                          std::string_view label) {
  std::size_t at = end;
  const auto isLeft = [&] { return at > 0 && end - at < kLongestLabel; };
  for (; !label.empty(); label.remove_suffix(1)) {
    while (isLeft() && !IsAsciiLetterOrDigit(text[at - 1]) && IsLetterOfLabel(text[at - 1])) --at;
    if (!isLeft() || LowerCase(text[at - 1]) != label.back()) return std::nullopt;
    --at;
  }
  return at;
}

/// Whether a word begins at `at`: nothing of it is before, or a capital begins it.
bool BeginsWord(std::string_view text, std::size_t at) {
  if (at == 0 || !IsAsciiLetterOrDigit(text[at - 1])) return true;
  const auto isCapital = [](char c) { return c >= 'A' && c <= 'Z'; };
  return isCapital(text[at]) && !isCapital(text[at - 1]);
}

const ValueKind* FindKindAt(std::string_view text, std::size_t end) {
  while (end > 0 && (IsBlank(text[end - 1]) || text[end - 1] == '"')) --end;
  if (end == 0) return nullptr;
  const char last = LowerCase(text[end - 1]);
  for (const LabelRow* row : GetLabelIndex()[static_cast<unsigned char>(last)]) {
    const std::optional<std::size_t> begin = FindLabelBegin(text, end, row->label);
    if (begin && BeginsWord(text, *begin)) return &row->kind;
  }
  return nullptr;
}

/// Whether a value may follow the label at the end of `text` after a blank alone. Most blanks
/// follow another word, so this has to be quick.
bool EndsWithPlainLabel(std::string_view text) {
  constexpr std::string_view kEnds[] = {"al", "sn", "er", "/n"};
  if (text.size() < 2) return false;
  const char end[] = {LowerCase(text[text.size() - 2]), LowerCase(text.back())};
  return std::ranges::find(kEnds, std::string_view(end, 2)) != std::end(kEnds);
}

/// Splits a value of a user or a machine where it has several: DOMAIN\user, host.domain.
void TakeNames(std::string_view text, ValueKind kind, std::size_t begin, std::size_t end,
               const TakeValue& take) {
  const std::string_view value = text.substr(begin, end - begin);
  if (kind == ValueKind::kPerson || kind == ValueKind::kLogin) {
    const std::size_t slash = value.find('\\');
    if (slash != std::string_view::npos) {
      take(ValueKind::kHost, begin, begin + slash);
      begin += slash + 1;
    }
    take(kind, begin, end);
    return;
  }
  if (kind != ValueKind::kHost) return take(kind, begin, end);
  while (begin < end) {
    const std::size_t dot = std::min(text.find('.', begin), end);
    take(kind, begin, dot);
    begin = dot + 1;
  }
}

/// Where a value ends that begins at `begin`: at a sign, a tab or two blanks, or the line's end.
std::size_t FindValueEnd(std::string_view text, std::size_t begin) {
  std::size_t end = begin;
  while (end < text.size() &&
         std::string_view("\r\n\t,;\"'<>|)]\0", 13).find(text[end]) == std::string_view::npos) {
    if (text[end] == ' ' && end + 1 < text.size() && text[end + 1] == ' ') break;
    ++end;
  }
  // Another label may follow: the value is one word then.
  const std::string_view value = text.substr(begin, end - begin);
  if (value.find_first_of(":=") != std::string_view::npos) {
    end = std::min(end, begin + std::min(value.find(' '), value.size()));
  }
  while (end > begin && IsBlank(text[end - 1])) --end;
  return end;
}

struct WordRange {
  std::size_t begin;
  std::size_t end;
};

/// The words of the text from `begin` to `end`, at most so many.
std::vector<WordRange> SplitRanges(std::string_view text, std::size_t begin, std::size_t end,
                                   std::size_t most = std::string_view::npos) {
  std::vector<WordRange> words;
  while (begin < end && words.size() < most) {
    if (IsBlank(text[begin]) || text[begin] == '\r') {
      ++begin;
      continue;
    }
    std::size_t next = begin;
    while (next < end && !IsBlank(text[next]) && text[next] != '\r') ++next;
    words.push_back({begin, next});
    begin = next;
  }
  return words;
}

using TakeLine = std::function<void(std::size_t begin, std::size_t end)>;

void ForEachLine(std::string_view text, const TakeLine& take) {
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    take(begin, end);
    begin = end + 1;
  }
}

/// A machine's name or address, which its shape tells.
void TakeMachine(std::string_view text, WordRange word, const TakeValue& take) {
  const std::string_view name = text.substr(word.begin, word.end - word.begin);
  const bool isAddress = name.find_first_not_of("0123456789.*[]") == std::string_view::npos ||
                         name.find(':') != std::string_view::npos || name.starts_with('[');
  if (!isAddress) TakeNames(text, ValueKind::kHost, word.begin, word.end, take);
}

/// ADDRESS USER PASSWORD.
void FindLogin(std::string_view text, std::size_t begin, std::size_t end, const TakeValue& take) {
  const std::vector<WordRange> words = SplitRanges(text, begin, end);
  if (!words.empty()) TakeMachine(text, words[0], take);
  if (words.size() > 1) take(ValueKind::kLogin, words[1].begin, words[1].end);
  for (std::size_t i = 2; i < words.size(); ++i) {
    take(ValueKind::kPassword, words[i].begin, words[i].end);
  }
}

/// Options of tools that take a name or a password.
struct OptionRow {
  std::string_view option;
  ValueKind kind;
};
constexpr OptionRow kOptions[] = {
    {"-U", ValueKind::kLogin},         {"-P", ValueKind::kPassword},
    {"-N", ValueKind::kHost},          {"-H", ValueKind::kHost},
    {"-Y", ValueKind::kPassword},      {"-u", ValueKind::kLogin},
    {"-p", ValueKind::kPassword},      {"-pass", ValueKind::kPassword},
    {"-user", ValueKind::kLogin},      {"--user", ValueKind::kLogin},
    {"--username", ValueKind::kLogin}, {"--password", ValueKind::kPassword},
    {"--pass", ValueKind::kPassword},  {"--host", ValueKind::kHost},
    {"-R", ValueKind::kPassword},      {"--hostname", ValueKind::kHost},
};

void FindOptionValues(std::string_view text, const TakeValue& take) {
  const std::vector<WordRange> words = SplitRanges(text, 0, text.size());
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string_view word = text.substr(words[i].begin, words[i].end - words[i].begin);
    for (const OptionRow& row : kOptions) {
      WordRange value{0, 0};
      if (word == row.option && i + 1 < words.size()) value = words[i + 1];
      if (word.starts_with(row.option) && word.size() > row.option.size() &&
          (word[row.option.size()] == '=' || (word.size() > 2 && row.option.size() == 2 &&
                                              row.option[1] >= 'A' && row.option[1] <= 'Z'))) {
        value = {words[i].begin + row.option.size(), words[i].end};
        if (text[value.begin] == '=') ++value.begin;
      }
      if (value.begin == value.end) continue;
      if (row.kind == ValueKind::kHost) {
        TakeMachine(text, value, take);
      } else {
        TakeNames(text, row.kind, value.begin, value.end, take);
      }
    }
  }
}

/// "  TCP    10.24.8.31:445   fileclient07:50112   ESTABLISHED".
void FindConnection(std::string_view text, std::size_t begin, std::size_t end,
                    const TakeValue& take) {
  const std::string_view line = text.substr(begin, end - begin);
  const std::size_t first = std::min(line.find_first_not_of(" \t\r"), line.size());
  const std::string_view protocol = line.substr(first, line.find_first_of(" \t\r", first) - first);
  if (protocol != "TCP" && protocol != "UDP") return;
  const std::vector<WordRange> words = SplitRanges(text, begin, end, 3);
  if (words.size() < 3) return;
  for (const std::size_t i : {1, 2}) {
    const std::string_view word = text.substr(words[i].begin, words[i].end - words[i].begin);
    const std::size_t colon = word.rfind(':');
    if (colon == std::string_view::npos) continue;
    TakeMachine(text, {words[i].begin, words[i].begin + colon}, take);
  }
}

/// "10.24.8.12   backup-vault-3   vault  # comment".
void FindHosts(std::string_view text, std::size_t begin, std::size_t end, const TakeValue& take) {
  end = std::min(end, text.find('#', begin));
  const std::vector<WordRange> words = SplitRanges(text, begin, end);
  for (std::size_t i = 1; i < words.size(); ++i) TakeMachine(text, words[i], take);
}

/// "vmstore      D:\vmstore      Remark", after a line of dashes. A folder may have blanks.
void FindShares(std::string_view text, const TakeValue& take) {
  bool isList = false;
  ForEachLine(text, [&](std::size_t begin, std::size_t end) {
    const std::string_view line = text.substr(begin, end - begin);
    if (line.starts_with("-----")) {
      isList = true;
      return;
    }
    const std::size_t gap = line.find("  ");
    if (!isList || gap == 0 || gap == std::string_view::npos) return;
    take(ValueKind::kPath, begin, begin + gap);
    const std::size_t folder = line.find(":\\", gap);
    if (folder == std::string_view::npos) return;
    std::size_t last = folder + 2;
    const std::size_t pathEnd = std::min(line.find("  ", last), line.size());
    while (last < pathEnd) {
      const std::size_t next = std::min(line.find('\\', last), pathEnd);
      std::size_t nameEnd = next;
      while (nameEnd > last && (IsBlank(line[nameEnd - 1]) || line[nameEnd - 1] == '\r')) --nameEnd;
      take(ValueKind::kPath, begin + last, begin + nameEnd);
      last = next + 1;
    }
  });
}

template <std::size_t kCount>
bool IsAmong(const std::string_view (&words)[kCount], std::string_view value) {
  return std::ranges::find(words, LowerCase(value)) != std::end(words);
}

}  // namespace

const ValueKind* FindLabelKind(std::string_view label) { return FindKindAt(label, label.size()); }

void FindByLabel(std::string_view text, const TakeValue& take) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    if (c == ':' || c == '=') {
      if (at + 1 < text.size() && text[at + 1] == c) continue;
      const ValueKind* kind = FindKindAt(text, at);
      if (kind == nullptr) continue;
      std::size_t begin = at + 1;
      while (begin < text.size() && (IsBlank(text[begin]) || text[begin] == '"')) ++begin;
      const std::size_t end = FindValueEnd(text, begin);
      if (end > begin) TakeNames(text, *kind, begin, end, take);
      continue;
    }
    // "serial PSN2204117", "User "ops" opened a session": no sign between.
    if (c != ' ' || at == 0) continue;
    if (!EndsWithPlainLabel(text.substr(0, at))) continue;
    const ValueKind* kind = FindKindAt(text, at);
    if (kind == nullptr) continue;
    std::size_t begin = at;
    while (begin < text.size() && IsBlank(text[begin])) ++begin;
    if (begin == text.size()) return;
    const bool isQuoted = text[begin] == '"' || text[begin] == '\'';
    if (*kind == ValueKind::kPerson && isQuoted) {
      const std::size_t end = text.find(text[begin], begin + 1);
      const std::size_t lineEnd = text.find('\n', begin);
      if (end < lineEnd) TakeNames(text, *kind, begin + 1, end, take);
    }
    if (*kind != ValueKind::kSerial) continue;
    std::size_t end = begin;
    bool hasDigit = false;
    while (end < text.size() && (IsAsciiLetterOrDigit(text[end]) || text[end] == '-')) {
      hasDigit = hasDigit || (text[end] >= '0' && text[end] <= '9');
      ++end;
    }
    if (hasDigit && end > begin) take(*kind, begin, end);
  }
}

void FindByPlace(std::string_view text, TextPlace place, const TakeValue& take) {
  switch (place) {
    case TextPlace::kConsole:
    case TextPlace::kAmtArguments:
      ForEachLine(text,
                  [&](std::size_t begin, std::size_t end) { FindLogin(text, begin, end, take); });
      break;
    case TextPlace::kArguments:
      FindOptionValues(text, take);
      break;
    case TextPlace::kConnections:
      ForEachLine(text, [&](std::size_t begin, std::size_t end) {
        FindConnection(text, begin, end, take);
      });
      break;
    case TextPlace::kShares:
      FindShares(text, take);
      break;
    case TextPlace::kHosts:
      ForEachLine(text,
                  [&](std::size_t begin, std::size_t end) { FindHosts(text, begin, end, take); });
      break;
    case TextPlace::kOther:
      break;
  }
}

bool IsNoSecret(ValueKind kind, std::string_view value) {
  if (value.empty()) return true;
  if (kind == ValueKind::kPassword) {
    return value.find_first_not_of('*') == std::string_view::npos || IsAmong(kNothings, value);
  }
  constexpr std::size_t kShortest = 4;
  const bool isSame = value.find_first_not_of(value.front()) == std::string_view::npos;
  if (value.size() < kShortest || isSame || IsAmong(kNothings, value) ||
      IsAmong(kEverybodys, value)) {
    return true;
  }
  if (value.find_first_not_of("0-:. ") == std::string_view::npos) return true;
  const bool isDefaultShare = kind == ValueKind::kPath && value.ends_with('$') && value.size() <= 2;
  return isDefaultShare || (kind == ValueKind::kPath && IsCommonFolder(value));
}

bool IsCommonFolder(std::string_view name) { return IsAmong(kFolders, name); }

}  // namespace host
