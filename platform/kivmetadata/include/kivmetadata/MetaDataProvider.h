#pragma once

#include <kivmetadata/GetValueResult.h>
#include <kivmetadata/Path.h>
#include <kivmetadata/kivmetadata_export.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace kivmetadata {

class XMPMeta;
struct PropertyDefinition;
struct SchemaDefinition;
struct Value;

// Source and sink of one XMP object, with change notification. Held by
// std::shared_ptr. Read through MetaDataReadAccess, written through
// MetaDataUpdateAccess; every successful write is recorded with
// MetaDataUpdateAccess::AddChange. When the outermost update access ends with
// changes, OnMetadataChanged runs, then every listener.
//
// All calls happen on one thread (the UI thread); there is no locking.
class KIVMETADATA_EXPORT MetaDataProvider : public std::enable_shared_from_this<MetaDataProvider> {
public:
    using ChangeListener = std::function<void(XMPMeta *)>;

    MetaDataProvider();
    virtual ~MetaDataProvider();
    MetaDataProvider(MetaDataProvider const &) = delete;
    MetaDataProvider &operator=(MetaDataProvider const &) = delete;

    // Whether the value may be read (forWriting false) or written. The base
    // accepts everything except writes to kTransientNamespace.
    virtual bool AcceptsPath(Value const &value, bool forWriting) const;
    // True for a provider that holds a working copy of another (a dialog's
    // editing wrapper); false here.
    virtual bool IsEditingCopy() const;
    // The XMP object; may be null (a provider without metadata).
    virtual XMPMeta *GetMeta() = 0;
    // Told the changed paths (an empty Path means the whole packet) when the
    // outermost update access ends, before the listeners.
    virtual void OnMetadataChanged(std::set<Path> const &changes);

    // Typed-access hooks (GetValue, SetValue and DeleteValue call them). The
    // base works on GetMeta(): arrays of simple items read as one text joined
    // by kDefaultSeparator, a language alternative as its default item, and a
    // text written to an array is split into items.
    virtual GetValueResult ReadValue(Path const &path, std::string &text) const;
    virtual bool WriteValue(Path const &path, std::string const &text);
    virtual bool RemoveValue(Path const &path);
    // Every XMP object that a write through this provider reaches (the base:
    // GetMeta(); several assets: each asset's). Used by ApplyTemplate.
    virtual std::vector<XMPMeta *> AllMetas();

    // Schemas that occur in the packet but have no definition: one template
    // per namespace (namespace, prefix, a label naming the namespace, no
    // properties), in packet order.
    virtual std::vector<std::shared_ptr<SchemaDefinition>> DynamicSchemaDefinitions() const;
    // Fills `properties` with definitions of the top-level properties found
    // under `ns` (form from the packet, text type). The definitions are also
    // registered, so PathEntryDefinition and PrimitiveTypeOfPath know them.
    virtual void GetAllPathsForDynamicSchema(std::string const &ns,
                                             std::vector<std::shared_ptr<PropertyDefinition>> &properties) const;

    // Listeners are called with GetMeta() after a change. A listener whose
    // function has been emptied in place is skipped and dropped.
    void AddChangeListener(std::shared_ptr<ChangeListener> listener);
    void RemoveChangeListener(std::shared_ptr<ChangeListener> const &listener);

    // Number of update accesses alive (for the access classes).
    int UpdateDepth() const { return mUpdateDepth; }

protected:
    // GetMeta() for const callers of the hooks.
    XMPMeta *MetaForReading() const { return const_cast<MetaDataProvider *>(this)->GetMeta(); }

private:
    friend class MetaDataUpdateAccess;
    friend class MetaDataReadAccess;
    void BeginUpdate();
    void EndUpdate();
    void RecordChange(Path const &path);

    std::vector<std::shared_ptr<ChangeListener>> mListeners;
    std::set<Path> mPendingChanges;
    int mUpdateDepth = 0;
    int mReadDepth = 0;
};

} // namespace kivmetadata
