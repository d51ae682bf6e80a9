// The metadata tree as a person meets it: every standard schema plus a file
// of 2,000 properties no schema knows, built and painted (target 50 ms, and
// within twice a bare QTreeWidget holding the same rows); one rapid-find
// keystroke on that tree (target 16 ms); checking the box of a schema with
// 500 properties (target 16 ms); closing the tree again.
#include <kivmetadataui/MetadataView.h>

#include <kivmetadata/Definitions.h>
#include <kivmetadata/MemoryMetaDataProvider.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadataui/MetadataViewCell.h>
#include <kivui/UI_Checkbox.h>
#include <kivui/UI_MultiColumnTree.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_SubView.h>
#include <kivui/drawbot/QtSupplier.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QCheckBox>
#include <QPixmap>
#include <QTreeWidget>

#include <functional>
#include <memory>
#include <string>

using kivcore::RectF;
using kivcore::utility::IntrusivePtr;
using kivmetadataui::MetadataView;
using RowPtr = MetadataView::RowPtr;

namespace {

constexpr float kWidth = 800.0f;
constexpr float kHeight = 900.0f;

std::string ManyPropertiesPacket(int inCount)
{
    std::string body;
    for (int i = 0; i < inCount; ++i) {
        std::string const n = std::to_string(i);
        body += "<many:p" + n + ">value number " + n + " of the harbour file</many:p" + n + ">";
    }
    body += "<dc:title><rdf:Alt><rdf:li xml:lang=\"x-default\">Harbour at dusk</rdf:li></rdf:Alt></dc:title>";
    body += "<photoshop:Headline>Boats in the harbour</photoshop:Headline>";
    return R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">)"
           R"(<rdf:Description rdf:about="" xmlns:many="http://ns.kivbench.org/many/1.0/")"
           R"( xmlns:dc="http://purl.org/dc/elements/1.1/" xmlns:photoshop="http://ns.adobe.com/photoshop/1.0/">)" +
           body + "</rdf:Description></rdf:RDF></x:xmpmeta>";
}

std::shared_ptr<kivmetadata::MetaDataProvider> const &ManyProvider()
{
    static std::shared_ptr<kivmetadata::MetaDataProvider> provider =
        kivmetadata::MemoryMetaDataProvider::FromPacket(ManyPropertiesPacket(2000));
    return provider;
}

// A window holding one view, as a page of a dialog holds it.
struct Window {
    kivui::drawbot::QtSupplier supplier;
    IntrusivePtr<kivui::UI_SubView> host{new kivui::UI_SubView};
    QPixmap pixmap{int(kWidth), int(kHeight)};

    Window()
    {
        host->UI_SetDrawSupplier(&supplier);
        host->UI_SetLocalRectF(RectF{0, 0, kWidth, kHeight});
    }

    void Paint() { host->UI_GetWidget()->render(&pixmap); }
};

// Every standard schema opened, every property shown.
IntrusivePtr<MetadataView> MakeView(Window &inWindow, std::shared_ptr<kivmetadata::MetaDataProvider> const &inProvider)
{
    auto schemas = kivmetadata::GetSchemaDefinitions();
    IntrusivePtr<MetadataView> view(new MetadataView({}, inProvider));
    view->UI_SetLocalRectF(RectF{0, 0, kWidth, kHeight});
    inWindow.host->ChildPushBack(view);
    MetadataView::SuspendTreeRebuild suspend(view.get());
    MetadataView::PathSet included;
    for (auto const &schema : schemas)
        kivmetadata::IncludeAllDescendantPaths(*schema, included);
    view->SetDisplaySchemas(schemas);
    view->SetIncludedPaths(included);
    MetadataView::OpenedRowData opened;
    for (auto const &schema : schemas)
        opened.mSchemas.insert(schema->mNamespace);
    opened.mSchemas.insert("http://ns.kivbench.org/many/1.0/");
    view->SetOpenedRows(opened);
    return view;
}

void BM_MetadataView_BuildAndPaint_StandardSchemasAnd2000Properties(benchmark::State &state)
{
    Window window;
    int rows = 0;
    for (auto _ : state) {
        IntrusivePtr<MetadataView> view = MakeView(window, ManyProvider());
        window.Paint();
        rows = int(view->GetTree()->GetOpenedRows().size());
        state.PauseTiming();
        window.host->ChildRemove(view.get());
        view.reset();
        QApplication::processEvents();
        state.ResumeTiming();
    }
    state.counters["rows"] = rows;
}
BENCHMARK(BM_MetadataView_BuildAndPaint_StandardSchemasAnd2000Properties)->Unit(benchmark::kMillisecond);

// Closing that tree after scrolling through all of it: the page taken out of
// its window and the view released, as when the dialog closes (target: as
// fast as building it).
void BM_MetadataView_Close_StandardSchemasAnd2000Properties(benchmark::State &state)
{
    Window window;
    for (auto _ : state) {
        state.PauseTiming();
        IntrusivePtr<MetadataView> view = MakeView(window, ManyProvider());
        window.Paint();
        // Every row has been in view once, as after scrolling through it all.
        std::function<void(RowPtr const &)> reveal = [&](RowPtr const &row) {
            view->OnRowVisibilityChanged(row);
            for (int i = 0; i < row->CountChildRows(); ++i)
                reveal(row->GetChildRow(i));
        };
        for (int i = 0; i < view->GetTree()->CountRows(); ++i)
            reveal(view->GetTree()->GetRow(i));
        state.counters["widgets"] = double(window.host->UI_GetWidget()->findChildren<QWidget *>().size());
        QApplication::processEvents();
        state.ResumeTiming();
        window.host->ChildRemove(view.get());
        view.reset();
        QApplication::processEvents();
    }
}
BENCHMARK(BM_MetadataView_Close_StandardSchemasAnd2000Properties)->Unit(benchmark::kMillisecond);

// The same rows in a bare QTreeWidget: labels and value texts, no controls.
void BM_QTreeWidget_BuildAndPaint_SameRows(benchmark::State &state)
{
    struct Item {
        QString label;
        QString value;
        std::vector<Item> children;
        bool opened = false;
    };
    std::vector<Item> items;
    {
        Window window;
        IntrusivePtr<MetadataView> view = MakeView(window, ManyProvider());
        std::function<Item(RowPtr const &)> copy = [&](RowPtr const &row) {
            Item item;
            view->OnRowVisibilityChanged(row);
            if (auto *cell = view->MetadataCellForRow(row))
                if (auto *label = dynamic_cast<kivui::UI_StaticText *>(cell->GetChild_Label().get()))
                    item.label = QString::fromStdU16String(label->GetText());
            kivmetadata::Path path;
            if (view->FindPathForRow(row, path)) item.value = QString::fromStdString(path.mPath);
            item.opened = row->IsOpened();
            for (int i = 0; i < row->CountChildRows(); ++i)
                item.children.push_back(copy(row->GetChildRow(i)));
            return item;
        };
        for (int i = 0; i < view->GetTree()->CountRows(); ++i)
            items.push_back(copy(view->GetTree()->GetRow(i)));
        window.host->ChildRemove(view.get());
    }
    QPixmap pixmap{int(kWidth), int(kHeight)};
    int rows = 0;
    for (auto _ : state) {
        auto tree = std::make_unique<QTreeWidget>();
        tree->resize(int(kWidth), int(kHeight));
        tree->setColumnCount(2);
        tree->setHeaderHidden(true);
        tree->setUniformRowHeights(true);
        rows = 0;
        std::function<void(QTreeWidgetItem *, Item const &)> add = [&](QTreeWidgetItem *parent, Item const &item) {
            auto *made = parent ? new QTreeWidgetItem(parent) : new QTreeWidgetItem(tree.get());
            made->setText(0, item.label);
            made->setText(1, item.value);
            ++rows;
            for (Item const &child : item.children)
                add(made, child);
            if (item.opened) made->setExpanded(true);
        };
        for (Item const &item : items)
            add(nullptr, item);
        tree->render(&pixmap);
        state.PauseTiming();
        tree.reset();
        state.ResumeTiming();
    }
    state.counters["rows"] = rows;
}
BENCHMARK(BM_QTreeWidget_BuildAndPaint_SameRows)->Unit(benchmark::kMillisecond);

// The view's own share: the rows made again and painted, without looking for
// the packet's unknown namespaces (the model's part of a first build).
void BM_MetadataView_RebuildAndPaint_SameTree(benchmark::State &state)
{
    Window window;
    IntrusivePtr<MetadataView> view = MakeView(window, ManyProvider());
    window.Paint();
    for (auto _ : state) {
        view->RefilterMetadataFieldsForRapidFindString();
        window.Paint();
    }
    window.host->ChildRemove(view.get());
}
BENCHMARK(BM_MetadataView_RebuildAndPaint_SameTree)->Unit(benchmark::kMillisecond);

void BM_MetadataView_RapidFindKeystroke(benchmark::State &state)
{
    Window window;
    IntrusivePtr<MetadataView> view = MakeView(window, ManyProvider());
    window.Paint();
    bool longer = false;
    for (auto _ : state) {
        // Typing one more letter, then taking it back.
        longer = !longer;
        view->SetRapidFindString(longer ? u"harbo" : u"harb");
    }
    window.host->ChildRemove(view.get());
}
BENCHMARK(BM_MetadataView_RapidFindKeystroke)->Unit(benchmark::kMillisecond);

std::shared_ptr<kivmetadata::SchemaDefinition> const &LargeSchema()
{
    static std::shared_ptr<kivmetadata::SchemaDefinition> schema = [] {
        std::string xml = R"(<schema xmlns="urn:kivmetadata:schema:1" namespace="http://ns.kivbench.org/large/1.0/")"
                          R"( prefix="kbl" label="$$$/kivbench/large=Large">)";
        for (int i = 0; i < 500; ++i)
            xml += "<property name=\"p" + std::to_string(i) + "\" type=\"text\" label=\"Property " + std::to_string(i) +
                   "\"/>";
        xml += "</schema>";
        auto parsed = kivmetadata::ParseSchemaDefinition(xml, u"");
        if (parsed) kivmetadata::RegisterSchemaDefinition(parsed, "bench", true);
        return kivmetadata::NamespaceDefinition("http://ns.kivbench.org/large/1.0/");
    }();
    return schema;
}

void BM_MetadataView_CheckSchemaOf500Properties(benchmark::State &state)
{
    auto const &schema = LargeSchema();
    if (!schema) {
        state.SkipWithError("the schema could not be registered");
        return;
    }
    Window window;
    IntrusivePtr<MetadataView> view(new MetadataView({schema}, ManyProvider()));
    view->UI_SetLocalRectF(RectF{0, 0, kWidth, kHeight});
    window.host->ChildPushBack(view);
    {
        MetadataView::SuspendTreeRebuild suspend(view.get());
        MetadataView::PathSet included;
        kivmetadata::IncludeAllDescendantPaths(*schema, included);
        view->SetIncludedPaths(included);
        view->SetAllowPropertySelection(true);
        view->SetDisplayPropertyValue(false);
        view->SetDisableDynamicSchema(true);
        view->SetOpenedSchemaRows({schema});
    }
    window.Paint();
    RowPtr const row = view->GetTree()->GetRow(0);
    view->OnRowVisibilityChanged(row);
    kivui::UI_Checkbox *box = view->CheckboxForRow(row);
    if (!box) {
        state.SkipWithError("the schema row has no check box");
        return;
    }
    for (auto _ : state)
        box->GetCheckBox()->click();
    state.counters["selected"] = double(view->GetSelectedPaths().size());
    window.host->ChildRemove(view.get());
}
BENCHMARK(BM_MetadataView_CheckSchemaOf500Properties)->Unit(benchmark::kMillisecond);

} // namespace
