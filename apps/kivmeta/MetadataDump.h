#pragma once

#include <QStringList>

namespace kivmetadata {
class XMPMeta;
}

namespace kivmeta {

// Every simple value and qualifier of `meta` as one "PREFIX:Path=value" line
// (array items "dc:subject[1]=...", struct fields
// "Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiAdrCity=..."), sorted.
// Backslashes and line breaks in values are escaped as \\, \n and \r so that
// each property stays on one line.
QStringList DumpLines(kivmetadata::XMPMeta const &meta);

} // namespace kivmeta
