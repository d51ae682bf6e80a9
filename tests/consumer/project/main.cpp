// Uses the library from its installed package the way a host does: the
// exported functions, and the embedding example of docs/embedding.md driven
// headless (a panel in a splitter beside a list; a typed title reaches the
// provider).
#include "HostWindow.h"

#include <kivmetadataui/kivmetadataui.h>

#include <kivmetadata/MemoryMetaDataProvider.h>
#include <kivmetadata/XMPMeta.h>

#include <QApplication>
#include <QLineEdit>
#include <QSplitter>
#include <QTest>

#include <cstdio>
#include <string>

namespace {

constexpr char kDublinCore[] = "http://purl.org/dc/elements/1.1/";

bool Check(bool inCondition, char const *inWhat)
{
    if (!inCondition) std::printf("failed: %s\n", inWhat);
    return inCondition;
}

bool EmbeddedPanelTakesEdits()
{
    auto provider = kivmetadata::MemoryMetaDataProvider::FromPacket(
        R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">)"
        R"(<rdf:Description rdf:about="" xmlns:dc="http://purl.org/dc/elements/1.1/"><dc:title><rdf:Alt>)"
        R"(<rdf:li xml:lang="x-default">Before</rdf:li></rdf:Alt></dc:title></rdf:Description></rdf:RDF></x:xmpmeta>)");
    if (!Check(provider != nullptr, "the packet parses")) return false;

    HostWindow window;
    window.AddFile(QStringLiteral("fjord.jpg"), provider);
    window.resize(1000, 640);
    window.show();
    QApplication::processEvents();

    bool ok = Check(window.Metadata()->width() >= 400, "the splitter gives the panel its width");
    QLineEdit *title = nullptr;
    for (QLineEdit *edit : window.Metadata()->findChildren<QLineEdit *>()) {
        if (edit->toolTip().startsWith(QStringLiteral("Title"))) title = edit;
    }
    if (!Check(title != nullptr, "the Description panel shows the title")) return false;
    ok &= Check(title->text() == QStringLiteral("Before"), "the title field shows the stored title");

    title->setFocus();
    title->selectAll();
    QTest::keyClicks(title, QStringLiteral("After"));
    QTest::keyClick(title, Qt::Key_Return);
    std::string stored;
    provider->GetMeta()->GetProperty(kDublinCore, "dc:title[1]", stored);
    ok &= Check(stored == "After", "the typed title reached the provider");
    return ok;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    kivmetadataui::Initialize();
    bool ok = kivmetadataui::VerifySimpleXMLName(u"goodName123") &&
              kivmetadataui::GenerateXMLNameFromUnicodeString(u"xml") == u"_xml";
    ok = EmbeddedPanelTakesEdits() && ok;
    kivmetadataui::Terminate();
    std::printf(ok ? "consumer ok\n" : "consumer failed\n");
    return ok ? 0 : 1;
}
