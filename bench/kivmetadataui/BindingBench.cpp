// The binding's share of a panel refresh: building bound controls for many
// properties, showing one value, writing one edit, and a dialog's commit.
#include <kivmetadataui/BindControl.h>
#include <kivmetadataui/Control.h>
#include <kivmetadataui/ControlFactory.h>
#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/MetadataProviderWrapper.h>

#include <kivmetadata/Definitions.h>
#include <kivmetadata/MemoryMetaDataProvider.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ValueAccess.h>
#include <kivmetadata/XMPMeta.h>
#include <kivui/UI_SubView.h>
#include <kivui/UI_TextEdit.h>

#include <benchmark/benchmark.h>

#include <QApplication>

#include <memory>
#include <string>
#include <vector>

namespace {

using kivcore::utility::IntrusivePtr;
using kivmetadata::Path;
using kivmetadata::Value;

constexpr char kDC[] = "http://purl.org/dc/elements/1.1/";
constexpr char kXMP[] = "http://ns.adobe.com/xap/1.0/";
constexpr char kPhotoshop[] = "http://ns.adobe.com/photoshop/1.0/";

// Every simple property of a few common schemas: about what a large panel shows.
std::vector<Path> PanelPaths()
{
    std::vector<Path> paths;
    for (char const *ns : {kDC, kXMP, kPhotoshop, "http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/",
                           "http://ns.adobe.com/xap/1.0/rights/"}) {
        auto schema = kivmetadata::NamespaceDefinition(ns);
        if (!schema) continue;
        for (auto const &property : schema->mProperties) {
            const Path path = kivmetadata::PathForSchemaNameAndPropertyName(ns, property->mName);
            if (kivmetadata::PrimitiveTypeOfPath(path)) paths.push_back(path);
        }
    }
    return paths;
}

// A packet with a value for many of those properties.
std::shared_ptr<kivmetadata::MemoryMetaDataProvider> RichProvider(std::vector<Path> const &paths)
{
    auto provider = std::make_shared<kivmetadata::MemoryMetaDataProvider>();
    kivmetadata::MetaDataUpdateAccess access(provider);
    int n = 0;
    for (auto const &path : paths) {
        const Value value{false, path, provider};
        if (kivmetadata::SetValue(value, std::string("value ") + std::to_string(++n)) ||
            kivmetadata::SetValue(value, std::int64_t{n % 5}) || kivmetadata::SetValue(value, true))
            access.AddChange(path);
    }
    return provider;
}

void BM_ControlFactory_PanelOfProperties(benchmark::State &state)
{
    const auto paths = PanelPaths();
    auto provider = RichProvider(paths);
    for (auto _ : state) {
        IntrusivePtr<kivui::UI_SubView> parent(new kivui::UI_SubView());
        std::vector<std::shared_ptr<kivmetadataui::Control>> controls;
        controls.reserve(paths.size());
        for (auto const &path : paths)
            controls.push_back(
                kivmetadataui::ControlFactory(Value{false, path, provider}, parent, false, nullptr, nullptr));
        benchmark::DoNotOptimize(controls.data());
    }
    state.counters["controls"] = static_cast<double>(paths.size());
}

void BM_UpdateControl_Text(benchmark::State &state)
{
    const Path path = kivmetadata::PathForSchemaNameAndPropertyName(kPhotoshop, "City");
    auto provider = RichProvider({path});
    IntrusivePtr<kivui::UI_TextEdit> edit(new kivui::UI_TextEdit());
    const Value value{false, path, provider};
    for (auto _ : state)
        kivmetadataui::UpdateControl(value, edit);
}

void BM_UpdateValue_Text(benchmark::State &state)
{
    const Path path = kivmetadata::PathForSchemaNameAndPropertyName(kPhotoshop, "City");
    auto provider = std::make_shared<kivmetadata::MemoryMetaDataProvider>();
    IntrusivePtr<kivui::UI_TextEdit> edit(new kivui::UI_TextEdit());
    const Value value{false, path, provider};
    int n = 0;
    for (auto _ : state) {
        edit->SetValue(n++ % 2 ? u"Paris" : u"Lyon", false);
        kivmetadataui::UpdateValue(value, edit);
    }
}

void BM_ProviderWrapper_EditAndCommit(benchmark::State &state)
{
    const auto paths = PanelPaths();
    auto provider = RichProvider(paths);
    const Path path = kivmetadata::PathForSchemaNameAndPropertyName(kXMP, "CreatorTool");
    for (auto _ : state) {
        auto wrapper = std::make_shared<kivmetadataui::MetadataProviderWrapper>(provider);
        {
            kivmetadata::MetaDataUpdateAccess access(wrapper);
            if (kivmetadata::SetValue(Value{false, path, wrapper}, std::string("bench"))) access.AddChange(path);
        }
        wrapper->CommitChanges();
    }
    state.counters["properties"] = static_cast<double>(paths.size());
}

BENCHMARK(BM_ControlFactory_PanelOfProperties)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UpdateControl_Text)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_UpdateValue_Text)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ProviderWrapper_EditAndCommit)->Unit(benchmark::kMillisecond);

} // namespace
