#include "host/redact/value_finder.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> List(const std::function<void(const TakeValue&)>& find,
                              const std::string& text) {
  std::vector<std::string> found;
  find([&](ValueKind kind, std::size_t begin, std::size_t end) {
    const std::string value = text.substr(begin, end - begin);
    if (IsNoSecret(kind, value)) return;
    found.push_back(std::string(DescribeKind(kind).name) + " " + value);
  });
  return found;
}

std::vector<std::string> ByShape(const std::string& text) {
  return List([&](const TakeValue& take) { FindByShape(text, take); }, text);
}
std::vector<std::string> ByLabel(const std::string& text) {
  return List([&](const TakeValue& take) { FindByLabel(text, take); }, text);
}
std::vector<std::string> ByPlace(const std::string& text, TextPlace place) {
  return List([&](const TakeValue& take) { FindByPlace(text, place, take); }, text);
}

TEST(ValueShapes, TellAddresses) {
  EXPECT_THAT(ByShape("at 10.24.8.31:445"), ElementsAre("ipv4 10.24.8.31"));
  EXPECT_THAT(ByShape("[2001:db8::17]:80 fe80::1%17"),
              ElementsAre("ipv6 2001:db8::17", "ipv6 fe80::1"));
  EXPECT_THAT(ByShape("2001:db8:0:0:1:0:0:1/64"), ElementsAre("ipv6 2001:db8:0:0:1:0:0:1"));
  EXPECT_THAT(ByShape("3c-ec-ef-22-b1-40 5E:10:7B:00:C4:19 3cec.ef4a.710a"),
              ElementsAre("mac 3c-ec-ef-22-b1-40", "mac 5E:10:7B:00:C4:19", "mac 3cec.ef4a.710a"));
  EXPECT_THAT(ByShape(" 17...3c ec ef 4a 71 08 ......Port 1"),
              ElementsAre("mac 3c ec ef 4a 71 08"));
  EXPECT_THAT(ByShape("MAC addr: 3c ec ef 4a 71 0a \n"), ElementsAre("mac 3c ec ef 4a 71 0a"));
  EXPECT_THAT(ByShape("0x5a4c2d07b8140035 naa.2000c2d07b814003"),
              ElementsAre("wwn 5a4c2d07b8140035", "wwn 2000c2d07b814003"));
  EXPECT_THAT(ByShape("{5B0C9A4E-1d77-11ec-8f20-3cecef4a7108}"),
              ElementsAre("guid 5B0C9A4E-1d77-11ec-8f20-3cecef4a7108"));
  EXPECT_THAT(ByShape("write to <jan.k+ops@rack.example.com>."),
              testing::Contains("mail jan.k+ops@rack.example.com"));
}

// Times, versions, masks and what every machine has.
TEST(ValueShapes, LeaveWhatLooksAlike) {
  for (const char* text : {"11/18/2026 09:41:07",
                           "Firmware : 4.1.4.45",
                           "ver 3.2.1.0",
                           "007.2612.0000.0000",
                           "4.1.4.450",
                           "255.255.252.0",
                           "127.0.0.1",
                           "0.0.0.0",
                           "224.0.0.22",
                           "1.2.3.4.5",
                           "[::1]",
                           "ff02::1",
                           "ff-ff-ff-ff-ff-ff",
                           "01-00-5e-00-00-16",
                           "14 14 14 14 00 12",
                           "std::find",
                           "0x0000000020000001",
                           "00000000-0000-0000-0000-000000000000",
                           "storcli.exe",
                           "a@b",
                           "C:\\Windows\\System32\\drivers"}) {
    EXPECT_THAT(ByShape(text), IsEmpty()) << text;
  }
}

TEST(ValueShapes, TellPathsAndWhoseTheyAre) {
  EXPECT_THAT(ByShape("saved to D:\\vmstore\\Acme Corp\\plans.txt now"),
              ElementsAre("path vmstore", "path Acme Corp", "path plans"));
  EXPECT_THAT(ByShape("\"C:\\Users\\jkorva\\logs\\\""), ElementsAre("person jkorva"));
  EXPECT_THAT(ByShape("from \\\\filer7\\acme-share\\x"),
              ElementsAre("host filer7", "path acme-share"));
}

TEST(ValueShapes, TellNamesWithDomains) {
  EXPECT_THAT(ByShape("joined node31.rack7.acme-corp.com,"),
              ElementsAre("host node31", "host rack7", "host acme-corp"));
}

TEST(ValueLabels, AnnounceValues) {
  EXPECT_THAT(ByLabel("SN = S4K002C4C26\r\n"), ElementsAre("serial S4K002C4C26"));
  EXPECT_THAT(ByLabel("[Baseboard,20,00] Chassis Serial Num  : NGC22-00417\n"),
              ElementsAre("serial NGC22-00417"));
  EXPECT_THAT(ByLabel("<Drive serialNumber=\"KV 0341P\" model=\"x\"/>"),
              ElementsAre("serial KV 0341P"));
  EXPECT_THAT(ByLabel("\"Serial Number\" : \"Z1\\\",\n\"SerialNo\":\"KV0341\""),
              ElementsAre("serial KV0341"));
  EXPECT_THAT(ByLabel("PSU 1  present  serial PSN2204117   1100 W"),
              ElementsAre("serial PSN2204117"));
  EXPECT_THAT(ByLabel("WWN = 5A4C2D07B8140033"), ElementsAre("wwn 5A4C2D07B8140033"));
  EXPECT_THAT(ByLabel("Product Asset Tag   : DC2-R11-U18"), ElementsAre("asset DC2-R11-U18"));
  EXPECT_THAT(ByLabel("Community string: ngroup "), ElementsAre("password ngroup"));
  EXPECT_THAT(ByLabel("Password=x7\nuser_name: ACME\\jkorva"),
              ElementsAre("password x7", "host ACME", "person jkorva"));
  EXPECT_THAT(ByLabel("Remote control     User \"ops-jan\" opened a session"),
              ElementsAre("person ops-jan"));
  EXPECT_THAT(ByLabel("Host Name = NODE31.acme.local"), ElementsAre("host NODE31", "host acme"));
  // A capital begins a word of its own.
  EXPECT_THAT(ByLabel("targetHostName=NODE31"), ElementsAre("host NODE31"));
}

TEST(ValueLabels, AnnounceAWordWhereAnotherLabelFollows) {
  EXPECT_THAT(ByLabel("Serial Number: KV0341 Model: x"), ElementsAre("serial KV0341"));
}

TEST(ValueLabels, EndWithTheText) {
  EXPECT_THAT(ByLabel("Drive serial "), IsEmpty());
  EXPECT_THAT(ByLabel("User 'ops-jan"), IsEmpty());
  EXPECT_THAT(ByLabel("User 'ops\njan'"), IsEmpty());
  EXPECT_THAT(ByLabel("User 'ops-jan' left"), ElementsAre("person ops-jan"));
  EXPECT_THAT(ByLabel("=KV0341"), IsEmpty());
  EXPECT_THAT(ByLabel("serial KV0341-2"), ElementsAre("serial KV0341-2"));
}

TEST(ValueLabels, AnnounceNothing) {
  for (const char* text :
       {"Serial Number = N/A", "SN = Unknown",
        "Serial Number: ", "Asset Tag: To be filled by O.E.M.", "Domain ID = 0",
        "Cache Serial Number : Not Applicable", "Lesson: 12345678", "Bus Serial: 0000000000",
        "Password: Not set", "Password = ***", "Serial port 1 open"}) {
    EXPECT_THAT(ByLabel(text), IsEmpty()) << text;
  }
}

TEST(ValuePlaces, HaveNames) {
  EXPECT_THAT(ByPlace("  TCP    10.24.8.31:445    fileclient07:50112    ESTABLISHED\n"
                      "  TCP    [::1]:51177       NODE31:8443           FIN_WAIT_2\n",
                      TextPlace::kConnections),
              ElementsAre("host fileclient07", "host NODE31"));
  EXPECT_THAT(
      ByPlace("# 10.1.1.1 comment\n10.24.8.12  backup-vault-3 vault # x\n", TextPlace::kHosts),
      ElementsAre("host backup-vault-3", "host vault"));
  EXPECT_THAT(ByPlace("Share name   Resource\n\n------\nC$           C:\\            Default\n"
                      "vmstore      D:\\Acme Corp\\vm   Remark\nIPC$                 Remote IPC\n",
                      TextPlace::kShares),
              ElementsAre("path vmstore", "path Acme Corp"));
  EXPECT_THAT(
      ByPlace("------\nqueue$       LPT1:          Spooled\n  more\nx\nacmevm  D:\\acme3 \r\n",
              TextPlace::kShares),
      ElementsAre("path queue$", "path acmevm", "path acme3"));
}

TEST(ValuePlaces, HaveNoNamesInOtherLines) {
  EXPECT_THAT(ByPlace("\n  Proto  Local\n  TCP    *\n  ICMP  fileclient07:1 fileclient08:2 x\n"
                      "  UDP    fileclient07   fileclient08:1\r\n",
                      TextPlace::kConnections),
              ElementsAre("host fileclient08"));
}

TEST(ValuePlaces, HaveLogins) {
  EXPECT_THAT(
      ByPlace("192.0.2.40 deskadmin\namt-host deskadmin Lantern-52\n", TextPlace::kConsole),
      ElementsAre("login deskadmin", "host amt-host", "login deskadmin", "password Lantern-52"));
  EXPECT_THAT(ByPlace("sel -N bmc-31 -U opsuser -P Lantern-52 -s -q", TextPlace::kArguments),
              ElementsAre("host bmc-31", "login opsuser", "password Lantern-52"));
  EXPECT_THAT(ByPlace("--user=opsuser --password Lantern-52", TextPlace::kArguments),
              ElementsAre("login opsuser", "password Lantern-52"));
  EXPECT_THAT(ByPlace("/c0/eall/sall show all", TextPlace::kArguments), IsEmpty());
  // What is one letter may have its value in the same word.
  EXPECT_THAT(ByPlace("sel -Nbmc-31 -Uopsuser -PLantern-52 -x -U", TextPlace::kArguments),
              ElementsAre("host bmc-31", "login opsuser", "password Lantern-52"));
  EXPECT_THAT(ByPlace("sel -N 192.0.2.40 --host=bmc-31", TextPlace::kArguments),
              ElementsAre("host bmc-31"));
  EXPECT_THAT(ByPlace("\n192.0.2.40\n", TextPlace::kConsole), IsEmpty());
}

}  // namespace
}  // namespace host
