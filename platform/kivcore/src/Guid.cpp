#include <kivcore/Guid.h>

#include <QUuid>

#include <algorithm>

namespace kivcore::utility {

Guid Guid::CreateUnique()
{
    Guid g;
    const QByteArray raw = QUuid::createUuid().toRfc4122();
    std::copy_n(reinterpret_cast<std::uint8_t const *>(raw.constData()), 16, g.mBytes.begin());
    return g;
}

std::string Guid::AsString() const
{
    const QByteArray raw(reinterpret_cast<char const *>(mBytes.data()), 16);
    return QUuid::fromRfc4122(raw).toString(QUuid::WithoutBraces).toStdString();
}

bool Guid::IsNull() const
{
    return std::all_of(mBytes.begin(), mBytes.end(), [](std::uint8_t b) { return b == 0; });
}

} // namespace kivcore::utility
