#include "host/database/sql_names.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(SqlNames, QuotesAnyText) {
  EXPECT_EQ(QuoteName("a b"), "\"a b\"");
  EXPECT_EQ(QuoteName("a\"b"), "\"a\"\"b\"");
}

TEST(SqlNames, MakesColumnNamesOfLabels) {
  EXPECT_EQ(MakeSnakeCase("Mfg. Date"), "mfg_date");
  EXPECT_EQ(MakeSnakeCase("StripeSize"), "stripe_size");
  EXPECT_EQ(MakeSnakeCase("seqNum"), "seq_num");
  EXPECT_EQ(MakeSnakeCase("sCC"), "scc");
  EXPECT_EQ(MakeSnakeCase("BIOS Version"), "bios_version");
  EXPECT_EQ(MakeSnakeCase("S.M.A.R.T alert flagged by drive"), "smart_alert_flagged_by_drive");
  EXPECT_EQ(MakeSnakeCase("Logical devices/Failed/Degraded"), "logical_devices_failed_degraded");
  EXPECT_EQ(MakeSnakeCase("  Lan Param(3) IP address "), "lan_param_3_ip_address");
  EXPECT_EQ(MakeSnakeCase("Gr\u00f6\u00dfe 2"), "gr\u00f6\u00dfe_2");
  EXPECT_EQ(MakeSnakeCase(" -:- "), "");
}

TEST(SqlNames, AreUniqueWhateverTheirCase) {
  UniqueNames names;
  EXPECT_EQ(names.Take("Key"), "Key");
  EXPECT_EQ(names.Take("key"), "key_2");
  EXPECT_EQ(names.Take("KEY_2"), "KEY_2_2");
  EXPECT_EQ(names.Take("key"), "key_3");
}

}  // namespace
}  // namespace host
