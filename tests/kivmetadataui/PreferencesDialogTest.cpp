#include <kivmetadataui/AddSchemaPropertyDialog.h>
#include <kivmetadataui/MetadataPreferencesDialog.h>

#include "BindingTestSupport.h"
#include "MetadataPreferencesDialog_p.h"
#include "PathSelection_p.h"

#include <kivmetadataui/Initialize.h>

#include <kivmetadata/Definitions.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/ViewSettings.h>

#include <kivcore/FileUtils.h>
#include <kivcore/StringUtils.h>
#include <kivui/ScriptedResponses.h>
#include <kivui/UI_MultiColumnTree.h>
#include <kivui/UI_Popup.h>
#include <kivui/UI_SubView.h>
#include <kivui/drawbot/QtSupplier.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

#include <functional>

namespace {

using kivcore::utility::FileUtils;
using kivcore::utility::IntrusivePtr;
using kivmetadata::Path;
using kivmetadataui::SchemaDefinitionList;
using kivmetadataui::SchemaDefinitionSet;
using kivui::dialogs::ScriptedAnswer;
using kivui::dialogs::ScriptedResponses;
using kivui::dialogs::ShownDialog;

constexpr char kDC[] = "http://purl.org/dc/elements/1.1/";

// Message boxes shown, as their titles and messages.
using Boxes = std::vector<std::pair<std::u16string, std::u16string>>;

Path DC(std::string const &name)
{
    return Path{kDC, "dc:" + name};
}

// The controls of the open preferences dialog, found as a user sees them.
struct OpenDialog {
    QWidget *dialog;

    template <typename T> T *Node(char const *id) const
    {
        return dynamic_cast<T *>(kivui::UI_Node::FromWidget(dialog->findChild<QWidget *>(id)));
    }
    kivui::UI_Popup *Popup() const { return Node<kivui::UI_Popup>("previous_settings_popup"); }
    kivui::UI_MultiColumnTree *Tree() const { return Node<kivui::UI_MultiColumnTree>("properties"); }
    void Click(char const *id) const { dialog->findChild<QPushButton *>(id)->click(); }
    std::vector<std::u16string> PopupItems() const
    {
        std::vector<std::u16string> items;
        for (int i = 0; i < Popup()->CountItems(); ++i)
            items.push_back(Popup()->GetItemText(i));
        return items;
    }
    bool DeleteEnabled() const { return dialog->findChild<QPushButton *>("delete_settings_button")->isEnabled(); }
    kivui::UI_MultiColumnTree::RowPtr Row(std::u16string const &label) const
    {
        std::function<kivui::UI_MultiColumnTree::RowPtr(kivui::UI_MultiColumnTree::RowPtr const &)> find =
            [&](kivui::UI_MultiColumnTree::RowPtr const &row) -> kivui::UI_MultiColumnTree::RowPtr {
            if (row->GetText(0) == label) return row;
            for (int i = 0; i < row->CountChildRows(); ++i)
                if (auto found = find(row->GetChildRow(i))) return found;
            return {};
        };
        for (int i = 0; i < Tree()->CountRows(); ++i)
            if (auto found = find(Tree()->GetRow(i))) return found;
        return {};
    }
    // Puts the tree's current row on `label` and presses a key there, as a keyboard user would.
    void KeyOnRow(std::u16string const &label, Qt::Key key) const
    {
        auto row = Row(label);
        ASSERT_TRUE(row) << kivcore::utility::Utf16ToUtf8(label);
        Tree()->ClearSelection();
        Tree()->SelectRow(row);
        Tree()->ScrollRowIntoView(row);
        QTest::keyClick(Tree()->GetTreeView(), key);
    }
};

void PushOnDialog(std::function<void(OpenDialog const &)> action, ScriptedAnswer answer = ScriptedAnswer::kNone)
{
    ScriptedResponses::PushAction([action](QWidget *dialog) { action(OpenDialog{dialog}); }, answer);
}

// Answers the add-property dialog: types a name (a null text keeps the
// offered one) and moves the type popup down.
std::function<void(QWidget *)> Enter(QString text, int downs = 0)
{
    return [text, downs](QWidget *box) {
        if (!text.isNull()) {
            auto *name = box->findChild<QLineEdit *>("nameTextEdit");
            name->clear();
            QTest::keyClicks(name, text);
        }
        for (int i = 0; i < downs; ++i)
            QTest::keyClick(box->findChild<QComboBox *>("columnTypePopup"), Qt::Key_Down);
    };
}

class PreferencesDialogTest : public ::testing::Test {
public:
    static void SetUpTestSuite() { kivmetadataui::Initialize(); }
    static void TearDownTestSuite() { kivmetadataui::Terminate(); }
    void SetUp() override
    {
        ScriptedResponses::Clear();
        ScriptedResponses::ClearHistory();
        mSchemas = {kivmetadata::NamespaceDefinition(kDC)};
        ASSERT_TRUE(mSchemas.front());
    }
    void TearDown() override
    {
        EXPECT_EQ(ScriptedResponses::Pending(), 0u);
        ScriptedResponses::Clear();
    }
    std::u16string Folder() const { return mTemp.path().toStdU16String() + u"/settings/"; }
    std::u16string SettingFile(std::u16string const &name) const
    {
        return FileUtils::Join(Folder(), name + u".xmp_view_settings.xml");
    }
    bool Run()
    {
        return kivmetadataui::DoMetadataPreferencesDialog(mSelected, &mSupplier, mParent.get(), mOpened, Folder(),
                                                          mSchemas.cbegin(), mSchemas.cend());
    }
    // Titles and messages of the boxes shown since the last call, the preferences dialog left out.
    Boxes Shown()
    {
        Boxes shown;
        for (ShownDialog const &box : ScriptedResponses::History())
            if (box.title != u"Metadata Display") shown.emplace_back(box.title, box.message);
        ScriptedResponses::ClearHistory();
        return shown;
    }

    QTemporaryDir mTemp;
    kivui::drawbot::QtSupplier mSupplier;
    IntrusivePtr<kivui::UI_SubView> mParent{new kivui::UI_SubView};
    std::set<Path> mSelected;
    SchemaDefinitionSet mOpened;
    SchemaDefinitionList mSchemas;
};

TEST_F(PreferencesDialogTest, PopupListsTheSettingFilesThatParse)
{
    std::string title, creator;
    ASSERT_TRUE(kivmetadata::IncludedLeafPathsAsXMLString({DC("title")}, title));
    ASSERT_TRUE(kivmetadata::IncludedLeafPathsAsXMLString({DC("creator")}, creator));
    std::pair<std::u16string, std::string> const broken{u"Broken.xmp_view_settings.xml", "<not a setting"};
    struct Case {
        char const *name;
        std::vector<std::pair<std::u16string, std::string>> files; // none: no folder
        std::vector<std::u16string> items;
        bool enabled;
    };
    std::vector<Case> const cases = {
        {"missing folder", {}, {u"(Custom)"}, false},
        {"only other and broken files", {{u"notes.txt", "x"}, broken}, {u"(Custom)"}, true},
        {"two settings in file-name order",
         {{u"Zeta.xmp_view_settings.xml", title}, {u"Basic.xmp_view_settings.xml", creator}, broken},
         {u"(Custom)", u"", u"Basic", u"Zeta"},
         true},
    };
    for (Case const &c : cases) {
        SCOPED_TRACE(c.name);
        QDir(QString::fromStdU16String(Folder())).removeRecursively();
        for (auto const &[file, text] : c.files) {
            QDir().mkpath(QString::fromStdU16String(Folder()));
            FileUtils::SimpleWriteStringToFile(Folder() + file, text);
        }
        PushOnDialog(
            [&c](OpenDialog const &d) {
                EXPECT_EQ(d.PopupItems(), c.items);
                EXPECT_FALSE(d.Popup()->IsItemEnabled(0));
                EXPECT_EQ(d.Popup()->GetComboBox()->isEnabled(), c.enabled);
                EXPECT_EQ(d.Popup()->GetValue(), 0);
                EXPECT_FALSE(d.DeleteEnabled());
            },
            ScriptedAnswer::kCancel);
        EXPECT_FALSE(Run());
    }
}

TEST_F(PreferencesDialogTest, SaveMatchOverwriteAndDeleteSettings)
{
    mSelected = {DC("title"), DC("creator")};
    std::string other;
    ASSERT_TRUE(kivmetadata::IncludedLeafPathsAsXMLString({DC("rights")}, other));
    QDir().mkpath(QString::fromStdU16String(Folder()));
    ASSERT_TRUE(FileUtils::SimpleWriteStringToFile(SettingFile(u"Other"), other));
    // A name that cannot be a file is refused with a message, and nothing is written.
    PushOnDialog([](OpenDialog const &d) { d.Click("save_settings_button"); }, ScriptedAnswer::kCancel);
    ScriptedResponses::PushOk(u"a/b");
    ScriptedResponses::PushOk();
    Run();
    auto const refused = Shown();
    ASSERT_EQ(refused.size(), 2u);
    EXPECT_EQ(refused[1].first, u"Settings Not Saved");
    EXPECT_TRUE(refused[1].second.starts_with(u"The settings 'a/b' could not be saved: ")) << refused[1].second.size();
    EXPECT_EQ(FileUtils::ContainedFiles(Folder()).size(), 1u);

    PushOnDialog([](OpenDialog const &d) { d.Click("save_settings_button"); });
    ScriptedResponses::PushOk(u"Basic");
    PushOnDialog([&](OpenDialog const &d) {
        EXPECT_EQ(d.Popup()->GetValueString(), u"Basic");
        EXPECT_TRUE(d.DeleteEnabled());
        std::set<Path> stored;
        EXPECT_TRUE(kivmetadata::ReadIncludedLeafPathsAsXMLFile(stored, SettingFile(u"Basic")));
        EXPECT_EQ(stored, mSelected);
        // A leaf turned off leaves every saved setting: the popup says "(Custom)".
        d.KeyOnRow(u"Title", Qt::Key_Space);
        EXPECT_EQ(d.Popup()->GetValue(), 0);
        EXPECT_FALSE(d.DeleteEnabled());
        // Saving under the same name overwrites; the name is listed once.
        d.Click("save_settings_button");
    });
    ScriptedResponses::PushOk(u"Basic");
    PushOnDialog([&](OpenDialog const &d) {
        EXPECT_EQ(d.PopupItems(), (std::vector<std::u16string>{u"(Custom)", u"", u"Basic", u"Other"}));
        std::set<Path> stored;
        EXPECT_TRUE(kivmetadata::ReadIncludedLeafPathsAsXMLFile(stored, SettingFile(u"Basic")));
        EXPECT_EQ(stored, std::set<Path>{DC("creator")});
        // Choosing a setting replaces the selection and shows in the check boxes.
        QTest::keyClick(d.Popup()->GetComboBox(), Qt::Key_Down);
        EXPECT_EQ(d.Popup()->GetValueString(), u"Other");
        EXPECT_TRUE(d.DeleteEnabled());
        d.Click("delete_settings_button");
    });
    ScriptedResponses::PushOk();
    PushOnDialog(
        [&](OpenDialog const &d) {
            EXPECT_FALSE(FileUtils::FileOrDirExists(SettingFile(u"Other")));
            EXPECT_EQ(d.PopupItems(), (std::vector<std::u16string>{u"(Custom)", u"", u"Basic"}));
            EXPECT_EQ(d.Popup()->GetValue(), 0);
        },
        ScriptedAnswer::kOk);
    EXPECT_TRUE(Run());
    EXPECT_EQ(mSelected, std::set<Path>{DC("rights")});
    EXPECT_EQ(Shown(), (Boxes{
                           {u"Save Settings", u"Name:"},
                           {u"Save Settings", u"Name:"},
                           {u"Delete Settings", u"Are you sure you want to delete the setting 'Other'?"},
                       }));

    // A selection equal to a saved one opens showing that setting.
    mSelected = {DC("creator")};
    PushOnDialog([](OpenDialog const &d) { EXPECT_EQ(d.Popup()->GetValueString(), u"Basic"); },
                 ScriptedAnswer::kCancel);
    Run();

    // Without a folder the settings go to the per-user one.
    PushOnDialog([](OpenDialog const &d) { d.Click("save_settings_button"); }, ScriptedAnswer::kCancel);
    ScriptedResponses::PushOk(u"Elsewhere");
    kivmetadataui::DoMetadataPreferencesDialog(mSelected, &mSupplier, mParent.get(), mOpened, u"", mSchemas.cbegin(),
                                               mSchemas.cend());
    EXPECT_TRUE(FileUtils::FileOrDirExists(
        FileUtils::Join(kivmetadata::ViewSettingsDirectory(), u"Elsewhere.xmp_view_settings.xml")));
}

TEST_F(PreferencesDialogTest, CheckBoxesFollowTheRuleAndAreWrittenBackOnlyOnOk)
{
    mSchemas.push_back(kivmetadata::NamespaceDefinition("http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/"));
    ASSERT_TRUE(mSchemas.back());
    for (ScriptedAnswer answer : {ScriptedAnswer::kCancel, ScriptedAnswer::kOk}) {
        mSelected = {DC("title")};
        mOpened.clear();
        PushOnDialog(
            [](OpenDialog const &d) {
                auto box = [&d](std::u16string const &label) {
                    return d.Row(label)->GetCellView()->UI_GetWidget()->findChild<QCheckBox *>()->checkState();
                };
                d.Tree()->OpenRow(d.Row(u"Dublin Core"), true);
                d.Tree()->Layout();
                d.KeyOnRow(u"Creator", Qt::Key_Space);
                d.KeyOnRow(u"Title", Qt::Key_Space);
                EXPECT_EQ(box(u"Creator"), Qt::Checked);
                EXPECT_EQ(box(u"Title"), Qt::Unchecked);
                EXPECT_EQ(box(u"Dublin Core"), Qt::PartiallyChecked);
                d.KeyOnRow(u"Dublin Core", Qt::Key_Space);
                EXPECT_EQ(box(u"Dublin Core"), Qt::Checked);
                EXPECT_EQ(box(u"Title"), Qt::Checked);
                // Filtering keeps matching rows (and their schema) only, inside structures too.
                QTest::keyClicks(d.dialog->findChild<QLineEdit *>("search_box"), QStringLiteral("EMAIL"));
                EXPECT_FALSE(d.Row(u"Creator"));
                EXPECT_FALSE(d.Row(u"Dublin Core"));
                ASSERT_TRUE(d.Row(u"Email(s)"));
                EXPECT_TRUE(d.Row(u"Email(s)")->GetParentRow()->IsOpened());
                QTest::keyClick(d.dialog->findChild<QLineEdit *>("search_box"), Qt::Key_A, Qt::ControlModifier);
                QTest::keyClicks(d.dialog->findChild<QLineEdit *>("search_box"), QStringLiteral("creat"));
                EXPECT_TRUE(d.Row(u"Creator"));
                EXPECT_FALSE(d.Row(u"Title"));
            },
            answer);
        bool const ok = Run();
        EXPECT_EQ(ok, answer == ScriptedAnswer::kOk);
        if (ok)
            EXPECT_EQ(mSelected.size(), kivmetadataui::CountSupportedDescendantLeafPaths(*mSchemas.front()));
        else
            EXPECT_EQ(mSelected, std::set<Path>{DC("title")});
        EXPECT_EQ(mOpened.size(), ok ? 1u : 0u);
    }
}

TEST_F(PreferencesDialogTest, NewSchemaNamesAreCleanedAndMustBeNew)
{
    std::u16string const custom = kivmetadata::CustomDefinitionsUserDirectory();
    QDir().mkpath(QString::fromStdU16String(custom));
    FileUtils::SimpleWriteStringToFile(FileUtils::Join(custom, u"Taken.xml"), "<x/>");
    FileUtils::SimpleWriteStringToFile(FileUtils::Join(custom, u"x-y.xml"), "<x/>");
    struct Case {
        std::vector<std::u16string> answers; // typed in turn; a prompt after the last one is cancelled
        std::u16string file;                 // the schema file made, or empty
        std::u16string offeredAgain;         // the text of the prompt after a clash
        Boxes shown;
    };
    Boxes::value_type const ask{u"New Schema", u"Name:"};
    auto clash = [](std::u16string const &name) {
        return Boxes::value_type{u"Invalid Name",
                                 u"The name '" + name + u"' is already used. Please use a different name."};
    };
    std::vector<Case> const cases = {
        {{u"Plain"}, u"Plain.xml", u"", {ask}},
        {{u"a/b:c"}, u"a-b-c.xml", u"", {ask}},
        {{u"Taken", u"Fresh"}, u"Fresh.xml", u"Taken", {ask, clash(u"Taken"), ask}},
        {{u"x/y"}, u"", u"x-y", {ask, clash(u"x-y"), ask}},
    };
    for (Case const &c : cases) {
        SCOPED_TRACE(kivcore::utility::Utf16ToUtf8(c.answers.front()));
        std::vector<std::u16string> offered;
        auto const record = [&offered](QWidget *box) {
            offered.push_back(box->findChild<QLineEdit *>()->text().toStdU16String());
        };
        PushOnDialog([](OpenDialog const &d) { d.Click("new_schema_button"); }, ScriptedAnswer::kOk);
        for (std::u16string const &answer : c.answers) {
            ScriptedResponses::PushAction(record, ScriptedAnswer::kNone);
            ScriptedResponses::PushOk(answer);
            if (c.file.empty() || answer != c.answers.back()) ScriptedResponses::PushOk(); // the clash box
        }
        if (c.file.empty()) ScriptedResponses::PushAction(record, ScriptedAnswer::kCancel);
        EXPECT_TRUE(Run());
        EXPECT_EQ(Shown(), c.shown);
        if (!c.offeredAgain.empty()) {
            ASSERT_EQ(offered.size(), 2u);
            EXPECT_EQ(offered[1], c.offeredAgain);
        }
        if (c.file.empty()) continue;
        std::u16string const filePath = FileUtils::Join(custom, c.file);
        ASSERT_TRUE(FileUtils::FileOrDirExists(filePath));
        std::shared_ptr<kivmetadata::SchemaDefinition> made;
        for (auto const &schema : kivmetadata::GetSchemaDefinitions())
            if (schema->mFilePath == filePath) made = schema;
        ASSERT_TRUE(made);
        std::string const id = kivmetadataui::CustomSchemaIdentifier(*made);
        std::string const name = kivcore::utility::Utf16ToUtf8(c.file.substr(0, c.file.size() - 4));
        EXPECT_EQ(id.size(), 36u);
        EXPECT_EQ(made->mLabel, "$$$/custom_xmp_schemas/" + id + "/schema_label/" + name + "=" + name);
        EXPECT_EQ(made->mDescription, "$$$/custom_xmp_schemas/" + id + "/schema_description/" + name + "=" + name);
    }
}

TEST_F(PreferencesDialogTest, PropertiesAddedToAndDeletedFromCustomSchemas)
{
    PushOnDialog([](OpenDialog const &d) { d.Click("new_schema_button"); });
    ScriptedResponses::PushOk(u"Studio");
    PushOnDialog([](OpenDialog const &d) {
        auto row = d.Row(u"Studio");
        d.Tree()->ScrollRowIntoView(row);
        row->GetCellView()->UI_GetWidget()->findChild<QPushButton *>("add_property_button")->click();
    });
    ScriptedResponses::PushAction(Enter("Take Count", 1), ScriptedAnswer::kOk);
    PushOnDialog([](OpenDialog const &d) {
        EXPECT_TRUE(d.Row(u"Take Count"));
        // A plain standard property has no delete: the key does nothing there.
        d.Tree()->OpenRow(d.Row(u"Dublin Core"), true);
        d.KeyOnRow(u"Title", Qt::Key_Delete);
        d.KeyOnRow(u"Take Count", Qt::Key_Delete);
    });
    ScriptedResponses::PushCancel();
    PushOnDialog([](OpenDialog const &d) { EXPECT_TRUE(d.Row(u"Take Count")); }, ScriptedAnswer::kOk);
    EXPECT_TRUE(Run());

    std::shared_ptr<kivmetadata::SchemaDefinition> studio;
    for (auto const &schema : kivmetadata::GetSchemaDefinitions())
        if (kivcore::utility::Utf16ToUtf8(schema->mFilePath).ends_with("/Studio.xml")) studio = schema;
    ASSERT_TRUE(studio);
    auto const property = studio->FindProperty("Take_Count");
    ASSERT_TRUE(property);
    EXPECT_EQ(property->mPrimitiveType, kivmetadata::kPrimitiveType_Real);
    std::string const id = kivmetadataui::CustomSchemaIdentifier(*studio);
    EXPECT_EQ(property->mLabel, "$$$/custom_xmp_schemas/" + id + "/property_name/Take Count=Take Count");
    Path const path = kivmetadata::CreatePathFromSchemaProperty(*studio, *property);
    EXPECT_TRUE(mSelected.count(path));
    std::string file;
    ASSERT_TRUE(FileUtils::ReadFileToString(studio->mFilePath, file));
    EXPECT_NE(file.find("Take_Count"), std::string::npos);
    EXPECT_EQ(Shown(), (Boxes{
                           {u"New Schema", u"Name:"},
                           {u"Add Property", u""},
                           {u"Delete Property",
                            u"Are you sure you want to delete the property 'Take Count' from the schema 'Studio'?"},
                       }));

    // Confirmed, the property leaves the schema, its file, the tree and the selection.
    mSchemas.push_back(studio);
    mOpened.insert(studio);
    PushOnDialog([](OpenDialog const &d) {
        d.KeyOnRow(u"Studio", Qt::Key_Insert);
        d.KeyOnRow(u"Take Count", Qt::Key_Delete);
    });
    ScriptedResponses::PushCancel();
    ScriptedResponses::PushOk();
    PushOnDialog([](OpenDialog const &d) { EXPECT_FALSE(d.Row(u"Take Count")); }, ScriptedAnswer::kOk);
    EXPECT_TRUE(Run());
    EXPECT_FALSE(studio->FindProperty("Take_Count"));
    EXPECT_FALSE(mSelected.count(path));
    ASSERT_TRUE(FileUtils::ReadFileToString(studio->mFilePath, file));
    EXPECT_EQ(file.find("Take_Count"), std::string::npos);
    EXPECT_EQ(Shown().front().first, u"Add Property");
}

TEST_F(PreferencesDialogTest, AddPropertyDialogChecksTheNameAndReturnsTheType)
{
    auto schema = kivmetadata::CreateNewSchema("checks", "Checks", "", "");
    kivmetadata::AddPropertyToSchema(schema,
                                     kivmetadata::CreateNewProperty(kivmetadata::kPrimitiveType_Text, "Used", ""));
    kivmetadata::AddPropertyToSchema(schema,
                                     kivmetadata::CreateNewProperty(kivmetadata::kPrimitiveType_Text, "My_Name", ""));
    Boxes::value_type const missing{u"Missing Property Name",
                                    u"The property must have a name. Please enter a unique name"};
    Boxes::value_type const duplicate{
        u"Duplicate Property Name",
        u"The name Used is already being used in the schema. Please re-enter a unique property name"};
    struct Case {
        char const *name;
        std::vector<std::function<void(QWidget *)>> tries; // each then answered with OK
        bool accepted;
        std::u16string outName, outText;
        std::int32_t outType;
        kivmetadata::PrimitiveType primitive; // for the type index given back
        Boxes refusals;
    };
    auto const integer = kivmetadata::kPrimitiveType_Integer;
    auto const boolean = kivmetadata::kPrimitiveType_Boolean;
    std::vector<Case> const cases = {
        {"OK at once", {Enter({})}, true, u"NewProperty", u"NewProperty", 0, integer, {}},
        {"type Boolean", {Enter({}, 3)}, true, u"NewProperty", u"NewProperty", 3, boolean, {}},
        {"empty, then a name", {Enter(""), Enter("x y")}, true, u"x_y", u"x y", 0, integer, {missing}},
        {"duplicate, then new", {Enter("Used"), Enter("Used2")}, true, u"Used2", u"Used2", 0, integer, {duplicate}},
        // Only the name made from the text must be new; type Text.
        {"made name", {Enter("My Name", 2)}, true, u"My_Name", u"My Name", 2, kivmetadata::kPrimitiveType_Text, {}},
        // Cancelled: the outputs stay, and an index out of range is an integer.
        {"empty, then cancelled", {Enter("")}, false, u"untouched", u"untouched", 7, integer, {missing}},
    };
    for (Case const &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedResponses::ClearHistory();
        for (auto const &attempt : c.tries) {
            ScriptedResponses::PushAction(attempt, ScriptedAnswer::kOk);
            // A refusal shows a stop box (answered) and leaves the dialog open.
            if (&attempt != &c.tries.back() || !c.accepted) ScriptedResponses::PushOk();
        }
        if (!c.accepted) ScriptedResponses::PushCancel();
        std::u16string name = u"untouched", text = u"untouched";
        std::int32_t index = 7;
        EXPECT_EQ(kivmetadataui::DoAddSchemaPropertyDialog(schema, name, text, index, &mSupplier, mParent.get()),
                  c.accepted);
        EXPECT_EQ(name, c.outName);
        EXPECT_EQ(text, c.outText);
        EXPECT_EQ(index, c.outType);
        EXPECT_EQ(kivmetadataui::PrimitiveTypeForPropertyTypeIndex(index), c.primitive);
        Boxes refusals;
        for (auto const &shown : Shown())
            if (shown.first != u"Add Property") refusals.push_back(shown);
        EXPECT_EQ(refusals, c.refusals);
    }
}

TEST_F(PreferencesDialogTest, MissingSupplierOrParentIsAnAssertionAndShowsNothing)
{
    kivtest::AssertRecorder asserts;
    EXPECT_FALSE(kivmetadataui::DoMetadataPreferencesDialog(mSelected, &mSupplier, nullptr, mOpened, Folder(),
                                                            mSchemas.cbegin(), mSchemas.cend()));
    EXPECT_FALSE(kivmetadataui::DoMetadataPreferencesDialog(mSelected, nullptr, mParent.get(), mOpened, Folder(),
                                                            mSchemas.cbegin(), mSchemas.cend()));
    std::u16string name, text;
    std::int32_t index = 0;
    EXPECT_FALSE(kivmetadataui::DoAddSchemaPropertyDialog(mSchemas.front(), name, text, index, nullptr));
    EXPECT_EQ(asserts.Take(),
              (std::vector<std::string>{
                  "src/MetadataPreferencesDialog|kivmetadataui::DoMetadataPreferencesDialog|inDrawSupplier && inParent",
                  "src/MetadataPreferencesDialog|kivmetadataui::DoMetadataPreferencesDialog|inDrawSupplier && inParent",
                  "src/AddSchemaPropertyDialog|kivmetadataui::DoAddSchemaPropertyDialog|inDrawSupplier"}));
    EXPECT_TRUE(Shown().empty());
}

} // namespace
