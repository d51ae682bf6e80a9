#include <kivui/OS_ResourceManager.h>

#include <kivcore/Assert.h>

#include "resources/ResourcesLogging_p.h"

#include <QFile>
#include <QFileInfo>

#include <dlfcn.h>

namespace kivui::utility {

OS_ResourceManager::OS_ResourceManager(ModuleHandle const &module)
    : mPrefix(module ? PrefixForModuleFile(module.filePath) : QString())
{
    qCDebug(lcKivUiResources) << "resources of" << module.filePath.c_str() << "under" << mPrefix;
}

OS_ResourceManager::OS_ResourceManager(QString prefix) : mPrefix(std::move(prefix))
{
    if (!mPrefix.isEmpty() && !mPrefix.endsWith(QLatin1Char('/'))) mPrefix += QLatin1Char('/');
}

OS_ResourceManager::~OS_ResourceManager() = default;

ModuleHandle OS_ResourceManager::ModuleFromAddress(void const *address)
{
    // dladdr neither loads the module nor changes its reference count.
    Dl_info info{};
    int const result = address ? dladdr(address, &info) : 0;
    void *const hmodule = result ? info.dli_fbase : nullptr;
    KIV_ASSERT("kivui/resources/OS_ResourceManager", "kivui::utility::OS_ResourceManager::ModuleFromAddress",
               result && hmodule);
    if (!result || !hmodule || !info.dli_fname) return {};
    return ModuleHandle{hmodule, info.dli_fname};
}

QString OS_ResourceManager::PrefixForModuleFile(std::string const &filePath)
{
    QString name = QFileInfo(QString::fromStdString(filePath)).fileName();
    if (name.startsWith(QLatin1String("lib"))) name = name.mid(3);
    int const so = name.indexOf(QLatin1String(".so"));
    if (so > 0)
        name.truncate(so);
    else if (name.endsWith(QLatin1String(".dylib"), Qt::CaseInsensitive))
        name.chop(6);
    else if (name.endsWith(QLatin1String(".dll"), Qt::CaseInsensitive) ||
             name.endsWith(QLatin1String(".exe"), Qt::CaseInsensitive))
        name.chop(4);
    if (name.isEmpty()) return {};
    return QStringLiteral(":/") + name + QLatin1Char('/');
}

QString const &OS_ResourceManager::GetPrefix() const
{
    return mPrefix;
}

QByteArray OS_ResourceManager::GetResourceData(std::string_view relativePath) const
{
    if (mPrefix.isEmpty()) return {};
    QFile file(mPrefix + QString::fromUtf8(relativePath.data(), static_cast<qsizetype>(relativePath.size())));
    if (!file.open(QIODevice::ReadOnly)) return {};
    return file.readAll();
}

bool OS_ResourceManager::HasResource(std::string_view relativePath) const
{
    if (mPrefix.isEmpty()) return false;
    return QFileInfo::exists(mPrefix +
                             QString::fromUtf8(relativePath.data(), static_cast<qsizetype>(relativePath.size())));
}

} // namespace kivui::utility
