// The error dialog, the template import options dialog, the panel conversion
// dialog and the XMP images, all answered by scripted responses.
#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/MetadataErrorDialog.h>
#include <kivmetadataui/MetadataTemplateImportOptionsDialog.h>
#include <kivmetadataui/PanelConversionDialog.h>
#include <kivmetadataui/XMPIcons.h>

#include "ModuleResources.h"

#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/PanelConversion.h>
#include <kivmetadata/Templates.h>
#include <kivui/OS_ResourceManager.h>
#include <kivui/PrefManager.h>
#include <kivui/ScriptedResponses.h>
#include <kivui/UI_MultiColumnTree.h>
#include <kivui/UI_Popup.h>
#include <kivui/UI_RadioGroup.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_TextButton.h>
#include <kivui/UI_TextEdit.h>
#include <kivui/drawbot/Drawbot.h>
#include <kivui/drawbot/QtSupplier.h>

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace {

using kivcore::PointF;
using kivcore::RectF;
using kivmetadataui::MetadataErrorDialog;
using kivmetadataui::MetadataTemplateImportOptionsDialog;
using kivmetadataui::sharedui::PanelConversionDialog;
using kivui::dialogs::ScriptedAnswer;
using kivui::dialogs::ScriptedResponses;
using kivui::utility::PrefManager;
template <typename T> using Ptr = kivcore::utility::IntrusivePtr<T>;

class DialogsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        kivmetadataui::Initialize();
        ScriptedResponses::Clear();
        kivmetadata::ClearErrorInfos();
    }
    void TearDown() override
    {
        EXPECT_EQ(ScriptedResponses::Pending(), 0u) << "a scripted response was not used";
        ScriptedResponses::Clear();
        MetadataErrorDialog::SetLinkOpener({});
        PanelConversionDialog::SetConverter({});
        PrefManager::Destroy();
        kivmetadata::ClearErrorInfos();
        kivmetadataui::Terminate();
    }
    PrefManager *MakePrefs() { return PrefManager::CreateAtPath(mDir.filePath(QStringLiteral("prefs.ini"))); }
    std::shared_ptr<PrefManager> SharedPrefs()
    {
        // The store is process-wide; the dialog only borrows it.
        return std::shared_ptr<PrefManager>(std::shared_ptr<void>(), MakePrefs());
    }
    static PointF SizeOf(kivui::UI_Node const &inNode)
    {
        RectF const rect = inNode.UI_GetGlobalStructureRect();
        return PointF{rect.width, rect.height};
    }

    QTemporaryDir mDir;
    kivui::drawbot::QtSupplier mSupplier;
};

TEST_F(DialogsTest, ErrorDialogListsTheModelsErrorsInOrderFromItsOwnCopies)
{
    kivmetadata::AddErrorInfo("Unreadable packet", "/photos/a.jpg");
    kivmetadata::AddErrorInfo("Invalid date \xE2\x80\x9C"
                              "2024-13-01\xE2\x80\x9D",
                              "xmp:CreateDate");
    kivmetadata::AddErrorInfo("Cannot write settings", "");
    Ptr<MetadataErrorDialog> dialog(new MetadataErrorDialog(&mSupplier, nullptr, true));
    kivmetadata::ClearErrorInfos();
    kivmetadata::AddErrorInfo("later", "later");

    EXPECT_EQ(dialog->UI_GetNodeID(), "MetadataErrorDialog");
    EXPECT_EQ(dialog->GetTitle(), u"Error Information");
    EXPECT_EQ(dialog->GetMinimumSize(), (PointF{600, 280}));
    for (char const *id : {"okButtonID", "errorListID", "errorLinkID", "errorLinkLabelID"}) {
        EXPECT_NE(dialog->FindNode(id), nullptr) << id;
    }
    EXPECT_EQ(dialog->GetOkButton(), dialog->FindNode("okButtonID"));

    auto list = dialog->FindControl<kivui::UI_MultiColumnTree>("errorListID");
    EXPECT_EQ(list->GetColumnCount(), 2);
    EXPECT_EQ(list->GetColumnHeader(0), u"Description");
    EXPECT_EQ(list->GetColumnHeader(1), u"Context");
    EXPECT_TRUE(list->IsHeaderShown());
    EXPECT_TRUE(list->HasGridLines());
    EXPECT_FALSE(list->IsSortIndicatorShown());
    EXPECT_FALSE(list->AreColumnsMovable());
    EXPECT_TRUE(list->AreColumnsAutoResize());
    EXPECT_EQ(list->GetColumnWidth(0), 200.0f);

    struct Row {
        std::u16string description, context;
    };
    std::vector<Row> const expected = {
        {u"Unreadable packet", u"/photos/a.jpg"},
        {u"Invalid date \u201C2024-13-01\u201D", u"xmp:CreateDate"},
        {u"Cannot write settings", u""},
    };
    ASSERT_EQ(list->CountRows(), 3);
    ASSERT_EQ(dialog->CountErrors(), 3);
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(dialog->GetRowDescription(i), expected[std::size_t(i)].description);
        EXPECT_EQ(dialog->GetRowContext(i), expected[std::size_t(i)].context);
    }

    // The cells are painted from those copies: column 0 and column 1 differ.
    QImage image(200, 20, QImage::Format_ARGB32);
    auto paintCell = [&](int row, int column) {
        image.fill(Qt::white);
        QPainter painter(&image);
        kivui::drawbot::Drawbot drawbot(mSupplier, painter);
        dialog->DrawCell(drawbot, list->GetRow(row), column, RectF{0, 0, 200, 20});
        return image.copy();
    };
    QImage const description = paintCell(0, 0);
    QImage const context = paintCell(0, 1);
    QImage const emptyContext = paintCell(2, 1);
    QImage blank(200, 20, QImage::Format_ARGB32);
    blank.fill(Qt::white);
    EXPECT_NE(description, blank);
    EXPECT_NE(description, context);
    EXPECT_EQ(emptyContext, blank);

    // Without errors the list has only its header.
    kivmetadata::ClearErrorInfos();
    Ptr<MetadataErrorDialog> empty(new MetadataErrorDialog(&mSupplier, nullptr, true));
    EXPECT_EQ(empty->FindControl<kivui::UI_MultiColumnTree>("errorListID")->CountRows(), 0);
}

TEST_F(DialogsTest, ErrorDialogWindowRectangleIsKeptUnderItsNodeID)
{
    struct Case {
        char const *name;
        std::optional<RectF> saved;
        PointF size;
    };
    std::vector<Case> const cases = {
        {"nothing saved", std::nullopt, {600, 280}},
        {"saved 0 by 0", RectF{10, 20, 0, 0}, {600, 280}},
        {"saved size", RectF{40, 50, 720, 330}, {720, 330}},
    };
    for (Case const &c : cases) {
        SCOPED_TRACE(c.name);
        PrefManager *prefs = MakePrefs();
        prefs->Remove("MetadataErrorDialog");
        if (c.saved) prefs->SetWindowPositionAndSize("MetadataErrorDialog", *c.saved);
        Ptr<MetadataErrorDialog> dialog(new MetadataErrorDialog(&mSupplier, nullptr, true));
        EXPECT_EQ(SizeOf(*dialog), c.size);
        PrefManager::Destroy();
    }

    // Closing keeps the rectangle for the next opening.
    PrefManager *prefs = MakePrefs();
    Ptr<MetadataErrorDialog> dialog(new MetadataErrorDialog(&mSupplier, nullptr, true));
    dialog->UI_SetGlobalStructureRect(RectF{60, 70, 640, 300});
    ScriptedResponses::PushOk();
    EXPECT_TRUE(dialog->RunModal());
    EXPECT_EQ(prefs->GetWindowPositionAndSize("MetadataErrorDialog").Size(), (PointF{640, 300}));
}

TEST_F(DialogsTest, ErrorDialogLinkOpensTheXMPPageThroughTheOpener)
{
    std::vector<std::u16string> opened;
    MetadataErrorDialog::SetLinkOpener([&](std::u16string const &address) {
        opened.push_back(address);
        return true;
    });
    Ptr<MetadataErrorDialog> dialog(new MetadataErrorDialog(&mSupplier, nullptr, true));
    auto link = dialog->FindControl<kivui::UI_StaticText>("errorLinkID");
    EXPECT_EQ(link->GetText(), MetadataErrorDialog::GetLinkAddress());
    ScriptedResponses::PushAction([&](QWidget *) { QTest::mouseClick(link->GetLabel(), Qt::LeftButton); },
                                  ScriptedAnswer::kOk);
    dialog->RunModal();
    EXPECT_EQ(opened, std::vector<std::u16string>{MetadataErrorDialog::GetLinkAddress()});
}

TEST_F(DialogsTest, TemplateOptionsDialogShowsItsOptionsAndIdentifiers)
{
    Ptr<MetadataTemplateImportOptionsDialog> dialog(
        new MetadataTemplateImportOptionsDialog(&mSupplier, nullptr, nullptr));
    EXPECT_EQ(dialog->UI_GetNodeID(), "MetadataTemplateImportOptionsDialog");
    EXPECT_EQ(dialog->GetTitle(), u"Import Options");
    RectF const built = dialog->UI_GetLocalRectF(false);
    EXPECT_EQ(dialog->GetMinimumSize(), (PointF{built.width, built.height}));

    kivui::UI_RadioGroup *group = dialog->GetOptionsGroup();
    ASSERT_EQ(group, dialog->FindNode("optionsGroupID"));
    struct Option {
        std::u16string text, toolTip;
    };
    std::vector<Option> const options = {
        {u"Clear existing properties and replace with template properties",
         u"All existing metadata properties will be cleared and properties from the template file will be added."},
        {u"Keep original metadata, but replace matching properties from template",
         u"All existing metadata properties will be kept and properties from the template file will be added. "
         u"Properties from the template file will overwrite existing ones."},
        {u"Keep original metadata, but append matching properties from template",
         u"All existing metadata properties will be kept and properties from the template file will be added. "
         u"Properties from the template file will be appended to the existing ones if possible."},
    };
    ASSERT_EQ(group->CountButtons(), 3);
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(group->GetButton(i)->text().toStdU16String(), options[std::size_t(i)].text);
        EXPECT_EQ(group->GetButton(i)->toolTip().toStdU16String(), options[std::size_t(i)].toolTip);
    }
    QWidget *buttons = dialog->FindWidget("okCancelGroupID");
    ASSERT_NE(buttons, nullptr);
    EXPECT_EQ(dialog->GetOkButton(), dialog->FindNode("okButtonID"));
    EXPECT_EQ(dialog->GetCancelButton(), dialog->FindNode("cancelButtonID"));
    EXPECT_TRUE(buttons->isAncestorOf(dialog->GetOkButton()->UI_GetWidget()));
    EXPECT_TRUE(buttons->isAncestorOf(dialog->GetCancelButton()->UI_GetWidget()));
    EXPECT_EQ(static_cast<kivui::UI_TextButton *>(dialog->GetCancelButton())->GetText(), u"Cancel");
}

TEST_F(DialogsTest, TemplateOptionsDialogOffersTheStoredChoiceAndMapsIndexes)
{
    struct Case {
        char const *name;
        std::optional<std::int64_t> stored;
        int selected;
        kivmetadata::TemplateImportOptions options;
    };
    std::vector<Case> const cases = {
        {"first import", std::nullopt, 0, kivmetadata::kTemplateImport_ClearAndReplace},
        {"clear and replace", 0, 0, kivmetadata::kTemplateImport_ClearAndReplace},
        {"keep and replace", 1, 1, kivmetadata::kTemplateImport_KeepAndReplace},
        {"keep and append", 2, 2, kivmetadata::kTemplateImport_KeepAndAppend},
        {"out of range selects none", 7, -1, kivmetadata::kTemplateImport_KeepAndAppend},
    };
    for (Case const &c : cases) {
        SCOPED_TRACE(c.name);
        auto prefs = SharedPrefs();
        prefs->Remove("templateImportOptions");
        if (c.stored) prefs->SetInt("templateImportOptions", *c.stored);
        Ptr<MetadataTemplateImportOptionsDialog> dialog(
            new MetadataTemplateImportOptionsDialog(&mSupplier, kivmetadataui::module::GetResourceManager(), prefs));
        EXPECT_EQ(dialog->GetOptionsGroup()->GetValue(), c.selected);
        EXPECT_EQ(dialog->GetOptions(), c.options);
        PrefManager::Destroy();
    }
    EXPECT_EQ(MetadataTemplateImportOptionsDialog::OptionsForIndex(-1), kivmetadata::kTemplateImport_KeepAndAppend);
    EXPECT_EQ(MetadataTemplateImportOptionsDialog::OptionsForIndex(3), kivmetadata::kTemplateImport_KeepAndAppend);
}

TEST_F(DialogsTest, TemplateOptionsDialogRemembersTheChoiceOnOkAndOnCancel)
{
    struct Case {
        char const *name;
        bool withStore;
        int click;
        ScriptedAnswer answer;
        bool accepted;
    };
    std::vector<Case> const cases = {
        {"OK", true, 2, ScriptedAnswer::kOk, true},
        {"Cancel", true, 1, ScriptedAnswer::kCancel, false},
        {"without a store", false, 1, ScriptedAnswer::kOk, true},
    };
    for (Case const &c : cases) {
        SCOPED_TRACE(c.name);
        PrefManager *global = MakePrefs();
        global->Remove("templateImportOptions");
        std::shared_ptr<PrefManager> store;
        if (c.withStore) store = std::shared_ptr<PrefManager>(std::shared_ptr<void>(), global);
        Ptr<MetadataTemplateImportOptionsDialog> dialog(
            new MetadataTemplateImportOptionsDialog(&mSupplier, kivmetadataui::module::GetResourceManager(), store));
        QRadioButton *button = dialog->GetOptionsGroup()->GetButton(c.click);
        ScriptedResponses::PushAction([&](QWidget *) { QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(6, 6)); },
                                      c.answer);
        EXPECT_EQ(dialog->RunModal(), c.accepted);
        EXPECT_EQ(dialog->GetOptions(), MetadataTemplateImportOptionsDialog::OptionsForIndex(c.click));
        std::optional<std::int64_t> const stored = global->GetInt("templateImportOptions");
        if (c.withStore)
            EXPECT_EQ(stored, std::optional<std::int64_t>(c.click));
        else
            EXPECT_FALSE(stored.has_value());
        PrefManager::Destroy();
    }
}

TEST_F(DialogsTest, PanelConversionDialogStartsDisabledWithTheVersionList)
{
    Ptr<PanelConversionDialog> dialog(new PanelConversionDialog(&mSupplier, nullptr));
    EXPECT_EQ(dialog->GetTitle(), u"Generic Panel Converter");
    EXPECT_EQ(dialog->UI_GetNodeID(), "PanelConversionDialog");
    kivui::UI_Popup *popup = dialog->GetVersionPopup();
    ASSERT_EQ(popup, dialog->FindNode("versionPopupID"));
    EXPECT_EQ(dialog->GetStartButton(), dialog->FindNode("startButtonID"));
    EXPECT_EQ(dialog->GetResultText(), dialog->FindNode("resultTextID"));
    EXPECT_EQ(dialog->GetOkButton(), dialog->FindNode("exitButtonID"));
    std::vector<std::u16string> const items = {u"Select Version...", u"", u"GY/GX6", u"GX5", u"GX4"};
    ASSERT_EQ(popup->CountItems(), 5);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(popup->GetItemText(i), items[std::size_t(i)]) << i;
    EXPECT_FALSE(popup->IsItemEnabled(1));
    EXPECT_EQ(popup->GetValue(), 0);
    EXPECT_TRUE(dialog->GetStartButton()->IsDisabled());
    EXPECT_FALSE(dialog->GetStartButton()->GetButton()->isEnabled());
}

TEST_F(DialogsTest, PanelConversionDialogConvertsTheChosenVersion)
{
    std::vector<int> versions;
    PanelConversionDialog::SetConverter([&](kivmetadata::utility::GXVersion version, std::u16string &report) {
        versions.push_back(version);
        report = u"converted " + std::u16string(1, char16_t(u'0' + versions.size()));
        return true;
    });
    struct Case {
        int value;
        bool startEnabled;
        std::optional<int> version;
    };
    std::vector<Case> const cases = {
        {2, true, 0},
        {3, true, 1},
        {4, true, 2},
        // A press that reaches the dialog on "Select Version..." does nothing.
        {0, false, std::nullopt},
    };
    Ptr<PanelConversionDialog> dialog(new PanelConversionDialog(&mSupplier, nullptr));
    for (Case const &c : cases) {
        SCOPED_TRACE(c.value);
        versions.clear();
        dialog->GetResultText()->SetValue(u"previous", false);
        // As the user chooses: through the combo box, which notifies the dialog.
        dialog->GetVersionPopup()->GetComboBox()->setCurrentIndex(c.value);
        dialog->GetVersionPopup()->GetComboBox()->activated(c.value);
        EXPECT_EQ(dialog->GetStartButton()->IsEnabled(), c.startEnabled);
        dialog->OnStartClicked();
        if (c.version) {
            EXPECT_EQ(versions, std::vector<int>{*c.version});
            EXPECT_EQ(dialog->GetResultText()->GetValue(), u"converted 1");
        } else {
            EXPECT_TRUE(versions.empty());
            EXPECT_EQ(dialog->GetResultText()->GetValue(), u"previous");
        }
    }
    EXPECT_EQ(PanelConversionDialog::VersionForPopupValue(9), kivmetadata::utility::kGXVersion_GX4);

    // The Start button itself runs the conversion.
    versions.clear();
    dialog->GetVersionPopup()->GetComboBox()->setCurrentIndex(3);
    dialog->OnVersionChanged();
    ScriptedResponses::PushAction(
        [&](QWidget *) { QTest::mouseClick(dialog->GetStartButton()->GetButton(), Qt::LeftButton); },
        ScriptedAnswer::kOk);
    dialog->RunModal();
    EXPECT_EQ(versions, std::vector<int>{1});
}

TEST_F(DialogsTest, PanelConversionDialogComesBackAtItsPlaceAndSize)
{
    MakePrefs();
    {
        Ptr<PanelConversionDialog> dialog(new PanelConversionDialog(&mSupplier, nullptr));
        dialog->UI_SetGlobalStructureRect(RectF{30, 40, 610, 420});
        ScriptedResponses::PushCancel();
        dialog->RunModal();
    }
    EXPECT_EQ(PrefManager::GetPrefManager()->GetWindowPositionAndSize("PanelConversionDialog").Size(),
              (PointF{610, 420}));
    Ptr<PanelConversionDialog> again(new PanelConversionDialog(&mSupplier, nullptr));
    EXPECT_EQ(SizeOf(*again), (PointF{610, 420}));
}

TEST_F(DialogsTest, XMPImagesComeFromTheLibrarysImages)
{
    QImage const dark = kivmetadataui::GetXMPIconDark();
    QImage const light = kivmetadataui::GetXMPIconLight();
    EXPECT_EQ(dark.size(), QSize(16, 16));
    EXPECT_EQ(light.size(), QSize(16, 16));
    EXPECT_NE(dark, light);
    EXPECT_EQ(kivmetadataui::GetPoweredByXMPImage(kivmetadataui::PoweredByXMPLogo::kStacked).size(), QSize(72, 33));
    EXPECT_EQ(kivmetadataui::GetPoweredByXMPImage(kivmetadataui::PoweredByXMPLogo::kWide).size(), QSize(105, 15));
}

} // namespace
