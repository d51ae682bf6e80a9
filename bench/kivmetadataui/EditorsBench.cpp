// Date parsing and XML name checks beside references from established
// libraries, in one binary so that the ratios are measured under the same
// conditions: QDateTime's ISO parser for dates, libxml2's NCName check.
#include <kivmetadataui/DateTimeString.h>
#include <kivmetadataui/XMLNameValidation.h>

#include <benchmark/benchmark.h>
#include <libxml/tree.h>

#include <QDateTime>
#include <QString>

#include <string>
#include <vector>

namespace {

// Valid and invalid texts in roughly the proportion users type them.
const std::vector<std::u16string> &DateTexts()
{
    static const std::vector<std::u16string> texts{u"2013-01-01",
                                                   u"2013-01-01T12:59:59",
                                                   u"2013-01-01T12:59:59+05:30",
                                                   u"2013-01-01T12:59:59.123Z",
                                                   u"2013/04/30",
                                                   u"2013",
                                                   u"2013-12",
                                                   u"2012-02-29T23:59",
                                                   u"2013-02-29",
                                                   u"2013-01-01T24:01:01",
                                                   u"20131212",
                                                   u"2013-01-01 GMT",
                                                   u"aaaaaaaaaa",
                                                   u"2013-01-01T01:01:01.0000000001",
                                                   u"1999-12-31T23:59:59-08:00",
                                                   u"2000-06-15T08:30:00.5+01:00"};
    return texts;
}

void BM_ParseDateTimeStr(benchmark::State &state)
{
    const auto &texts = DateTexts();
    kivmetadata::XMP_DateTime record;
    for (auto _ : state) {
        for (auto const &text : texts)
            benchmark::DoNotOptimize(kivmetadataui::ParseDateTimeStr(text, record));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long>(texts.size()));
}
BENCHMARK(BM_ParseDateTimeStr);

void BM_Reference_QDateTimeFromIsoString(benchmark::State &state)
{
    std::vector<QString> texts;
    for (auto const &t : DateTexts())
        texts.push_back(QString::fromStdU16String(t));
    for (auto _ : state) {
        for (auto const &text : texts)
            benchmark::DoNotOptimize(QDateTime::fromString(text, Qt::ISODate));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long>(texts.size()));
}
BENCHMARK(BM_Reference_QDateTimeFromIsoString);

const std::vector<std::u16string> &Names()
{
    static const std::vector<std::u16string> names{
        u"goodName123",         u"CreatorContactInfo", u"a1-b.c_d",         u"<>&'",       u"1abc",          u"xmlns",
        u"Caf\u00E9Cr\u00E8me", u"\u65E5\u672C\u8A9E", u"name with blanks", u"dc:subject", u"LocationShown", u"x"};
    return names;
}

std::vector<std::string> Utf8Names()
{
    std::vector<std::string> out;
    for (auto const &n : Names())
        out.push_back(QString::fromStdU16String(n).toStdString());
    return out;
}

void BM_VerifySimpleXMLName(benchmark::State &state)
{
    const auto &names = Names();
    for (auto _ : state) {
        for (auto const &name : names)
            benchmark::DoNotOptimize(kivmetadataui::VerifySimpleXMLName(name));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long>(names.size()));
}
BENCHMARK(BM_VerifySimpleXMLName);

void BM_GenerateXMLNameFromUnicodeString(benchmark::State &state)
{
    const auto &names = Names();
    for (auto _ : state) {
        for (auto const &name : names)
            benchmark::DoNotOptimize(kivmetadataui::GenerateXMLNameFromUnicodeString(name));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long>(names.size()));
}
BENCHMARK(BM_GenerateXMLNameFromUnicodeString);

void BM_Reference_xmlValidateNCName(benchmark::State &state)
{
    const auto names = Utf8Names();
    for (auto _ : state) {
        for (auto const &name : names)
            benchmark::DoNotOptimize(xmlValidateNCName(reinterpret_cast<xmlChar const *>(name.c_str()), 0));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long>(names.size()));
}
BENCHMARK(BM_Reference_xmlValidateNCName);

} // namespace

BENCHMARK_MAIN();
