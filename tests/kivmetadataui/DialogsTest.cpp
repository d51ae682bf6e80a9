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

    QTemporaryDir mDir;
    kivui::drawbot::QtSupplier mSupplier;
};

TEST_F(DialogsTest, ErrorDialogListsTheModelsErrorsFromItsOwnCopiesAndOpensTheLink)
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
    auto list = dialog->FindControl<kivui::UI_MultiColumnTree>("errorListID");
    EXPECT_EQ(list->GetColumnCount(), 2);
    EXPECT_EQ(list->GetColumnHeader(0), u"Description");
    EXPECT_EQ(list->GetColumnHeader(1), u"Context");

    std::vector<std::pair<std::u16string, std::u16string>> rows;
    for (int i = 0; i < dialog->CountErrors(); ++i)
        rows.emplace_back(dialog->GetRowDescription(i), dialog->GetRowContext(i));
    EXPECT_EQ(rows, (std::vector<std::pair<std::u16string, std::u16string>>{
                        {u"Unreadable packet", u"/photos/a.jpg"},
                        {u"Invalid date \u201C2024-13-01\u201D", u"xmp:CreateDate"},
                        {u"Cannot write settings", u""},
                    }));
    EXPECT_EQ(list->CountRows(), 3);

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
    QImage const blank = paintCell(0, 2); // there is no third column
    EXPECT_NE(description, blank);
    EXPECT_NE(description, context);
    EXPECT_EQ(emptyContext, blank);

    // The link opens the XMP page through the opener.
    std::vector<std::u16string> opened;
    MetadataErrorDialog::SetLinkOpener([&](std::u16string const &address) {
        opened.push_back(address);
        return true;
    });
    auto link = dialog->FindControl<kivui::UI_StaticText>("errorLinkID");
    EXPECT_EQ(link->GetText(), MetadataErrorDialog::GetLinkAddress());
    ScriptedResponses::PushAction([&](QWidget *) { QTest::mouseClick(link->GetLabel(), Qt::LeftButton); },
                                  ScriptedAnswer::kOk);
    dialog->RunModal();
    EXPECT_EQ(opened, std::vector<std::u16string>{MetadataErrorDialog::GetLinkAddress()});

    // Without errors the list has only its header.
    kivmetadata::ClearErrorInfos();
    Ptr<MetadataErrorDialog> empty(new MetadataErrorDialog(&mSupplier, nullptr, true));
    EXPECT_EQ(empty->FindControl<kivui::UI_MultiColumnTree>("errorListID")->CountRows(), 0);
}

TEST_F(DialogsTest, DialogsOpenAtTheSizeKeptUnderTheirNodeIDAndKeepItOnClosing)
{
    auto error = [this] { return Ptr<kivui::UI_ArchivedDialog>(new MetadataErrorDialog(&mSupplier, nullptr, true)); };
    auto panel = [this] { return Ptr<kivui::UI_ArchivedDialog>(new PanelConversionDialog(&mSupplier, nullptr)); };
    struct Case {
        char const *name;
        std::function<Ptr<kivui::UI_ArchivedDialog>()> make;
        char const *id;
        std::optional<RectF> saved;
        PointF size;
        ScriptedAnswer close;
    };
    std::vector<Case> const cases = {
        {"error, nothing saved", error, "MetadataErrorDialog", std::nullopt, {600, 280}, ScriptedAnswer::kOk},
        {"error, saved size", error, "MetadataErrorDialog", RectF{40, 50, 720, 330}, {720, 330}, ScriptedAnswer::kOk},
        {"panel", panel, "PanelConversionDialog", RectF{30, 40, 610, 420}, {610, 420}, ScriptedAnswer::kCancel},
    };
    for (Case const &c : cases) {
        SCOPED_TRACE(c.name);
        PrefManager *prefs = MakePrefs();
        prefs->Remove(c.id);
        if (c.saved) prefs->SetWindowPositionAndSize(c.id, *c.saved);
        Ptr<kivui::UI_ArchivedDialog> dialog = c.make();
        EXPECT_EQ(dialog->UI_GetGlobalStructureRect().Size(), c.size);
        // Closing keeps the rectangle for the next opening.
        dialog->UI_SetGlobalStructureRect(RectF{60, 70, 700, 450});
        ScriptedResponses::PushAction([](QWidget *) {}, c.close);
        dialog->RunModal();
        EXPECT_EQ(prefs->GetWindowPositionAndSize(c.id).Size(), (PointF{700, 450}));
        PrefManager::Destroy();
    }
}

TEST_F(DialogsTest, TemplateOptionsDialogShowsItsOptions)
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
}

TEST_F(DialogsTest, TemplateOptionsDialogOffersTheStoredChoiceAndRemembersTheNewOne)
{
    struct Case {
        char const *name;
        bool withStore;
        std::optional<std::int64_t> stored;
        int selected;
        kivmetadata::TemplateImportOptions options;
        int click;
        ScriptedAnswer answer;
    };
    std::vector<Case> const cases = {
        {"first import", true, std::nullopt, 0, kivmetadata::kTemplateImport_ClearAndReplace, 2, ScriptedAnswer::kOk},
        // Remembered on Cancel too.
        {"keep and replace", true, 1, 1, kivmetadata::kTemplateImport_KeepAndReplace, 2, ScriptedAnswer::kCancel},
        {"keep and append", true, 2, 2, kivmetadata::kTemplateImport_KeepAndAppend, 1, ScriptedAnswer::kOk},
        {"out of range selects none", true, 7, -1, kivmetadata::kTemplateImport_KeepAndAppend, 0, ScriptedAnswer::kOk},
        // Without a store the stored choice is neither read nor written.
        {"without a store", false, 1, 0, kivmetadata::kTemplateImport_ClearAndReplace, 1, ScriptedAnswer::kOk},
    };
    for (Case const &c : cases) {
        SCOPED_TRACE(c.name);
        PrefManager *global = MakePrefs();
        global->Remove("templateImportOptions");
        if (c.stored) global->SetInt("templateImportOptions", *c.stored);
        std::shared_ptr<PrefManager> store;
        // The store is process-wide; the dialog only borrows it.
        if (c.withStore) store = std::shared_ptr<PrefManager>(std::shared_ptr<void>(), global);
        Ptr<MetadataTemplateImportOptionsDialog> dialog(
            new MetadataTemplateImportOptionsDialog(&mSupplier, kivmetadataui::module::GetResourceManager(), store));
        EXPECT_EQ(dialog->GetOptionsGroup()->GetValue(), c.selected);
        EXPECT_EQ(dialog->GetOptions(), c.options);

        QRadioButton *button = dialog->GetOptionsGroup()->GetButton(c.click);
        ScriptedResponses::PushAction([&](QWidget *) { QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(6, 6)); },
                                      c.answer);
        EXPECT_EQ(dialog->RunModal(), c.answer == ScriptedAnswer::kOk);
        EXPECT_EQ(dialog->GetOptions(), MetadataTemplateImportOptionsDialog::OptionsForIndex(c.click));
        EXPECT_EQ(global->GetInt("templateImportOptions"),
                  c.withStore ? std::optional<std::int64_t>(c.click) : c.stored);
        PrefManager::Destroy();
    }
}

TEST_F(DialogsTest, PanelConversionDialogConvertsTheChosenVersion)
{
    std::vector<int> versions;
    PanelConversionDialog::SetConverter([&](kivmetadata::utility::GXVersion version, std::u16string &report) {
        versions.push_back(version);
        report = u"converted " + std::u16string(1, char16_t(u'0' + versions.size()));
        return true;
    });
    Ptr<PanelConversionDialog> dialog(new PanelConversionDialog(&mSupplier, nullptr));
    EXPECT_EQ(dialog->GetTitle(), u"Generic Panel Converter");
    kivui::UI_Popup *popup = dialog->GetVersionPopup();
    std::vector<std::u16string> items;
    for (int i = 0; i < popup->CountItems(); ++i)
        items.push_back(popup->GetItemText(i));
    EXPECT_EQ(items, (std::vector<std::u16string>{u"Select Version...", u"", u"GY/GX6", u"GX5", u"GX4"}));
    EXPECT_FALSE(popup->IsItemEnabled(1));
    EXPECT_EQ(popup->GetValue(), 0);
    EXPECT_FALSE(dialog->GetStartButton()->GetButton()->isEnabled()) << "no version chosen yet";

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
    for (Case const &c : cases) {
        SCOPED_TRACE(c.value);
        versions.clear();
        dialog->GetResultText()->SetValue(u"previous", false);
        // As the user chooses: through the combo box, which notifies the dialog.
        popup->GetComboBox()->setCurrentIndex(c.value);
        popup->GetComboBox()->activated(c.value);
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

    // The Start button itself runs the conversion.
    versions.clear();
    popup->GetComboBox()->setCurrentIndex(3);
    dialog->OnVersionChanged();
    ScriptedResponses::PushAction(
        [&](QWidget *) { QTest::mouseClick(dialog->GetStartButton()->GetButton(), Qt::LeftButton); },
        ScriptedAnswer::kOk);
    dialog->RunModal();
    EXPECT_EQ(versions, std::vector<int>{1});
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
