// Any bytes as a packet, shown in every standard panel: what a panel reads is
// what BuildView reports, each value read with GetValue, each array counted
// and read item by item. Whatever the packet, reading never fails in a way
// other than the results GetValue can give, a value read as one value is
// UTF-8, and an array has no negative count.
#include "FuzzRequire.h"

#include <kivcore/StringUtils.h>
#include <kivmetadata/GetValueResult.h>
#include <kivmetadata/Initialize.h>
#include <kivmetadata/MemoryMetaDataProvider.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/ValueAccess.h>
#include <kivmetadata/ViewBuilderInterface.h>
#include <kivmetadata/ViewDefinitions.h>
#include <kivmetadata/ViewItem.h>
#include <kivmetadata/XMPMeta.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using namespace kivmetadata;

// The most array items a panel reads before it shows a count.
constexpr int kItemsRead = 64;

bool IsUtf8(std::string const &text)
{
    return kivcore::utility::Utf16ToUtf8(kivcore::utility::Utf8ToUtf16(text)) == text;
}

class ReadingBuilder : public ViewBuilderInterface {
public:
    explicit ReadingBuilder(XMPMeta const *meta) : mMeta(meta) {}

    void BeginSection(ViewItem const &) override {}
    void EndSection() override {}
    void AddProperty(std::shared_ptr<ViewItem> const &item, PropertyDefinition const &) override { Read(item->mPath); }
    void BeginStruct(std::shared_ptr<ViewItem> const &item, PropertyDefinition const &) override
    {
        for (Path const &field : ChildPaths(item->mPath))
            Read(field);
    }
    void EndStruct() override {}
    void AddArray(std::shared_ptr<ViewItem> const &item, PropertyDefinition const &) override
    {
        int const count = CountArrayItems(mMeta, item->mPath);
        REQUIRE(count >= 0);
        for (int index = 1; index <= count && index <= kItemsRead; ++index) {
            Path const itemPath = CreatePathFromArrayItem(item->mPath, index);
            Read(itemPath);
            for (Path const &field : ChildPaths(itemPath))
                Read(field);
        }
    }

private:
    void Read(Path const &path)
    {
        std::string text;
        GetValueResult result = kGetValueResult_Unreadable;
        bool const read = GetValue(mMeta, path, text, result);
        REQUIRE(result == kGetValueResult_OneValue || result == kGetValueResult_Absent ||
                result == kGetValueResult_Unreadable);
        if (read && result == kGetValueResult_OneValue) REQUIRE(IsUtf8(text));
    }

    XMPMeta const *mMeta;
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Initialize();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size)
{
    auto provider = MemoryMetaDataProvider::FromPacket(std::string_view(reinterpret_cast<char const *>(data), size));
    if (!provider) return 0;
    ReadingBuilder builder(provider->GetMeta());
    for (auto const &definition : GetViewDefinitions())
        REQUIRE(BuildView(definition, builder));
    return 0;
}
