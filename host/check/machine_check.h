// Checks a machine before a collection runs: are the tools there that its devices need, can results
// be written, and does anything keep tables empty?
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/check/devices.h"
#include "host/collect/machine_facts.h"

namespace host {

/// What it means that the program has no administrator's rights.
inline constexpr char kNotElevated[] =
    "not elevated: tools for the BMC and for RAID controllers may refuse";

struct CheckedMachine {
  MachineFacts facts;
  /// Full path of a program, given with its folder or as the interpreter looks for it; nothing when
  /// it is not there. Bytes in the machine's code page.
  std::function<std::optional<std::string>(const std::string& program)> locate;
  std::optional<Surroundings> surroundings;
  DevicesByArea devices;
  /// Classes of tables that its platform family is never asked for, as far as that is known.
  std::set<std::string> neverAsked = {};
  /// Whether a collection would run although the interpreter does not read a folder as it is.
  bool allowsUnsafeFolders = false;
};

struct Finding {
  enum class Kind { kGood, kNote, kMissing };
  Kind kind = Kind::kGood;
  std::string subject;  ///< a part of the machine
  std::string text;     ///< UTF-8, one line: the finding and, unless good, its remedy
};

struct CheckedTool {
  enum class State {
    kFound,
    kMissing,
    kNotNeeded,  ///< it is not there, and nothing lacks for that
    kPlanted,    ///< a program of the system that another one would be taken for
  };
  State state = State::kFound;
  std::string program;  ///< file name
  std::string path;     ///< UTF-8: where it is, or would have to be
  std::string vendor;   ///< empty when not known
  std::string product;  ///< empty when not known
  std::string text;     ///< UTF-8, one line: what is wrong, and the remedy; empty when it is found
};

/// What a collection can find out about an area.
struct CheckedArea {
  enum class Rating {
    kFull,
    kPartly,
    kNothing,
    kNotNeeded,  ///< the machine does not have the device
  };
  std::string area;                  ///< as in host/catalogue/areas.h
  std::vector<std::string> modules;  ///< that look at it
  std::string device;                ///< as in FindDevice()
  std::optional<bool> hasDevice;     ///< none: not known
  Rating rating = Rating::kFull;
  std::string text;                      ///< for people: the reason of the rating
  std::vector<std::string> tables;       ///< classes
  std::vector<std::string> emptyTables;  ///< those of them that would stay empty
  std::vector<CheckedTool> tools;        ///< in the order in which they run
};

struct MachineCheck {
  std::vector<CheckedArea> areas;  ///< in the order of ListAreas()
  std::vector<Finding> findings;   ///< about the machine as a whole
  /// All is there that this machine needs, as far as its devices are known.
  bool isComplete = true;
};

/// Looks for what the modules need: all, or those named. Throws UsageError for a module's name that
/// does not fit.
MachineCheck CheckMachine(const CheckedMachine& machine,
                          const std::vector<std::string>& moduleNames);

}  // namespace host
