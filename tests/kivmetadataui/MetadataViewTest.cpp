#include "AdvancedPage_p.h"
#include "BindingTestSupport.h"

#include <kivmetadataui/FocusMover.h>
#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/MetadataView.h>
#include <kivmetadataui/MetadataViewCell.h>
#include <kivmetadataui/MetadataView_LinkDelegate.h>

#include <kivcore/StringUtils.h>
#include <kivmetadata/Definitions.h>
#include <kivmetadata/FileMetaDataProvider.h>
#include <kivmetadata/MemoryMetaDataProvider.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/ViewSettings.h>
#include <kivui/PrefManager.h>
#include <kivui/UI_Checkbox.h>
#include <kivui/UI_PictureButton.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_SubView.h>
#include <kivui/UI_TextEdit.h>
#include <kivui/drawbot/QtSupplier.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QImage>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

using kivcore::RectF;
using kivcore::utility::IntrusivePtr;
using kivmetadata::Path;
using kivmetadataui::MetadataView;
using RowPtr = MetadataView::RowPtr;

namespace {

constexpr char kTreeNS[] = "http://ns.kivtest.org/tree/1.0/";
constexpr char kOtherNS[] = "http://ns.kivtest.org/tree-other/1.0/";
constexpr char kLastNS[] = "http://ns.kivtest.org/tree-last/1.0/";
constexpr char kDC[] = "http://purl.org/dc/elements/1.1/";

constexpr char kTreeSchema[] = R"(<schema xmlns="urn:kivmetadata:schema:1"
  namespace="http://ns.kivtest.org/tree/1.0/" prefix="kvt" label="$$$/kivtest/tree=Tree test">
  <property name="title" type="text" label="$$$/kivtest/tree/title=Title"/>
  <property name="note" type="text" label="$$$/kivtest/tree/note=Note"/>
  <property name="hidden" type="text" label="$$$/kivtest/tree/hidden=Hidden"/>
  <property name="speed" type="text" typeId="rational" label="$$$/kivtest/tree/speed=Speed"/>
  <property name="contact" form="struct" label="$$$/kivtest/tree/contact=Contact">
    <field name="email" type="text" label="$$$/kivtest/tree/email=Email"/>
    <field name="phone" type="text" label="$$$/kivtest/tree/phone=Phone"/>
  </property>
  <property name="places" form="bag" itemForm="struct" label="$$$/kivtest/tree/places=Places">
    <field name="city" type="text" label="$$$/kivtest/tree/city=City"/>
    <field name="country" type="text" label="$$$/kivtest/tree/country=Country"/>
  </property>
  <property name="tags" form="bag" type="text" label="$$$/kivtest/tree/tags=Tags"/>
</schema>)";
constexpr char kOtherSchema[] = R"(<schema xmlns="urn:kivmetadata:schema:1"
  namespace="http://ns.kivtest.org/tree-other/1.0/" prefix="kvu" label="$$$/kivtest/other=Other test">
  <property name="title" type="text" label="$$$/kivtest/other/title=Heading"/>
  <property name="list" form="bag" type="text" label="$$$/kivtest/other/list=List"/>
</schema>)";
constexpr char kLastSchema[] = R"(<schema xmlns="urn:kivmetadata:schema:1"
  namespace="http://ns.kivtest.org/tree-last/1.0/" prefix="kvw" label="$$$/kivtest/last=Last test">
  <property name="caption" type="text" label="$$$/kivtest/last/caption=Caption"/>
</schema>)";

std::shared_ptr<kivmetadata::SchemaDefinition> Register(char const *inXml)
{
    std::string error;
    auto schema = kivmetadata::ParseSchemaDefinition(inXml, u"", &error);
    EXPECT_TRUE(schema) << error;
    if (!schema) return nullptr;
    EXPECT_TRUE(kivmetadata::RegisterSchemaDefinition(schema, "test", true));
    return kivmetadata::NamespaceDefinition(schema->mNamespace);
}

Path T(std::string const &inPath)
{
    return Path{kTreeNS, "kvt:" + inPath};
}
Path U(std::string const &inPath)
{
    return Path{kOtherNS, "kvu:" + inPath};
}

// Every property of the sample, nested structures and arrays included.
std::string const kSample =
    R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">)"
    R"(<rdf:Description rdf:about="" xmlns:kvt="http://ns.kivtest.org/tree/1.0/")"
    R"( xmlns:kvu="http://ns.kivtest.org/tree-other/1.0/" xmlns:kvw="http://ns.kivtest.org/tree-last/1.0/">)"
    "<kvt:title>Sunset over the harbour</kvt:title><kvt:note>remember</kvt:note>"
    "<kvt:contact rdf:parseType=\"Resource\"><kvt:email>anna@example.org</kvt:email></kvt:contact>"
    "<kvt:places><rdf:Bag>"
    "<rdf:li rdf:parseType=\"Resource\"><kvt:city>Paris</kvt:city></rdf:li>"
    "<rdf:li rdf:parseType=\"Resource\"><kvt:city>Lyon</kvt:city></rdf:li>"
    "</rdf:Bag></kvt:places>"
    "<kvt:tags><rdf:Bag><rdf:li>red</rdf:li><rdf:li>Blue</rdf:li></rdf:Bag></kvt:tags>"
    "<kvu:title>Cafe\xCC\x81 noir</kvu:title><kvw:caption>Last</kvw:caption>"
    "</rdf:Description></rdf:RDF></x:xmpmeta>";

class RecordingMover : public kivmetadataui::FocusMover {
public:
    void MoveOutToNextNodeFocusOrder(bool inForward) override { mMoves.push_back(inForward); }
    std::vector<bool> mMoves;
};

class RecordingLinks : public kivmetadataui::MetadataView_LinkDelegate {
public:
    bool IsPathLinked(Path const &inPath) override { return mLinked.count(inPath) != 0; }
    void SetPathLinked(Path const &inPath, bool inLinked) override
    {
        mCalls.push_back(inPath.mPath + (inLinked ? " on" : " off"));
        if (inLinked)
            mLinked.insert(inPath);
        else
            mLinked.erase(inPath);
    }
    bool IsLinkingEnabled() override { return mEnabled; }

    std::set<Path> mLinked;
    std::vector<std::string> mCalls;
    bool mEnabled = true;
};

class MetadataViewTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        kivmetadataui::Initialize();
        mTree = Register(kTreeSchema);
        mOther = Register(kOtherSchema);
        mLast = Register(kLastSchema);
        ASSERT_TRUE(mTree && mOther && mLast && mFolder.isValid());
        kivmetadata::ExcludePropertyForClient(T("hidden"), true);
        mHost->UI_SetDrawSupplier(&mSupplier);
        mHost->UI_SetLocalRectF(RectF{0, 0, 600, 900});
    }

    void TearDown() override
    {
        if (mView) mHost->ChildRemove(mView.get());
        mView.reset();
        mHost->UI_Show(false);
        kivmetadata::ExcludePropertyForClient(T("hidden"), false);
        kivmetadataui::Terminate();
    }

    // A view over the three test schemas showing every property.
    void Make(std::string const &inPacket, bool inSelection)
    {
        mProvider = kivmetadata::MemoryMetaDataProvider::FromPacket(inPacket);
        ASSERT_TRUE(mProvider);
        mView = IntrusivePtr<MetadataView>(new MetadataView({mTree, mOther, mLast}, mProvider));
        {
            MetadataView::SuspendTreeRebuild suspend(mView.get());
            MetadataView::PathSet included;
            for (auto const &schema : {mTree, mOther, mLast})
                kivmetadata::IncludeAllDescendantPaths(*schema, included);
            mView->SetIncludedPaths(included);
            mView->SetAllowPropertySelection(inSelection);
            mView->SetDisplayPropertyValue(!inSelection);
        }
        mView->UI_SetLocalRectF(RectF{0, 0, 600, 900});
        mHost->ChildPushBack(mView);
    }

    // Every row as its path (schema rows as their namespace), made or not.
    std::set<std::string> Shown() const { return Shown(mView.get()); }
    static std::set<std::string> Shown(MetadataView *inView)
    {
        MetadataView *const mView = inView;
        std::set<std::string> shown;
        std::function<void(RowPtr const &)> walk = [&](RowPtr const &row) {
            Path path;
            if (mView->FindPathForRow(row, path))
                shown.insert(path.mPath);
            else if (auto schema = mView->FindSchemaForRow(row))
                shown.insert(schema->mNamespace);
            for (int i = 0; i < row->CountChildRows(); ++i)
                walk(row->GetChildRow(i));
        };
        for (int i = 0; i < mView->GetTree()->CountRows(); ++i)
            walk(mView->GetTree()->GetRow(i));
        return shown;
    }

    // Opens every row and gives every row its cell.
    void MakeAllCells()
    {
        std::function<void(RowPtr const &)> walk = [&](RowPtr const &row) {
            if (row->CountChildRows() > 0) mView->GetTree()->OpenRow(row, true);
            mView->OnRowVisibilityChanged(row);
            for (int i = 0; i < row->CountChildRows(); ++i)
                walk(row->GetChildRow(i));
        };
        for (int i = 0; i < mView->GetTree()->CountRows(); ++i)
            walk(mView->GetTree()->GetRow(i));
    }

    RowPtr SchemaRow(std::string const &inNamespace) const
    {
        for (int i = 0; i < mView->GetTree()->CountRows(); ++i) {
            RowPtr row = mView->GetTree()->GetRow(i);
            if (auto schema = mView->FindSchemaForRow(row); schema && schema->mNamespace == inNamespace) return row;
        }
        return {};
    }

    // The row's cell, made if it was not; null for a path without a row.
    kivmetadataui::MetadataViewCell *Cell(Path const &inPath) const
    {
        RowPtr row = mView->FindRowForPath(inPath);
        if (!row) return nullptr;
        mView->OnRowVisibilityChanged(row);
        return mView->MetadataCellForRow(row);
    }
    kivui::UI_TextEdit *Edit(Path const &inPath) const
    {
        kivmetadataui::MetadataViewCell *cell = Cell(inPath);
        return cell ? dynamic_cast<kivui::UI_TextEdit *>(cell->GetChild_Value().get()) : nullptr;
    }

    kivui::drawbot::QtSupplier mSupplier;
    IntrusivePtr<kivui::UI_SubView> mHost{new kivui::UI_SubView};
    std::shared_ptr<kivmetadata::SchemaDefinition> mTree, mOther, mLast;
    std::shared_ptr<kivmetadata::MetaDataProvider> mProvider;
    IntrusivePtr<MetadataView> mView;
    QTemporaryDir mFolder;
};

char const *StateName(kivui::UI_Checkbox const *inBox)
{
    if (!inBox) return "none";
    if (inBox->IsValueUnknown()) return "mixed";
    return inBox->IsChecked() ? "checked" : "unchecked";
}

TEST_F(MetadataViewTest, CheckBoxesFollowTheRuleWithForcedOnAndEquivalentPaths)
{
    Make(kSample, true);
    auto equivalent = std::make_shared<MetadataView::PathSet>(MetadataView::PathSet{T("title"), U("title")});
    mView->SetEquivalenceMap({{T("title"), equivalent}, {U("title"), equivalent}});
    mView->SetForcedOnPaths({T("note")});
    MakeAllCells();

    RowPtr const tree = SchemaRow(kTreeNS);
    RowPtr const other = SchemaRow(kOtherNS);
    ASSERT_TRUE(tree && other);
    auto row = [&](Path const &path) { return mView->FindRowForPath(path); };
    auto click = [&](RowPtr const &box) { return [&, box] { mView->CheckboxForRow(box)->GetCheckBox()->click(); }; };

    struct Step {
        char const *what;
        std::function<void()> act;
        char const *tree, *other, *contact;
        bool titleSelected, otherTitleSelected;
    };
    Step const steps[] = {
        // The forced-on note alone: some of the schema's leaves.
        {"start", [] {}, "mixed", "unchecked", "unchecked", false, false},
        // Every supported leaf; the excluded one does not count.
        {"check schema", click(tree), "checked", "mixed", "checked", true, true},
        {"clear schema keeps the forced-on note", click(tree), "mixed", "unchecked", "unchecked", false, false},
        {"a forced-on box cannot be cleared", click(row(T("note"))), "mixed", "unchecked", "unchecked", false, false},
        {"an equivalent path follows", click(row(T("title"))), "mixed", "mixed", "unchecked", true, true},
        {"a struct selects its fields", click(row(T("contact"))), "mixed", "mixed", "checked", true, true},
        {"one field cleared makes it mixed", click(row(T("contact/kvt:email"))), "mixed", "mixed", "mixed", true, true},
        {"equivalent cleared from the other side", click(row(U("title"))), "mixed", "unchecked", "mixed", false, false},
    };
    for (Step const &step : steps) {
        step.act();
        SCOPED_TRACE(step.what);
        EXPECT_STREQ(StateName(mView->CheckboxForRow(tree)), step.tree);
        EXPECT_STREQ(StateName(mView->CheckboxForRow(other)), step.other);
        EXPECT_STREQ(StateName(mView->CheckboxForRow(row(T("contact")))), step.contact);
        EXPECT_EQ(mView->GetSelectedPaths().count(T("title")) == 1, step.titleSelected);
        EXPECT_EQ(mView->GetSelectedPaths().count(U("title")) == 1, step.otherTitleSelected);
        EXPECT_TRUE(mView->GetSelectedPaths().count(T("note")));
        EXPECT_STREQ(StateName(mView->CheckboxForRow(row(T("note")))), "checked");
        EXPECT_FALSE(mView->CheckboxForRow(row(T("note")))->UI_IsEnabled());
        EXPECT_FALSE(mView->GetSelectedPaths().count(T("hidden")));
    }
}

TEST_F(MetadataViewTest, RapidFindKeepsMatchesAndTheirAncestors)
{
    Make(kSample, false);
    struct Case {
        std::u16string find;
        std::set<std::string> shown;
    };
    Case const cases[] = {
        // A value inside an array item's field: the item and the array stay, the other item goes.
        {u"PARIS", {kTreeNS, "kvt:places", "kvt:places[1]", "kvt:places[1]/kvt:city"}},
        {u"anna@", {kTreeNS, "kvt:contact", "kvt:contact/kvt:email"}},
        // An item of an array of texts.
        {u"blue", {kTreeNS, "kvt:tags", "kvt:tags[2]"}},
        // A label inside a structure.
        {u"phone", {kTreeNS, "kvt:contact", "kvt:contact/kvt:phone"}},
        // A matching array label shows the whole array.
        {u"Places",
         {kTreeNS, "kvt:places", "kvt:places[1]", "kvt:places[1]/kvt:city", "kvt:places[1]/kvt:country",
          "kvt:places[2]", "kvt:places[2]/kvt:city", "kvt:places[2]/kvt:country"}},
        // Case-folded and normalised: the packet holds a decomposed accent.
        {u"CAF\u00C9", {kOtherNS, "kvu:title"}},
        {u"nowhere", {}},
    };
    for (Case const &c : cases) {
        mView->SetRapidFindString(c.find);
        EXPECT_EQ(Shown(), c.shown) << std::string(c.find.begin(), c.find.end());
    }
    mView->SetRapidFindString(u"");
    EXPECT_FALSE(mView->UserIsSearchingForRows());
    EXPECT_TRUE(Shown().count("kvw:caption"));
    EXPECT_FALSE(Shown().count("kvt:hidden")) << "an excluded property never gets a row";
}

TEST_F(MetadataViewTest, LabelsCarryTheIndexAndTheNumberOfEntries)
{
    Make(kSample, false);
    struct Case {
        Path path;
        std::u16string label;
    };
    Case const cases[] = {
        {T("tags"), u"Tags (2 entries)"},
        {T("tags[2]"), u"Tags [2]"},
        {T("places[1]/kvt:city"), u"City"},
        {U("list"), u"List"}, // no items, no entries text
    };
    for (Case const &c : cases) {
        kivmetadataui::MetadataViewCell *cell = Cell(c.path);
        ASSERT_TRUE(cell) << c.path.mPath;
        auto *label = dynamic_cast<kivui::UI_StaticText *>(cell->GetChild_Label().get());
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(label->GetText(), c.label) << c.path.mPath;
    }
}

TEST_F(MetadataViewTest, RebuildsOnlyWhenSomethingChanged)
{
    Make(kSample, false);
    int rebuilds = 0;
    mView->SetMetadataViewRowChangedFxn(
        std::make_shared<std::function<void(MetadataView *)>>([&](MetadataView *) { ++rebuilds; }));
    RowPtr const tree = SchemaRow(kTreeNS);
    mView->GetTree()->OpenRow(tree, true);
    mView->GetTree()->OpenRow(mView->FindRowForPath(T("contact")), true);

    struct Step {
        char const *what;
        std::function<void()> act;
        int rebuilds;
    };
    Step const steps[] = {
        {"new text", [&] { mView->SetRapidFindString(u"e"); }, 1},
        {"same text again", [&] { mView->SetRapidFindString(u"e"); }, 1},
        {"same text once folded", [&] { mView->SetRapidFindString(u"E"); }, 1},
        {"cleared", [&] { mView->SetRapidFindString(u""); }, 2},
        {"three changes while suspended",
         [&] {
             MetadataView::SuspendTreeRebuild outer(mView.get());
             MetadataView::SuspendTreeRebuild inner(mView.get());
             mView->SetRapidFindString(u"x");
             mView->SetReadOnlyPaths({T("title")});
             mView->SetRapidFindString(u"");
             EXPECT_EQ(rebuilds, 2);
         },
         3},
        {"suspended without changes", [&] { MetadataView::SuspendTreeRebuild idle(mView.get()); }, 3},
    };
    for (Step const &step : steps) {
        step.act();
        EXPECT_EQ(rebuilds, step.rebuilds) << step.what;
    }
    // Rows opened before the rebuilds are opened again.
    EXPECT_TRUE(SchemaRow(kTreeNS)->IsOpened());
    EXPECT_TRUE(mView->FindRowForPath(T("contact"))->IsOpened());
    EXPECT_FALSE(SchemaRow(kOtherNS)->IsOpened());
}

TEST_F(MetadataViewTest, TabMovesBetweenEditableRowsAndLeavesTheView)
{
    Make(kSample, false);
    auto mover = std::make_shared<RecordingMover>();
    mView->SetFocusMover(mover);
    // The middle schema stays closed: its rows are skipped.
    mView->SetOpenedSchemaRows({mTree, mLast});
    mHost->UI_SetGlobalStructureRect(RectF{50, 50, 600, 900});
    mHost->UI_Show(true);
    QApplication::setActiveWindow(mHost->UI_GetWidget());
    ASSERT_TRUE(QTest::qWaitForWindowActive(mHost->UI_GetWidget()));

    auto focusedPath = [&]() -> std::string {
        kivui::UI_Node *node = kivui::UI_Node::FromWidgetOrAncestor(QApplication::focusWidget());
        Path path;
        if (!mView->FindPathForRow(mView->FindRowThatHoldsMetadataViewCell(node), path)) return "<outside>";
        return path.mPath;
    };
    struct Step {
        Qt::Key key;
        std::string focused;
        std::vector<bool> moves;
    };
    // Speed is not writable, the structure and the array of structures have
    // no value of their own. Leaving the view moves nothing in this test.
    Step const steps[] = {
        {Qt::Key_Backtab, "kvt:title", {false}},     {Qt::Key_Tab, "kvt:note", {false}},
        {Qt::Key_Tab, "kvt:tags", {false}},          {Qt::Key_Tab, "kvw:caption", {false}},
        {Qt::Key_Backtab, "kvt:tags", {false}},      {Qt::Key_Tab, "kvw:caption", {false}},
        {Qt::Key_Tab, "kvw:caption", {false, true}},
    };
    kivui::UI_TextEdit *first = Edit(T("title"));
    ASSERT_NE(first, nullptr);
    first->UI_SetFocus();
    ASSERT_EQ(focusedPath(), "kvt:title");
    for (Step const &step : steps) {
        QWidget *focus = QApplication::focusWidget();
        ASSERT_NE(focus, nullptr);
        QTest::keyClick(focus, step.key, step.key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
        EXPECT_EQ(focusedPath(), step.focused);
        EXPECT_EQ(mover->mMoves, step.moves);
    }
}

TEST_F(MetadataViewTest, AnEditInTheTreeReachesTheFile)
{
    QString const file = mFolder.filePath(QStringLiteral("tree.jpg"));
    QImage image(32, 24, QImage::Format_RGB32);
    image.fill(QColor(30, 90, 160));
    ASSERT_TRUE(image.save(file, "JPG"));
    {
        // The file starts with a packet of its own, as files from cameras and editors do.
        auto seed = kivmetadata::FileMetaDataProvider::Open(file.toStdU16String());
        ASSERT_TRUE(seed);
        kivtest::SetAndNotify(seed, Path{kDC, "dc:rights"}, "Kiv");
        std::string error;
        ASSERT_TRUE(seed->Save(&error)) << error;
    }
    auto const dc = kivmetadata::NamespaceDefinition(kDC);
    ASSERT_TRUE(dc);

    struct Case {
        std::string property;
        std::u16string typed;
        std::string stored;
    };
    Case const cases[] = {
        {"dc:title", u"Harbour at dusk", "Harbour at dusk"},
        {"dc:subject", u"boats; evening", "boats; evening"},
        {"dc:title", u"", "<absent>"}, // an empty text removes the property
    };
    for (Case const &c : cases) {
        SCOPED_TRACE(c.property);
        auto provider = kivmetadata::FileMetaDataProvider::Open(file.toStdU16String());
        ASSERT_TRUE(provider);
        mView = IntrusivePtr<MetadataView>(new MetadataView({dc}, provider));
        MetadataView::PathSet included;
        kivmetadata::IncludeAllDescendantPaths(*dc, included);
        mView->SetIncludedPaths(included);
        mView->SetOpenedSchemaRows({dc});
        EXPECT_FALSE(provider->IsModified()) << "showing values is no edit";
        Path const path{kDC, c.property};
        kivui::UI_TextEdit *edit = Edit(path);
        ASSERT_NE(edit, nullptr);
        edit->SetValue(c.typed, true);
        std::string error;
        ASSERT_TRUE(provider->Save(&error)) << error;
        mView.reset();

        EXPECT_EQ(kivtest::FileValue(file, path), c.stored);
    }
}

TEST_F(MetadataViewTest, LinkButtonsFollowTheDelegate)
{
    Make(kSample, false);
    mView->SetOpenedSchemaRows({mTree});
    mHost->UI_SetGlobalStructureRect(RectF{50, 50, 600, 900});
    mHost->UI_Show(true);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(mHost->UI_GetWidget()));
    auto button = [&](char const *name) {
        return dynamic_cast<kivui::UI_PictureButton *>(Cell(T(name))->GetChild_Link().get());
    };
    EXPECT_EQ(button("title"), nullptr) << "no delegate, no link button";
    mView->UpdateAllLinkButtons();

    auto links = std::make_shared<RecordingLinks>();
    links->mLinked = {T("title")};
    mView->SetLinkDelegate(links);
    for (int i = 0; i < 3; ++i)
        QApplication::processEvents();
    auto click = [&](char const *name) { return [&, name] { button(name)->GetButton()->click(); }; };
    auto disable = [&] {
        links->mEnabled = false;
        mView->UpdateAllLinkButtons();
    };
    std::vector<std::string> const both{"kvt:note on", "kvt:title off"};
    struct Step {
        char const *what;
        std::function<void()> act;
        bool titleOn, noteOn, enabled;
        std::vector<std::string> calls;
    };
    Step const steps[] = {
        {"as the delegate says", [] {}, true, false, true, {}},
        {"a click links", click("note"), true, true, true, {"kvt:note on"}},
        {"a second click unlinks", click("title"), false, true, true, both},
        {"linking disabled", disable, false, false, false, both},
    };
    for (Step const &step : steps) {
        step.act();
        SCOPED_TRACE(step.what);
        ASSERT_TRUE(button("title") && button("note"));
        EXPECT_EQ(button("title")->IsOn(), step.titleOn);
        EXPECT_EQ(button("note")->IsOn(), step.noteOn);
        EXPECT_EQ(button("note")->UI_IsEnabled(), step.enabled);
        EXPECT_EQ(links->mCalls, step.calls);
    }
}

TEST_F(MetadataViewTest, AdvancedPageShowsTheKeptChoiceAndUnknownProperties)
{
    auto *prefs = kivui::utility::PrefManager::CreateAtPath(mFolder.filePath(QStringLiteral("prefs.ini")));
    ASSERT_NE(prefs, nullptr);
    std::string kept;
    ASSERT_TRUE(kivmetadata::IncludedLeafPathsAsXMLString({T("title"), U("title")}, kept));
    prefs->SetString(kivmetadataui::AdvancedPage::kSelectionPrefKey, kivcore::utility::Utf8ToUtf16(kept));

    std::string packet = kSample;
    packet.replace(packet.find("<kvt:title>"), 0,
                   "<unk:thing xmlns:unk=\"http://ns.kivtest.org/unknown/\">odd</unk:thing>");
    auto provider = kivmetadata::MemoryMetaDataProvider::FromPacket(packet);
    ASSERT_TRUE(provider);
    {
        kivmetadataui::AdvancedPage page(provider);
        std::set<std::string> const all{
            kTreeNS, "kvt:title", kOtherNS, "kvu:title", "http://ns.kivtest.org/unknown/", "unk:thing"};
        EXPECT_EQ(Shown(page.View()), all);
        page.SetSearchText(QStringLiteral("NOIR"));
        EXPECT_EQ(page.SearchField()->text(), QStringLiteral("NOIR"));
        EXPECT_EQ(Shown(page.View()), (std::set<std::string>{kOtherNS, "kvu:title"}));
        page.SearchField()->clear();
        EXPECT_EQ(Shown(page.View()), all) << "the search field drives the filter";
    }
    kivui::utility::PrefManager::Destroy();
}

} // namespace
