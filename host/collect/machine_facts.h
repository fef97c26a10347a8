// Facts about the machine that a collection came from.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "frame/platform.h"
#include "host/text/time_text.h"

namespace host {

struct MachineFacts {
  bool recorded = false;    ///< the machine was a recording
  std::string description;  ///< UTF-8: the recording's own words, or the system's name
  std::string name;         ///< UTF-8; empty when not known
  std::uint32_t languageId = pq::kUsEnglish;
  /// The code page of the bytes that its tools print, as they are here.
  std::uint32_t codePage = 1252;
  std::string hostExecutable;  ///< bytes in `codePage`
  std::string logFolder;       ///< bytes in `codePage`; ends with a backslash
  /// When its tools answered: live when the collection began, of a recording when that was made.
  std::optional<LocalTime> recordedAt = {};
  std::string system = {};  ///< UTF-8: name and build of its Windows; empty when not known
  /// UTF-8: what a recording was given for its machine, or a result says of it. What the tools say
  /// is in host/answers/machine_identity.h.
  std::string maker = {};
  std::string product = {};
  std::vector<std::string> serials = {};
  /// SHA-256 in hexadecimal that tells recordings of other content apart; empty when live.
  std::string contentKey = {};
  /// Of a collection that was read back from a result, whose bytes are UTF-8: the code page that
  /// its tools printed in.
  std::optional<std::uint32_t> toolCodePage = {};

  std::uint32_t PrintedCodePage() const { return toolCodePage.value_or(codePage); }
};

/// A device on the PCI bus, by the numbers that name it there.
struct PciDevice {
  std::uint16_t vendor = 0;
  std::uint16_t device = 0;
  std::uint16_t classCode = 0;  ///< base class and subclass, such as 0x0104 for RAID

  bool operator==(const PciDevice&) const = default;
};

/// Devices that the system knows of without any tool.
struct Hardware {
  std::optional<std::vector<PciDevice>> pci;  ///< none: not known
  std::optional<bool> hasBmc;
  std::optional<bool> hasAmt;
};

/// Facts that only the machine itself tells; no recording holds them.
struct Surroundings {
  bool hasInterpreter = false;
  bool canWriteLogFolder = false;  ///< the log folder, or the folder that it would be made in
  bool isElevated = false;
  std::uint64_t freeBytes = 0;  ///< on the log folder's disk
  std::string libraryProblem;   ///< UTF-8: why the library cannot be used; empty when it can
  Hardware hardware = {};
};

}  // namespace host
