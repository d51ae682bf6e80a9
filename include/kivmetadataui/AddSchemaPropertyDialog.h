#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <cstdint>
#include <memory>
#include <string>

namespace kivmetadata {
struct SchemaDefinition;
}
namespace kivui {
class UI_Node;
namespace drawbot {
class SupplierInterface;
}
} // namespace kivui

namespace kivmetadataui {

// The modal "Add Property" dialog: asks for the name and the type of a new
// property of `inSchema`; creating the property is the caller's business.
// True when accepted: then `outName` is the XML name generated from the
// entered text, `outEnteredText` the text as typed and `outTypeIndex` the
// type chosen (0 Integer, 1 Real, 2 Text, 3 Boolean, the numbers of
// kivmetadata::PrimitiveType). On false the outputs are untouched. A name
// already used in the schema, or none, is refused and the dialog stays open.
KIVMETADATAUI_EXPORT bool DoAddSchemaPropertyDialog(std::shared_ptr<kivmetadata::SchemaDefinition> const &inSchema,
                                                    std::u16string &outName, std::u16string &outEnteredText,
                                                    std::int32_t &outTypeIndex,
                                                    kivui::drawbot::SupplierInterface *inDrawSupplier,
                                                    kivui::UI_Node *inParent = nullptr);

} // namespace kivmetadataui
