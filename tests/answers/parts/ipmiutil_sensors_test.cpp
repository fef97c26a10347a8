#include "host/answers/parts/ipmiutil_sensors.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "host/answers/parts/ipmi_types.h"

namespace {

using host::FindPlace;
using host::FindSensorType;
using host::Integer;
using host::Parts;
using host::Real;
using host::Sensor;
using testing::IsEmpty;

void KeepUnread(Parts& parts, const std::string& line, const host::Place& at) {
  host::Unread& unread = parts.unread.emplace_back();
  unread.readAt = at;
  unread.text = line;
}

/// The parts of two listings; the place of a line is its number.
Parts ReadSensors(const std::vector<std::string>& readings,
                  const std::vector<std::string>& records = {}) {
  Parts parts;
  host::SensorReader reader(parts);
  std::int64_t number = 0;
  for (const std::string& line : readings) {
    const host::Place at{"SENSORINFO", ++number, {}, 0, {}};
    if (!reader.TakeReading(line, at)) KeepUnread(parts, line, at);
  }
  number = 0;
  for (const std::string& line : records) {
    const host::Place at{"SDRINFO", ++number, {}, 0, {}};
    if (!reader.TakeRecord(line, at)) KeepUnread(parts, line, at);
  }
  return parts;
}

Sensor ReadOne(const std::string& reading) {
  const Parts parts = ReadSensors({reading});
  EXPECT_EQ(parts.sensors.size(), 1U) << reading;
  return parts.sensors.empty() ? Sensor() : parts.sensors[0];
}

TEST(SensorReadings, HaveTenColumns) {
  const Sensor fan = ReadOne(
      "Fan 5            | 1140.00 | RPM | nc | 600.00 | 900.00 |1200.00 |     na |     na |     "
      "na\r");
  EXPECT_EQ(fan.id, "Fan 5");
  EXPECT_EQ(fan.name, "Fan 5");
  EXPECT_EQ(fan.reading, Real(1140));
  EXPECT_EQ(fan.unit, "RPM");
  EXPECT_EQ(fan.status, "nc");
  EXPECT_EQ(fan.lnr, Real(600));
  EXPECT_EQ(fan.lc, Real(900));
  EXPECT_EQ(fan.lnc, Real(1200));
  EXPECT_EQ(fan.unc, Real());
  EXPECT_EQ(fan.unr, Real());
  EXPECT_EQ(fan.readAt.row, 1);
}

TEST(SensorReadings, KnowUpperThresholdsToo) {
  const Sensor sensor = ReadOne("T | 47.00 | C | ok | na | 0.00 | 3.00 | 38.00 | 42.00 | 47.50");
  EXPECT_EQ(sensor.lc, Real(0));
  EXPECT_EQ(sensor.lnc, Real(3));
  EXPECT_EQ(sensor.unc, Real(38));
  EXPECT_EQ(sensor.uc, Real(42));
  EXPECT_EQ(sensor.unr, Real(47.5));
}

TEST(SensorReadings, HaveNoReadingThatIsNone) {
  EXPECT_EQ(ReadOne("T | na | C | na | na | na | na | na | na | na").reading, Real());
  const Sensor absent = ReadOne(
      "0007 | Full    | Temperature     | 07 | DIMM B1 Temp     | Absent | 0.00 na \t| Thresh "
      "83.00:82.00:81.00:0.00:0.00:0.00 | Fri Nov 20 09:23:10 2026");
  EXPECT_EQ(absent.status, "Absent");
  EXPECT_EQ(absent.reading, Real());
  EXPECT_EQ(absent.unit, "");
  EXPECT_EQ(ReadOne("0007 | Full | Fan | 07 | F | Init  | 0.00 RPM \t| ").reading, Real());
}

TEST(SensorReadings, HaveTheStockLayoutAsWell) {
  const Sensor sensor = ReadOne(
      "0017 | Full    | Voltage         | 25 | N12V             | OK   | -12.00 V \t| Thresh "
      "-13.00:-14.00:0.00:-11.00:-10.00:-20.00 | Fri Nov 20 09:23:10 2026");
  EXPECT_EQ(sensor.id, "N12V");
  EXPECT_EQ(sensor.number, Integer(0x25));
  EXPECT_EQ(sensor.type, Integer(2));
  EXPECT_EQ(sensor.status, "OK");
  EXPECT_EQ(sensor.reading, Real(-12));
  EXPECT_EQ(sensor.unit, "V");
  EXPECT_EQ(sensor.lnc, Real(-13));
  EXPECT_EQ(sensor.lc, Real(-14));
  EXPECT_EQ(sensor.lnr, Real());  // 0.00
  EXPECT_EQ(sensor.unc, Real(-11));
  EXPECT_EQ(sensor.uc, Real(-10));
  EXPECT_EQ(sensor.unr, Real(-20));
}

TEST(SensorReadings, PrintStateBitsUnderSomeVendorNumbers) {
  const std::string begin = "0001 | Compact | Processor | 41 | CPU1 Status | ";
  EXPECT_EQ(ReadOne(begin + "0180 DiscreteEvt | | Entity").states, Integer(0x180));
  EXPECT_EQ(ReadOne(begin + "0180 DiscreteEvt | | Entity").eventType, Integer(0x6f));
  EXPECT_EQ(ReadOne(begin + "0002 RedundancyLost | | Entity").eventType, Integer(0x0b));
  EXPECT_EQ(ReadOne(begin + "Faulty Faulty | | Entity").states, Integer());
  EXPECT_EQ(ReadOne(begin + "ProcPresent | | Entity").states, Integer());
}

TEST(SensorReadings, MayBeOfASensorOfEventsOnly) {
  const Sensor sensor = ReadOne("0030 | EvtOnly | Button | 6d | Power Button | OK | | Entity");
  EXPECT_EQ(sensor.name, "Power Button");
  EXPECT_EQ(sensor.number, Integer(0x6d));
  EXPECT_EQ(sensor.type, Integer(0x14));
  EXPECT_EQ(sensor.status, "OK");
  EXPECT_EQ(sensor.reading, Real());
}

TEST(SensorReadings, HaveAStatusInACellOfTheirLayout) {
  EXPECT_EQ(host::FindStatusCell("T | 47.00 | C | ok"), 3U);
  EXPECT_EQ(host::FindStatusCell("0001 | Full | Fan | 01 | F | OK | 1.00 RPM"), 5U);
}

TEST(SensorReadings, AreUnreadWhenTheyAreCutOff) {
  const Parts parts = ReadSensors(
      {"ipmiutil sensor version 3.18",
       " ID  | SDRType | Type            |SNum| Name             |Status| Reading",
       "0001 | Full    | Temperature     | 01 | P0 Error in GetSensorReading, cc = 0xc3",
       "CPU0 Temp | fourty | C | ok", "CPU0 Temp | 40", " "});
  EXPECT_THAT(parts.sensors, IsEmpty());
  ASSERT_EQ(parts.unread.size(), 3U);
  EXPECT_EQ(parts.unread[0].text,
            "0001 | Full    | Temperature     | 01 | P0 Error in GetSensorReading, cc = 0xc3");
  EXPECT_EQ(parts.unread[0].readAt.row, 3);
}

constexpr char kFan[] =
    "000c SDR Full 01 01 20 a 04 snum 12 FAN 2A           = 0e Warn-lo 1050.00 RPM";
constexpr char kSupply[] = "0021 SDR Comp 02 6f 20 a 08 snum 43 PS2 Status       = 0009 AC_Lost  ";

TEST(SensorRecords, TellTypeEventTypeAndStates) {
  const Parts parts = ReadSensors({}, {kFan, kSupply});
  ASSERT_EQ(parts.sensors.size(), 2U);
  const Sensor& fan = parts.sensors[0];
  EXPECT_EQ(fan.id, "FAN 2A");
  EXPECT_EQ(fan.number, Integer(0x12));
  EXPECT_EQ(fan.type, Integer(4));
  EXPECT_EQ(fan.eventType, Integer(1));
  EXPECT_EQ(fan.states, Integer());
  EXPECT_EQ(fan.status, "Warn-lo");
  EXPECT_EQ(fan.reading, Real(1050));
  EXPECT_EQ(fan.unit, "RPM");
  const Sensor& supply = parts.sensors[1];
  EXPECT_EQ(supply.type, Integer(8));
  EXPECT_EQ(supply.eventType, Integer(0x6f));
  EXPECT_EQ(supply.states, Integer(9));
  EXPECT_EQ(supply.status, "AC_Lost");
  EXPECT_EQ(supply.reading, Real());
  EXPECT_EQ(supply.readAt.row, 2);
}

TEST(SensorRecords, AddToTheirReading) {
  const Parts parts =
      ReadSensors({"PS2 Status | 0x0 | discrete | 0x0900 | na",
                   "FAN 2A | 1050.00 | RPM | nc | 600.00 | 900.00 | 1200.00 | na | na | na"},
                  {kFan, kSupply});
  ASSERT_EQ(parts.sensors.size(), 2U);
  EXPECT_EQ(parts.sensors[0].states, Integer(9));
  EXPECT_EQ(parts.sensors[0].status, "0x0900");
  EXPECT_EQ(parts.sensors[0].number, Integer(0x43));
  EXPECT_EQ(parts.sensors[0].readAt.className, "SENSORINFO");
  EXPECT_EQ(FindPlace(parts.sensors[0], "states").className, "SDRINFO");
  EXPECT_EQ(parts.sensors[1].type, Integer(4));
  EXPECT_EQ(parts.sensors[1].status, "nc");
  EXPECT_EQ(parts.sensors[1].reading, Real(1050));
}

TEST(SensorRecords, KeepSensorsOfOneNameApart) {
  const auto reading = [](const char* number, const char* value) {
    return std::string("0001 | Full | Temperature | ") + number + " | Temp | OK | " + value +
           " C | x";
  };
  const auto record = [](const char* number) {
    return std::string("0001 SDR Full 01 01 20 a 01 snum ") + number +
           " Temp = 24 OK 1.00 degrees C";
  };
  // By number where it is told, in their order otherwise.
  Parts parts =
      ReadSensors({reading("01", "11.00"), reading("02", "22.00")}, {record("02"), record("01")});
  ASSERT_EQ(parts.sensors.size(), 2U);
  EXPECT_EQ(parts.sensors[0].number, Integer(1));
  EXPECT_EQ(parts.sensors[0].reading, Real(11));
  EXPECT_EQ(parts.sensors[1].number, Integer(2));
  parts = ReadSensors({"Temp | 11.00 | C | ok", "Temp | 22.00 | C | ok"},
                      {record("07"), record("08"), record("09")});
  ASSERT_EQ(parts.sensors.size(), 3U);
  EXPECT_EQ(parts.sensors[0].number, Integer(7));
  EXPECT_EQ(parts.sensors[0].reading, Real(11));
  EXPECT_EQ(parts.sensors[1].number, Integer(8));
  EXPECT_EQ(parts.sensors[2].number, Integer(9));
  EXPECT_EQ(parts.sensors[2].reading, Real(1));
}

TEST(SensorRecords, OfASensorThatWasLeftOutAreNotTheLastOnes) {
  std::vector<std::string> readings;
  for (std::size_t i = 0; i < host::kMostParts; ++i) {
    readings.push_back("T" + std::to_string(i) + " | 41 | C | ok | na | na | na | 85 | 92 | 100");
  }
  const std::string record = "0021 SDR Comp 02 6f 20 a 08 snum 43 PS2 Status = 0009 AC_Lost";
  const Parts parts = ReadSensors(readings, {record, record});
  ASSERT_EQ(parts.sensors.size(), host::kMostParts);
  EXPECT_EQ(parts.sensors.CountLeft(), 2U);
  EXPECT_EQ(parts.sensors.back().states, Integer());
}

TEST(SensorRecords, HaveDiscreteStatesOfTwoDigitsToo) {
  const Parts parts = ReadSensors({}, {"0001 SDR Full 01 6f 20 a 07 snum 40 CPU = 80 ProcPresent"});
  EXPECT_EQ(parts.sensors.at(0).states, Integer(0x80));
  EXPECT_EQ(parts.sensors[0].status, "ProcPresent");
}

TEST(SensorRecords, GiveNoStatesToASensorOfEventsOnly) {
  const Parts parts =
      ReadSensors({}, {"0035 SDR EvtO 03 18 20 a 13 snum 61 Critical Int     = 0001 OK  "});
  EXPECT_EQ(parts.sensors.at(0).number, Integer(0x61));
  EXPECT_EQ(parts.sensors[0].type, Integer(0x13));
  EXPECT_EQ(parts.sensors[0].eventType, Integer());
  EXPECT_EQ(parts.sensors[0].states, Integer());
}

TEST(SensorRecords, MayHaveARawReadingAlone) {
  const Parts parts = ReadSensors({}, {"0021 SDR Full 01 01 20 m 04 snum 31 Fan 1  = 3c"});
  ASSERT_EQ(parts.sensors.size(), 1U);
  EXPECT_EQ(parts.sensors[0].number, Integer(0x31));
  EXPECT_EQ(parts.sensors[0].status, "");
  EXPECT_EQ(parts.sensors[0].reading, Real());
}

TEST(SensorRecords, AreUnreadWhenTheyAreCutOff) {
  const Parts parts = ReadSensors(
      {}, {"0037 SDR FRU  11 14 dev: 20 01 80 00 0a 01 PSU 1 FRU",
           "     SDR IPMI       sensor: Power On Hours \t   = 12345 hours",
           "ipmiutil sensor, completed successfully", "0001 SDR Full 01 01 20 a 01 snum 01 CPU0 Te",
           "0001 SDR Comp 02 zz 20 a 08 snum 43 PS2 = 0009 AC_Lost"});
  EXPECT_THAT(parts.sensors, IsEmpty());
  ASSERT_EQ(parts.unread.size(), 2U);
  EXPECT_EQ(parts.unread[0].readAt.row, 4);
}

TEST(SensorTypes, HaveIpmiutilsNamesAlsoCutOff) {
  EXPECT_EQ(FindSensorType("Temperature"), Integer(1));
  EXPECT_EQ(FindSensorType("Fan"), Integer(4));
  EXPECT_EQ(FindSensorType("Platform Securi"), Integer(5));
  EXPECT_EQ(FindSensorType("Physical Security"), Integer(5));
  EXPECT_EQ(FindSensorType("Critical Interru"), Integer(0x13));
  EXPECT_EQ(FindSensorType("OS Critical Sto"), Integer(0x20));
  EXPECT_EQ(FindSensorType("Management Subs"), Integer(0x28));
  EXPECT_EQ(FindSensorType("Battery"), Integer(0x29));
  EXPECT_EQ(FindSensorType("OEM(c5)"), Integer(0xc5));
  EXPECT_EQ(FindSensorType("Power"), Integer());
  EXPECT_EQ(FindSensorType(""), Integer());
}

}  // namespace
