// Plainer readings of the RAID tools' reports, in the C library's own terms and one step at a time,
// to hold the RAID logs module against.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/strtok_reference.h"

namespace test {

using PlainRows = std::vector<std::vector<std::string>>;

/// The lines that fgets with a buffer of 512 reads from the stored `bytes` in text mode, each up to
/// its first NUL.
inline std::vector<std::string> ReadLinesPlainly(const std::string& bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size() && bytes[i] != '\x1A'; ++i) {
    if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n') continue;
    text += bytes[i];
  }
  std::vector<std::string> lines;
  std::string line;
  for (const char c : text) {
    line += c;
    if (c == '\n' || line.size() == 511) {
      lines.emplace_back(line.c_str());
      line.clear();
    }
  }
  if (!line.empty()) lines.emplace_back(line.c_str());
  return lines;
}

/// A row as the repository keeps it: a key that comes again takes the new value in its old place.
class PlainRow {
 public:
  void Set(const std::string& key, const std::string& value) {
    for (auto& column : columns) {
      if (column.first == key) {
        column.second = value;
        return;
      }
    }
    columns.emplace_back(key, value);
  }
  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const auto& column : columns) texts.push_back(column.first + "=" + column.second);
    return texts;
  }

 private:
  std::vector<std::pair<std::string, std::string>> columns;
};

/// The text `offset` characters after the start of the first `label` in `line`; `found` tells
/// whether the label is there at all.
inline std::string ReadAfter(const std::string& line, const char* label, std::size_t offset,
                             bool& found) {
  const char* at = std::strstr(line.c_str(), label);
  found = at != nullptr;
  return found && std::strlen(at) > offset ? at + offset : "";
}

struct PlainLabel {
  const char* label;
  std::size_t offset;
  const char* key;
};

/// Rows of a report with one labelled fact per line; the last label ends the row.
inline PlainRows ReadFactsPlainly(const std::vector<std::string>& lines,
                                  const std::vector<PlainLabel>& labels) {
  PlainRows rows;
  PlainRow row;
  for (const std::string& line : lines) {
    for (std::size_t i = 0; i < labels.size(); ++i) {
      bool found = false;
      const std::string value = ReadAfter(line, labels[i].label, labels[i].offset, found);
      if (!found) continue;
      const bool isNonCoerced = std::strcmp(labels[i].key, "Coercedsize") == 0 &&
                                std::strstr(line.c_str(), "Non Coerced size =") != nullptr;
      row.Set(isNonCoerced ? "NonCoercedsize" : labels[i].key, value);
      if (i + 1 == labels.size()) rows.push_back(row.Texts());
      break;
    }
  }
  return rows;
}

/// A column set on a page of events, or a page committed (no key).
struct EventStep {
  int page;
  std::string key;
  std::string value;
  bool operator==(const EventStep&) const = default;
};

/// The steps that the lines of an event dump lead to, after `records` records and `number` lines.
/// `data` is the event data in the buffer, before and after.
inline std::vector<EventStep> ReadEventsPlainly(const std::vector<std::string>& lines,
                                                std::string& data, int records = 0,
                                                long number = 0) {
  const std::vector<PlainLabel> labels = {{"Seconds since last reboot:", 27, "Time"},
                                          {"Time:", 6, "Time"},
                                          {"Code:", 6, "Code"},
                                          {"Class:", 7, "Class"},
                                          {"Locale:", 8, "Locale"},
                                          {"Event Description:", 19, "EventDescription"}};
  std::vector<EventStep> steps;
  const auto page = [&] {
    if (records < 3000) return 0;
    if (records < 6000) return 1;
    if (records < 9000) return 2;
    return records < 12000 ? 3 : 4;
  };
  const auto flush = [&] {
    steps.push_back({page(), "EventData", data});
    steps.push_back({page(), "", ""});
  };
  for (const std::string& line : lines) {
    ++number;
    if (std::strstr(line.c_str(), "Controller =") != nullptr && records > 0) {
      flush();
      continue;
    }
    bool found = false;
    const std::string sequence = ReadAfter(line, "seqNum:", 8, found);
    if (found) {
      if (records >= 3000 || number > 13) flush();
      steps.push_back({page(), "seqNum", sequence});
      ++records;
      if (records == 3000 || records == 6000 || records == 9000 || records == 12000) {
        steps.push_back({page(), "seqNum", sequence});
      }
      continue;
    }
    for (const PlainLabel& label : labels) {
      const std::string value = ReadAfter(line, label.label, label.offset, found);
      if (!found) continue;
      steps.push_back({page(), label.key, value});
      break;
    }
    if (found || std::strstr(line.c_str(), "Event Data:") != nullptr) continue;
    if (std::strstr(line.c_str(), "=======") != nullptr) {
      data.clear();
    } else {
      data += line;
      data.resize(std::min<std::size_t>(data.size(), 2047));
    }
  }
  return steps;
}

/// Rows of the five pages.
inline std::vector<PlainRows> ApplyEventSteps(const std::vector<EventStep>& steps) {
  std::vector<PlainRow> pages(5);
  for (PlainRow& page : pages) {
    for (const char* key :
         {"seqNum", "EventData", "Time", "Code", "Class", "Locale", "EventDescription"}) {
      page.Set(key, "");
    }
  }
  std::vector<PlainRows> rows(5);
  for (const EventStep& step : steps) {
    const auto page = static_cast<std::size_t>(step.page);
    if (step.key.empty()) {
      rows[page].push_back(pages[page].Texts());
    } else {
      pages[page].Set(step.key, step.value);
    }
  }
  return rows;
}

/// A list of a summary: its title, how many dashes end it, the keys of its tokens in order (empty:
/// none; "Size" twice in a row: one value of two tokens).
struct PlainList {
  const char* title;
  std::size_t dashes;
  std::vector<std::string> keys;
};

inline const std::vector<PlainList>& GetPlainDriveLists() {
  static const std::vector<PlainList> lists = {
      {"TOPOLOGY :",
       26,
       {"DG", "Arr", "Row", "EID", "DID", "Type", "State", "BT", "Size", "Size", "PDC", "PI", "SED",
        "DS3", "FSpace"}},
      {"VD LIST :",
       27,
       {"DG", "TYPE", "State", "Access", "Consist", "Cache", "", "sCC", "Size", "Size", "Name"}},
      {"PD LIST :",
       28,
       {"EID", "DID", "State", "DG", "Size", "Size", "Intf", "Med", "SED", "PI", "SeSz", "Model",
        "Sp"}}};
  return lists;
}

/// Sets the columns of a data row; true when the row is complete.
inline bool ReadDriveRowPlainly(const std::string& line, const PlainList& list, PlainRow& row) {
  const std::vector<std::string> tokens = SplitWithStrtok(line, " ");
  std::string size;
  for (std::size_t i = 0; i < tokens.size() && i < list.keys.size(); ++i) {
    if (list.keys[i] != "Size") {
      if (!list.keys[i].empty()) row.Set(list.keys[i], tokens[i]);
    } else if (list.keys[i - 1] != "Size") {
      size = tokens[i];
    } else {
      row.Set("Size", (size + " " + tokens[i]).substr(0, 19));
    }
  }
  return tokens.size() >= list.keys.size();
}

/// Rows of the three lists.
inline std::vector<PlainRows> ReadDriveListsPlainly(const std::vector<std::string>& lines) {
  const std::vector<PlainList>& lists = GetPlainDriveLists();
  std::vector<PlainRows> rows(lists.size());
  std::vector<PlainRow> current(lists.size());
  std::vector<bool> isOpen(lists.size());
  int counter = 0;
  for (const std::string& line : lines) {
    for (std::size_t i = 0; i < lists.size(); ++i) {
      if (std::strstr(line.c_str(), lists[i].title) != nullptr) isOpen[i] = true;
    }
    for (std::size_t i = 0; i < lists.size(); ++i) {
      if (!isOpen[i]) continue;
      if (counter < 6) {
        ++counter;
        break;
      }
      if (std::strstr(line.c_str(), std::string(lists[i].dashes, '-').c_str()) != nullptr) {
        isOpen[i] = false;
        counter = 0;
      } else if (ReadDriveRowPlainly(line, lists[i], current[i])) {
        rows[i].push_back(current[i].Texts());
      }
    }
  }
  return rows;
}

inline PlainRows ReadTermLogPlainly(const std::vector<std::string>& lines) {
  PlainRows rows;
  for (const std::string& line : lines) {
    if (std::strstr(line.c_str(), "Firmware Term Log Information") == nullptr) continue;
    for (const std::string& row : lines) rows.push_back({"FWTERMLOG=" + row});
    break;
  }
  return rows;
}

inline PlainRows ReadDriveDetailsPlainly(const std::vector<std::string>& lines) {
  return ReadFactsPlainly(lines, {{"Shield Counter =", 16, "ShieldCounter"},
                                  {"Media Error Count =", 19, "MediaErrorCount"},
                                  {"Other Error Count =", 19, "OtherErrorCount"},
                                  {"Drive Temperature =", 19, "DriveTemperature"},
                                  {"Predictive Failure Count =", 26, "PredictiveFail"},
                                  {"S.M.A.R.T alert flagged by drive =", 34, "SMARTflag"},
                                  {"SN =", 4, "SN"},
                                  {"WWN =", 5, "WWN"},
                                  {"Firmware Revision =", 19, "FirmwareRevision"},
                                  {"Raw size =", 10, "Rawsize"},
                                  {"Coerced size =", 14, "Coercedsize"},
                                  {"Device Speed =", 14, "DeviceSpeed"},
                                  {"Link Speed =", 12, "LinkSpeed"},
                                  {"Logical Sector Size =", 21, "LogicalSectorSize"},
                                  {"Enclosure position =", 20, "Enclosureposition"},
                                  {"Connected Port Number =", 23, "ConnectedPortNumber"},
                                  {"Commissioned Spare =", 20, "CommissionedSpare"},
                                  {"Emergency Spare =", 17, "EmergencySpare"},
                                  {"Needs EKM Attention =", 21, "NeedsEKMAttention"}});
}

inline PlainRows ReadSas2LogPlainly(const std::vector<std::string>& lines) {
  return ReadFactsPlainly(lines, {{"Time:", 6, "Time"},
                                  {"LogSequence:", 12, "LogSequence"},
                                  {"LogEntryQualifier:", 18, "LogEntryQualifier"},
                                  {"LogEntryDescription:", 20, "LogEntryDescription"},
                                  {"LogEntryValue:", 14, "LogEntryValue"},
                                  {"vf_id:", 6, "vfid"},
                                  {"vp_id:", 6, "vpid"},
                                  {"LogCode:", 8, "LogCode"},
                                  {"LogDataDescription:", 19, "LogDataDescription"},
                                  {"LogDataValue:", 13, "LogDataValue"},
                                  {"LogClass:", 9, "LogClass"},
                                  {"ArgumentType:", 13, "ArgumentType"},
                                  {"Locale:", 7, "Locale"}});
}

inline PlainRows ReadEndDevicesPlainly(const std::vector<std::string>& lines) {
  std::size_t first = 0;
  while (first < lines.size() && std::strstr(lines[first].c_str(), "END DEVICE") == nullptr) {
    ++first;
  }
  const std::vector<std::string> section(lines.begin() + static_cast<std::ptrdiff_t>(first),
                                         lines.end());
  return ReadFactsPlainly(section, {{"ID:", 3, "ID"},
                                    {"Disk Type:", 15, "DiskType"},
                                    {"Type:", 5, "Type"},
                                    {"State:", 6, "State"},
                                    {"Size:", 5, "Size"},
                                    {"System Disk:", 12, "SystemDisk"},
                                    {"Usage:", 6, "Usage"},
                                    {"Serial Number:", 14, "SerialNumber"},
                                    {"Model:", 6, "Model"}});
}

/// Rows of blocks that begin with a line that holds `marker`; a column's label is its place there.
inline PlainRows ReadBlocksPlainly(const std::vector<std::string>& lines, const char* marker,
                                   const std::vector<PlainLabel>& columns) {
  PlainRows rows;
  PlainRow row;
  bool isOpen = false;
  std::size_t number = 0;
  for (const std::string& line : lines) {
    if (std::strstr(line.c_str(), marker) != nullptr) {
      isOpen = true;
      number = 1;
      continue;
    }
    if (!isOpen) continue;
    ++number;
    if (number < 3 || number >= 3 + columns.size()) continue;
    const PlainLabel& column = columns[number - 3];
    row.Set(column.key, line.size() > column.offset ? line.substr(column.offset) : "");
    if (number + 1 == 3 + columns.size()) rows.push_back(row.Texts());
  }
  return rows;
}

inline PlainRows ReadArraysPlainly(const std::vector<std::string>& lines) {
  return ReadBlocksPlainly(lines, "ARRAY INFORMATION",
                           {{"", 5, "Name"},
                            {"", 5, "Size"},
                            {"", 5, "Free"},
                            {"", 10, "NumDisks"},
                            {"", 9, "NumVols"},
                            {"", 12, "WriteCache"}});
}

inline PlainRows ReadVolumesPlainly(const std::vector<std::string>& lines) {
  return ReadBlocksPlainly(lines, "VOLUME INFORMATION",
                           {{"", 5, "Name"},
                            {"", 11, "RaidLevel"},
                            {"", 5, "Size"},
                            {"", 11, "StripeSize"},
                            {"", 10, "NumDisks"},
                            {"", 6, "State"},
                            {"", 7, "System"},
                            {"", 12, "Initialized"},
                            {"", 13, "CachePolicy"}});
}

/// How many controllers a count report tells of.
inline int ReadCountPlainly(const std::vector<std::string>& lines) {
  int count = 1;
  for (const std::string& line : lines) {
    bool found = false;
    const std::string rest = ReadAfter(line, "Controller Count =", 19, found);
    if (found) count = static_cast<signed char>(rest.empty() ? '\0' : rest[0]) - '0';
  }
  return count;
}

/// The whole text of a report, as far as each line's first NUL.
inline std::string ReadWholePlainly(const std::string& bytes) {
  std::string text;
  for (const std::string& line : ReadLinesPlainly(bytes)) text += line;
  return text;
}

}  // namespace test
