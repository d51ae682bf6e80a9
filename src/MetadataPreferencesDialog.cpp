#include <kivmetadataui/MetadataPreferencesDialog.h>

#include "MetadataPreferencesDialog_p.h"
#include "ModuleResources.h"
#include "PathSelection_p.h"

#include <kivmetadataui/AddSchemaPropertyDialog.h>

#include <kivevefactory/UI_EveViewBase.h>
#include <kivmetadata/Definitions.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/ViewSettings.h>
#include <kivui/Message.h>
#include <kivui/MessageBoxes.h>
#include <kivui/OS_ResourceManager.h>
#include <kivui/UI_Checkbox.h>
#include <kivui/UI_MultiColumnTree.h>
#include <kivui/UI_Popup.h>
#include <kivui/UI_SubView.h>
#include <kivui/UI_TextButton.h>
#include <kivui/UI_TextEdit.h>

#include <kivcore/Assert.h>
#include <kivcore/FileUtils.h>
#include <kivcore/Guid.h>
#include <kivcore/Localizer.h>
#include <kivcore/StringUtils.h>

#include <QCheckBox>
#include <QEvent>
#include <QFont>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QTreeView>

#include <map>
#include <vector>

namespace kivmetadataui {

namespace {

constexpr char kUnit[] = "src/MetadataPreferencesDialog";
constexpr char kCustomKeyStart[] = "$$$/custom_xmp_schemas/";
constexpr char kCustomItem[] = "$$$/kivmetadataui/dialogs/MetadataSettingsDialog/MenuItem/Custom=(Custom)";

using kivcore::config::Localizer;
using kivcore::utility::Directory;
using kivcore::utility::FileUtils;
using kivcore::utility::IntrusivePtr;
using kivcore::utility::Utf16ToUtf8;
using kivcore::utility::Utf8ToUtf16;
using kivmetadata::Path;
using kivmetadata::PropertyDefinition;
using kivmetadata::SchemaDefinition;
using RowPtr = kivui::UI_MultiColumnTree::RowPtr;
using SchemaPtr = std::shared_ptr<SchemaDefinition>;

bool EndsWith(std::u16string const &inText, std::u16string_view inEnding)
{
    return inText.size() >= inEnding.size() &&
           std::u16string_view(inText).substr(inText.size() - inEnding.size()) == inEnding;
}

kivui::UI_Checkbox::CheckboxValue BoxValue(CheckState inState)
{
    switch (inState) {
    case CheckState::Checked:
        return kivui::UI_Checkbox::kChecked;
    case CheckState::Mixed:
        return kivui::UI_Checkbox::kMixed;
    case CheckState::Unchecked:
        break;
    }
    return kivui::UI_Checkbox::kUnchecked;
}

kivui::MessageHandler Handler(std::function<void(kivui::Message *)> inFxn)
{
    return std::make_shared<std::function<void(kivui::Message *)>>(std::move(inFxn));
}

// Without a folder of its own the dialog keeps its settings in the per-user
// one, never beside whatever the working folder happens to be.
std::u16string SettingsFolderOrDefault(std::u16string const &inFolder)
{
    std::u16string const folder = FileUtils::StripTrailingSlash(inFolder);
    return folder.empty() ? kivmetadata::ViewSettingsDirectory() : folder;
}

class MetadataPreferencesDialog;

// Space toggles the check box of the tree's current row; Insert adds a
// property to a custom schema, Delete removes a custom property.
class TreeKeys : public QObject {
public:
    TreeKeys(MetadataPreferencesDialog &inDialog, QObject *inParent) : QObject(inParent), mDialog(inDialog) {}
    bool eventFilter(QObject *inWatched, QEvent *inEvent) override;

private:
    MetadataPreferencesDialog &mDialog;
};

// The check-box tree of schemas and properties with the saved view settings.
// Works on copies of the caller's selection and opened schemas, written back
// on OK only; the files it writes stay whatever the outcome.
class MetadataPreferencesDialog : public kivevefactory::UI_EveViewBase {
public:
    MetadataPreferencesDialog(std::set<Path> &ioSelected, kivui::drawbot::SupplierInterface *inSupplier,
                              kivui::UI_Node *inParent, SchemaDefinitionSet &ioOpened, std::u16string inSettingsFolder,
                              SchemaDefinitionList::const_iterator inBegin, SchemaDefinitionList::const_iterator inEnd)
        : UI_EveViewBase(inSupplier, module::GetResourceManager(), "MetadataPreferencesDialog",
                         "$$$/kivmetadataui/dialogs/MetadataPreferencesDialog/Title=Metadata Display", inParent),
          mCallerSelected(ioSelected), mCallerOpened(ioOpened), mSelected(ioSelected), mOpened(ioOpened),
          mSettingsFolder(SettingsFolderOrDefault(inSettingsFolder)), mSchemas(inBegin, inEnd)
    {
        // A missing control throws the null-pointer exception naming its type.
        mSearchBox = FindControl<kivui::UI_TextEdit>("search_box");
        mPropertiesTree = FindControl<kivui::UI_MultiColumnTree>("properties");
        mPreviousSettingsPopup = FindControl<kivui::UI_Popup>("previous_settings_popup");
        mSaveSettingsButton = FindControl<kivui::UI_TextButton>("save_settings_button");
        mDeleteSettingsButton = FindControl<kivui::UI_TextButton>("delete_settings_button");
        mNewSchemaButton = FindControl<kivui::UI_TextButton>("new_schema_button");

        SetupTree();
        mSearchBox->NotifyWhenChangedInteractively(Handler([this](kivui::Message *) { OnSearchChanged(); }));
        mPreviousSettingsPopup->NotifyWhenChanged(Handler([this](kivui::Message *) { OnSettingChosen(); }));
        mSaveSettingsButton->NotifyWhenChanged(Handler([this](kivui::Message *) { OnSaveSettings(); }));
        mDeleteSettingsButton->NotifyWhenChanged(Handler([this](kivui::Message *) { OnDeleteSettings(); }));
        mNewSchemaButton->NotifyWhenChanged(Handler([this](kivui::Message *) { OnNewSchema(); }));

        FillSettingsPopup();
        RebuildTree();
        MatchPopupToSelection();
    }

    void DefaultCloseOk() override
    {
        mCallerSelected = mSelected;
        mCallerOpened = mOpened;
        UI_EveViewBase::DefaultCloseOk();
    }

    // Keyboard commands on the tree's current row.
    bool ToggleCurrentRow()
    {
        RowPtr const row = CurrentRow();
        if (!row) return false;
        OnRowVisibilityChanged(row);
        auto const box = mRowChecks.find(row.get());
        if (box == mRowChecks.end() || !box->second->IsEnabled()) return false;
        box->second->SetValue(box->second->IsChecked() ? kivui::UI_Checkbox::kUnchecked : kivui::UI_Checkbox::kChecked);
        OnCheckbox(row);
        return true;
    }
    bool AddPropertyToCurrentSchema()
    {
        RowPtr const row = CurrentRow();
        if (!row) return false;
        SchemaPtr const schema = SchemaOfRow(row);
        if (!schema || !schema->IsCustom()) return false;
        OnAddProperty(schema);
        return true;
    }
    bool DeleteCurrentProperty()
    {
        RowPtr const row = CurrentRow();
        if (!row || !row->GetParentRow() || row->GetParentRow()->GetParentRow()) return false;
        SchemaPtr const schema = SchemaOfRow(row);
        auto const path = mRowToPath.find(row.get());
        if (!schema || !schema->IsCustom() || path == mRowToPath.end()) return false;
        OnDeleteProperty(schema, path->second);
        return true;
    }

protected:
    ~MetadataPreferencesDialog() override = default;

private:
    // --- The tree ---------------------------------------------------------------

    void SetupTree()
    {
        mPropertiesTree->SetColumnCount(1);
        mPropertiesTree->SetShowHeader(false);
        mPropertiesTree->SetSelectionMode(kivui::UI_MultiColumnTree::SelectionMode::kSingle);
        mPropertiesTree->SetRowVisibilityChangedFxn([this](RowPtr const &row) { OnRowVisibilityChanged(row); });
        mPropertiesTree->SetRowDisclosureChangedFxn([this](RowPtr const &row, bool opened) {
            // While filtering every matching row is open: that says nothing of the user's choice.
            if (!mFilter.empty()) return;
            auto const schema = mRowToSchema.find(row.get());
            if (schema == mRowToSchema.end()) return;
            if (opened)
                mOpened.insert(schema->second);
            else
                mOpened.erase(schema->second);
        });
        mPropertiesTree->GetTreeView()->installEventFilter(new TreeKeys(*this, mPropertiesTree->GetTreeView()));
    }

    void RebuildTree()
    {
        mPropertiesTree->SetIsQuiet(true);
        // A cell's button may be what asked for the rebuild: its cell goes once its click is over.
        for (auto const &[row, box] : mRowChecks) {
            if (auto const cell = row->GetCellView()) cell->UI_DeferRelease();
        }
        mPropertiesTree->DeleteAllRows();
        mRowToSchema.clear();
        mRowToPath.clear();
        mRowChecks.clear();
        for (SchemaPtr const &schema : mSchemas) {
            if (schema) AppendSchemaToPropertiesTree(schema);
        }
        mPropertiesTree->SortTree([](RowPtr const &a, RowPtr const &b) { return SortKey(a) < SortKey(b); });
        for (auto const &[row, schema] : mRowToSchema) {
            if (!mFilter.empty() || mOpened.count(schema)) mPropertiesTree->OpenRow(RowPtr(row), true);
        }
        // While filtering, the matches inside structures show too.
        if (!mFilter.empty()) {
            for (auto const &[row, path] : mRowToPath) {
                if (row->CountChildRows() > 0) mPropertiesTree->OpenRow(RowPtr(row), true);
            }
        }
        mPropertiesTree->SetIsQuiet(false);
        mPropertiesTree->Layout();
    }

    static std::u16string SortKey(RowPtr const &inRow) { return kivcore::utility::FoldCase(inRow->GetText(0)); }

    static std::u16string PathLabel(Path const &inPath)
    {
        std::shared_ptr<PropertyDefinition> const definition = kivmetadata::PathEntryDefinition(inPath);
        return definition ? Localizer::Localize(definition->mLabel) : Utf8ToUtf16(inPath.mPath);
    }

    bool LabelMatches(std::u16string const &inLabel) const
    {
        return mFilter.empty() || kivcore::utility::FoldCase(inLabel).find(mFilter) != std::u16string::npos;
    }

    // A path is shown while filtering when its label or a descendant's matches.
    bool PathMatches(Path const &inPath) const
    {
        if (LabelMatches(PathLabel(inPath))) return true;
        for (Path const &child : kivmetadata::ChildPaths(inPath)) {
            if (kivmetadata::IsPropertyUISupported(child) && PathMatches(child)) return true;
        }
        return false;
    }

    void AppendSchemaToPropertiesTree(SchemaPtr const &inSchema)
    {
        bool const all = LabelMatches(Localizer::Localize(inSchema->mLabel));
        std::vector<std::pair<std::shared_ptr<PropertyDefinition>, Path>> shown;
        for (auto const &property : inSchema->mProperties) {
            if (!property) continue;
            Path const path = kivmetadata::CreatePathFromSchemaProperty(*inSchema, *property);
            if (!kivmetadata::IsPropertyUISupported(path)) continue;
            if (all || PathMatches(path)) shown.emplace_back(property, path);
        }
        if (!all && shown.empty()) return;
        RowPtr const row = mPropertiesTree->AppendRow();
        row->SetText(0, Localizer::Localize(inSchema->mLabel));
        mRowToSchema[row.get()] = inSchema;
        for (auto const &[property, path] : shown)
            AppendPathToTree(property, path, row, all);
    }

    void AppendPathToTree(std::shared_ptr<PropertyDefinition> const &entry, Path const &inPath,
                          RowPtr const &inParentRow, bool inIncludeAll)
    {
        KIV_ASSERT(kUnit, "kivmetadataui::MetadataPreferencesDialog::AppendPathToTree", entry && inParentRow);
        if (!entry || !inParentRow) return;
        RowPtr const row = mPropertiesTree->AppendRow(inParentRow);
        row->SetText(0, PathLabel(inPath));
        mRowToPath[row.get()] = inPath;
        bool const all = inIncludeAll || LabelMatches(PathLabel(inPath));
        for (Path const &child : kivmetadata::ChildPaths(inPath)) {
            if (!kivmetadata::IsPropertyUISupported(child)) continue;
            if (!all && !PathMatches(child)) continue;
            AppendPathToTree(kivmetadata::PathEntryDefinition(child), child, row, all);
        }
    }

    // Cells are made only for rows that come into view.
    void OnRowVisibilityChanged(RowPtr const &inRow)
    {
        KIV_ASSERT(kUnit, "kivmetadataui::MetadataPreferencesDialog::OnRowVisibilityChanged", inRow);
        if (!inRow || inRow->GetCellView()) return;
        auto const schemaIt = mRowToSchema.find(inRow.get());
        auto const pathIt = mRowToPath.find(inRow.get());
        SchemaPtr const schema = schemaIt == mRowToSchema.end() ? nullptr : schemaIt->second;
        std::shared_ptr<PropertyDefinition> const definition =
            pathIt == mRowToPath.end() ? nullptr : kivmetadata::PathEntryDefinition(pathIt->second);
        if (!schema && !definition) return;

        IntrusivePtr<kivui::UI_SubView> cell(new kivui::UI_SubView);
        cell->UI_SetDrawSupplier(UI_GetDrawSupplier());
        auto *layout = new QHBoxLayout(cell->UI_GetWidget());
        layout->setContentsMargins(2, 0, 4, 0);
        layout->setSpacing(6);
        auto const box = AddCheckBoxToCellView(*cell, schema.get(), definition.get(), UI_GetDrawSupplier());
        UpdateCheckbox(*box, schema.get(), pathIt == mRowToPath.end() ? nullptr : &pathIt->second);
        mRowChecks[inRow.get()] = box;
        layout->addStretch(1);

        SchemaPtr const owner = schema ? schema : SchemaOfRow(inRow);
        bool const topLevelProperty = !schema && inRow->GetParentRow() && !inRow->GetParentRow()->GetParentRow();
        if (owner && owner->IsCustom() && (schema || topLevelProperty)) {
            IntrusivePtr<kivui::UI_TextButton> button(new kivui::UI_TextButton(Localizer::Localize(
                schema ? "$$$/kivmetadataui/dialogs/MetadataSettingsDialog/AddPropertyButton/Title=Add Property"
                       : "$$$/kivmetadataui/dialogs/MetadataSettingsDialog/RemovePropertyButton/Title=Delete")));
            button->UI_SetNodeID(schema ? "add_property_button" : "delete_property_button");
            button->UI_GetWidget()->setObjectName(QString::fromStdString(button->UI_GetNodeID()));
            // The tree answers Insert and Delete; the buttons stay out of the tab chain.
            button->UI_GetWidget()->setFocusPolicy(Qt::NoFocus);
            button->SetToolTip(Localizer::Localize(
                schema ? "$$$/kivmetadataui/dialogs/MetadataSettingsDialog/AddPropertyButton/ToolTip=Add a property "
                         "to this schema (Insert)"
                       : "$$$/kivmetadataui/dialogs/MetadataSettingsDialog/RemovePropertyButton/ToolTip=Delete this "
                         "property from its schema (Delete)"));
            if (schema) {
                button->NotifyWhenChanged(Handler([this, owner](kivui::Message *) { OnAddProperty(owner); }));
            } else {
                Path const path = pathIt->second;
                button->NotifyWhenChanged(
                    Handler([this, owner, path](kivui::Message *) { OnDeleteProperty(owner, path); }));
            }
            cell->ChildPushBack(button);
            layout->addWidget(button->UI_GetWidget());
        }
        inRow->SetCellView(cell);
    }

    IntrusivePtr<kivui::UI_Checkbox> AddCheckBoxToCellView(kivui::UI_SubView &ioCell,
                                                           SchemaDefinition const *schemaDefinition,
                                                           PropertyDefinition const *pathDefinition,
                                                           kivui::drawbot::SupplierInterface *drawSupplier)
    {
        bool const isSchema = schemaDefinition != nullptr;
        bool const isPath = pathDefinition != nullptr;
        KIV_ASSERT(kUnit, "kivmetadataui::MetadataPreferencesDialog::AddCheckBoxToCellView", isSchema || isPath);
        KIV_ASSERT(kUnit, "kivmetadataui::MetadataPreferencesDialog::AddCheckBoxToCellView",
                   (schemaDefinition || pathDefinition) && drawSupplier);
        std::u16string const label =
            Localizer::Localize(isSchema ? schemaDefinition->mLabel : (isPath ? pathDefinition->mLabel : ""));
        IntrusivePtr<kivui::UI_Checkbox> box(new kivui::UI_Checkbox(label));
        box->UI_SetDrawSupplier(drawSupplier);
        box->UI_GetWidget()->setFocusPolicy(Qt::NoFocus);
        if (isSchema) {
            QFont font = box->GetCheckBox()->font();
            font.setBold(true);
            box->GetCheckBox()->setFont(font);
        }
        ioCell.ChildPushBack(box);
        if (auto *layout = ioCell.UI_GetWidget()->layout()) layout->addWidget(box->UI_GetWidget());
        kivui::UI_Checkbox *raw = box.get();
        box->NotifyWhenChanged(Handler([this, raw](kivui::Message *) {
            for (auto const &[row, check] : mRowChecks) {
                if (check.get() == raw) {
                    OnCheckbox(RowPtr(row));
                    return;
                }
            }
        }));
        return box;
    }

    void UpdateCheckbox(kivui::UI_Checkbox &ioBox, SchemaDefinition const *inSchema, Path const *inPath) const
    {
        if (inSchema)
            ioBox.SetValue(BoxValue(SchemaCheckState(*inSchema, mSelected)));
        else if (inPath)
            ioBox.SetValue(BoxValue(PathCheckState(*inPath, {}, mSelected)));
    }

    void UpdateAllCheckboxes()
    {
        for (auto const &[row, box] : mRowChecks) {
            if (auto const schema = mRowToSchema.find(row); schema != mRowToSchema.end()) {
                UpdateCheckbox(*box, schema->second.get(), nullptr);
            } else if (auto const path = mRowToPath.find(row); path != mRowToPath.end()) {
                UpdateCheckbox(*box, nullptr, &path->second);
            }
        }
    }

    // The user set a row's box (already showing its new state).
    void OnCheckbox(RowPtr const &inRow)
    {
        auto const box = mRowChecks.find(inRow.get());
        if (box == mRowChecks.end()) return;
        bool const checked = box->second->IsChecked();
        if (auto const schema = mRowToSchema.find(inRow.get()); schema != mRowToSchema.end()) {
            SetDescendantLeavesSelected(*schema->second, checked, mSelected);
        } else if (auto const path = mRowToPath.find(inRow.get()); path != mRowToPath.end()) {
            if (kivmetadata::ChildPaths(path->second).empty()) {
                if (!mSelected.erase(path->second)) mSelected.insert(path->second);
            } else {
                SetDescendantLeavesSelected(path->second, checked, mSelected);
            }
        }
        UpdateAllCheckboxes();
        MatchPopupToSelection();
    }

    SchemaPtr SchemaOfRow(RowPtr inRow) const
    {
        while (inRow && inRow->GetParentRow())
            inRow = inRow->GetParentRow();
        if (!inRow) return nullptr;
        auto const schema = mRowToSchema.find(inRow.get());
        return schema == mRowToSchema.end() ? nullptr : schema->second;
    }

    RowPtr CurrentRow() const
    {
        std::vector<RowPtr> const rows = mPropertiesTree->GetSelectedRows();
        return rows.empty() ? RowPtr() : rows.front();
    }

    void OnSearchChanged()
    {
        std::u16string const filter = kivcore::utility::FoldCase(mSearchBox->GetValue());
        if (filter == mFilter) return;
        mFilter = filter;
        RebuildTree();
    }

    // --- View settings -------------------------------------------------------------

    std::u16string SettingFilePath(std::u16string const &inName) const
    {
        return FileUtils::Join(mSettingsFolder, inName + kViewSettingsFileEnding);
    }

    void FillSettingsPopup()
    {
        mSettings.clear();
        mPreviousSettingsPopup->DeleteAllItems();
        mPreviousSettingsPopup->AddItem(Localizer::Localize(kCustomItem));
        mPreviousSettingsPopup->DisableItem(0);
        std::vector<std::u16string> const files = FileUtils::ContainedFiles(mSettingsFolder);
        std::u16string_view const ending(kViewSettingsFileEnding);
        for (std::u16string const &file : files) {
            if (!EndsWith(file, ending) || file.size() == ending.size()) continue;
            std::set<Path> paths;
            // A file that does not parse is left out silently.
            if (!kivmetadata::ReadIncludedLeafPathsAsXMLFile(paths, FileUtils::Join(mSettingsFolder, file))) continue;
            if (mSettings.empty()) mPreviousSettingsPopup->AddSeparator();
            mSettings.emplace(file, std::move(paths));
            mPreviousSettingsPopup->AddItem(file.substr(0, file.size() - ending.size()));
        }
        mPreviousSettingsPopup->SetEnabled(!files.empty());
    }

    void MatchPopupToSelection()
    {
        std::u16string_view const ending(kViewSettingsFileEnding);
        for (auto const &[file, paths] : mSettings) {
            if (paths == mSelected) {
                mPreviousSettingsPopup->SetValueString(file.substr(0, file.size() - ending.size()));
                mDeleteSettingsButton->SetEnabled(true);
                return;
            }
        }
        mPreviousSettingsPopup->SetValue(0);
        mDeleteSettingsButton->SetEnabled(false);
    }

    void OnSettingChosen()
    {
        auto const setting = mSettings.find(mPreviousSettingsPopup->GetValueString() + kViewSettingsFileEnding);
        if (setting == mSettings.end()) return;
        mSelected = setting->second;
        UpdateAllCheckboxes();
        mDeleteSettingsButton->SetEnabled(true);
    }

    void OnSaveSettings()
    {
        std::u16string name;
        if (!kivui::dialogs::SimpleInputBox(
                UI_GetDrawSupplier(), "$$$/kivmetadataui/dialogs/MetadataSettingsGetNameDialog/Title=Save Settings",
                "$$$/kivmetadataui/dialogs/MetadataSettingsGetNameDialog/InputLabel=Name:", name, this))
            return;
        name = kivcore::utility::Trim(name);
        if (name.empty()) return;
        EnsureSettingsFolderExists();
        std::string xml;
        std::string error;
        if (!kivmetadata::IncludedLeafPathsAsXMLString(mSelected, xml) ||
            !FileUtils::SimpleWriteStringToFile(SettingFilePath(name), xml, &error)) {
            kivui::dialogs::SimpleErrorMessageBox(
                UI_GetDrawSupplier(),
                "$$$/kivmetadataui/dialogs/MetadataSettingsGetNameDialog/SaveFailed/Title=Settings Not Saved",
                Localizer::Localize("$$$/kivmetadataui/dialogs/MetadataSettingsGetNameDialog/SaveFailed/"
                                    "Message=The settings '@0' could not be saved: @1",
                                    {name, Utf8ToUtf16(error)}),
                this);
            return;
        }
        FillSettingsPopup();
        mPreviousSettingsPopup->SetValueString(name);
        mDeleteSettingsButton->SetEnabled(true);
    }

    void OnDeleteSettings()
    {
        std::u16string const name = mPreviousSettingsPopup->GetValueString();
        if (!mSettings.count(name + kViewSettingsFileEnding)) return;
        if (!kivui::dialogs::SimpleConfirmationBox(
                UI_GetDrawSupplier(),
                "$$$/kivmetadataui/dialogs/MetadataSettingsDeleteConfirmationDialog/Title=Delete Settings",
                Localizer::Localize("$$$/kivmetadataui/dialogs/MetadataSettingsDeleteConfirmationDialog/"
                                    "Message=Are you sure you want to delete the setting '@0'?",
                                    {name}),
                this, "$$$/kivmetadataui/dialogs/MetadataSettingsDeleteConfirmationDialog/confirmButtonText=&Delete"))
            return;
        FileUtils::RemoveFile(SettingFilePath(name));
        FillSettingsPopup();
        MatchPopupToSelection();
    }

    void EnsureSettingsFolderExists()
    {
        std::vector<Directory> missing;
        for (Directory folder(mSettingsFolder); !folder.Exists(); folder = folder.Parent()) {
            missing.push_back(folder);
            if (folder.IsTopLevelDir()) break;
        }
        for (auto folder = missing.rbegin(); folder != missing.rend(); ++folder)
            folder->Create();
        KIV_ASSERT(kUnit, "kivmetadataui::MetadataPreferencesDialog::EnsureSettingsFolderExists",
                   kivcore::utility::FileUtils::DirectoryExists(mSettingsFolder));
    }

    // --- Custom schemas ------------------------------------------------------------

    void OnNewSchema()
    {
        std::u16string name;
        std::u16string filePath;
        for (;;) {
            if (!kivui::dialogs::SimpleInputBox(
                    UI_GetDrawSupplier(), "$$$/kivmetadataui/dialogs/MetadataNewSchemaDialog/Title=New Schema",
                    "$$$/kivmetadataui/dialogs/MetadataNewSchemaDialog/InputLabel=Name:", name, this))
                return;
            name = FileUtils::ReplaceIllegalFileNameCharacters(kivcore::utility::Trim(name), u"-");
            if (name.empty()) return;
            filePath = FileUtils::Join(kivmetadata::CustomDefinitionsUserDirectory(), name + u".xml");
            if (!FileUtils::FileOrDirExists(filePath)) break;
            kivui::dialogs::SimpleErrorMessageBox(
                UI_GetDrawSupplier(),
                "$$$/kivmetadataui/dialogs/MetadataNewSchemaDialog/SchemaFileExists/Title=Invalid Name",
                Localizer::Localize("$$$/kivmetadataui/dialogs/MetadataNewSchemaDialog/SchemaFileExists/"
                                    "Message=The name '@0' is already used. Please use a different name.",
                                    {name}),
                this);
        }

        std::string const identifier = kivcore::utility::Guid::CreateUnique().AsString();
        std::string const text = Utf16ToUtf8(name);
        SchemaPtr const schema = kivmetadata::CreateNewSchema(
            identifier, text, CustomSchemaLocalizationKey(identifier, "schema_label", text),
            CustomSchemaLocalizationKey(identifier, "schema_description", text));
        kivmetadata::SetFilePathForSchema(schema, filePath);
        std::string error;
        if (!kivmetadata::RewriteSchemaFile(schema, &error)) {
            ShowSchemaFileError(name, error);
            return;
        }
        kivmetadata::RegisterSchemaDefinition(schema, Utf16ToUtf8(filePath), false);
        mSchemas.push_back(schema);
        RebuildTree();
        MatchPopupToSelection();
    }

    void ShowSchemaFileError(std::u16string const &inName, std::string const &inError)
    {
        kivui::dialogs::SimpleErrorMessageBox(
            UI_GetDrawSupplier(),
            "$$$/kivmetadataui/dialogs/MetadataNewSchemaDialog/WriteFailed/Title=Schema Not Saved",
            Localizer::Localize("$$$/kivmetadataui/dialogs/MetadataNewSchemaDialog/WriteFailed/"
                                "Message=The schema '@0' could not be saved: @1",
                                {inName, Utf8ToUtf16(inError)}),
            this);
    }

    void OnAddProperty(SchemaPtr const &inSchema)
    {
        std::u16string name;
        std::u16string entered;
        std::int32_t typeIndex = 0;
        if (!DoAddSchemaPropertyDialog(inSchema, name, entered, typeIndex, UI_GetDrawSupplier(), this)) return;
        auto const property = kivmetadata::CreateNewProperty(
            PrimitiveTypeForPropertyTypeIndex(typeIndex), Utf16ToUtf8(name),
            CustomSchemaLocalizationKey(CustomSchemaIdentifier(*inSchema), "property_name", Utf16ToUtf8(entered)));
        kivmetadata::AddPropertyToSchema(inSchema, property);
        std::string error;
        if (!kivmetadata::RewriteSchemaFile(inSchema, &error))
            ShowSchemaFileError(Localizer::Localize(inSchema->mLabel), error);
        mSelected.insert(kivmetadata::CreatePathFromSchemaProperty(*inSchema, *property));
        mOpened.insert(inSchema);
        RebuildTree();
        MatchPopupToSelection();
    }

    void OnDeleteProperty(SchemaPtr const &inSchema, Path const &inPath)
    {
        std::shared_ptr<PropertyDefinition> const property = kivmetadata::PathEntryDefinition(inPath);
        if (!property) return;
        if (!kivui::dialogs::SimpleConfirmationBox(
                UI_GetDrawSupplier(),
                "$$$/kivmetadataui/dialogs/PropertyDeleteDeleteConfirmationDialog/Title=Delete Property",
                Localizer::Localize("$$$/kivmetadataui/dialogs/PropertyDeleteConfirmationDialog/Message=Are you sure "
                                    "you want to delete the property '@0' from the schema '@1'?",
                                    {Localizer::Localize(property->mLabel), Localizer::Localize(inSchema->mLabel)}),
                this, "$$$/kivmetadataui/dialogs/PropertyDeleteConfirmationDialog/confirmButtonText=&Delete"))
            return;
        // The leaves go while the definition still tells them.
        kivmetadata::VisitDescendantLeafPaths(inPath, [this](Path const &leaf) { mSelected.erase(leaf); });
        mSelected.erase(inPath);
        kivmetadata::RemovePropertyFromSchema(inSchema, property->mName);
        std::string error;
        if (!kivmetadata::RewriteSchemaFile(inSchema, &error))
            ShowSchemaFileError(Localizer::Localize(inSchema->mLabel), error);
        RebuildTree();
        MatchPopupToSelection();
    }

    std::set<Path> &mCallerSelected;
    SchemaDefinitionSet &mCallerOpened;
    std::set<Path> mSelected;
    SchemaDefinitionSet mOpened;
    std::u16string mSettingsFolder;
    SchemaDefinitionList mSchemas;
    std::u16string mFilter; // case-folded
    // Saved settings by file name, as read when the popup was filled.
    std::map<std::u16string, std::set<Path>> mSettings;

    std::map<kivui::UI_MultiColumnTreeRow *, SchemaPtr> mRowToSchema;
    std::map<kivui::UI_MultiColumnTreeRow *, Path> mRowToPath;
    std::map<kivui::UI_MultiColumnTreeRow *, IntrusivePtr<kivui::UI_Checkbox>> mRowChecks;

    IntrusivePtr<kivui::UI_TextEdit> mSearchBox;
    IntrusivePtr<kivui::UI_MultiColumnTree> mPropertiesTree;
    IntrusivePtr<kivui::UI_Popup> mPreviousSettingsPopup;
    IntrusivePtr<kivui::UI_TextButton> mSaveSettingsButton;
    IntrusivePtr<kivui::UI_TextButton> mDeleteSettingsButton;
    IntrusivePtr<kivui::UI_TextButton> mNewSchemaButton;
};

bool TreeKeys::eventFilter(QObject *inWatched, QEvent *inEvent)
{
    if (inEvent->type() != QEvent::KeyPress) return QObject::eventFilter(inWatched, inEvent);
    auto *key = static_cast<QKeyEvent *>(inEvent);
    if (key->modifiers() & ~Qt::KeypadModifier) return false;
    switch (key->key()) {
    case Qt::Key_Space:
        return mDialog.ToggleCurrentRow();
    case Qt::Key_Insert:
        return mDialog.AddPropertyToCurrentSchema();
    case Qt::Key_Delete:
        return mDialog.DeleteCurrentProperty();
    default:
        return false;
    }
}

} // namespace

std::string CustomSchemaLocalizationKey(std::string const &inIdentifier, std::string const &inField,
                                        std::string const &inText)
{
    return kCustomKeyStart + inIdentifier + "/" + inField + "/" + inText + "=" + inText;
}

std::string CustomSchemaIdentifier(SchemaDefinition const &inSchema)
{
    std::string const &label = inSchema.mLabel;
    std::string const start(kCustomKeyStart);
    if (label.compare(0, start.size(), start) == 0) {
        std::size_t const end = label.find('/', start.size());
        if (end != std::string::npos && end > start.size()) return label.substr(start.size(), end - start.size());
    }
    return inSchema.mPrefix;
}

kivmetadata::PrimitiveType PrimitiveTypeForPropertyTypeIndex(std::int32_t inIndex)
{
    switch (inIndex) {
    case 1:
        return kivmetadata::kPrimitiveType_Real;
    case 2:
        return kivmetadata::kPrimitiveType_Text;
    case 3:
        return kivmetadata::kPrimitiveType_Boolean;
    default:
        return kivmetadata::kPrimitiveType_Integer;
    }
}

bool DoMetadataPreferencesDialog(std::set<Path> &ioSelectedPaths, kivui::drawbot::SupplierInterface *inDrawSupplier,
                                 kivui::UI_Node *inParent, SchemaDefinitionSet &ioOpenedSchemas,
                                 std::u16string const &inSettingsFolder,
                                 SchemaDefinitionList::const_iterator inSchemasBegin,
                                 SchemaDefinitionList::const_iterator inSchemasEnd)
{
    KIV_ASSERT(kUnit, "kivmetadataui::DoMetadataPreferencesDialog", inDrawSupplier && inParent);
    if (!inDrawSupplier || !inParent) return false;
    IntrusivePtr<MetadataPreferencesDialog> dialog(new MetadataPreferencesDialog(
        ioSelectedPaths, inDrawSupplier, inParent, ioOpenedSchemas, inSettingsFolder, inSchemasBegin, inSchemasEnd));
    return dialog->Run();
}

} // namespace kivmetadataui
