// The dialog's working copy: nothing reaches the wrapped provider before
// CommitChanges, and an untouched wrapper writes nothing.
#include "BindingTestSupport.h"

#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/MetadataProviderWrapper.h>

#include <kivmetadata/MemoryMetaDataProvider.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/MultiMetaDataProvider.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ValueAccess.h>
#include <kivmetadata/XMPMeta.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

using kivmetadata::MemoryMetaDataProvider;
using kivmetadata::MetaDataProvider;
using kivmetadata::MetaDataUpdateAccess;
using kivmetadata::Path;
using kivmetadata::Value;
using kivmetadataui::MetadataProviderWrapper;

constexpr char kDC[] = "http://purl.org/dc/elements/1.1/";
constexpr char kXMP[] = "http://ns.adobe.com/xap/1.0/";

// A provider whose object the test can take away.
class ScriptedProvider : public MetaDataProvider {
public:
    kivmetadata::XMPMeta *GetMeta() override { return mHasMeta ? &mMeta : nullptr; }
    kivmetadata::XMPMeta mMeta;
    bool mHasMeta = true;
};

class MetadataProviderWrapperTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        kivmetadataui::Initialize();
        mWrapped = MemoryMetaDataProvider::FromPacket(
            kivtest::Packet(R"(<xmp:CreatorTool>kiv</xmp:CreatorTool><xmp:Rating>2</xmp:Rating>)"
                            R"(<dc:subject><rdf:Bag><rdf:li>one</rdf:li><rdf:li>two</rdf:li></rdf:Bag></dc:subject>)"));
        ASSERT_TRUE(mWrapped);
        mWrapped->AddChangeListener(mListener);
    }
    void TearDown() override { kivmetadataui::Terminate(); }

    // Writes through the wrapper as a bound control would.
    static void Edit(std::shared_ptr<MetaDataProvider> const &provider, Path const &path, std::string const *text)
    {
        MetaDataUpdateAccess access(provider);
        Value value{false, path, provider};
        const bool done = text ? kivmetadata::SetValue(value, *text) : kivmetadata::DeleteValue(value);
        if (done) access.AddChange(path);
    }

    std::shared_ptr<MemoryMetaDataProvider> mWrapped;
    int mNotified = 0;
    std::shared_ptr<MetaDataProvider::ChangeListener> mListener =
        std::make_shared<MetaDataProvider::ChangeListener>([this](kivmetadata::XMPMeta *) { ++mNotified; });
};

TEST_F(MetadataProviderWrapperTest, EditsStayInTheWorkingCopyUntilCommitted)
{
    const auto original = kivtest::Nodes(mWrapped->GetMeta());
    auto wrapper = std::make_shared<MetadataProviderWrapper>(mWrapped);
    EXPECT_TRUE(wrapper->IsEditingCopy());
    EXPECT_EQ(kivtest::Nodes(wrapper->GetMeta()), original);

    const std::string tool = "edited";
    Edit(wrapper, kivmetadata::PathForSchemaNameAndPropertyName(kXMP, "CreatorTool"), &tool);
    Edit(wrapper, kivmetadata::PathForSchemaNameAndPropertyName(kDC, "subject"), nullptr);
    EXPECT_EQ(kivtest::Nodes(mWrapped->GetMeta()), original) << "nothing reaches the wrapped provider";
    EXPECT_EQ(mNotified, 0);

    wrapper->CommitChanges();
    EXPECT_EQ(kivtest::Nodes(mWrapped->GetMeta()), kivtest::Nodes(wrapper->GetMeta()));
    EXPECT_FALSE(mWrapped->GetMeta()->DoesPropertyExist(kDC, "dc:subject")) << "deleted in the dialog, gone";
    std::string text;
    ASSERT_TRUE(mWrapped->GetMeta()->GetProperty(kXMP, "xmp:CreatorTool", text));
    EXPECT_EQ(text, "edited");
    EXPECT_EQ(mNotified, 1) << "one change of the whole packet";

    // The modified state stays: a second commit writes again.
    Edit(mWrapped, kivmetadata::PathForSchemaNameAndPropertyName(kXMP, "CreatorTool"), nullptr);
    wrapper->CommitChanges();
    EXPECT_TRUE(mWrapped->GetMeta()->DoesPropertyExist(kXMP, "xmp:CreatorTool"));
}

TEST_F(MetadataProviderWrapperTest, UntouchedWrapperCommitsNothing)
{
    const std::string before = mWrapped->GetMeta()->Serialize();
    MetadataProviderWrapper wrapper(mWrapped);
    wrapper.CommitChanges();
    EXPECT_EQ(mWrapped->GetMeta()->Serialize(), before);
    EXPECT_EQ(mNotified, 0);
}

TEST_F(MetadataProviderWrapperTest, ProviderWithoutObjectAssertsAndCommitsNothing)
{
    kivtest::AssertRecorder asserts;
    auto scripted = std::make_shared<ScriptedProvider>();
    scripted->mHasMeta = false;
    MetadataProviderWrapper empty(scripted);
    EXPECT_TRUE(asserts.FiredMessage("MetadataProviderWrapper: no metadata object available"));
    EXPECT_EQ(asserts.Take(),
              std::vector<std::string>{"src/MetadataDialog|"
                                       "kivmetadataui::MetadataProviderWrapper::MetadataProviderWrapper|false"});
    EXPECT_EQ(empty.GetMeta(), nullptr);

    // An object that disappears before the commit: the commit asserts.
    scripted->mHasMeta = true;
    MetadataProviderWrapper wrapper(scripted);
    scripted->mHasMeta = false;
    wrapper.OnMetadataChanged({Path{}});
    asserts.Clear();
    wrapper.CommitChanges();
    EXPECT_TRUE(asserts.Fired("false", "kivmetadataui::MetadataProviderWrapper::CommitChanges"));
}

TEST_F(MetadataProviderWrapperTest, SeveralAssetsEditedTogetherCommitEach)
{
    auto other = MemoryMetaDataProvider::FromPacket(kivtest::Packet(R"(<xmp:CreatorTool>other</xmp:CreatorTool>)"));
    auto first = std::make_shared<MetadataProviderWrapper>(mWrapped);
    auto second = std::make_shared<MetadataProviderWrapper>(other);
    auto multi = std::make_shared<kivmetadata::MultiMetaDataProvider>(
        std::vector<std::shared_ptr<MetaDataProvider>>{first, second});
    const std::string rating = "4";
    Edit(multi, kivmetadata::PathForSchemaNameAndPropertyName(kXMP, "Rating"), &rating);
    first->CommitChanges();
    second->CommitChanges();
    for (auto const &asset : {std::shared_ptr<MetaDataProvider>(mWrapped), std::shared_ptr<MetaDataProvider>(other)}) {
        std::string text;
        ASSERT_TRUE(asset->GetMeta()->GetProperty(kXMP, "xmp:Rating", text));
        EXPECT_EQ(text, "4");
    }
    std::string tool;
    ASSERT_TRUE(other->GetMeta()->GetProperty(kXMP, "xmp:CreatorTool", tool));
    EXPECT_EQ(tool, "other") << "a property edited in neither asset keeps its own value";
}

} // namespace
