#pragma once

#include <kivmetadata/kivmetadata_export.h>

#include <memory>

namespace kivmetadata {

struct PropertyDefinition;
struct ViewDefinition;
struct ViewItem;

// What BuildView tells a builder while it walks a view definition. Calls
// nest: BeginView, then for each item either a section (BeginSection, its
// items, EndSection), a property (AddProperty), a struct (BeginStruct, one
// AddProperty/BeginStruct/AddArray per field, EndStruct) or an array
// (AddArray), then EndView. Items without a definition and excluded items are
// skipped and never reach the builder; a section left empty by that is still
// reported (the builder may drop it).
class KIVMETADATA_EXPORT ViewBuilderInterface {
public:
    virtual ~ViewBuilderInterface();

    virtual void BeginView(ViewDefinition const &definition);
    virtual void EndView();
    virtual void BeginSection(ViewItem const &section) = 0;
    virtual void EndSection() = 0;
    // A simple property (text, number, choice, boolean, date, ...), a
    // language alternative or an array of simple items edited as one text.
    virtual void AddProperty(std::shared_ptr<ViewItem> const &item, PropertyDefinition const &definition) = 0;
    // A struct; its fields follow as items whose paths are the field paths.
    virtual void BeginStruct(std::shared_ptr<ViewItem> const &item, PropertyDefinition const &definition) = 0;
    virtual void EndStruct() = 0;
    // An array edited item by item (an "array" item, or any array of structs).
    virtual void AddArray(std::shared_ptr<ViewItem> const &item, PropertyDefinition const &definition) = 0;
};

} // namespace kivmetadata
