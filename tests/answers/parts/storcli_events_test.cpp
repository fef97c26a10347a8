#include "host/answers/parts/storcli_events.h"

#include <gtest/gtest.h>

#include "tests/answers/parts/lsi_report.h"

namespace {

using host::Integer;
using host::Parts;

/// Drive 252:4 with device id 0x14, and a capacitor.
Parts MakeParts() {
  Parts parts;
  host::Drive drive;
  drive.id = "lsi0 252:4";
  drive.controller = "lsi0";
  drive.place = "252:4";
  drive.deviceId = 0x14;
  parts.drives.push_back(drive);
  host::CacheBackup backup;
  backup.id = "lsi0 CacheVault";
  backup.controller = "lsi0";
  parts.cacheBackups.push_back(backup);
  return parts;
}

Parts ReadEvents(std::string_view text) {
  Parts parts = MakeParts();
  host::ReadStorcliEvents(test::LsiReport(text, "lsieventlog"), parts);
  return parts;
}

/// The part that an event with this description and code is about.
std::string FindPart(const std::string& text, const std::string& code = "0x71",
                     const std::string& data = "None") {
  const Parts parts = ReadEvents("seqNum: 0x01\nCode: " + code + "\nEvent Description: " + text +
                                 "\nEvent Data:\n===========\n" + data + "\n");
  return parts.events[0].part + " " + parts.events[0].partId;
}

constexpr char kDump[] =
    "CLI Version = 7\n"
    "\n"
    "seqNum: 0x0000cf1a\n"
    "Time: Tue Jun  2 18:02:08 2015\n"
    "\n"
    "Code: 0x000000fb\n"
    "Class: 2\n"
    "Locale: 0x01\n"
    "Event Description: VD 00/0 is now DEGRADED: look\n"
    "Event Data:\n"
    "===========\n"
    "Target Id: 3\n"
    "Time: of no event\n"
    "\n"
    "\n"
    "seqNum: 0x0000cf1b\n"
    "Seconds since last reboot: 3\n"
    "Code: 0x00000071\n"
    "Class: -1\n"
    "Event Description: Unexpected sense: PD 14(e0xfc/s4) Path 5, CDB: 28 00, Sense: 3/11/00\n";

TEST(StorcliEvents, AreReadToTheLastOne) {
  const Parts parts = ReadEvents(kDump);
  ASSERT_EQ(parts.events.size(), 2U);
  const host::Event& first = parts.events[0];
  EXPECT_EQ(first.id, "lsi0 0000cf1a");
  EXPECT_EQ(first.source, "LSI");
  EXPECT_EQ(first.controller, "lsi0");
  EXPECT_EQ(first.number, Integer(0xcf1a));
  EXPECT_EQ(first.time, "2015-06-02T18:02:08");
  EXPECT_EQ(first.code, Integer(0xfb));
  EXPECT_EQ(first.level, Integer(2));
  EXPECT_EQ(first.text, "VD 00/0 is now DEGRADED: look");
  EXPECT_EQ(first.part, "volumes");
  EXPECT_EQ(first.partId, "lsi0 v3");
  EXPECT_EQ(first.readAt.line, 3);
  const host::Event& last = parts.events[1];
  EXPECT_EQ(last.time, "");
  EXPECT_EQ(last.level, Integer(-1));
  EXPECT_EQ(last.sense, "3/11/00");
  EXPECT_EQ(last.partId, "lsi0 252:4");
}

TEST(StorcliEvents, HaveASenseWithoutWhatFollowsIt) {
  const auto findSense = [](const std::string& told) {
    return ReadEvents("seqNum: 0x00000001\nEvent Description: Unexpected sense: PD 14, " + told +
                      "\n")
        .events[0]
        .sense;
  };
  EXPECT_EQ(findSense("Sense: 3/11/00, retried"), "3/11/00");
  EXPECT_EQ(findSense("Sense:b/4b/04"), "b/4b/04");
  EXPECT_EQ(findSense("Sense: 3/11"), "");
  EXPECT_EQ(findSense("no sense"), "");
}

TEST(StorcliEvents, NameADriveByPlaceThenByDeviceId) {
  EXPECT_EQ(FindPart("PD 99(e0xfc/s4) failed"), "drives lsi0 252:4");
  EXPECT_EQ(FindPart("PD 99(e252/s4) failed"), "drives lsi0 252:4");
  EXPECT_EQ(FindPart("PD 0x14(e0xff/s7) failed"), "drives lsi0 252:4");
  EXPECT_EQ(FindPart("PD 14 failed"), "drives lsi0 252:4");
  EXPECT_EQ(FindPart("Inserted: PD 15(e0x45/s11) Info"), "drives lsi0 69:11");
  EXPECT_EQ(FindPart("PD 15(e0xff/s2) gone"), "drives lsi0 :2");
  EXPECT_EQ(FindPart("State of EPD 15(e0xff/s2)"), "drives lsi0 :2");
}

TEST(StorcliEvents, NameAVolumeByItsTarget) {
  EXPECT_EQ(FindPart("VD 00/0 is now OPTIMAL", "0xf9", "Target Id: 12"), "volumes lsi0 v12");
  EXPECT_EQ(FindPart("Init on VD 02/0a"), "volumes lsi0 v10");
}

TEST(StorcliEvents, AreOtherwiseAboutTheCacheBackupOrTheController) {
  EXPECT_EQ(FindPart("Battery needs replacement", "0x91"), "cache_backups lsi0 CacheVault");
  EXPECT_EQ(FindPart("Patrol read started", "0x27"), "controllers lsi0");
  EXPECT_EQ(FindPart("PD is no name", "0x27"), "controllers lsi0");
  EXPECT_EQ(FindPart("VD ", "0x27"), "controllers lsi0");
}

// Its codes are of another numbering.
TEST(StorcliEvents, OfTheSecondGenerationHaveNoCode) {
  const Parts parts = ReadEvents(
      "Sequence Number: 3772\n"
      "Time: Fri Aug 14 09:16:51 2026\n"
      "\n"
      "Code: 437\n"
      "Class: Warning\n"
      "Event Description: PD 0x14(e0xfc/s4) Path 0x0 reset (Type 0x03).\n");
  ASSERT_EQ(parts.events.size(), 1U);
  EXPECT_EQ(parts.events[0].id, "lsi0 00000ebc");
  EXPECT_EQ(parts.events[0].code, Integer());
  EXPECT_EQ(parts.events[0].level, Integer(1));
  EXPECT_EQ(parts.events[0].partId, "lsi0 252:4");
}

TEST(StorcliEvents, WithoutWordsAndCodeAreUnread) {
  const Parts parts = ReadEvents("seqNum: 0x07\nTime: Tue Jun  2 18:02:08 2015\n");
  EXPECT_TRUE(parts.events.empty());
  EXPECT_EQ(parts.unread.at(0).text, "seqNum: 0x07");
}

TEST(StorcliTermLog, AddsTheEventsThatTheEventLogHasNot) {
  Parts parts = ReadEvents(kDump);
  host::ReadStorcliTermLog(
      test::LsiReport("T10: C0:DM_DeviceInserted: tempdevId[51]\n"
                      "06/02/15 18:02:08: C0:EVT#53018-06/02/15 18:02:08: 251=VD 00/0 is DEGRADED\n"
                      "06/02/15 18:02:10: C0:EVT#53020-06/02/15 18:02:10: 218=Foreign found\n"
                      "T28: EVT#53021-T28: 103=Rebuild progress on PD 14(e0xfc/s4) is 1.00%(93s)\n"
                      "T28: EVT#x-T28: cut\n",
                      "lsifwtermlog"),
      parts);
  ASSERT_EQ(parts.events.size(), 4U);
  EXPECT_EQ(parts.events[2].id, "lsi0 0000cf1c");
  EXPECT_EQ(parts.events[2].time, "2015-06-02T18:02:10");
  EXPECT_EQ(parts.events[2].code, Integer(218));
  EXPECT_EQ(parts.events[2].text, "Foreign found");
  EXPECT_EQ(parts.events[2].level, Integer());
  EXPECT_EQ(parts.events[3].time, "");
  EXPECT_EQ(parts.events[3].partId, "lsi0 252:4");
  ASSERT_EQ(parts.unread.size(), 1U);
  EXPECT_EQ(parts.unread[0].readAt.line, 5);
}

TEST(StorcliTermLog, TellsWhatIsKeptInTheCache) {
  const auto read = [](const std::string& text) {
    Parts parts;
    host::ReadStorcliTermLog(test::LsiReport(text, "lsifwtermlog"), parts);
    return parts.events;
  };
  const std::string kept = "06/02/15 18:02:08: C0:Scan: number_of_pinned_vds = 2 \n";
  ASSERT_EQ(read(kept).size(), 1U);
  EXPECT_EQ(read(kept)[0].text, "C0:Scan: number_of_pinned_vds = 2");
  EXPECT_EQ(read(kept)[0].time, "2015-06-02T18:02:08");
  EXPECT_EQ(read(kept)[0].level, Integer(1));
  EXPECT_EQ(read(kept)[0].part, "controllers");
  EXPECT_TRUE(read(kept + "06/02/15 18:03:08: C0:Scan: number_of_pinned_vds = 0\n").empty());
}

}  // namespace
