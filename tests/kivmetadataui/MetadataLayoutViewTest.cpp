#include <kivmetadataui/MetadataLayoutView.h>

#include "ArrayControl.h"
#include "BindingTestSupport.h"
#include "MetadataViewBuilder.h"

#include <kivmetadataui/Control.h>
#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/TableLayout.h>

#include <kivmetadata/MemoryMetaDataProvider.h>
#include <kivmetadata/MetaDataReadAccess.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/ViewDefinition.h>
#include <kivmetadata/ViewDefinitions.h>
#include <kivmetadata/XMPMeta.h>

#include <kivcore/StringUtils.h>
#include <kivui/UI_ScrollView.h>
#include <kivui/UI_SectionView.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_TextButton.h>
#include <kivui/UI_TextEdit.h>
#include <kivui/drawbot/Drawbot.h>
#include <kivui/drawbot/QtSupplier.h>

#include <QListWidget>
#include <QPlainTextEdit>

#include <gtest/gtest.h>

#include <cmath>

using kivcore::RectF;
using kivcore::utility::IntrusivePtr;
using kivmetadata::MemoryMetaDataProvider;
using kivmetadata::Path;
using kivmetadata::ViewDefinition;
using kivmetadata::ViewItem;
using kivmetadataui::CreateRawDataView;
using kivmetadataui::MetadataLayoutView;
using kivmetadataui::layout::ArrayControl;
using kivmetadataui::layout::LayoutItem;
using kivmetadataui::layout::MetadataViewBuilder;
using kivmetadataui::layout::TableLayout;
using kivui::UI_SubView;

namespace {

constexpr char kDC[] = "http://purl.org/dc/elements/1.1/";
constexpr char kIptcExt[] = "http://iptc.org/std/Iptc4xmpExt/2008-02-29/";

std::shared_ptr<ViewItem> Item(ViewItem::Kind inKind, std::string const &inNamespace, std::string const &inName)
{
    auto item = std::make_shared<ViewItem>();
    item->mKind = inKind;
    item->mPath = kivmetadata::PathForSchemaNameAndPropertyName(inNamespace, inName);
    return item;
}

std::shared_ptr<ViewItem> Section(std::string const &inLabel, std::vector<std::shared_ptr<ViewItem>> inChildren)
{
    auto item = std::make_shared<ViewItem>();
    item->mKind = ViewItem::Kind::kSection;
    item->mLabel = inLabel;
    item->mChildren = std::move(inChildren);
    return item;
}

std::shared_ptr<ViewDefinition> Definition(std::vector<std::shared_ptr<ViewItem>> inItems)
{
    auto definition = std::make_shared<ViewDefinition>();
    definition->mName = "TestPanel";
    definition->mLabel = "$$$/kivmetadataui/test/TestPanel=Test Panel";
    definition->mItems = std::move(inItems);
    return definition;
}

template <typename T> T *FindByType(kivui::UI_Node *inNode)
{
    if (auto *found = dynamic_cast<T *>(inNode)) return found;
    for (int i = 0; i < inNode->UI_CountChildren(); ++i)
        if (auto *found = FindByType<T>(inNode->UI_GetChild(i))) return found;
    return nullptr;
}

class MetadataLayoutViewTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { kivmetadataui::Initialize(); }
    static void TearDownTestSuite() { kivmetadataui::Terminate(); }

    void SetUp() override
    {
        mHost = IntrusivePtr<UI_SubView>(new UI_SubView);
        mHost->UI_SetLocalRectF(RectF{0, 0, 600, 800});
        mProvider = MemoryMetaDataProvider::FromPacket(kivtest::Packet(
            R"(<dc:title><rdf:Alt><rdf:li xml:lang="x-default">Harbour at dawn</rdf:li></rdf:Alt></dc:title>)"
            R"(<dc:description><rdf:Alt><rdf:li xml:lang="x-default">Boats</rdf:li></rdf:Alt></dc:description>)"
            R"(<Iptc4xmpExt:LocationShown xmlns:Iptc4xmpExt="http://iptc.org/std/Iptc4xmpExt/2008-02-29/">)"
            R"(<rdf:Bag>)"
            R"(<rdf:li rdf:parseType="Resource"><Iptc4xmpExt:City>Paris</Iptc4xmpExt:City>)"
            R"(<Iptc4xmpExt:CountryName>France</Iptc4xmpExt:CountryName></rdf:li>)"
            R"(<rdf:li rdf:parseType="Resource"><Iptc4xmpExt:City>Oslo</Iptc4xmpExt:City></rdf:li>)"
            R"(</rdf:Bag></Iptc4xmpExt:LocationShown>)"));
        ASSERT_TRUE(mProvider);
    }

    IntrusivePtr<MetadataLayoutView> MakeView(std::shared_ptr<ViewDefinition> inDefinition, bool inAttach = true)
    {
        IntrusivePtr<MetadataLayoutView> view(new MetadataLayoutView(std::move(inDefinition), mProvider));
        view->UI_SetLocalRectF(RectF{0, 0, 600, 800});
        if (inAttach) Attach(view);
        return view;
    }
    void Attach(IntrusivePtr<MetadataLayoutView> const &inView)
    {
        mHost->UI_SetDrawSupplier(&mSupplier);
        mHost->ChildPushBack(inView);
    }

    std::shared_ptr<ViewDefinition> TwoSections()
    {
        return Definition({Section("$$$/t/first=First", {Item(ViewItem::Kind::kProperty, kDC, "title"),
                                                         Item(ViewItem::Kind::kProperty, kDC, "description")}),
                           Section("$$$/t/second=Second", {Item(ViewItem::Kind::kProperty, kDC, "rights")})});
    }

    kivui::drawbot::QtSupplier mSupplier;
    IntrusivePtr<UI_SubView> mHost;
    std::shared_ptr<MemoryMetaDataProvider> mProvider;
    kivtest::AssertRecorder mAsserts;
};

TEST_F(MetadataLayoutViewTest, ConstructionChecksItsInputs)
{
    auto view = MakeView(TwoSections(), false);
    EXPECT_EQ(view->UI_GetNodeID(), "MetadataLayoutView");
    EXPECT_EQ(view->UI_GetLayoutBinding().Value(), 12u);
    EXPECT_EQ(view->GetViewName(), "TestPanel");
    EXPECT_EQ(view->GetDisplayName(), "Test Panel");
    EXPECT_TRUE(mAsserts.Asserts().empty());

    IntrusivePtr<MetadataLayoutView> bare(new MetadataLayoutView(std::shared_ptr<ViewDefinition>(), nullptr));
    EXPECT_TRUE(mAsserts.FiredMessage("MetadataLayoutView(): no metadata provider"));
    EXPECT_TRUE(mAsserts.FiredMessage("MetadataLayoutView(): no view definition"));
    EXPECT_EQ(mAsserts.Take(),
              (std::vector<std::string>{
                  "src/MetadataLayoutView|kivmetadataui::MetadataLayoutView::Initialize|mMetadataProvider",
                  "src/MetadataLayoutView|kivmetadataui::MetadataLayoutView::Initialize|mViewDefinition"}));
    EXPECT_EQ(bare->GetViewName(), "");
    EXPECT_EQ(bare->GetDisplayName(), "");

    // Looked up by name: a standard panel, or nothing for an unknown name.
    IntrusivePtr<MetadataLayoutView> named(new MetadataLayoutView("Description", mProvider));
    EXPECT_EQ(named->GetViewName(), "Description");
    mAsserts.Clear();
    IntrusivePtr<MetadataLayoutView> unknown(new MetadataLayoutView("NoSuchPanel", mProvider));
    EXPECT_EQ(mAsserts.Take(),
              std::vector<std::string>{
                  "src/MetadataLayoutView|kivmetadataui::MetadataLayoutView::Initialize|mViewDefinition"});
}

TEST_F(MetadataLayoutViewTest, BuildsSectionsOfLabelledControls)
{
    auto view = MakeView(TwoSections(), false);
    view->Layout();
    EXPECT_EQ(view->GetTableLayout(), nullptr) << "no drawing supplier yet";

    Attach(view);
    view->Layout();
    auto table = view->GetTableLayout();
    ASSERT_TRUE(table);
    ASSERT_EQ(table->CountRows(), 2);
    ASSERT_EQ(view->UI_CountChildren(), 1);
    EXPECT_EQ(view->UI_GetChild(0), table->GetView().get());
    EXPECT_EQ(table->GetView()->UI_GetLocalRectF(true), (RectF{0, 0, 600, 800}));
    EXPECT_EQ(table->GetView()->UI_GetLayoutBinding().Value(), 12u);

    auto first = table->GetRow(0)->GetColumnItem(0);
    ASSERT_EQ(first->mKind, LayoutItem::kItemKind_Table);
    auto *section = dynamic_cast<kivui::UI_SectionView *>(first->mView.get());
    ASSERT_TRUE(section);
    EXPECT_EQ(section->GetHeaderText(), u"First");
    ASSERT_EQ(first->mTable->CountRows(), 2);

    auto row = first->mTable->GetRow(0);
    auto *label = dynamic_cast<kivui::UI_StaticText *>(row->GetColumnItem(0)->mView.get());
    ASSERT_TRUE(label);
    EXPECT_EQ(label->GetText(), u"Title:");
    ASSERT_TRUE(row->GetColumnItem(1)->mControl);

    // All sections share the widest label, "Copyright Notice:" in the second
    // section, measured with the panel's supplier.
    auto second = table->GetRow(1)->GetColumnItem(0)->mTable;
    auto *widestLabel = static_cast<kivui::UI_StaticText *>(second->GetRow(0)->GetColumnItem(0)->mView.get());
    kivui::drawbot::Drawbot drawbot(mSupplier);
    float const widest = std::ceil(widestLabel->GetPreferredSize(&drawbot).x);
    ASSERT_GT(widest, 100.0f) << "wider than the default, so that the measuring shows";
    EXPECT_EQ(first->mTable->GetLabelWidth(), widest);
    EXPECT_EQ(second->GetLabelWidth(), widest);
    EXPECT_EQ(row->GetColumnItem(1)->mView->UI_GetLocalRectF(true).x, widest + 10.0f);
}

TEST_F(MetadataLayoutViewTest, ClosingASectionMovesTheRestUp)
{
    auto view = MakeView(TwoSections());
    view->Layout();
    auto table = view->GetTableLayout();
    auto first = table->GetRow(0)->GetColumnItem(0);
    auto *section = static_cast<kivui::UI_SectionView *>(first->mView.get());
    float const openHeight = section->UI_GetLocalRectF(false).height;
    EXPECT_EQ(table->GetRow(1)->GetView()->UI_GetLocalRectF(true).y, 10.0f + openHeight + 7.0f);

    section->SetOpened(false);
    EXPECT_TRUE(first->mTable->IsCollapsed());
    EXPECT_EQ(section->UI_GetLocalRectF(false).height, section->GetHeaderHeight());
    EXPECT_EQ(table->GetRow(1)->GetView()->UI_GetLocalRectF(true).y, 10.0f + section->GetHeaderHeight() + 7.0f);

    section->SetOpened(true);
    EXPECT_FALSE(first->mTable->IsCollapsed());
    EXPECT_EQ(section->UI_GetLocalRectF(false).height, openHeight);

    // The toggle holds the tables weakly: a rebuilt panel drops them.
    std::weak_ptr<TableLayout> weak = table;
    IntrusivePtr<kivui::UI_SectionView> keep(section);
    table.reset();
    first.reset();
    view->Refresh();
    EXPECT_TRUE(weak.expired());
    keep->SetOpened(false); // must not touch the dead tables
}

TEST_F(MetadataLayoutViewTest, EmptyDefinitionShowsNoData)
{
    auto unsupported = Item(ViewItem::Kind::kProperty, kDC, "noSuchProperty");
    for (auto const &definition : {Definition({}), Definition({Section("$$$/t/s=S", {unsupported})})}) {
        auto view = MakeView(definition);
        view->Layout();
        ASSERT_EQ(view->UI_CountChildren(), 1);
        auto *placeholder = view->UI_GetChild(0);
        EXPECT_EQ(placeholder->UI_GetLocalRectF(true), (RectF{0, 0, 600, 800}));
        EXPECT_EQ(placeholder->UI_GetLayoutBinding().Value(), 12u);
        ASSERT_EQ(placeholder->UI_CountChildren(), 1);
        auto *text = dynamic_cast<kivui::UI_StaticText *>(placeholder->UI_GetChild(0));
        ASSERT_TRUE(text);
        EXPECT_EQ(text->GetText(), u"No Data");
        EXPECT_EQ(text->GetAlignment(), 1);
        EXPECT_EQ(text->GetFontSize(), 14.0f);
        EXPECT_EQ(text->UI_GetLayoutBinding().Value(), 48u);
        kivui::drawbot::Drawbot drawbot(mSupplier);
        auto const size = text->GetPreferredSize(&drawbot);
        EXPECT_EQ(text->UI_GetLocalRectF(true), (RectF{0, 0, std::ceil(size.x), std::ceil(size.y)}));
        mHost->DeleteChildren();
    }
}

TEST_F(MetadataLayoutViewTest, DefinitionChangesAndMargins)
{
    auto definition = TwoSections();
    auto view = MakeView(definition);
    view->Layout();
    auto const before = view->GetTableLayout();

    view->SetViewDefinitionByName("");
    view->SetViewDefinitionByName("NoSuchPanel");
    view->SetViewDefinition(nullptr);
    EXPECT_EQ(view->GetViewDefinition(), definition);
    EXPECT_EQ(view->GetTableLayout(), before) << "nothing was rebuilt";

    view->SetViewDefinitionByName("Description");
    EXPECT_EQ(view->GetViewName(), "Description");
    EXPECT_NE(view->GetTableLayout(), before);
    EXPECT_GT(view->GetTableLayout()->CountRows(), 0);

    view->SetMargins(kivcore::Flags<unsigned char>(0));
    view->Refresh();
    auto table = view->GetTableLayout();
    EXPECT_EQ(table->GetRow(0)->GetView()->UI_GetLocalRectF(true).Origin(), (kivcore::PointF{0, 0}));

    MetadataViewBuilder builder(mProvider, &mSupplier);
    builder.SetWidth(250);
    EXPECT_EQ(builder.GetWidth(), 400.0f);
    builder.SetWidth(650);
    EXPECT_EQ(builder.GetWidth(), 650.0f);
}

TEST_F(MetadataLayoutViewTest, TabKeepsTheFocusedControlInSight)
{
    std::vector<std::shared_ptr<ViewItem>> items;
    for (char const *name : {"title", "description", "rights", "source", "coverage", "identifier", "language", "format",
                             "type", "relation", "publisher", "contributor", "creator", "subject"})
        items.push_back(Item(ViewItem::Kind::kProperty, kDC, name));
    auto view = MakeView(Definition(items));
    view->UI_SetLocalRectF(RectF{0, 0, 600, 120});
    view->Layout();
    auto table = view->GetTableLayout();
    auto *scroll = dynamic_cast<kivui::UI_ScrollView *>(table->GetView().get());
    ASSERT_TRUE(scroll);
    ASSERT_GT(table->CountRows(), 8);

    auto last = table->GetRow(table->CountRows() - 1)->GetColumnItem(1)->mView;
    kivui::UI_Node *asNode = view.get();
    kivui::KeyboardEvent event;
    event.code = kivui::KeyboardCode::kTab;
    event.modifiers = kivcore::Flags<std::uint32_t>(1u);
    EXPECT_FALSE(asNode->UI_DoKeyboardEvent(last.get(), event)) << "Ctrl-Tab is not ours";
    event.code = kivui::KeyboardCode::kReturn;
    event.modifiers = kivcore::Flags<std::uint32_t>(0u);
    EXPECT_FALSE(asNode->UI_DoKeyboardEvent(last.get(), event));
    event.code = kivui::KeyboardCode::kTab;
    EXPECT_FALSE(asNode->UI_DoKeyboardEvent(nullptr, event));

    EXPECT_TRUE(asNode->UI_DoKeyboardEvent(last.get(), event));
    RectF const wanted = last->UI_GetSelfToSpecificParentMatrix(scroll->GetContentView().get())
                             .TransformRect(last->UI_GetLocalRectF(false));
    RectF const visible = scroll->GetVisibleContentRect();
    EXPECT_LE(visible.y, wanted.y - 5.0f);
    EXPECT_GE(visible.Bottom(), wanted.Bottom() + 5.0f - 0.5f);

    // Shift-Tab back to the first row scrolls up again.
    auto firstControl = table->GetRow(0)->GetColumnItem(1)->mView;
    event.modifiers = kivcore::Flags<std::uint32_t>(2u);
    EXPECT_TRUE(asNode->UI_DoKeyboardEvent(firstControl.get(), event));
    EXPECT_EQ(scroll->GetVisibleContentRect().y, 0.0f);
}

TEST_F(MetadataLayoutViewTest, ArrayEditorEditsItemsThroughTheProvider)
{
    auto view = MakeView(Definition({Item(ViewItem::Kind::kArray, kIptcExt, "LocationShown")}));
    view->Layout();
    auto *array = FindByType<ArrayControl>(view.get());
    ASSERT_TRUE(array);
    EXPECT_EQ(array->GetLabelView()->GetText(), u"Location Shown in the Image:");
    EXPECT_EQ(array->GetItemTexts(), (std::vector<std::u16string>{u"  Paris; France", u"  Oslo"}));
    ASSERT_EQ(array->GetListWidget()->count(), 2);
    EXPECT_EQ(array->GetListWidget()->item(0)->text(), QStringLiteral("  Paris; France"));
    EXPECT_EQ(array->GetInsertButton()->GetText(), u"Insert");
    EXPECT_EQ(array->GetDeleteButton()->GetText(), u"Delete");
    EXPECT_EQ(array->GetCloseButton()->GetText(), u"Close");
    EXPECT_TRUE(array->GetDeleteButton()->IsDisabled()) << "nothing selected";

    // The array's label joins the panel's label column.
    auto table = view->GetTableLayout();
    auto const arrayItem = table->GetRow(0)->GetColumnItem(0);
    EXPECT_EQ(arrayItem->mKind, LayoutItem::kItemKind_Table);
    EXPECT_EQ(arrayItem->mTable->GetLabelWidth(), table->GetLabelWidth());
    kivui::drawbot::Drawbot drawbot(mSupplier);
    EXPECT_EQ(MetadataViewBuilder::MeasureItem(&mSupplier, *arrayItem),
              std::ceil(array->GetLabelView()->GetPreferredSize(&drawbot).x));
    EXPECT_EQ(MetadataViewBuilder::MeasureItem(nullptr, *arrayItem), 0.0f);

    int notified = 0;
    auto listener =
        std::make_shared<kivmetadata::MetaDataProvider::ChangeListener>([&](kivmetadata::XMPMeta *) { ++notified; });
    mProvider->AddChangeListener(listener);

    float const closedHeight = array->UI_GetLocalRectF(false).height;
    array->GetListWidget()->setCurrentRow(1);
    EXPECT_EQ(array->GetSelectedItem(), 1);
    ASSERT_TRUE(array->IsEditorOpen());
    EXPECT_FALSE(array->GetEditorControls().empty());
    EXPECT_GT(array->UI_GetLocalRectF(false).height, closedHeight) << "the panel made room for the editor";
    EXPECT_FALSE(array->GetDeleteButton()->IsDisabled());

    array->InsertItem();
    EXPECT_EQ(notified, 1);
    EXPECT_EQ(array->GetSelectedItem(), 2);
    EXPECT_EQ(array->GetListWidget()->count(), 3);

    array->SelectItem(0);
    array->DeleteSelectedItem();
    EXPECT_EQ(notified, 2);
    EXPECT_EQ(array->GetItemTexts(), (std::vector<std::u16string>{u"  Oslo", u"  "}));
    EXPECT_FALSE(array->IsEditorOpen());

    array->SelectItem(0);
    array->CloseEditor();
    EXPECT_EQ(array->GetSelectedItem(), -1);
    EXPECT_FALSE(array->IsEditorOpen());
    EXPECT_EQ(array->UI_GetLocalRectF(false).height, closedHeight) << "a closed editor leaves no gap";
    *listener = nullptr;
}

class RawDataViewTest : public MetadataLayoutViewTest {
protected:
    std::u16string ShownText(MetadataLayoutView &inView)
    {
        auto *text = FindByType<kivui::UI_TextEdit>(&inView);
        return text ? text->GetValue() : u"<none>";
    }
};

TEST_F(RawDataViewTest, ShowsThePacketUpToTheLimit)
{
    // A provider with a source of `fill` letters, and the size of its packet.
    auto measure = [](std::size_t fill) {
        auto provider = MemoryMetaDataProvider::FromPacket(
            kivtest::Packet("<dc:source>" + std::string(fill, 'x') + "</dc:source>"));
        kivmetadata::MetaDataReadAccess access(provider);
        return std::make_pair(provider, access.GetMeta()->Serialize(16, 0).size());
    };
    auto const size = measure(1000).second;
    for (std::size_t bytes : {std::size_t(1000000), std::size_t(1000001)}) {
        auto [provider, exact] = measure(1000 + bytes - size);
        ASSERT_EQ(exact, bytes) << "the packet is exactly that long";
        mProvider = provider;
        auto view = CreateRawDataView(nullptr, mProvider);
        view->UI_SetLocalRectF(RectF{0, 0, 500, 400});
        Attach(view);
        view->Layout();
        std::u16string const shown = ShownText(*view);
        if (bytes == 1000000) {
            kivmetadata::MetaDataReadAccess access(mProvider);
            EXPECT_EQ(shown, kivcore::utility::Utf8ToUtf16(access.GetMeta()->Serialize(16, 0)));
            EXPECT_EQ(shown.find(u"<?xpacket"), std::u16string::npos);
        } else {
            EXPECT_EQ(shown, u"Cannot display raw metadata,contents too large");
        }
        mHost->DeleteChildren();
    }
}

TEST_F(RawDataViewTest, TextIsReadOnlySelectableAndFollowsTheProvider)
{
    auto view = CreateRawDataView(nullptr, mProvider);
    EXPECT_EQ(view->GetViewName(), "RawData");
    EXPECT_EQ(view->GetDisplayName(), "Raw Data");
    EXPECT_TRUE(mAsserts.Asserts().empty());
    view->UI_SetLocalRectF(RectF{0, 0, 500, 400});
    Attach(view);
    view->Layout();

    auto *caption = dynamic_cast<kivui::UI_StaticText *>(view->UI_FindNodeByID("RawDataView.label"));
    ASSERT_TRUE(caption);
    EXPECT_EQ(caption->GetText(), u"Raw Data");
    auto *text = FindByType<kivui::UI_TextEdit>(view.get());
    ASSERT_TRUE(text);
    EXPECT_TRUE(text->IsReadOnlyMode());
    ASSERT_TRUE(text->GetPlainTextEdit());
    EXPECT_TRUE(text->GetPlainTextEdit()->textInteractionFlags() & Qt::TextSelectableByMouse);
    EXPECT_NE(ShownText(*view).find(u"Harbour at dawn"), std::u16string::npos);
    EXPECT_EQ(text->UI_GetLocalRectF(true).Bottom(), 400.0f);

    kivtest::SetAndNotify(mProvider, kivmetadata::PathForSchemaNameAndPropertyName(kDC, "source"), "Archive box 7");
    EXPECT_NE(ShownText(*view).find(u"Archive box 7"), std::u16string::npos);
    view.reset();
    mHost->DeleteChildren();
    // The listener of the destroyed panel is cut, not called.
    kivmetadata::MetaDataUpdateAccess access(mProvider);
    access.AddChange(Path{});
}

} // namespace
