#include "host/collect/table_view.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/program/made_collection.h"

namespace host {
namespace {

using halyard::repository::RInstance;
using test::MadeCollection;
using Texts = std::vector<std::string>;

Texts Copy(const std::vector<DecodedText>& texts) {
  Texts copies;
  for (const DecodedText& text : texts) copies.emplace_back(text);
  return copies;
}

/// A made collection's view and that of its first table.
struct Viewed {
  explicit Viewed(MadeCollection& made, Attachments attachments = Attachments::kShown)
      : collection(made.Get(), attachments),
        table(collection.ViewTable(made.Get().tables.front())) {}

  /// The cells of a row under the table's columns.
  Texts Cells(std::size_t number) const {
    Texts cells;
    for (std::size_t column = 0; column < table.Columns().size(); ++column) {
      const std::optional<CellView> cell = table.RowAt(number).FindCell(column);
      cells.emplace_back(cell ? cell->Text() : DecodedText(std::string_view("(missing)")));
    }
    return cells;
  }

  CollectionView collection;
  TableView table;
};

/// Adds a row of the class "T" with its properties in this order.
void AddRow(MadeCollection& made, const MadeCollection::Pairs& keysAndValues) {
  RInstance instance("T", "made", -1);
  for (const auto& [key, value] : keysAndValues) instance.AddProperty(key, key, value, false);
  instance.AddToRepository(made.Repository());
}

TEST(TableView, FindsCellsByColumnInWhateverOrderARowHasThem) {
  MadeCollection made;
  made.Table("T");
  AddRow(made, {{"a", "1"}, {"b", "2"}});
  AddRow(made, {{"b", "3"}, {"a", "4"}});
  const Viewed viewed(made);
  ASSERT_EQ(viewed.table.RowCount(), 2U);
  EXPECT_EQ(viewed.Cells(0), (Texts{"1", "2"}));
  EXPECT_EQ(viewed.Cells(1), (Texts{"4", "3"}));
  EXPECT_EQ(viewed.table.RowAt(1).CellAt(0).Key().View(), "b");
}

TEST(TableView, MissesACellWhereARowHasNoSuchProperty) {
  MadeCollection made;
  made.Table("T");
  AddRow(made, {{"a", "1"}});
  AddRow(made, {{"b", ""}});
  const Viewed viewed(made);
  EXPECT_EQ(viewed.Cells(0), (Texts{"1", "(missing)"}));
  EXPECT_EQ(viewed.Cells(1), (Texts{"(missing)", ""}));
  EXPECT_EQ(viewed.table.RowAt(1).CellCount(), 1U);
}

TEST(TableView, HasNoCellsWithoutRows) {
  MadeCollection made;
  made.Table("VOLUME", /*byRow=*/false);
  const Viewed viewed(made);
  EXPECT_EQ(viewed.table.RowCount(), 0U);
  EXPECT_EQ(viewed.table.Columns().front().key.View(), "Name") << "as it is described";
  EXPECT_TRUE(viewed.table.ListInstanceKeys().empty());
  EXPECT_EQ(viewed.table.ClassName().View(), "VOLUME");
  EXPECT_FALSE(viewed.table.IsByRow());
}

TEST(TableView, ListsTheOtherLabelsOfAKeyOnceInTheOrderInWhichTheyCame) {
  MadeCollection made;
  made.Table("T");
  for (const char* label : {"First", "Third", "Second"}) made.Row({{label, ""}});
  for (const char* label : {"Third", "First"}) made.Row({{label, ""}, {"One more", ""}});
  const Viewed viewed(made);
  ASSERT_EQ(viewed.table.Columns().size(), 2U);
  EXPECT_EQ(viewed.table.Columns()[0].label.View(), "First");
  EXPECT_EQ(Copy(viewed.table.Columns()[0].otherLabels), (Texts{"Third", "Second"}));
  EXPECT_EQ(viewed.table.RowAt(1).CellAt(0).Label().View(), "Third");
}

TEST(TableView, ReadsAllTextsInTheMachinesCodePage) {
  MadeCollection made;
  Collection& collection = made.Get();
  collection.machine.codePage = 850;
  collection.machine.hostExecutable = "C:\\\x94.exe";
  collection.machine.logFolder = "C:\\\x84\\";
  collection.modules.front() = {"M\x81", "\x8e"};
  made.Table("CL\x99").Row({{"L\x84", "V\x94"}}).FileRow("\x81", "f\x84");
  collection.tables.front().module = "M\x81";
  collection.tables.front().layout.headers = {"H\x9a"};
  const Viewed viewed(made);
  EXPECT_EQ(viewed.collection.HostExecutable().View(), "C:\\ö.exe");
  EXPECT_EQ(viewed.collection.LogFolder().View(), "C:\\ä\\");
  EXPECT_EQ(viewed.collection.ViewModule(collection.modules.front()).name.View(), "Mü");
  EXPECT_EQ(viewed.collection.ViewModule(collection.modules.front()).description.View(), "Ä");
  EXPECT_EQ(viewed.collection.Excerpt("\x84").View(), "ä");
  EXPECT_EQ(viewed.collection.LogText({4, "file", 1, "\x94"}).View(), "ö");
  EXPECT_EQ(viewed.table.ClassName().View(), "CLÖ");
  EXPECT_EQ(viewed.table.Title().View(), "CLÖ");
  EXPECT_EQ(viewed.table.Module().View(), "Mü");
  EXPECT_EQ(Copy(viewed.table.ListHeaders()), Texts{"HÜ"});
  EXPECT_EQ(viewed.table.Columns()[0].label.View(), "Lä");
  EXPECT_EQ(viewed.Cells(0)[0], "Vö");
  EXPECT_EQ(viewed.table.RowAt(1).CellAt(0).FileName()->View(), "fä");
}

TEST(TableView, HandsOutAsciiAsItIsStored) {
  MadeCollection made;
  made.Table("T").Row({{"A", "a text that is too long to be kept in the object itself"}});
  const Viewed viewed(made);
  const Row& stored = made.Get().tables.front().rows->rows.front();
  EXPECT_EQ(viewed.Cells(0)[0], stored.Value(0));
  EXPECT_EQ(viewed.table.RowAt(0).CellAt(0).Text().View().data(), stored.Value(0).data());
}

TEST(TableView, DecodesAValueOnlyWhenItIsAskedFor) {
  const RowShape shape{"T", "", -1, {{"a", "A"}}, {}};
  Table rows;
  rows.columns = shape.columns;
  rows.rows.Add(shape, {"\xe4"});
  Collection collection;
  const CollectedTable table{"T", "M", {}, &rows, {}};
  const CollectionView view(collection);
  const TableView tableView = view.ViewTable(table);
  const CellView cell = tableView.RowAt(0).CellAt(0);
  *const_cast<char*>(rows.rows.front().Value(0).data()) = '\xf6';
  EXPECT_EQ(cell.Text().View(), "ö");
}

TEST(TableView, TellsIntegersFromTexts) {
  MadeCollection made;
  made.Table("T");
  RInstance instance("T", "made", -1);
  instance.AddProperty("a", "A", -7, false);
  instance.AddProperty("b", "B", std::string("-7"), false);
  instance.AddToRepository(made.Repository());
  const Viewed viewed(made);
  EXPECT_EQ(viewed.table.Columns()[0].kind, CellKind::kInteger);
  EXPECT_EQ(viewed.table.Columns()[1].kind, CellKind::kText);
  EXPECT_EQ(viewed.table.RowAt(0).CellAt(0).Kind(), CellKind::kInteger);
  EXPECT_EQ(viewed.table.RowAt(0).CellAt(1).Kind(), CellKind::kText);
  EXPECT_EQ(viewed.Cells(0), (Texts{"-7", "-7"}));
}

TEST(TableView, LeavesWholeFilesOutButNotTheirNames) {
  MadeCollection made;
  made.Table("T").Row({{"A", "1"}}).FileRow("content", "x.txt");
  const Viewed viewed(made, Attachments::kLeftOut);
  EXPECT_EQ(viewed.table.RowAt(0).CellAt(0).Text().View(), "1");
  const CellView file = viewed.table.RowAt(1).CellAt(0);
  EXPECT_EQ(file.Kind(), CellKind::kNothing);
  EXPECT_EQ(file.Text().View(), "");
  EXPECT_EQ(file.FileName()->View(), "x.txt");
  EXPECT_EQ(viewed.table.RowAt(1).ListAttachments()[0].byteSize, std::nullopt);
}

TEST(TableView, KnowsWholeFilesBySizeAndName) {
  MadeCollection made;
  made.Get().machine.codePage = 932;
  made.Table("T").FileRow("\x82\xa0!", "c0_showall").Row({{"A", "1"}});
  const Viewed viewed(made);
  const CellView file = viewed.table.RowAt(0).CellAt(0);
  EXPECT_TRUE(file.IsFile());
  EXPECT_EQ(file.FileName()->View(), "c0_showall");
  EXPECT_EQ(file.ByteSize(), 3U);
  EXPECT_EQ(file.Text().View(), "あ!");
  EXPECT_FALSE(viewed.table.RowAt(1).CellAt(0).IsFile());
  EXPECT_FALSE(viewed.table.RowAt(1).CellAt(0).FileName());
  EXPECT_TRUE(viewed.table.Columns()[0].hasFiles);
  EXPECT_FALSE(viewed.table.Columns()[1].hasFiles);
}

TEST(TableView, TakesTheAttributeThatWasSetLast) {
  MadeCollection made;
  made.Table("T");
  RInstance instance("T", "made", -1);
  instance.AddProperty("a", "A", std::string("x"), false);
  instance.AddPropertyAttr("a", "raw", "true");
  instance.AddPropertyAttr("a", "filename", "old");
  instance.AddPropertyAttr("a", "filename", "new");
  instance.AddPropertyAttr("a", "raw", "false");
  instance.AddToRepository(made.Repository());
  const Viewed viewed(made);
  EXPECT_FALSE(viewed.table.RowAt(0).CellAt(0).IsFile());
  EXPECT_EQ(viewed.table.RowAt(0).CellAt(0).FileName()->View(), "new");
  const std::vector<AttachmentView> attachments = viewed.table.RowAt(0).ListAttachments();
  ASSERT_EQ(attachments.size(), 1U);
  ASSERT_EQ(attachments[0].attributes.size(), 2U);
  EXPECT_EQ(attachments[0].attributes[0].first.View(), "raw");
  EXPECT_EQ(attachments[0].attributes[0].second.View(), "false");
  EXPECT_EQ(attachments[0].attributes[1].second.View(), "new");
}

TEST(TableView, ListsAttachmentsByPropertyAlsoWithoutAValue) {
  MadeCollection made;
  made.Table("T");
  RInstance instance("T", "made", -1);
  instance.AddProperty("a", "A", std::string("x\xe4"), false);
  instance.AddPropertyAttr("b", "unit", "V");
  instance.AddPropertyAttr("a", "raw", "true");
  instance.AddPropertyAttr("b", "limit", "3");
  instance.AddToRepository(made.Repository());
  const Viewed viewed(made);
  const std::vector<AttachmentView> attachments = viewed.table.RowAt(0).ListAttachments();
  ASSERT_EQ(attachments.size(), 2U);
  EXPECT_EQ(attachments[0].key.View(), "b");
  EXPECT_EQ(attachments[0].attributes.size(), 2U);
  EXPECT_EQ(attachments[0].byteSize, std::nullopt);
  EXPECT_EQ(attachments[1].key.View(), "a");
  EXPECT_EQ(attachments[1].byteSize, 2U);
}

TEST(TableView, ListsOneInstanceKeyForAllRowsOrOneForEach) {
  MadeCollection made;
  made.Table("T").Row({{"A", "1"}}).Row({{"B", "2"}});
  EXPECT_EQ(Copy(Viewed(made).table.ListInstanceKeys()), Texts{"made"});
  RInstance("T", "other", -1).AddToRepository(made.Repository());
  EXPECT_EQ(Copy(Viewed(made).table.ListInstanceKeys()), (Texts{"made", "made", "other"}));
}

}  // namespace
}  // namespace host
