#pragma once

#include <kivmetadata/GetValueResult.h>
#include <kivmetadata/Path.h>
#include <kivmetadata/kivmetadata_export.h>

#include <cstdint>
#include <string>

namespace kivmetadata {

class XMPMeta;
struct Value;

// Namespace of values that exist only while editing (never written to a
// file); see MultiMetaDataProvider.
inline constexpr char kTransientNamespace[] = "http://ns.kivmetadata.org/transient/1.0/";
inline constexpr char kTransientPrefix[] = "kivtransient";
// Joins array items into one text and splits a text into items (on ';',
// each item trimmed, empty items dropped).
inline constexpr char kDefaultSeparator[] = "; ";

// Typed reads through the value's provider. True exactly when `result` is
// kGetValueResult_OneValue; with several differing values `out` holds the
// first asset's value. Booleans read "True"/"False" (any case) and "1"/"0";
// a text that is not of the asked type gives kGetValueResult_Unreadable.
KIVMETADATA_EXPORT bool GetValue(Value const &value, bool &out, GetValueResult &result);
KIVMETADATA_EXPORT bool GetValue(Value const &value, double &out, GetValueResult &result);
KIVMETADATA_EXPORT bool GetValue(Value const &value, std::int64_t &out, GetValueResult &result);
KIVMETADATA_EXPORT bool GetValue(Value const &value, std::string &out, GetValueResult &result);
// The same on a bare XMP object (no provider: never several values).
KIVMETADATA_EXPORT bool GetValue(XMPMeta const *meta, Path const &path, std::string &text, GetValueResult &result);

// Typed writes through the value's provider (to every asset of a
// multi-asset provider). They do not record the change: call them inside a
// MetaDataUpdateAccess and AddChange(path) when they return true. A value
// that does not fit the property's definition (not a number for a number,
// outside min/max, not one of a closed choice list, not a boolean for a
// boolean) is refused: false and an error record, the packet unchanged.
// Booleans are written "True"/"False", reals in their shortest exact form.
KIVMETADATA_EXPORT bool SetValue(Value const &value, bool newValue);
KIVMETADATA_EXPORT bool SetValue(Value const &value, std::int64_t newValue);
KIVMETADATA_EXPORT bool SetValue(Value const &value, int newValue); // resolves literals to the integer form
KIVMETADATA_EXPORT bool SetValue(Value const &value, double newValue);
KIVMETADATA_EXPORT bool SetValue(Value const &value, std::string const &newValue);
KIVMETADATA_EXPORT bool SetValue(Value const &value, char const *newValue); // not the bool form
// The shortest text of the number: 3 gives "3", 2.5 gives "2.5".
KIVMETADATA_EXPORT bool SetMinimalFloatValue(Value const &value, double newValue);
KIVMETADATA_EXPORT std::string MinimalFloatText(double value);
// Removes the property; true when it existed and is gone. The Value form
// goes through the provider (every asset of a multi-asset provider, a file
// provider marks itself modified); the XMPMeta form touches that one object
// only, so record the change with MetaDataUpdateAccess::AddChange.
KIVMETADATA_EXPORT bool DeleteValue(Value const &value);
KIVMETADATA_EXPORT bool DeleteValue(XMPMeta *meta, Path const &path);

// Items of the array at the path; 0 when absent or not an array.
KIVMETADATA_EXPORT int CountArrayItems(XMPMeta const *meta, Path const &path);

} // namespace kivmetadata
