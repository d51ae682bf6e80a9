// Opening the view-settings dialog as a person meets it: every standard
// schema in the tree, one schema disclosed and a few saved settings in the
// folder, from the call to the first paint of the dialog (target 200 ms).
#include <kivmetadataui/MetadataPreferencesDialog.h>

#include <kivmetadata/Definitions.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/ViewSettings.h>

#include <kivcore/FileUtils.h>
#include <kivui/ScriptedResponses.h>
#include <kivui/UI_SubView.h>
#include <kivui/drawbot/QtSupplier.h>

#include <benchmark/benchmark.h>

#include <QDir>
#include <QPixmap>
#include <QTemporaryDir>
#include <QWidget>

#include <chrono>

namespace {

void BM_MetadataPreferencesDialog_CallToFirstPaint(benchmark::State &state)
{
    using Clock = std::chrono::steady_clock;
    kivmetadataui::SchemaDefinitionList const schemas = kivmetadata::GetSchemaDefinitions();
    std::set<kivmetadata::Path> selected;
    kivmetadataui::SchemaDefinitionSet opened;
    for (auto const &schema : schemas) {
        if (schema->mPrefix == "dc" || schema->mPrefix == "photoshop") {
            kivmetadata::IncludeAllDescendantPaths(*schema, selected);
            opened.insert(schema);
        }
    }
    QTemporaryDir folder;
    std::string xml;
    kivmetadata::IncludedLeafPathsAsXMLString(selected, xml);
    for (char16_t const *name : {u"Basic", u"Full", u"Photo"})
        kivcore::utility::FileUtils::SimpleWriteStringToFile(
            folder.path().toStdU16String() + u"/" + name + u".xmp_view_settings.xml", xml);

    kivui::drawbot::QtSupplier supplier;
    kivcore::utility::IntrusivePtr<kivui::UI_SubView> parent(new kivui::UI_SubView);
    std::size_t rows = 0;
    for (auto const &schema : schemas)
        rows += 1 + kivmetadata::CountDescendantLeafPaths(*schema);
    for (auto _ : state) {
        Clock::time_point painted;
        kivui::dialogs::ScriptedResponses::PushAction(
            [&painted](QWidget *dialog) {
                benchmark::DoNotOptimize(dialog->grab());
                painted = Clock::now();
            },
            kivui::dialogs::ScriptedAnswer::kCancel);
        Clock::time_point const start = Clock::now();
        kivmetadataui::DoMetadataPreferencesDialog(selected, &supplier, parent.get(), opened,
                                                   folder.path().toStdU16String(), schemas.cbegin(), schemas.cend());
        state.SetIterationTime(std::chrono::duration<double>(painted - start).count());
    }
    state.counters["schemas"] = static_cast<double>(schemas.size());
    state.counters["leaf_rows"] = static_cast<double>(rows);
}

} // namespace

BENCHMARK(BM_MetadataPreferencesDialog_CallToFirstPaint)->UseManualTime()->Unit(benchmark::kMillisecond);
