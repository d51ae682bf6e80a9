#include <kivmetadataui/kivmetadataui.h>

#include <cstdio>

int main()
{
    kivmetadataui::Initialize();
    const bool ok = kivmetadataui::VerifySimpleXMLName(u"goodName123") &&
                    kivmetadataui::GenerateXMLNameFromUnicodeString(u"xml") == u"_xml";
    kivmetadataui::Terminate();
    std::printf(ok ? "consumer ok\n" : "consumer failed\n");
    return ok ? 0 : 1;
}
