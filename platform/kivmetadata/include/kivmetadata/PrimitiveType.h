#pragma once

#include <kivmetadata/kivmetadata_export.h>

namespace kivmetadata {

// The kind of value a control edits. Arrays of simple items are edited as
// one text (6 and 7); a language alternative as its default item (8).
enum PrimitiveType : int {
    kPrimitiveType_Integer = 0,
    kPrimitiveType_Real = 1,
    kPrimitiveType_Text = 2,
    kPrimitiveType_Boolean = 3,
    kPrimitiveType_OpenChoice = 4,
    kPrimitiveType_ClosedChoice = 5,
    kPrimitiveType_TextBag = 6,
    kPrimitiveType_TextSeq = 7,
    kPrimitiveType_LangAlt = 8,
};

} // namespace kivmetadata
