#include "ValueIO_p.h"

#include "Registry_p.h"
#include "XmpHandles_p.h"

#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/ValueAccess.h>
#include <kivmetadata/XMPMeta.h>

#include <kivcore/StringUtils.h>

namespace kivmetadata::detail {

std::string DescribePath(Path const &path)
{
    return path.mPath + " (" + path.mNamespace + ")";
}

std::vector<std::string> SplitItems(std::string const &text)
{
    std::vector<std::string> items;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find(';', start);
        if (end == std::string::npos) end = text.size();
        std::string item = kivcore::utility::Trim(std::string_view(text).substr(start, end - start));
        if (!item.empty()) items.push_back(std::move(item));
        start = end + 1;
    }
    return items;
}

std::string JoinItems(std::vector<std::string> const &items)
{
    std::string text;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i) text += kDefaultSeparator;
        text += items[i];
    }
    return text;
}

std::vector<std::string> ReadItems(XMPMeta const *meta, Path const &path, GetValueResult &result)
{
    std::vector<std::string> items;
    std::vector<PathStep> steps;
    if (!meta || !ParsePath(path.mPath, steps)) {
        result = kGetValueResult_Unreadable;
        return items;
    }
    std::string value;
    std::uint32_t options = 0;
    if (!meta->GetProperty(path.mNamespace, path.mPath, value, &options)) {
        result = kGetValueResult_Absent;
        return items;
    }
    result = kGetValueResult_OneValue;
    if (options & XMPMeta::kPropValueIsStruct) {
        result = kGetValueResult_Unreadable;
    } else if (options & XMPMeta::kPropArrayIsAltText) {
        std::string text;
        if (meta->GetLocalizedText(path.mNamespace, path.mPath, "x-default", text) ||
            meta->GetProperty(path.mNamespace, path.mPath + "[1]", text))
            items.push_back(std::move(text));
    } else if (options & XMPMeta::kPropValueIsArray) {
        // One pass over the array's children: this read runs for every asset
        // of a multi-asset provider.
        XmpIterator it(xmp_iterator_new(static_cast<XmpPtr>(meta->Handle()), path.mNamespace.c_str(),
                                        path.mPath.c_str(), XMP_ITER_JUSTCHILDREN));
        XmpString schema, itemPath, itemValue;
        uint32_t itemOptions = 0;
        while (it && xmp_iterator_next(it.get(), schema, itemPath, itemValue, &itemOptions)) {
            if (itemOptions & XMPMeta::kPropIsQualifier) continue;
            if (itemOptions & XMPMeta::kPropCompositeMask) {
                result = kGetValueResult_Unreadable;
                items.clear();
                break;
            }
            items.push_back(itemValue.str());
        }
    } else {
        items.push_back(std::move(value));
    }
    return items;
}

GetValueResult ReadText(XMPMeta const *meta, Path const &path, std::string &text)
{
    GetValueResult result = kGetValueResult_Absent;
    auto items = ReadItems(meta, path, result);
    if (result == kGetValueResult_OneValue) text = items.size() == 1 ? std::move(items[0]) : JoinItems(items);
    return result;
}

namespace {

std::uint32_t ArrayOptions(ValueForm form)
{
    switch (form) {
    case ValueForm::kBag:
        return XMPMeta::kPropValueIsArray;
    case ValueForm::kSeq:
        return XMPMeta::kPropValueIsArray | XMPMeta::kPropArrayIsOrdered;
    case ValueForm::kAlt:
        return XMPMeta::kPropValueIsArray | XMPMeta::kPropArrayIsOrdered | XMPMeta::kPropArrayIsAlternate;
    default:
        return 0;
    }
}

bool Refuse(Path const &path, std::string const &why)
{
    AddErrorInfo("The value could not be written: " + why + ".", DescribePath(path));
    return false;
}

} // namespace

bool WriteText(XMPMeta *meta, Path const &path, std::string const &text)
{
    std::vector<PathStep> steps;
    if (!meta) return Refuse(path, "there is no metadata");
    if (path.mNamespace == kTransientNamespace) return false;
    if (!ParsePath(path.mPath, steps)) return Refuse(path, "the property path is not valid");
    if (XMPMeta::NamespaceForPrefix(steps[0].mPrefix) != path.mNamespace)
        return Refuse(path, "the prefix " + steps[0].mPrefix + " does not belong to the namespace");

    auto const definition = PathEntryDefinition(path);
    std::string current;
    std::uint32_t currentOptions = 0;
    bool const exists = meta->GetProperty(path.mNamespace, path.mPath, current, &currentOptions);

    // The form to write: the definition's, else what the packet holds.
    ValueForm form = ValueForm::kSimple;
    bool structured = false;
    if (definition) {
        form = definition->mForm;
        structured =
            form == ValueForm::kStruct || (definition->IsArray() && definition->mItemForm == ValueForm::kStruct);
    } else if (exists) {
        if (currentOptions & XMPMeta::kPropValueIsStruct)
            structured = true;
        else if (currentOptions & XMPMeta::kPropArrayIsAltText)
            form = ValueForm::kLangAlt;
        else if (currentOptions & XMPMeta::kPropArrayIsAlternate)
            form = ValueForm::kAlt;
        else if (currentOptions & XMPMeta::kPropArrayIsOrdered)
            form = ValueForm::kSeq;
        else if (currentOptions & XMPMeta::kPropValueIsArray)
            form = ValueForm::kBag;
    }
    if (structured) return Refuse(path, "a structure cannot be written as one text");

    std::string error;
    if (form == ValueForm::kLangAlt) {
        std::string old;
        if (exists && meta->GetLocalizedText(path.mNamespace, path.mPath, "x-default", old) && old == text)
            return false;
        if (exists && !(currentOptions & XMPMeta::kPropArrayIsAltText))
            meta->DeleteProperty(path.mNamespace, path.mPath);
        if (!meta->SetLocalizedText(path.mNamespace, path.mPath, "x-default", text, &error)) return Refuse(path, error);
        return true;
    }
    if (form == ValueForm::kBag || form == ValueForm::kSeq || form == ValueForm::kAlt) {
        auto const items = SplitItems(text);
        GetValueResult result = kGetValueResult_Absent;
        if (exists && (currentOptions & XMPMeta::kPropValueIsArray) && ReadItems(meta, path, result) == items &&
            result == kGetValueResult_OneValue)
            return false;
        if (items.empty()) return exists && meta->DeleteProperty(path.mNamespace, path.mPath);
        // Build the new array apart, so that a failure leaves the old one.
        XMPMeta scratch;
        std::uint32_t const arrayOptions = ArrayOptions(form);
        for (auto const &item : items) {
            if (!scratch.AppendArrayItem(path.mNamespace, path.mPath, arrayOptions, item, 0, &error))
                return Refuse(path, error);
        }
        if (exists) meta->DeleteProperty(path.mNamespace, path.mPath);
        if (!meta->SetComposite(path.mNamespace, path.mPath, arrayOptions, &error)) return Refuse(path, error);
        for (auto const &item : items)
            meta->AppendArrayItem(path.mNamespace, path.mPath, arrayOptions, item, 0);
        return true;
    }
    if (exists && !(currentOptions & XMPMeta::kPropCompositeMask) && current == text) return false;
    if (exists && (currentOptions & XMPMeta::kPropCompositeMask))
        return Refuse(path, "the packet holds a structure or an array there");
    if (!meta->SetProperty(path.mNamespace, path.mPath, text, 0, &error)) return Refuse(path, error);
    return true;
}

} // namespace kivmetadata::detail
