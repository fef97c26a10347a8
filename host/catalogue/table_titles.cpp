#include "host/catalogue/table_titles.h"

namespace host {
namespace {

struct Title {
  const char* className;
  const char* title;
};

constexpr Title kTitles[] = {
    {"AMTLOG", "AMT event log"},
    {"ARPINFO", "ARP table"},
    {"ARRAY", "Intel RST arrays"},
    {"CONTROLLER", "Intel RST or VROC controller"},
    {"ENDDEVICEINFO", "Intel RST end devices"},
    {"EVENTLOG1", "LSI controller events, page 1"},
    {"EVENTLOG2", "LSI controller events, page 2"},
    {"EVENTLOG3", "LSI controller events, page 3"},
    {"EVENTLOG4", "LSI controller events, page 4"},
    {"EVENTLOG5", "LSI controller events, page 5"},
    {"FRUINFO", "Field-replaceable units (FRU)"},
    {"FWTERMLOG", "LSI firmware term log"},
    {"JUNADDTABLE", "Additional sample table"},
    {"LANINFO", "BMC LAN settings"},
    {"LEDINFO", "LED status"},
    {"LSILINK", "LSI controller reports, raw"},
    {"MCINFO", "Management controller"},
    {"NETSTATINFO", "Network connections"},
    {"PDLIST", "LSI physical drive details"},
    {"PINFO", "LSI physical drives"},
    {"PMCINFO", "Microchip controller"},
    {"PMCLINK", "Microchip support files, raw"},
    {"PMCVER", "Microchip controller versions"},
    {"PSUINFO", "Power supplies"},
    {"RAIDINFO", "LSI controller summary"},
    {"S1TABLE1", "Sample 1, table 1"},
    {"S1TABLE2", "Sample 1, table 2"},
    {"S2TABLE1", "Sample 2, table 1"},
    {"S2TABLE2", "Sample 2, table 2"},
    {"SAS2IRLOG", "LSI SAS2 controller log"},
    {"SDRINFO", "Sensor data records (SDR)"},
    {"SELFINFO", "BMC self-test"},
    {"SELINFO", "System event log (SEL)"},
    {"SENSORINFO", "Sensors"},
    {"TINFO", "LSI topology"},
    {"VERINFO", "Firmware versions"},
    {"VINFO", "LSI virtual drives"},
    {"VOLUME", "Intel RST volumes"},
};

}  // namespace

std::string TitleOf(const std::string& className) {
  for (const Title& entry : kTitles) {
    if (className == entry.className) return entry.title;
  }
  return className;
}

}  // namespace host
