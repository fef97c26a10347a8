// Every rule of the program's own: a machine that it fires on, and one that it does not.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/answers/health/built_in_rules.h"
#include "host/answers/parts/report_lines.h"
#include "tests/answers/health/judged.h"
#include "tests/support/collected.h"

namespace {

using namespace test;
using host::Parts;
using host::Severity;

struct RuleCase {
  const char* rule;
  const char* id;  ///< of the part that the first machine's hit names
  Severity severity;
  void (*fires)(Parts& parts);
  void (*isSilent)(Parts& parts);
};

using enum Severity;

constexpr int kDiscrete = 0x6f;
constexpr int kRedundancy = 0x0b;
constexpr int kProcessor = 0x07;
constexpr int kPowerSupply = 0x08;
constexpr int kMemory = 0x0c;
constexpr int kDriveSlot = 0x0d;

constexpr char kLater[] = "2026-11-21T11:00:00";  // within the hours of a time zone
constexpr char kInTwoMonths[] = "2027-01-18T06:00:00";

void AddMember(Parts& parts, const std::string& id, const std::string& state) {
  host::Drive& drive = AddDrive(parts, id, state);
  drive.group = drive.controller + " g0";
  drive.member = 1;
}

void AddHotDrive(Parts& parts, const char* media, int temperature) {
  host::Drive& drive = AddDrive(parts, "lsi0 69:9", "Onln");
  drive.media = media;
  drive.temperature = temperature;
}
void AddHotDisk(Parts& parts, int temperature) { AddHotDrive(parts, "HDD", temperature); }
void AddHotSsd(Parts& parts, int temperature) { AddHotDrive(parts, "SATA SSD", temperature); }
void AddDriveWithLimit(Parts& parts, int temperature) {
  AddHotDisk(parts, temperature);
  parts.drives.back().temperatureLimit = 50;
}
void AddWornDrive(Parts& parts, int wearLeft) {
  AddDrive(parts, "mchp1 0,0", "Online").wearLeft = wearLeft;
}
void AddHotController(Parts& parts, int temperature) {
  AddController(parts).temperature = temperature;
}
void AddHotBattery(Parts& parts, int temperature) {
  AddCacheBackup(parts, "BBU", "Optimal").temperature = temperature;
}
void AddHotCapacitor(Parts& parts, int temperature) {
  AddCacheBackup(parts, "CacheVault", "Optimal").temperature = temperature;
}
void AddFilledLog(Parts& parts, int records) {
  host::PartSource& source = AddSource(parts, "sel", "read");
  source.records = records;
  source.capacity = 50;
}

const RuleCase kCases[] = {
    {"drive.failed", "lsi0 69:9", kCritical, [](Parts& p) { AddDrive(p, "lsi0 69:9", "Offln"); },
     [](Parts& p) { AddDrive(p, "lsi0 69:9", "Onln"); }},
    {"drive.bad", "lsi0 69:9", kWarning, [](Parts& p) { AddDrive(p, "lsi0 69:9", "UBad"); },
     [](Parts& p) { AddDrive(p, "lsi0 69:9", "UGood"); }},
    {"drive.rebuilding", "mchp1 0,3", kWarning,
     [](Parts& p) { AddDrive(p, "mchp1 0,3", "Online").memberState = "Rebuilding"; },
     [](Parts& p) { AddDrive(p, "mchp1 0,3", "Online"); }},
    {"drive.predicted", "lsi0 69:9", kWarning,
     [](Parts& p) { AddDrive(p, "lsi0 69:9", "Onln").smartAlert = "Yes"; },
     [](Parts& p) {
       host::Drive& drive = AddDrive(p, "lsi0 69:9", "Onln");
       drive.smartAlert = "No";
       drive.predictiveFailures = 0;
     }},
    {"drive.media-errors", "lsi0 69:9", kWarning,
     [](Parts& p) { AddDrive(p, "lsi0 69:9", "Onln").mediaErrors = 3; },
     [](Parts& p) { AddDrive(p, "lsi0 69:9", "Onln").mediaErrors = 0; }},
    {"drive.other-errors", "lsi0 69:9", kNotice,
     [](Parts& p) { AddDrive(p, "lsi0 69:9", "Onln").otherErrors = 2; },
     [](Parts& p) { AddDrive(p, "lsi0 69:9", "Onln").otherErrors = 0; }},
    {"drive.unreadable-sectors", "lsi0 69:9", kWarning,
     [](Parts& p) { AddLsiEvent(p, 0x71, "drives", "lsi0 69:9").sense = "3/11/00"; },
     [](Parts& p) { AddLsiEvent(p, 0x71, "drives", "lsi0 69:9").sense = "b/4b/04"; }},
    {"drive.resets", "lsi0 69:9", kWarning,
     [](Parts& p) {
       for (int i = 0; i < 3; ++i) AddLsiEvent(p, 0x10c, "drives", "lsi0 69:9");
     },
     [](Parts& p) {
       for (int i = 0; i < 2; ++i) AddLsiEvent(p, 0x10c, "drives", "lsi0 69:9");
     }},
    {"drive.no-answer", "lsi0 8:1", kWarning,
     [](Parts& p) { AddDrive(p, "lsi0 8:1", "UBad").answer = "Failure 46 -"; },
     [](Parts& p) { AddDrive(p, "lsi0 8:1", "UBad"); }},
    {"drive.foreign", "lsi0 69:9", kWarning,
     [](Parts& p) { AddDrive(p, "lsi0 69:9", "UGood").group = "F"; },
     [](Parts& p) { AddDrive(p, "lsi0 69:9", "UGood").group = "-"; }},
    {"drive.hot", "lsi0 69:9", kCritical,
     [](Parts& p) { AddDrive(p, "lsi0 69:9", "Onln").temperature = 60; },
     [](Parts& p) {
       host::Drive& drive = AddDrive(p, "lsi0 69:9", "Onln");
       drive.temperature = 60;
       drive.media = "SSD";
       AddDrive(p, "lsi0 69:10", "Onln").temperature = 0;  // no sensor
     }},
    {"drive.worn", "mchp1 0,0", kWarning,
     [](Parts& p) { AddDrive(p, "mchp1 0,0", "Online").wearLeft = 7; },
     [](Parts& p) { AddDrive(p, "mchp1 0,0", "Online").wearLeft = 11; }},
    {"drive.slow-link", "lsi0 69:9", kNotice,
     [](Parts& p) {
       for (const char* id : {"lsi0 69:9", "lsi0 69:10"}) {
         host::Drive& drive = AddDrive(p, id, "Onln");
         drive.deviceSpeed = 12;
         drive.linkSpeed = id == std::string("lsi0 69:9") ? 6 : 12;
       }
     },
     [](Parts& p) {  // The controller does no more.
       for (const char* id : {"lsi0 69:9", "lsi0 69:10"}) {
         host::Drive& drive = AddDrive(p, id, "Onln");
         drive.deviceSpeed = 12;
         drive.linkSpeed = 6;
       }
     }},
    {"drive.failed-before", "mchp1 0,4", kNotice,
     [](Parts& p) { AddDrive(p, "mchp1 0,4", "Online").failureReason = "Fail Drive Command"; },
     [](Parts& p) { AddDrive(p, "mchp1 0,4", "Online").failureReason = "No Failure"; }},
    {"drive.state-not-known", "lsi0 69:9", kUnknown,
     [](Parts& p) { AddDrive(p, "lsi0 69:9", "Wxyz"); },
     [](Parts& p) { AddDrive(p, "lsi0 69:9", "JBOD"); }},
    {"volume.offline", "lsi0 v0", kCritical, [](Parts& p) { AddVolume(p, "lsi0 v0", "OfLn"); },
     [](Parts& p) { AddVolume(p, "lsi0 v0", "Dgrd"); }},
    {"volume.degraded", "lsi0 v0", kCritical, [](Parts& p) { AddVolume(p, "lsi0 v0", "Dgrd"); },
     [](Parts& p) { AddVolume(p, "lsi0 v0", "Optl"); }},
    {"volume.partly-degraded", "lsi0 v0", kWarning,
     [](Parts& p) { AddVolume(p, "lsi0 v0", "Pdgd", "RAID6"); },
     [](Parts& p) { AddVolume(p, "lsi0 v0", "Optl", "RAID6"); }},
    {"volume.recovering", "mchp1 v0", kWarning,
     [](Parts& p) { AddVolume(p, "mchp1 v0", "Impacted ( Build/Verify with fix : 90 % )", "6"); },
     [](Parts& p) { AddVolume(p, "mchp1 v0", "Optimal", "6"); }},
    {"volume.blocked", "lsi0 v0", kCritical,
     [](Parts& p) { AddVolume(p, "lsi0 v0", "Optl").access = "B"; },
     [](Parts& p) { AddVolume(p, "lsi0 v0", "Optl").access = "RW"; }},
    {"volume.stripes-lost", "mchp1 v0", kCritical,
     [](Parts& p) { AddVolume(p, "mchp1 v0", "Optimal", "5").failedStripes = "Yes"; },
     [](Parts& p) { AddVolume(p, "mchp1 v0", "Optimal", "5").failedStripes = "No"; }},
    {"volume.never-checked", "lsi0 v0", kNotice,
     [](Parts& p) { AddVolume(p, "lsi0 v0", "Optl").consistent = "No"; },
     [](Parts& p) { AddVolume(p, "lsi0 v0", "Optl", "RAID0").consistent = "No"; }},
    {"volume.state-not-known", "lsi0 v0", kUnknown,
     [](Parts& p) { AddVolume(p, "lsi0 v0", "Wxyz"); },
     [](Parts& p) { AddVolume(p, "lsi0 v0", "Cac1", "Cac1"); }},
    {"group.degraded", "lsi0 g0", kCritical,
     [](Parts& p) {
       AddGroup(p, "lsi0 g0", "Dgrd");
       AddVolume(p, "lsi0 v0", "Optl");
     },
     [](Parts& p) {  // The volume tells it.
       AddGroup(p, "lsi0 g0", "Dgrd");
       AddVolume(p, "lsi0 v0", "Dgrd");
     }},
    {"group.drive-missing", "mchp1 v0 segment 1", kCritical,
     [](Parts& p) {
       host::MissingDrive& drive = p.missingDrives.emplace_back();
       drive.id = "mchp1 v0 segment 1";
       drive.state = "Missing";
     },
     [](Parts& p) {
       host::MissingDrive& drive = p.missingDrives.emplace_back();
       drive.id = "mchp1 v0 segment 1";
       drive.state = "Inconsistent";
     }},
    {"group.no-spare", "lsi0 v0", kNotice, [](Parts& p) { AddVolume(p, "lsi0 v0", "Dgrd"); },
     [](Parts& p) {
       AddVolume(p, "lsi0 v0", "Dgrd");
       AddMember(p, "lsi0 69:1", "Rbld");
     }},
    {"cache.backup", "lsi0 BBU", kCritical, [](Parts& p) { AddCacheBackup(p, "BBU", "Failed"); },
     [](Parts& p) { AddCacheBackup(p, "BBU", "Optimal"); }},
    {"cache.unprotected", "mchp1 v0", kNotice,
     [](Parts& p) { AddVolume(p, "mchp1 v0", "Optimal", "1").writeBack = 1; },
     [](Parts& p) {
       AddVolume(p, "mchp1 v0", "Optimal", "1").writeBack = 0;
       AddVolume(p, "mchp1 v1", "Optimal", "1").cache = "Enabled";  // as it is set, not as it is
       AddCacheBackup(p, "BBU", "Optimal");
       AddVolume(p, "lsi0 v0", "Optl").cache = "RAWBD";
       AddVolume(p, "lsi1 v0", "Optl").cache = "RWBD";
     }},
    {"cache.status", "mchp1", kWarning,
     [](Parts& p) { AddController(p, "mchp1").cacheStatus = "Temporarily Disabled"; },
     [](Parts& p) {
       AddController(p, "mchp1").cacheStatus = "Ok";
       AddController(p, "mchp2").cacheStatus = "Not Configured";
     }},
    {"cache.hot", "lsi0 CacheVault", kWarning,
     [](Parts& p) { AddCacheBackup(p, "CacheVault", "Optimal").temperature = 72; },
     [](Parts& p) { AddCacheBackup(p, "CacheVault", "Optimal").temperature = 69; }},
    {"controller.status", "lsi0", kWarning,
     [](Parts& p) { AddController(p).status = "Needs Attention"; },
     [](Parts& p) { AddController(p).status = "Optimal"; }},
    {"controller.volumes", "mchp1", kCritical,
     [](Parts& p) { AddController(p, "mchp1").volumesDegraded = 1; },
     [](Parts& p) {
       AddController(p, "mchp1").volumesDegraded = 1;
       AddVolume(p, "mchp1 v0", "Degraded", "5");
     }},
    {"controller.defunct", "mchp1", kWarning,
     [](Parts& p) { AddController(p, "mchp1").drivesDefunct = 1; },
     [](Parts& p) { AddController(p, "mchp1").drivesDefunct = 0; }},
    {"controller.hot", "mchp1", kWarning,
     [](Parts& p) { AddController(p, "mchp1").temperatureWord = "Abnormal"; },
     [](Parts& p) { AddController(p, "mchp1").temperatureWord = "Normal"; }},
    {"enclosure.state", "mchp1 e0,18", kWarning,
     [](Parts& p) {
       host::Enclosure& one = p.enclosures.emplace_back();
       one.id = "mchp1 e0,18";
       one.state = "Temperature Sensor Status 1: 46 C/ 114 F (Abnormal)";
     },
     [](Parts& p) {
       host::Enclosure& one = p.enclosures.emplace_back();
       one.id = "mchp1 e0,18";
       one.state = "OK";
     }},
    {"lsi.event", "lsi0", kWarning, [](Parts& p) { AddLsiEvent(p, 0xda, "controllers", "lsi0"); },
     [](Parts& p) {
       AddLsiEvent(p, 0xda, "controllers", "lsi0", kLongAgo);
       AddLsiEvent(p, 0x188, "controllers", "lsi0");
       AddLsiEvent(p, 0x189, "controllers", "lsi0");  // ends the one before
       AddLsiEvent(p, 0x12f, "controllers", "lsi0");
     }},
    {"lsi.event-class", "lsi0", kWarning,
     [](Parts& p) { AddLsiEvent(p, 0xfff, "controllers", "lsi0").level = 2; },
     [](Parts& p) { AddLsiEvent(p, 0xfff, "controllers", "lsi0").level = 1; }},
    {"lsi.recovered", "lsi0 v0", kNotice,
     [](Parts& p) {
       AddVolume(p, "lsi0 v0", "Optl");
       AddLsiEvent(p, 0xfb, "volumes", "lsi0 v0");
     },
     [](Parts& p) {
       AddVolume(p, "lsi0 v0", "Dgrd");
       AddLsiEvent(p, 0xfb, "volumes", "lsi0 v0");
     }},
    {"microchip.event", "mchp1", kWarning,
     [](Parts& p) { AddOtherEvent(p, "Microchip", 2, "cable lost"); },
     [](Parts& p) { AddOtherEvent(p, "Microchip", 2, "cable lost", kLongAgo); }},
    {"sas2.event", "sas2", kWarning,
     [](Parts& p) { AddOtherEvent(p, "SAS2", 2, "volume degraded", ""); },
     [](Parts& p) { AddOtherEvent(p, "SAS2", 0, "started", ""); }},
    {"sensor.threshold", "FAN1", kCritical, [](Parts& p) { AddSensor(p, "FAN1", 4, "crit-lo"); },
     [](Parts& p) { AddSensor(p, "FAN1", 4, "ok"); }},
    {"sensor.state", "CPU1 Status", kCritical,
     [](Parts& p) { AddDiscrete(p, "CPU1 Status", kProcessor, kDiscrete, 1 << 8); },
     [](Parts& p) { AddDiscrete(p, "CPU1 Status", kProcessor, kDiscrete, 1 << 7); }},
    {"sensor.word", "CPU1 Status", kCritical,
     [](Parts& p) { AddSensor(p, "CPU1 Status", kProcessor, "procdisabled"); },
     [](Parts& p) {  // its bits are known
       AddDiscrete(p, "CPU1 Status", kProcessor, kDiscrete, 1 << 8).status = "procdisabled";
     }},
    {"psu.status", "PSU 2", kCritical,
     [](Parts& p) {
       host::PowerSupply& one = p.powerSupplies.emplace_back();
       one.id = "PSU 2";
       one.status = "OK";
       one.acVolts = 0;
     },
     [](Parts& p) {
       host::PowerSupply& one = p.powerSupplies.emplace_back();
       one.id = "PSU 2";
       one.status = "OK";
       one.acVolts = 231;
     }},
    {"led.fault", "PSU fault LED", kWarning,
     [](Parts& p) {
       host::Led& one = p.leds.emplace_back();
       one.id = "PSU fault LED";
       one.colour = "amber";
       one.state = "on";
     },
     [](Parts& p) {
       host::Led& fault = p.leds.emplace_back();
       fault.id = "PSU fault LED";
       fault.colour = "amber";
       fault.state = "off";
       host::Led& status = p.leds.emplace_back();
       status.id = "System status LED";
       status.colour = "green";
       status.state = "on";
     }},
    {"bmc.self-test", "BMC self-test", kWarning,
     [](Parts& p) {
       host::SelfTest& one = p.selfTests.emplace_back();
       one.id = "BMC self-test";
       one.code = "57";
     },
     [](Parts& p) {
       host::SelfTest& one = p.selfTests.emplace_back();
       one.id = "BMC self-test";
       one.code = "55";
     }},
    {"sel.state", "Drive 1", kCritical,
     [](Parts& p) { AddSelEvent(p, "Drive 1", kDriveSlot, kDiscrete, 1); },
     [](Parts& p) {
       AddSelEvent(p, "Drive 1", kDriveSlot, kDiscrete, 1);
       AddSelEvent(p, "Drive 1", kDriveSlot, kDiscrete, 1, /*asserted=*/false);
       AddDiscrete(p, "PS Redundancy", kPowerSupply, kRedundancy, 1);
       AddSelEvent(p, "PS Redundancy", kPowerSupply, kRedundancy, 1);
     }},
    {"sel.event", "CPU1 Status", kCritical,
     [](Parts& p) { AddSelEvent(p, "CPU1 Status", kProcessor, kDiscrete, 1); },
     [](Parts& p) {
       AddSelEvent(p, "CPU1 Status", kProcessor, kDiscrete, 1, true, kLongAgo);
       AddSelEvent(p, "CPU2 Status", kProcessor, kDiscrete, 0, /*asserted=*/false);
     }},
    {"sel.severity", "Odd", kCritical,
     [](Parts& p) { AddSelEvent(p, "Odd", 0xc5, 0x70, 9).level = 3; },
     [](Parts& p) { AddSelEvent(p, "Odd", 0xc5, 0x70, 9).level = 1; }},
    {"sel.ecc-flood", "Memory #60", kWarning,
     [](Parts& p) {
       for (int i = 0; i < 10; ++i) AddSelEvent(p, "Memory #60", kMemory, kDiscrete, 0);
     },
     [](Parts& p) {
       for (int i = 0; i < 9; ++i) AddSelEvent(p, "Memory #60", kMemory, kDiscrete, 0);
     }},
    {"sel.full", "sel", kWarning,
     [](Parts& p) {
       host::PartSource& source = AddSource(p, "sel", "read");
       source.records = 500;
       source.capacity = 512;
     },
     [](Parts& p) {
       host::PartSource& source = AddSource(p, "sel", "read");
       source.records = 26;
       source.capacity = 512;
     }},
    {"amt.event", "amt", kCritical,
     [](Parts& p) { AddOtherEvent(p, "AMT", 2, "Temperature limit reached"); },
     [](Parts& p) { AddOtherEvent(p, "AMT", 2, "Temperature limit reached", kLongAgo); }},
    {"collection.failed", "sensors", kUnknown,
     [](Parts& p) { AddSource(p, "sensors", "failed").observed = "error -1"; },
     [](Parts& p) { AddSource(p, "sensors", "none").observed = "tool missing"; }},
    {"collection.no-state", "lsi", kUnknown,
     [](Parts& p) {
       AddSource(p, "lsi", "read");
       AddController(p);
       AddDrive(p, "lsi0 69:9", "");
     },
     [](Parts& p) {
       AddSource(p, "lsi", "read");
       AddController(p);
       AddDrive(p, "lsi0 69:9", "Onln");
     }},
    {"collection.incomplete", "lsi0", kUnknown,
     [](Parts& p) {
       AddController(p).drivesDeclared = 2;
       AddDrive(p, "lsi0 69:9", "Onln");
     },
     [](Parts& p) {
       AddController(p).drivesDeclared = 1;
       AddDrive(p, "lsi0 69:9", "Onln");
     }},
    {"collection.clock-ahead", "lsi", kNotice,
     [](Parts& p) {
       AddSource(p, "lsi", "read");
       AddLsiEvent(p, 0, "controllers", "lsi0", kInTwoMonths);
     },
     [](Parts& p) {
       AddSource(p, "lsi", "read");
       AddLsiEvent(p, 0, "controllers", "lsi0", kLater);
     }},
    {"collection.unread", "1", kUnknown,
     [](Parts& p) {
       host::Unread& line = p.unread.emplace_back();
       line.id = "1";
       line.text = "252:4 19 Onln ??";
     },
     [](Parts&) {}},
};

TEST(HealthRules, FireOnWhatTheyAreFor) {
  for (const RuleCase& one : kCases) {
    Parts parts;
    one.fires(parts);
    const host::Health health = Judge(parts);
    const host::HealthHit* hit = FindHit(health, one.rule, one.id);
    ASSERT_NE(hit, nullptr) << one.rule;
    EXPECT_EQ(hit->severity, one.severity) << one.rule;
    EXPECT_FALSE(hit->observed.empty()) << one.rule;
    EXPECT_FALSE(hit->text.empty()) << one.rule;
    EXPECT_NE(hit->text, hit->id + ": " + hit->observed) << one.rule << " has no sentence";
  }
}

// Each rule, what it says of its first machine, and what was seen there. To be renewed with what
// this prints, once somebody has read it.
TEST(HealthRules, SayWhatTheySaid) {
  std::string said;
  for (const RuleCase& one : kCases) {
    Parts parts;
    one.fires(parts);
    const host::Health health = Judge(parts);
    const host::HealthHit& hit = GetHit(health, one.rule, one.id);
    said += std::string(one.rule) + "\n  " + hit.text + "\n  " + hit.observed + "\n  " + hit.area +
            ", " + hit.part + "\n";
  }
  EXPECT_EQ(said, TestData("health/sentences.txt"));
}

TEST(HealthRules, TellNoNumberThatIsNotKnown) {
  Parts parts;
  AddController(parts, "mchp1").temperatureWord = "Abnormal";
  {
    test::AddedEvent event = AddLsiEvent(parts, 0xfff, "controllers", "lsi0");
    event.level = 2;
    event.code.reset();
  }
  const host::Health health = Judge(parts);
  EXPECT_EQ(GetHit(health, "controller.hot").text, "Cool controller mchp1");
  EXPECT_EQ(GetHit(health, "controller.hot").observed, "Abnormal");
  EXPECT_EQ(GetHit(health, "lsi.event-class").observed, "1 x event 4095, last 2026-11-18T06:00:00");
}

TEST(HealthRules, TellHowHotAPartIs) {
  Parts parts;
  AddHotController(parts, 96);
  AddHotDisk(parts, 57);
  const host::Health health = Judge(parts);
  EXPECT_EQ(GetHit(health, "controller.hot").text, "Cool controller lsi0: 96.0 °C");
  EXPECT_EQ(GetHit(health, "controller.hot").observed, "96.0 C");
  EXPECT_EQ(GetHit(health, "drive.hot").text,
            "Cool drive 69:9: 57.0 °C, from 55 on it is too warm");
}

TEST(HealthRules, AreSilentOtherwise) {
  for (const RuleCase& one : kCases) {
    Parts parts;
    one.isSilent(parts);
    EXPECT_EQ(FindHit(Judge(parts), one.rule), nullptr) << one.rule;
  }
}

/// From which number on a rule says what.
struct RuleLimit {
  const char* rule;
  void (*add)(Parts& parts, int number);
  int before;  ///< the last number of which it says nothing, or what is milder
  std::optional<Severity> saidBefore;
  int from;
  Severity said;
};

constexpr RuleLimit kLimits[] = {
    {"drive.media-errors",
     [](Parts& p, int n) { AddDrive(p, "lsi0 69:9", "Onln").mediaErrors = n; },
     0,
     {},
     1,
     kWarning},
    {"drive.other-errors",
     [](Parts& p, int n) { AddDrive(p, "lsi0 69:9", "Onln").otherErrors = n; },
     0,
     {},
     1,
     kNotice},
    {"drive.hot", AddHotDisk, 54, {}, 55, kWarning},
    {"drive.hot", AddHotDisk, 59, kWarning, 60, kCritical},
    {"drive.hot", AddHotDisk, 125, {}, 124, kCritical},  // no temperature but a sensor's fault
    {"drive.hot", AddHotSsd, 64, {}, 65, kWarning},
    {"drive.hot", AddHotSsd, 69, kWarning, 70, kCritical},
    {"drive.hot", AddDriveWithLimit, 44, {}, 45, kWarning},
    {"drive.hot", AddDriveWithLimit, 49, kWarning, 50, kCritical},
    {"drive.worn", AddWornDrive, 11, {}, 10, kWarning},
    {"drive.worn", AddWornDrive, 6, kWarning, 5, kCritical},
    {"cache.hot", AddHotBattery, 49, {}, 50, kWarning},
    {"cache.hot", AddHotBattery, 59, kWarning, 60, kCritical},
    {"cache.hot", AddHotCapacitor, 69, {}, 70, kWarning},
    {"cache.hot", AddHotCapacitor, 84, kWarning, 85, kCritical},
    {"controller.hot", AddHotController, 84, {}, 85, kWarning},
    {"controller.hot", AddHotController, 94, kWarning, 95, kCritical},
    {"sel.full", AddFilledLog, 44, {}, 45, kWarning},
    {"sel.full", AddFilledLog, 49, kWarning, 50, kCritical},
};

TEST(HealthRules, BeginAtTheirLimits) {
  const auto judge = [](const RuleLimit& limit, int number) -> std::optional<Severity> {
    Parts parts;
    limit.add(parts, number);
    const host::Health health = Judge(parts);
    const host::HealthHit* hit = FindHit(health, limit.rule);
    return hit == nullptr ? std::nullopt : std::optional(hit->severity);
  };
  for (const RuleLimit& limit : kLimits) {
    EXPECT_EQ(judge(limit, limit.before), limit.saidBefore) << limit.rule << ' ' << limit.before;
    EXPECT_EQ(judge(limit, limit.from), limit.said) << limit.rule << ' ' << limit.from;
  }
}

TEST(HealthRules, HaveAPairOfMachinesEach) {
  std::set<std::string> tried;
  for (const RuleCase& one : kCases) EXPECT_TRUE(tried.insert(one.rule).second) << one.rule;
  std::set<std::string> rules;
  for (const host::Rule& rule : host::GetBuiltInRules().rules) rules.insert(rule.id);
  EXPECT_EQ(tried, rules);
}

TEST(HealthRules, TellWhyAndWhatToDo) {
  for (const host::Rule& rule : host::GetBuiltInRules().rules) {
    EXPECT_FALSE(rule.why.empty()) << rule.id;
    EXPECT_FALSE(rule.next.empty()) << rule.id;
    EXPECT_FALSE(rule.area.empty()) << rule.id;
  }
}

// A volume that is degraded while its drive is rebuilt is one matter, and it is the volume's.
TEST(HealthRules, WarnOfARebuildUnderTheVolumesName) {
  Parts parts;
  AddVolume(parts, "lsi0 v0", "Dgrd");
  AddMember(parts, "lsi0 69:1", "Onln");
  AddMember(parts, "lsi0 69:2", "Rbld");
  const host::Health health = Judge(parts);
  ASSERT_EQ(health.findings.size(), 1U);
  EXPECT_EQ(health.findings[0].key, "volume.degraded lsi0 v0");
  EXPECT_STREQ(host::GetVerdict(health), "WARNING");
}

TEST(HealthRules, NameTheFailedDriveOfADegradedVolume) {
  Parts parts;
  AddController(parts).status = "Needs Attention";
  AddVolume(parts, "lsi0 v0", "Dgrd");
  AddMember(parts, "lsi0 69:1", "Onln");
  AddMember(parts, "lsi0 69:2", "Offln");
  const host::Health health = Judge(parts);
  ASSERT_EQ(health.findings.size(), 1U);
  EXPECT_EQ(health.findings[0].key, "drive.failed lsi0 69:2");
  EXPECT_EQ(host::GetExitCode(health), 2);
}

TEST(HealthRules, AreSureOnlyOfReportsThatShowAllDrives) {
  const auto judge = [](const char* controller, const char* drive) {
    Parts parts;
    AddController(parts, controller).drivesDeclared = 2;
    AddDrive(parts, drive, "Online");
    return std::string(host::GetVerdict(Judge(parts)));
  };
  EXPECT_EQ(judge("lsi0", "lsi0 69:1"), "UNKNOWN");
  EXPECT_EQ(judge("intel", "intel 0-0-0-0"), "UNKNOWN");
  // arcconf counts devices that keep the cache as well.
  EXPECT_EQ(judge("mchp1", "mchp1 0,0"), "OK");
}

TEST(HealthRules, CallAFailureCriticalThatNothingProtectsFrom) {
  Parts parts;
  AddVolume(parts, "lsi0 v0", "Optl", "RAID0");
  AddMember(parts, "lsi0 69:1", "Onln");
  parts.drives[0].predictiveFailures = 1;
  const host::Health health = Judge(parts);
  EXPECT_EQ(FindHit(health, "drive.predicted", "lsi0 69:1")->severity, kCritical);
}

TEST(HealthRules, WarnOfACacheThatNothingKeeps) {
  Parts parts;
  AddCacheBackup(parts, "ZMM", "Temporarily Disabled");
  EXPECT_STREQ(host::GetVerdict(Judge(parts)), "WARNING");
  AddVolume(parts, "lsi0 v0", "Optl").cache = "RWBD";
  EXPECT_STREQ(host::GetVerdict(Judge(parts)), "WARNING");
  parts.volumes[0].cache = "RAWBD";  // always write-back
  EXPECT_STREQ(host::GetVerdict(Judge(parts)), "CRITICAL");
}

TEST(HealthRules, TellOfACacheWithoutABackupUnit) {
  Parts parts;
  AddVolume(parts, "lsi0 v0", "Optl").cache = "RAWBD";
  EXPECT_NE(FindHit(Judge(parts), "cache.unprotected", "lsi0 v0"), nullptr);
  AddCacheBackup(parts, "BBU", "Not Installed");
  EXPECT_EQ(GetHit(Judge(parts), "cache.unprotected").observed,
            "writing ends in the cache, backup of the cache of lsi0: Not Installed");
  parts.volumes[0].cache = "Enabled";
  EXPECT_EQ(FindHit(Judge(parts), "cache.unprotected"), nullptr);
  // That a unit is there and does not work is a finding of its own, and critical.
  parts.volumes[0].writeBack = 1;
  parts.cacheBackups.clear();
  AddCacheBackup(parts, "BBU", "Degraded");
  EXPECT_EQ(FindHit(Judge(parts), "cache.unprotected"), nullptr);
  EXPECT_EQ(GetHit(Judge(parts), "cache.backup").severity, kCritical);
  parts.volumes[0].writeBack = 0;
  EXPECT_EQ(GetHit(Judge(parts), "cache.backup").severity, kWarning);
}

TEST(HealthRules, TellWhyACacheIsNotInUse) {
  Parts parts;
  host::Controller& controller = AddController(parts);
  controller.cacheStatus = "Temporarily Disabled";
  controller.cacheReason = "Charge is low";
  AddCacheBackup(parts, "cache backup", "Not Fully Charged");
  const host::Health health = Judge(parts);
  ASSERT_EQ(health.findings.size(), 1U);
  EXPECT_EQ(health.findings[0].key, "cache.status lsi0");
  EXPECT_EQ(health.findings[0].hits[0].observed, "Temporarily Disabled: Charge is low");
  EXPECT_NE(FindHit(health, "cache.backup"), nullptr);
}

// The second generation of storcli has codes of another numbering, and warns in words.
TEST(HealthRules, TellOfWarningsWithoutAKnownCode) {
  Parts parts;
  {
    test::AddedEvent event = AddLsiEvent(parts, 0, "drives", "lsi0 52:11");
    event.code.reset();
    event.level = 1;
  }
  EXPECT_EQ(GetHit(Judge(parts), "lsi.event-class", "lsi0").severity, kNotice);
  EXPECT_EQ(GetHit(Judge(parts), "lsi.event-class", "lsi0").observed,
            std::string("1 warning, last ") + kRecently + " event 0");
  test::ChangeEvent(parts, 0, [](host::Event& event) { event.time = kLongAgo; });
  EXPECT_EQ(FindHit(Judge(parts), "lsi.event-class"), nullptr);
}

TEST(HealthRules, TellOfAWordThatTheBitsDoNotSay) {
  constexpr int kCable = 0x1b;
  Parts parts;
  AddDiscrete(parts, "Chassis Link", kCable, kDiscrete, 1).status = "AC_Lost";
  EXPECT_EQ(GetHit(Judge(parts), "sensor.word", "Chassis Link").severity, kNotice);
  parts.sensors[0].status = "Present";
  EXPECT_EQ(FindHit(Judge(parts), "sensor.word"), nullptr);
  // One that the bits do say is told once.
  parts.sensors[0].status = "AC_Lost";
  parts.sensors[0].states = 1 << 1;
  EXPECT_EQ(FindHit(Judge(parts), "sensor.word"), nullptr);
}

TEST(HealthRules, TellWhatALogSaysIsOver) {
  Parts parts;
  AddOtherEvent(parts, "Microchip", 2, "Write cache disabled: charge low");
  EXPECT_EQ(GetHit(Judge(parts), "microchip.event").severity, kWarning);
  AddOtherEvent(parts, "Microchip", 0, "Write cache enabled", "2026-11-18T07:00:00");
  host::Health health = Judge(parts);
  EXPECT_EQ(GetHit(health, "microchip.event").severity, kNotice);
  EXPECT_TRUE(GetHit(health, "microchip.event").text.ends_with(", over since 2026-11-18T07:00:00"));
  AddOtherEvent(parts, "Microchip", 2, "Write cache disabled: charge low", "2026-11-18T08:00:00");
  health = Judge(parts);
  EXPECT_EQ(GetHit(health, "microchip.event").severity, kWarning);
  EXPECT_TRUE(GetHit(health, "microchip.event").text.ends_with("08:00:00"));
}

TEST(HealthRules, TellWhichEntriesOfTheSas2LogAreOver) {
  Parts parts;
  AddOtherEvent(parts, "SAS2", 1, "Failure predicted", "");
  AddOtherEvent(parts, "SAS2", 2, "Volume is degraded", "");
  EXPECT_EQ(GetHit(Judge(parts), "sas2.event").severity, kWarning);
  AddOtherEvent(parts, "SAS2", 0, "Resync complete", "");
  const host::HealthHit hit = GetHit(Judge(parts), "sas2.event");
  EXPECT_EQ(hit.severity, kNotice);
  EXPECT_EQ(hit.observed,
            "2 entries, highest class 2: Failure predicted; Volume is degraded, over since "
            "\"Resync complete\"");
}

TEST(HealthRules, DoNotAskForADriveWhileOneIsRebuilt) {
  Parts parts;
  AddVolume(parts, "lsi0 v0", "Pdgd", "RAID6");
  AddMember(parts, "lsi0 69:2", "Rbld");
  EXPECT_TRUE(GetHit(Judge(parts), "volume.partly-degraded").text.starts_with("Wait"));
}

// A drive that is about to fail need not be the one that is counted.
TEST(HealthRules, DoNotGuessWhichDriveIsDefunct) {
  Parts parts;
  AddController(parts, "mchp1").drivesDefunct = 1;
  AddDrive(parts, "mchp1 0,0", "Online").smartAlert = "Yes";
  EXPECT_TRUE(GetHit(Judge(parts), "controller.defunct").because.empty());
  AddDrive(parts, "mchp1 0,1", "Failed");
  EXPECT_EQ(GetHit(Judge(parts), "controller.defunct").because,
            std::vector<std::string>{"mchp1 0,1"});
}

// What a drive did that was taken out says nothing of the one in its place.
TEST(HealthRules, ForgetADriveThatWasTakenOut) {
  Parts parts;
  AddDrive(parts, "lsi0 69:9", "Onln");
  AddLsiEvent(parts, 0x60, "drives", "lsi0 69:9");
  EXPECT_NE(FindHit(Judge(parts), "lsi.event", "lsi0 69:9"), nullptr);
  AddLsiEvent(parts, 0x70, "drives", "lsi0 69:9");
  EXPECT_EQ(FindHit(Judge(parts), "lsi.event"), nullptr);
}

// A log entry about a sensor raises nothing above what the sensor says of itself now.
TEST(HealthRules, PutWhatIsBeforeWhatWas) {
  constexpr int kThreshold = 0x01;
  constexpr int kBelowCritical = 2;
  Parts parts;
  AddSensor(parts, "FAN1", 4, "nc");
  AddSelEvent(parts, "FAN1", 4, kThreshold, kBelowCritical);
  EXPECT_STREQ(host::GetVerdict(Judge(parts)), "WARNING");
  parts.sensors[0].status = "ok";
  EXPECT_STREQ(host::GetVerdict(Judge(parts)), "OK");
}

TEST(HealthRules, DoNotTakeAWordOfALimitForGood) {
  Parts parts;
  AddSensor(parts, "CPU1 Temp", 1, "wxyz").eventType = 1;
  EXPECT_STREQ(host::GetVerdict(Judge(parts)), "UNKNOWN");
}

// The word is ipmiutil's for bit 7. With bit 0, of an internal error, the listing contradicts
// itself: such a processor is neither called broken nor taken for well.
TEST(HealthRules, BelieveNeitherSideOfAContradiction) {
  const auto judge = [](const char* word, std::int64_t states) {
    Parts parts;
    AddDiscrete(parts, "P0 Status", kProcessor, kDiscrete, states).status = word;
    return Judge(parts);
  };
  const host::Health health = judge("ProcPresent", 1);
  const host::HealthHit& hit = GetHit(health, "sensor.state", "P0 Status");
  EXPECT_EQ(hit.severity, kUnknown);
  EXPECT_EQ(hit.text,
            "Find out what state P0 Status is in: its bits say \"internal error (IERR)\", its word "
            "\"ProcPresent\"");
  EXPECT_STREQ(host::GetVerdict(judge("ProcPresent", 1 << 7)), "OK");
  EXPECT_STREQ(host::GetVerdict(judge("ProcPresent", (1 << 7) | (1 << 8))), "CRITICAL");
  EXPECT_STREQ(host::GetVerdict(judge("ierr", 1)), "CRITICAL");
  EXPECT_STREQ(host::GetVerdict(judge("", 1)), "CRITICAL");
}

// What the tool calls it can be found again in its report.
TEST(HealthRules, QuoteWordsOfSensorsAsTheToolWritesThem) {
  Parts parts;
  AddSensor(parts, "CPU1 Status", kProcessor, "ProcDisabled");
  AddSensor(parts, "FAN1", 4, "Crit-lo");
  AddSensor(parts, "FAN2", 4, "OK");
  const host::Health health = Judge(parts);
  EXPECT_EQ(GetHit(health, "sensor.word").text, "Look at CPU1 Status: ProcDisabled");
  EXPECT_EQ(GetHit(health, "sensor.threshold").observed, "Crit-lo");
  EXPECT_EQ(health.findings.size(), 2U);
}

// A volume that was off-line is degraded once its log says so.
TEST(HealthRules, BelieveTheLaterEntryAboutAVolume) {
  constexpr int kDegraded = 0xfb;
  constexpr int kOffline = 0xfc;
  Parts parts;
  AddLsiEvent(parts, kOffline, "volumes", "lsi0 v0");
  EXPECT_EQ(GetHit(Judge(parts), "lsi.event").text,
            "Look at lsi0 v0: \"event 252\" on " + std::string(kRecently));
  AddLsiEvent(parts, kDegraded, "volumes", "lsi0 v0");
  const host::Health health = Judge(parts);
  ASSERT_EQ(health.findings.size(), 1U);
  EXPECT_EQ(health.findings[0].hits.size(), 1U);
  EXPECT_EQ(health.findings[0].hits[0].text,
            "Look at lsi0 v0: \"event 251\" on " + std::string(kRecently));
  AddLsiEvent(parts, kOffline, "volumes", "lsi0 v0");
  EXPECT_EQ(Judge(parts).findings[0].hits.size(), 2U);
}

TEST(HealthRules, TellCachesFromWhatKeepsThem) {
  const auto tell = [](const char* kind, const char* state) {
    Parts parts;
    AddCacheBackup(parts, kind, state);
    return GetHit(Judge(parts), "cache.backup").text;
  };
  EXPECT_EQ(tell("BBU", "Failed"),
            "See to the BBU of lsi0: it does not protect the write cache (Failed)");
  EXPECT_EQ(tell("cache backup", "Not Fully Charged"),
            "Look again at the cache backup of lsi0: Not Fully Charged");
  EXPECT_EQ(tell("ZMM", "Wxyz"), "Find out what \"Wxyz\" means of the ZMM of lsi0");
}

TEST(HealthRules, CallSourcesByTheirNames) {
  for (const char* id : {"lsi", "microchip", "intel", "sensors", "sel", "fru", "power supplies",
                         "leds", "self-test", "amt", "sas2"}) {
    Parts parts;
    AddSource(parts, id, "failed").observed = "error -1";
    const host::Health health = Judge(parts);
    EXPECT_TRUE(GetHit(health, "collection.failed", id).text.starts_with("Find out why the "))
        << id;
  }
}

TEST(HealthRules, TellFailedSourcesFromThoseOfWhichSomethingWasRead) {
  Parts parts;
  AddSource(parts, "lsi", "failed").observed = "storcli /c0 show events: Status = Failure";
  EXPECT_EQ(GetHit(Judge(parts), "collection.failed").text,
            "Find out why the MegaRAID controllers could not be read: storcli /c0 show events: "
            "Status = Failure");
  AddDrive(parts, "lsi0 69:9", "Onln");
  EXPECT_EQ(GetHit(Judge(parts), "collection.failed").text,
            "Find out why not all of the MegaRAID controllers could be read: storcli /c0 show "
            "events: Status = Failure");
}

TEST(HealthRules, KnowNothingOfPartsWithoutAState) {
  Parts parts;
  AddDrive(parts, "lsi0 69:9", "");
  AddDrive(parts, "lsi0 69:10", "Onln");
  AddVolume(parts, "lsi0 v0", "");
  parts.powerSupplies.emplace_back().id = "PSU 2";
  parts.powerSupplies.back().text = "PSU 2 present";
  const host::Health health = Judge(parts);
  EXPECT_EQ(GetHit(health, "drive.state-not-known", "lsi0 69:9").severity, kUnknown);
  EXPECT_EQ(GetHit(health, "drive.state-not-known").text,
            "Collect again: the report shows no state of drive 69:9");
  EXPECT_EQ(GetHit(health, "volume.state-not-known", "lsi0 v0").severity, kUnknown);
  EXPECT_EQ(GetHit(health, "psu.status", "PSU 2").severity, kUnknown);
  EXPECT_EQ(FindHit(health, "drive.state-not-known", "lsi0 69:10"), nullptr);
}

TEST(HealthRules, KnowNothingOfAMicrochipControllerWithoutAnyOfItsVolumes) {
  Parts parts;
  AddController(parts, "mchp1").volumesDeclared = 2;
  EXPECT_EQ(GetHit(Judge(parts), "collection.incomplete").severity, kUnknown);
  AddVolume(parts, "mchp1 v0", "Optimal", "1");
  EXPECT_EQ(GetHit(Judge(parts), "collection.incomplete").severity, kNotice);
}

TEST(HealthRules, DoNotUnderstandWordsOfSensorsThatAreInNoList) {
  const auto judge = [](const char* word) {
    Parts parts;
    AddSensor(parts, "Drive 3", kDriveSlot, word);
    return Judge(parts);
  };
  EXPECT_EQ(GetHit(judge("inoperable"), "sensor.word", "Drive 3").severity, kUnknown);
  // It means several things, and no trouble for some.
  EXPECT_STREQ(host::GetVerdict(judge("faulty")), "OK");
  EXPECT_STREQ(host::GetVerdict(judge("0x0180")), "OK");
}

TEST(HealthRules, CountEntriesAfterTheCollectionAsRecent) {
  Parts parts;
  AddSource(parts, "sel", "read");
  AddSelEvent(parts, "CPU1 Status", kProcessor, kDiscrete, 1, true, kInTwoMonths);
  const host::Health health = Judge(parts);
  EXPECT_EQ(GetHit(health, "sel.event").severity, kCritical);
  EXPECT_EQ(GetHit(health, "collection.clock-ahead", "sel").text,
            "Set the clock of the log of the BMC right: its log has entries up to "
            "2027-01-18T06:00:00, after this collection");
}

TEST(HealthRules, QuoteNoMoreThanPeopleRead) {
  Parts parts;
  std::string text(499, 'x');
  for (int i = 0; i < 600; ++i) text += "\xc3\xa4";
  parts.unread.emplace_back().id = "1";
  parts.unread.back().text = text;
  const std::string observed = GetHit(Judge(parts), "collection.unread").observed;
  EXPECT_EQ(observed, text.substr(0, 499) + "\xe2\x80\xa6 (600 more characters)");
}

TEST(HealthRules, HaveLinesOfAHundredColumns) {
  host::ReportLine line;
  for (host::ReportLines lines(host::kBuiltInRules); lines.Next(line);) {
    EXPECT_LE(line.text.size(), 100U + std::count(line.text.begin(), line.text.end(), '\xc2'))
        << line.number;
  }
}

TEST(HealthRules, JudgeASensorsLostRedundancyUnderItsFailingSupply) {
  Parts parts;
  AddDiscrete(parts, "PS2 Status", kPowerSupply, kDiscrete, 1 << 3);
  AddDiscrete(parts, "PS Redundancy", kPowerSupply, kRedundancy, 1 << 1);
  const host::Health health = Judge(parts);
  ASSERT_EQ(health.findings.size(), 1U);
  EXPECT_EQ(health.findings[0].key, "sensor.state PS2 Status");
  EXPECT_EQ(health.findings[0].hits[0].area, "power");
}

TEST(HealthRules, JudgeAGroupByItsOwnDrives) {
  const auto judge = [](const char* group, const char* state) {
    Parts parts;
    AddGroup(parts, "lsi0 g0", "Dgrd");
    AddVolume(parts, "lsi0 v0", "Optl");
    AddMember(parts, "lsi0 69:1", state);
    parts.drives.back().group = group;
    return GetHit(Judge(parts), "group.degraded");
  };
  EXPECT_EQ(judge("lsi0 g0", "Rbld").severity, kWarning);
  EXPECT_EQ(judge("lsi0 g1", "Rbld").severity, kCritical);
  EXPECT_EQ(judge("lsi0 g0", "Offln").because, std::vector<std::string>{"lsi0 69:1"});
  EXPECT_TRUE(judge("lsi0 g1", "Offln").because.empty());
}

}  // namespace
