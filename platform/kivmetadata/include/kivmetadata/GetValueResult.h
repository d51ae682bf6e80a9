#pragma once

namespace kivmetadata {

// Outcome of reading a value. Only kGetValueResult_OneValue carries a value;
// with several differing values the text read is the first asset's.
enum GetValueResult : int {
    kGetValueResult_OneValue = 0,
    kGetValueResult_SeveralValues = 1,
    kGetValueResult_Absent = 2,
    kGetValueResult_Unreadable = 3,
};

} // namespace kivmetadata
