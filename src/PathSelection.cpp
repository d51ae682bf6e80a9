#include "PathSelection_p.h"

#include <kivmetadata/PathOperations.h>
#include <kivmetadata/SchemaDefinition.h>

namespace kivmetadataui {

using kivmetadata::Path;
using kivmetadata::SchemaDefinition;

namespace {

template <typename Root> std::size_t CountIncluded(Root const &inRoot, std::set<Path> const &inPaths)
{
    std::size_t count = 0;
    if (inPaths.empty()) return count;
    kivmetadata::VisitDescendantLeafPaths(inRoot, [&](Path const &leaf) { count += inPaths.count(leaf); });
    return count;
}

template <typename Root> std::size_t CountSupported(Root const &inRoot)
{
    std::size_t count = 0;
    kivmetadata::VisitDescendantLeafPaths(inRoot, [&](Path const &leaf) {
        if (kivmetadata::IsPropertyUISupported(leaf)) ++count;
    });
    return count;
}

template <typename Root> CheckState CountRule(Root const &inRoot, std::set<Path> const &inSelected)
{
    std::size_t const selected = CountIncluded(inRoot, inSelected);
    if (selected == 0) return CheckState::Unchecked;
    return selected == CountSupported(inRoot) ? CheckState::Checked : CheckState::Mixed;
}

template <typename Root> void SetLeaves(Root const &inRoot, bool inSelected, std::set<Path> &ioSelected)
{
    kivmetadata::VisitDescendantLeafPaths(inRoot, [&](Path const &leaf) {
        if (!kivmetadata::IsPropertyUISupported(leaf)) return;
        if (inSelected)
            ioSelected.insert(leaf);
        else
            ioSelected.erase(leaf);
    });
}

} // namespace

std::size_t CountIncludedDescendantPaths(Path const &inPath, std::set<Path> const &inPaths)
{
    return CountIncluded(inPath, inPaths);
}

std::size_t CountIncludedDescendantPaths(SchemaDefinition const &inSchema, std::set<Path> const &inPaths)
{
    return CountIncluded(inSchema, inPaths);
}

std::size_t CountSupportedDescendantLeafPaths(Path const &inPath)
{
    return CountSupported(inPath);
}

std::size_t CountSupportedDescendantLeafPaths(SchemaDefinition const &inSchema)
{
    return CountSupported(inSchema);
}

CheckState SchemaCheckState(SchemaDefinition const &inSchema, std::set<Path> const &inSelected)
{
    return CountRule(inSchema, inSelected);
}

CheckState PathCheckState(Path const &inPath, std::set<Path> const &inForcedOn, std::set<Path> const &inSelected,
                          bool *outForcedOn)
{
    if (outForcedOn) *outForcedOn = false;
    if (kivmetadata::ChildPaths(inPath).empty()) {
        if (inForcedOn.count(inPath)) {
            if (outForcedOn) *outForcedOn = true;
            return CheckState::Checked;
        }
        return inSelected.count(inPath) ? CheckState::Checked : CheckState::Unchecked;
    }
    return CountRule(inPath, inSelected);
}

void SetDescendantLeavesSelected(Path const &inPath, bool inSelected, std::set<Path> &ioSelected)
{
    SetLeaves(inPath, inSelected, ioSelected);
}

void SetDescendantLeavesSelected(SchemaDefinition const &inSchema, bool inSelected, std::set<Path> &ioSelected)
{
    SetLeaves(inSchema, inSelected, ioSelected);
}

} // namespace kivmetadataui
