#pragma once

#include <kivmetadata/Choice.h>
#include <kivmetadata/PrimitiveType.h>
#include <kivmetadata/kivmetadata_export.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kivmetadata {

// The XMP value form of a property (or of an array's items).
enum class ValueForm : int { kSimple = 0, kStruct, kBag, kSeq, kAlt, kLangAlt };

// A property of a schema, a field of a struct, or the item of an array.
struct KIVMETADATA_EXPORT PropertyDefinition {
    std::string mName;      // local name, "CiEmailWork"
    std::string mNamespace; // namespace URI of the name
    std::string mPrefix;    // registered prefix of mNamespace
    std::string mLabel;     // localisation key with default
    std::string mDescription;
    ValueForm mForm = ValueForm::kSimple;
    ValueForm mItemForm = ValueForm::kSimple; // kSimple or kStruct, for kBag/kSeq/kAlt
    // The declared type of the simple value, or of each simple array item
    // (text for a bag of text; PrimitiveTypeOfPath tells 6/7/8). Empty for
    // structs and arrays of structs.
    std::optional<PrimitiveType> mPrimitiveType;
    std::string mTypeId; // "date", "url", "rational", ... or empty
    std::vector<Choice> mChoices;
    std::optional<double> mMinimum;
    std::optional<double> mMaximum;
    // Fields of a struct or of the struct items of an array.
    std::vector<std::shared_ptr<PropertyDefinition>> mFields;
    bool mInternal = false; // set by applications, shown read-only

    bool IsArray() const { return mForm == ValueForm::kBag || mForm == ValueForm::kSeq || mForm == ValueForm::kAlt; }
    bool IsStruct() const { return mForm == ValueForm::kStruct; }
    bool IsLangAlt() const { return mForm == ValueForm::kLangAlt; }
    // "prefix:Name".
    std::string QualifiedName() const { return mPrefix + ':' + mName; }

    // The definition of one item of this array (or of this language
    // alternative): same name, label, type and fields, form mItemForm.
    // Null when this is not an array. Made once and kept.
    std::shared_ptr<PropertyDefinition> ItemDefinition() const;
    std::shared_ptr<PropertyDefinition> FieldDefinition(std::string const &ns, std::string const &name) const;

private:
    mutable std::shared_ptr<PropertyDefinition> mItem;
};

} // namespace kivmetadata
