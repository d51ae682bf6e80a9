#include <kivmetadataui/ControlFactory.h>

#include "ControlBinding_p.h"
#include "ControlFactory_p.h"

#include <kivmetadataui/ControlKind.h>

#include <kivmetadataui/BindControl.h>
#include <kivmetadataui/Control.h>
#include <kivmetadataui/ControlCreator.h>
#include <kivmetadataui/UI_DateTextEdit.h>

#include <kivcore/Assert.h>
#include <kivcore/Localizer.h>
#include <kivcore/StringUtils.h>
#include <kivmetadata/Definitions.h>
#include <kivmetadata/MRULists.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/TypeDefinition.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ViewItem.h>
#include <kivui/Message.h>
#include <kivui/PrefManager.h>
#include <kivui/UI_AutoCompleteTextEdit.h>
#include <kivui/UI_Checkbox.h>
#include <kivui/UI_Container.h>
#include <kivui/UI_DragableTextEdit.h>
#include <kivui/UI_HotTextNumber.h>
#include <kivui/UI_Popup.h>
#include <kivui/UI_StarRating.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_TextEdit.h>
#include <kivui/UI_URLEdit.h>

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QWidget>

#include <charconv>
#include <optional>

namespace kivmetadataui {
namespace {

using kivcore::utility::IntrusivePtr;
using kivcore::utility::Utf8ToUtf16;
using kivmetadata::Path;
using kivmetadata::PrimitiveType;
using kivmetadata::PropertyDefinition;
using kivmetadata::Value;
using kivmetadata::ViewItem;

constexpr char kUnit[] = "src/ControlFactory";
constexpr char kTooltipKey[] = "$$$/metadataui/view/tooltip/LabelAndDescription=@0 :: @1";
constexpr char kDateNodeID[] = "metadata_view";
constexpr char kReadOnlySuffix[] = ", read_only";
constexpr int kPopupEditable = 1;
// Edit-text flags of the host's text behaviour that the editable controls carry.
constexpr std::uint32_t kEditTextFlags = 1;

std::optional<double> NumberAttribute(ViewItem const &inViewItem, std::string const &inKey)
{
    const std::string text = kivcore::utility::Trim(inViewItem.Attribute(inKey));
    if (text.empty()) return std::nullopt;
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

IntrusivePtr<kivui::UI_StarRating> MakeStarRating(ViewItem const &inViewItem)
{
    IntrusivePtr<kivui::UI_StarRating> rating(new kivui::UI_StarRating());
    if (auto size = NumberAttribute(inViewItem, "size"); size && *size > 0)
        rating->SetStarSize(static_cast<float>(*size));
    return rating;
}

IntrusivePtr<kivui::UI_Popup> MakePopup(std::vector<kivmetadata::Choice> const &inChoices, bool inEditable)
{
    IntrusivePtr<kivui::UI_Popup> popup(new kivui::UI_Popup());
    FillPopup(*popup, inChoices);
    if (inEditable) {
        popup->SetPopupType(kPopupEditable);
        popup->SetEditTextFlags(kEditTextFlags);
        popup->SetAllowEmpty(true);
    }
    return popup;
}

IntrusivePtr<kivui::UI_ControlView> MakeNumber(PropertyDefinition const &inDefinition, bool inInteger)
{
    IntrusivePtr<kivui::UI_HotTextNumber> number(new kivui::UI_HotTextNumber());
    if (inInteger) {
        number->SetDecimalPlaces(0);
    } else {
        number->SetIncrement(0.01);
        number->SetDecimalPlaces(2);
    }
    number->SetAllowEmpty(true);
    number->SetEditTextFlags(kEditTextFlags);
    number->SetMinMax(inDefinition.mMinimum, inDefinition.mMaximum);
    return number;
}

IntrusivePtr<kivui::UI_ControlView> MakeText(Value const &inValue, ViewItem const &inViewItem, bool inReadOnly,
                                             std::shared_ptr<std::function<void()>> const &inSizeHandler)
{
    IntrusivePtr<kivui::UI_TextEdit> edit;
    if (auto lines = NumberAttribute(inViewItem, "multiLines")) {
        IntrusivePtr<kivui::UI_DragableTextEdit> dragable(new kivui::UI_DragableTextEdit());
        dragable->SetLineCount(std::max(1, static_cast<int>(*lines)));
        dragable->SetSizeChangedFxn(inSizeHandler);
        edit = dragable;
    } else {
        IntrusivePtr<kivui::UI_AutoCompleteTextEdit> complete(new kivui::UI_AutoCompleteTextEdit());
        if (IsAutoCompletionEnabled()) complete->SetEntryList(kivmetadata::GetMRUList(MRUKeyForPath(inValue.mPath)));
        edit = complete;
    }
    edit->SetEditTextFlags(kEditTextFlags);
    edit->SetAllowEmpty(true);
    if (inReadOnly) {
        edit->SetReadOnlyMode(true);
        edit->UI_SetNodeID(edit->UI_GetNodeID() + kReadOnlySuffix);
    }
    return edit;
}

} // namespace

// ---------------------------------------------------------------- helpers

bool IsTypeBasedOnPrimitiveType(PropertyDefinition const &inDefinition, PrimitiveType inType)
{
    if (inDefinition.mPrimitiveType) return *inDefinition.mPrimitiveType == inType;
    if (inDefinition.mTypeId.empty()) return false;
    const auto type = kivmetadata::TypeIdDefinition(inDefinition.mTypeId);
    return type && type->mPrimitiveType && *type->mPrimitiveType == inType;
}

std::vector<kivmetadata::Choice> ChoicesFromViewItem(ViewItem const &inViewItem)
{
    if (!inViewItem.mChoices.empty()) return inViewItem.mChoices;
    const auto definition = kivmetadata::PathEntryDefinition(inViewItem.mPath);
    KIV_ASSERT(kUnit, "kivmetadataui::ChoicesFromViewItem", definition);
    if (!definition) return {};
    return kivmetadata::DefinitionChoices(*definition);
}

std::u16string ComposeTooltip(std::shared_ptr<PropertyDefinition> const &inDefinition)
{
    KIV_ASSERT(kUnit, "kivmetadataui::ComposeTooltip", inDefinition);
    if (!inDefinition) return {};
    const std::u16string label =
        LocalizeIfKey(inDefinition->mLabel.empty() ? inDefinition->mName : inDefinition->mLabel);
    const std::u16string description = LocalizeIfKey(inDefinition->mDescription);
    // Without a description the separator would dangle.
    if (description.empty()) return label;
    return kivcore::config::Localizer::Localize(kTooltipKey, {label, description});
}

void FillPopup(kivui::UI_Popup &inPopup, std::vector<kivmetadata::Choice> const &inChoices)
{
    inPopup.DeleteAllItems();
    for (auto const &choice : inChoices)
        inPopup.AddItem(LocalizeIfKey(choice.mDisplay.empty() ? choice.mRawValue : choice.mDisplay), choice.mRawValue);
    SetChoiceData(inPopup, inChoices);
}

// ---------------------------------------------------------------- choosing

namespace {

// The control that suits the value, by the view item's attributes, then
// whether it may be edited, then the definition's type id, then its
// primitive type. Its tooltip names the property.
IntrusivePtr<kivui::UI_ControlView> ChooseControl(ResolvedValue const &inValue, ViewItem const &inViewItem,
                                                  bool inForViewItem, bool inReadOnly,
                                                  std::shared_ptr<std::function<void()>> const &inSizeHandler)
{
    PropertyDefinition const &definition = *inValue.mDefinition;
    const PrimitiveType type = *inValue.mPrimitiveType;
    IntrusivePtr<kivui::UI_ControlView> control;

    if (!inViewItem.mAttributes.empty()) {
        // The names the assertions are known by.
        ViewItem const *const viewItem = &inViewItem;
        std::optional<PrimitiveType> const &primitiveType = inValue.mPrimitiveType;
        if (inViewItem.HasAttribute("dropdown")) {
            KIV_ASSERT(kUnit, "kivmetadataui::ControlFactory", !viewItem->mChoices.empty());
            control = MakePopup(inViewItem.mChoices, inViewItem.HasAttribute("openChoice"));
        } else if (inViewItem.HasAttribute("rating")) {
            KIV_ASSERT(kUnit, "kivmetadataui::ControlFactory", *primitiveType == kivmetadata::kPrimitiveType_Real);
            if (type == kivmetadata::kPrimitiveType_Real) control = MakeStarRating(inViewItem);
        }
    }

    if (!control &&
        (inReadOnly || inValue.mNotEditable || inViewItem.HasAttribute("readOnly") ||
         !IsDefinitionSupportedForWriting(inValue.mDefinition)) &&
        !kivmetadata::IsAllMetadataForcedWritable()) {
        IntrusivePtr<kivui::UI_StaticText> text(new kivui::UI_StaticText());
        // A view item's own choices name the values better than the definition.
        if (!inViewItem.mChoices.empty() || !definition.mChoices.empty())
            SetChoiceData(*text, ChoicesFromViewItem(inViewItem));
        control = text;
    }

    if (!control && !definition.mTypeId.empty()) {
        if (definition.mTypeId == "url") {
            control = IntrusivePtr<kivui::UI_URLEdit>(new kivui::UI_URLEdit());
        } else if (definition.mTypeId == "rating") {
            control = MakeStarRating(inViewItem);
        } else if (definition.mTypeId == "date") {
            IntrusivePtr<UI_DateTextEdit> date(new UI_DateTextEdit());
            if (inForViewItem) date->UI_SetNodeID(kDateNodeID);
            if (inReadOnly) {
                SetControlReadOnly(date);
                date->UI_SetNodeID(date->UI_GetNodeID() + kReadOnlySuffix);
            }
            control = date;
        }
    }

    if (!control) {
        switch (type) {
        case kivmetadata::kPrimitiveType_Integer:
            control = MakeNumber(definition, true);
            break;
        case kivmetadata::kPrimitiveType_Real:
            control = MakeNumber(definition, false);
            break;
        case kivmetadata::kPrimitiveType_Text:
        case kivmetadata::kPrimitiveType_LangAlt:
        case kivmetadata::kPrimitiveType_TextBag:
        case kivmetadata::kPrimitiveType_TextSeq:
            control = MakeText(inValue, inViewItem, inReadOnly, inSizeHandler);
            break;
        case kivmetadata::kPrimitiveType_Boolean: {
            IntrusivePtr<kivui::UI_Checkbox> box(new kivui::UI_Checkbox());
            const float size = kivui::UI_Checkbox::DefaultCheckSize();
            box->UI_SetLocalRectF(kivcore::RectF(0, 0, size, size));
            control = box;
            break;
        }
        case kivmetadata::kPrimitiveType_OpenChoice:
            control = MakePopup(ChoicesFromViewItem(inViewItem), true);
            break;
        case kivmetadata::kPrimitiveType_ClosedChoice:
            control = MakePopup(ChoicesFromViewItem(inViewItem), false);
            break;
        default:
            KIV_ASSERT(kUnit, "kivmetadataui::ControlFactory", false);
            return {};
        }
    }

    control->SetToolTip(ComposeTooltip(inValue.mDefinition));
    return control;
}

} // namespace

// ---------------------------------------------------------------- factory

std::shared_ptr<Control> ControlFactory(Value const &inValue, std::shared_ptr<ViewItem> inViewItem,
                                        IntrusivePtr<kivui::UI_Node> inParent, bool inReadOnly,
                                        std::shared_ptr<std::function<void(kivui::Message *)>> const &inOnChanged,
                                        std::shared_ptr<std::function<void()>> const &inOnSizeChanged)
{
    ResolvedValue resolved = ResolveValue(inValue);
    if (!(resolved.mDefinition && resolved.mPrimitiveType)) {
        auto const &definition = resolved.mDefinition;
        auto const &primitiveType = resolved.mPrimitiveType;
        KIV_ASSERT(kUnit, "kivmetadataui::ControlFactory", definition && primitiveType);
        return {};
    }
    const bool forViewItem = static_cast<bool>(inViewItem);
    if (!inViewItem) {
        inViewItem = std::make_shared<ViewItem>();
        inViewItem->mKind = ViewItem::Kind::kProperty;
        inViewItem->mPath = inValue.mPath;
    }

    if (ControlCreator creator = RegisteredControlCreator()) {
        if (std::shared_ptr<Control> custom = creator(inValue, inViewItem, inParent)) return custom;
    }

    // The size handler is ours, so that cutting the binding never empties
    // the caller's shared callback.
    auto sizeHandler = std::make_shared<std::function<void()>>([inOnSizeChanged] {
        if (inOnSizeChanged && *inOnSizeChanged) (*inOnSizeChanged)();
    });

    IntrusivePtr<kivui::UI_ControlView> control =
        ChooseControl(resolved, *inViewItem, forViewItem, inReadOnly, sizeHandler);
    if (!control) return {};
    std::optional<ControlKind> const kind = KindOfControl(control.get());
    if (!kind) {
        KIV_ASSERT(kUnit, "kivmetadataui::ControlFactory", kind);
        return {};
    }
    std::shared_ptr<Control> bound =
        ControlBinding::Bind(control, *kind, std::move(resolved), inOnChanged, sizeHandler);
    if (auto *container = dynamic_cast<kivui::UI_Container *>(inParent.get())) container->ChildPushBack(control);
    return bound;
}

std::shared_ptr<Control> ControlFactory(Value const &inValue, IntrusivePtr<kivui::UI_Node> inParent, bool inReadOnly,
                                        std::shared_ptr<std::function<void(kivui::Message *)>> const &inOnChanged,
                                        std::shared_ptr<std::function<void()>> const &inOnSizeChanged)
{
    return ControlFactory(inValue, std::shared_ptr<ViewItem>(), std::move(inParent), inReadOnly, inOnChanged,
                          inOnSizeChanged);
}

std::shared_ptr<Control> InlineControlFactory(Value const &inValue, IntrusivePtr<kivui::UI_Node> inParent)
{
    return ControlFactory(inValue, std::move(inParent), false, nullptr, nullptr);
}

void RefreshControl(Value const &inValue, std::shared_ptr<Control> const &inControl, bool inEvenWhileEditing)
{
    ResolvedValue resolved = ResolveValue(inValue);
    if (!(resolved.mDefinition && resolved.mPrimitiveType && inControl)) {
        auto const &definition = resolved.mDefinition;
        auto const &primitiveType = resolved.mPrimitiveType;
        KIV_ASSERT(kUnit, "kivmetadataui::RefreshControl", definition && primitiveType && inControl);
        return;
    }
    if (RegisteredControlCreator()) {
        KIV_ASSERT_MSG(kUnit, "kivmetadataui::RefreshControl", false,
                       "Custom Factory is installed.\nCan't refresh the control.");
        return;
    }
    auto *control = dynamic_cast<kivui::UI_ControlView *>(inControl->GetView().get());
    if (!control) return;
    if (auto *text = dynamic_cast<kivui::UI_TextEdit *>(control); text && text->IsEditing() && !inEvenWhileEditing)
        return;
    if (std::shared_ptr<ControlBinding> binding = ControlBinding::Of(control))
        binding->Show(std::move(resolved));
    else
        UpdateControlOfAnyKind(resolved, control);
}

void ExcludePath(Path const &inPath)
{
    kivmetadata::ExcludePropertyForClient(inPath, true);
}

} // namespace kivmetadataui
