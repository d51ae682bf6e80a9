#include "MetadataDump.h"

#include <kivmetadata/XMPMeta.h>

#include <algorithm>

namespace kivmeta {

namespace {

QString Escaped(std::string const &value)
{
    QString text = QString::fromStdString(value);
    text.replace(u'\\', QStringLiteral("\\\\"));
    text.replace(u'\n', QStringLiteral("\\n"));
    text.replace(u'\r', QStringLiteral("\\r"));
    return text;
}

// Orders digit runs by their number, so that "dc:subject[2]" comes before
// "dc:subject[10]"; everything else compares by code point, independent of
// the locale.
bool NaturalLess(QString const &a, QString const &b)
{
    qsizetype i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        if (a[i].isDigit() && b[j].isDigit()) {
            qsizetype si = i, sj = j;
            while (i < a.size() && a[i].isDigit())
                ++i;
            while (j < b.size() && b[j].isDigit())
                ++j;
            QStringView na = QStringView(a).mid(si, i - si), nb = QStringView(b).mid(sj, j - sj);
            while (na.size() > 1 && na.front() == u'0')
                na = na.mid(1);
            while (nb.size() > 1 && nb.front() == u'0')
                nb = nb.mid(1);
            if (na.size() != nb.size()) return na.size() < nb.size();
            if (int c = na.compare(nb); c != 0) return c < 0;
            continue;
        }
        if (a[i] != b[j]) return a[i] < b[j];
        ++i;
        ++j;
    }
    return (a.size() - i) < (b.size() - j);
}

} // namespace

QStringList DumpLines(kivmetadata::XMPMeta const &meta)
{
    using kivmetadata::XMPMeta;
    QStringList lines;
    meta.Iterate([&lines](XMPMeta::Node const &node) {
        if ((node.mOptions & XMPMeta::kPropIsSchemaNode) || node.mPath.empty()) return true;
        if (node.mOptions & XMPMeta::kPropCompositeMask) return true;
        lines << QString::fromStdString(node.mPath) + u'=' + Escaped(node.mValue);
        return true;
    });
    std::sort(lines.begin(), lines.end(), NaturalLess);
    return lines;
}

} // namespace kivmeta
