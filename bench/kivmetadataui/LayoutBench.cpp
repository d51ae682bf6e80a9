// Panel building costs as a person meets them: rebuilding the largest
// standard panel with a value in every row (the target is one frame at
// 60 Hz, 16 ms), and opening the raw-data panel of a 900 KB packet up to its
// first paint (target 200 ms).
#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/MetadataLayoutView.h>
#include <kivmetadataui/TableLayout.h>

#include <kivmetadata/MemoryMetaDataProvider.h>
#include <kivmetadata/MetaDataReadAccess.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ValueAccess.h>
#include <kivmetadata/ViewDefinition.h>
#include <kivmetadata/ViewDefinitions.h>
#include <kivmetadata/XMPMeta.h>

#include <kivui/UI_SubView.h>
#include <kivui/drawbot/QtSupplier.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QPixmap>
#include <QWidget>

#include <functional>
#include <memory>
#include <string>

using kivcore::RectF;
using kivcore::utility::IntrusivePtr;
using kivmetadata::PropertyDefinition;
using kivmetadata::ValueForm;
using kivmetadata::ViewItem;

namespace {

std::size_t CountItems(std::vector<std::shared_ptr<ViewItem>> const &inItems)
{
    std::size_t count = 0;
    for (auto const &item : inItems)
        count += 1 + CountItems(item->mChildren);
    return count;
}

std::string SampleText(PropertyDefinition const &inDefinition)
{
    if (!inDefinition.mChoices.empty()) return inDefinition.mChoices.front().mRawValue;
    if (inDefinition.mTypeId == "date") return "2024-05-17T10:30:00+02:00";
    if (inDefinition.mTypeId == "url" || inDefinition.mTypeId == "uri") return "https://example.org/a";
    if (!inDefinition.mPrimitiveType) return "Sample";
    switch (*inDefinition.mPrimitiveType) {
    case kivmetadata::kPrimitiveType_Integer:
        return "3";
    case kivmetadata::kPrimitiveType_Real:
        return inDefinition.mMaximum ? "1" : "2.5";
    case kivmetadata::kPrimitiveType_Boolean:
        return "True";
    default:
        return "Sample value; second";
    }
}

// Writes a plausible value into every property that the panel shows.
void FillValue(std::shared_ptr<kivmetadata::MetaDataProvider> const &inProvider, kivmetadata::Path const &inPath,
               PropertyDefinition const &inDefinition)
{
    kivmetadata::MetaDataUpdateAccess access(inProvider);
    auto fillFields = [&](kivmetadata::Path const &inBase) {
        for (auto const &field : inDefinition.mFields)
            if (field && !field->IsStruct())
                kivmetadata::SetValue(
                    kivmetadata::Value{false, kivmetadata::CreatePathFromStructField(inBase, *field), inProvider},
                    SampleText(*field));
    };
    if (inDefinition.IsStruct()) {
        fillFields(inPath);
    } else if (inDefinition.IsArray() && inDefinition.mItemForm == ValueForm::kStruct) {
        for (int i = 1; i <= 2; ++i) {
            access.GetMeta()->AppendArrayItem(inPath.mNamespace, inPath.mPath, kivmetadata::XMPMeta::kPropValueIsArray,
                                              std::string(), kivmetadata::XMPMeta::kPropValueIsStruct);
            fillFields(kivmetadata::CreatePathFromArrayItem(inPath, i));
        }
    } else {
        kivmetadata::SetValue(kivmetadata::Value{false, inPath, inProvider}, SampleText(inDefinition));
    }
    access.AddChange(inPath);
}

void FillAll(std::shared_ptr<kivmetadata::MetaDataProvider> const &inProvider,
             std::vector<std::shared_ptr<ViewItem>> const &inItems)
{
    for (auto const &item : inItems) {
        if (item->mKind == ViewItem::Kind::kSection) {
            FillAll(inProvider, item->mChildren);
            continue;
        }
        if (auto definition = kivmetadata::PathEntryDefinition(item->mPath))
            FillValue(inProvider, item->mPath, *definition);
    }
}

struct Panel {
    kivui::drawbot::QtSupplier supplier;
    IntrusivePtr<kivui::UI_SubView> host{new kivui::UI_SubView};
    IntrusivePtr<kivmetadataui::MetadataLayoutView> view;

    explicit Panel(IntrusivePtr<kivmetadataui::MetadataLayoutView> inView) : view(std::move(inView))
    {
        host->UI_SetLocalRectF(RectF{0, 0, 640, 900});
        host->UI_SetDrawSupplier(&supplier);
        view->UI_SetLocalRectF(RectF{0, 0, 640, 900});
        host->ChildPushBack(view);
    }
};

void BM_MetadataLayoutView_Refresh_LargestPanel(benchmark::State &state)
{
    std::shared_ptr<kivmetadata::ViewDefinition> largest;
    for (auto const &definition : kivmetadata::GetViewDefinitions())
        if (!largest || CountItems(definition->mItems) > CountItems(largest->mItems)) largest = definition;
    if (!largest) {
        state.SkipWithError("no standard panels");
        return;
    }
    auto provider = std::make_shared<kivmetadata::MemoryMetaDataProvider>();
    FillAll(provider, largest->mItems);

    Panel panel(
        IntrusivePtr<kivmetadataui::MetadataLayoutView>(new kivmetadataui::MetadataLayoutView(largest, provider)));
    panel.view->Layout();
    for (auto _ : state) {
        panel.view->Refresh();
        // The old rows' deferred deletions run when the event loop next
        // turns; a host pays for them within the same frame.
        QApplication::processEvents();
        benchmark::DoNotOptimize(panel.view->GetTableLayout());
    }
    state.SetLabel(largest->mName);
    state.counters["items"] = static_cast<double>(CountItems(largest->mItems));
}

void BM_RawDataView_900KB_FirstPaint(benchmark::State &state)
{
    // Many ordinary properties rather than one huge value, as real large
    // packets (keyword lists, history) look.
    // Serialising indents every item: about 772 KB of items give a 900 KB packet.
    std::string body;
    int i = 0;
    while (body.size() < 772000)
        body += "<rdf:li>keyword number " + std::to_string(i++) + "</rdf:li>";
    std::string const packet =
        R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">)"
        R"(<rdf:Description rdf:about="" xmlns:dc="http://purl.org/dc/elements/1.1/"><dc:subject><rdf:Bag>)" +
        body + "</rdf:Bag></dc:subject></rdf:Description></rdf:RDF></x:xmpmeta>";
    auto provider = kivmetadata::MemoryMetaDataProvider::FromPacket(packet);
    std::size_t serialized = 0;
    {
        kivmetadata::MetaDataReadAccess access(provider);
        serialized = access.GetMeta()->Serialize(16, 0).size();
    }
    for (auto _ : state) {
        Panel panel(kivmetadataui::CreateRawDataView(nullptr, provider));
        panel.view->Layout();
        QPixmap shot = panel.host->UI_GetWidget()->grab();
        benchmark::DoNotOptimize(shot);
        QApplication::processEvents();
    }
    state.counters["packet_bytes"] = static_cast<double>(serialized);
}

BENCHMARK(BM_MetadataLayoutView_Refresh_LargestPanel)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RawDataView_900KB_FirstPaint)->Unit(benchmark::kMillisecond);

} // namespace
