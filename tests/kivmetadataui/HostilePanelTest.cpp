// Panels with huge values: a value too long to lay out quickly is shown
// shortened in a read-only field, and only what the user edited is written.
#include "ArrayControl.h"
#include "BindingTestSupport.h"

#include <kivmetadataui/BindControl.h>
#include <kivmetadataui/TableLayout.h>

#include <kivmetadata/PathOperations.h>

#include <kivui/UI_StaticText.h>
#include <kivui/UI_TextEdit.h>

#include <gtest/gtest.h>

#include <QListWidget>
#include <QString>

namespace {

using kivcore::utility::IntrusivePtr;
using kivmetadata::Value;
using kivtest::RecordingProvider;
using kivtest::TestPath;

using HostilePanelTest = kivtest::SchemaTest;

TEST_F(HostilePanelTest, LongValuesShowShortenedReadOnlyAndAreNeverWrittenBack)
{
    std::string const huge(1000000, 'a');
    auto big = RecordingProvider::Make("<kbt:note>" + huge + "</kbt:note>");
    auto small = RecordingProvider::Make("<kbt:note>old</kbt:note>");
    Value const bigNote{false, TestPath("note"), big};
    Value const smallNote{false, TestPath("note"), small};

    IntrusivePtr<kivui::UI_TextEdit> edit(new kivui::UI_TextEdit());
    kivmetadataui::UpdateControl(bigNote, edit);
    std::u16string const shown = edit->GetValue();
    EXPECT_LT(shown.size(), 2100u);
    EXPECT_EQ(shown.substr(0, 2000), std::u16string(2000, u'a'));
    EXPECT_NE(shown.find(u"1,000,000 characters in all"), std::u16string::npos);
    EXPECT_TRUE(edit->IsReadOnlyMode());
    kivmetadataui::UpdateValue(bigNote, edit);
    EXPECT_TRUE(big->mChanges.empty()) << "a shortened text is never written";
    EXPECT_EQ(big->Text("note"), huge);

    // The same field showing a whole value is editable again, and writes.
    kivmetadataui::UpdateControl(smallNote, edit);
    EXPECT_FALSE(edit->IsReadOnlyMode());
    edit->SetValue(u"new", false);
    kivmetadataui::UpdateValue(smallNote, edit);
    EXPECT_EQ(small->Text("note"), "new");

    // A field read-only for its own reasons stays so.
    IntrusivePtr<kivui::UI_TextEdit> display(new kivui::UI_TextEdit());
    display->SetReadOnlyMode(true);
    kivmetadataui::UpdateControl(bigNote, display);
    kivmetadataui::UpdateControl(smallNote, display);
    EXPECT_TRUE(display->IsReadOnlyMode());

    // A list shows its first whole items and how many there are.
    std::string keywords;
    for (int i = 0; i < 50000; ++i)
        keywords += "<rdf:li>keyword " + std::to_string(i) + "</rdf:li>";
    auto tagged = RecordingProvider::Make("<dc:subject><rdf:Bag>" + keywords + "</rdf:Bag></dc:subject>");
    IntrusivePtr<kivui::UI_TextEdit> list(new kivui::UI_TextEdit());
    kivmetadataui::UpdateControl(
        Value{false, kivmetadata::PathForSchemaNameAndPropertyName("http://purl.org/dc/elements/1.1/", "subject"),
              tagged},
        list);
    std::u16string const items = list->GetValue();
    EXPECT_LT(items.size(), 2100u);
    EXPECT_NE(items.find(u"keyword 0; keyword 1;"), std::u16string::npos);
    EXPECT_NE(items.find(u"; … (50,000 items in all)"), std::u16string::npos)
        << QString::fromStdU16String(items).right(60).toStdString();

    IntrusivePtr<kivui::UI_StaticText> label(new kivui::UI_StaticText());
    kivmetadataui::UpdateControl(bigNote, label);
    EXPECT_LT(label->GetText().size(), 2100u);
}

TEST_F(HostilePanelTest, TheArrayEditorListsTheFirstItemsAndStillAppendsAtTheEnd)
{
    constexpr char kIptcExt[] = "http://iptc.org/std/Iptc4xmpExt/2008-02-29/";
    std::string items;
    for (int i = 0; i < 1500; ++i)
        items += "<rdf:li rdf:parseType=\"Resource\"><Iptc4xmpExt:City>C" + std::to_string(i) +
                 "</Iptc4xmpExt:City></rdf:li>";
    auto provider = RecordingProvider::Make("<Iptc4xmpExt:LocationShown xmlns:Iptc4xmpExt=\"" + std::string(kIptcExt) +
                                            "\"><rdf:Bag>" + items + "</rdf:Bag></Iptc4xmpExt:LocationShown>");
    auto const path = kivmetadata::PathForSchemaNameAndPropertyName(kIptcExt, "LocationShown");
    auto const definition = kivmetadata::PathEntryDefinition(path);
    ASSERT_TRUE(definition);
    auto table = kivmetadataui::layout::ArrayControl::Create(Value{false, path, provider}, *definition, u"Locations",
                                                             nullptr, {});
    auto *array = dynamic_cast<kivmetadataui::layout::ArrayControl *>(table->GetView().get());
    ASSERT_TRUE(array);
    QListWidget *list = array->GetListWidget();
    ASSERT_EQ(list->count(), 1001);
    EXPECT_EQ(list->item(999)->text().trimmed(), QStringLiteral("C999"));
    EXPECT_EQ(list->item(1000)->text(), QStringLiteral("  \u2026 500 more items (1,500 in all)"));
    EXPECT_EQ(list->item(1000)->flags(), Qt::NoItemFlags);

    array->InsertItem();
    EXPECT_EQ(array->CountItems(), 1501);
    EXPECT_EQ(array->GetSelectedItem(), 1500) << "the new item is open for editing though not listed";
    EXPECT_EQ(list->currentRow(), -1);
    EXPECT_EQ(provider->mChanges, std::set<kivmetadata::Path>{path});
}

} // namespace
