// The widget through which hosts embed a panel in their own Qt window.
#include "BindingTestSupport.h"

#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/MetadataLayoutView.h>
#include <kivmetadataui/MetadataView.h>
#include <kivmetadataui/MetadataWidget.h>

#include <kivmetadata/MemoryMetaDataProvider.h>

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QPalette>
#include <QSplitter>

#include <gtest/gtest.h>

namespace {

using kivmetadataui::MetadataWidget;

class MetadataWidgetTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        kivmetadataui::Initialize();
        mProvider = kivmetadata::MemoryMetaDataProvider::FromPacket(
            kivtest::Packet(R"(<dc:title><rdf:Alt><rdf:li xml:lang="x-default">Fjord</rdf:li></rdf:Alt></dc:title>)"
                            R"(<xmp:CreateDate>2026-11-23T20:13:41</xmp:CreateDate>)"));
        ASSERT_TRUE(mProvider);
    }
    void TearDown() override { kivmetadataui::Terminate(); }

    std::shared_ptr<kivmetadata::MemoryMetaDataProvider> mProvider;
};

TEST_F(MetadataWidgetTest, TakesItsShareOfASplitterAndItsPanelFollows)
{
    QSplitter splitter;
    auto *list = new QListWidget(&splitter);
    list->addItem(QStringLiteral("fjord.jpg"));
    auto *metadata = new MetadataWidget(mProvider, "Description", &splitter);
    EXPECT_GE(metadata->sizeHint().width(), 400);

    splitter.resize(1000, 600);
    splitter.show();
    QApplication::processEvents();
    ASSERT_EQ(splitter.sizes().size(), 2);
    EXPECT_GE(splitter.sizes()[1], 400) << "the panel gets room for labels and fields";
    ASSERT_TRUE(metadata->GetLayoutView());
    EXPECT_EQ(metadata->GetLayoutView()->UI_GetLocalRectF(false).width, float(metadata->width()));

    splitter.setSizes({600, 400});
    QApplication::processEvents();
    EXPECT_EQ(metadata->GetLayoutView()->UI_GetLocalRectF(false).width, float(metadata->width()));
    EXPECT_EQ(metadata->GetLayoutView()->UI_GetLocalRectF(false).height, float(metadata->height()));

    EXPECT_FALSE(metadata->ShowPanel("NoSuchPanel"));
    EXPECT_EQ(metadata->GetShownName(), "Description");
    metadata->ShowRawData();
    EXPECT_EQ(metadata->GetShownName(), "RawData");
    EXPECT_EQ(metadata->GetLayoutView()->UI_GetLocalRectF(false).width, float(metadata->width()));
    metadata->ShowTree();
    ASSERT_TRUE(metadata->GetTreeView());
    EXPECT_FALSE(metadata->GetLayoutView());
    EXPECT_GT(metadata->GetTreeView()->GetTree()->CountRows(), 0);
    splitter.setSizes({500, 500});
    QApplication::processEvents();
    EXPECT_EQ(metadata->GetTreeView()->UI_GetLocalRectF(false).width, float(metadata->width()));
}

// The toolkit's default look has dark fields; inside a light host the date
// field must be as light as the host's own fields, unless the toolkit's look
// is asked for.
TEST_F(MetadataWidgetTest, FieldsFollowALightHostUnlessTheToolkitsLookIsChosen)
{
    QWidget host;
    QPalette light = host.palette();
    light.setColor(QPalette::Window, QColor(0xf4, 0xf4, 0xf4));
    light.setColor(QPalette::Base, QColor(0xff, 0xff, 0xff));
    light.setColor(QPalette::Text, QColor(0x10, 0x10, 0x10));
    host.setPalette(light);
    host.resize(700, 600);
    auto *metadata = new MetadataWidget(mProvider, "Description", &host);
    metadata->resize(700, 600);
    host.show();
    QApplication::processEvents();

    // Fresh fields may be made at any step: the date field is looked up each time.
    auto background = [metadata] {
        QLineEdit *date = nullptr;
        for (QLineEdit *edit : metadata->findChildren<QLineEdit *>()) {
            if (edit->property("kivDateTextEdit").toBool()) date = edit;
        }
        EXPECT_TRUE(date) << "the Description panel has an editable date";
        // Right of the text, inside the frame.
        return date ? date->grab().toImage().pixelColor(date->width() - 4, date->height() / 2).lightness() : -1;
    };
    EXPECT_EQ(metadata->GetLook(), MetadataWidget::Look::kHost);
    EXPECT_GT(background(), 200);

    metadata->SetLook(MetadataWidget::Look::kToolkit);
    QApplication::processEvents();
    EXPECT_LT(background(), 100);

    metadata->SetLook(MetadataWidget::Look::kHost);
    metadata->Refresh(); // fresh fields, made with the toolkit's sheet
    QApplication::processEvents();
    EXPECT_GT(background(), 200);
}

} // namespace
