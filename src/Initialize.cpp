#include <kivmetadataui/Initialize.h>

#include "ModuleResources.h"

#include <kivmetadataui/ControlCreator.h>

#include <kivcore/Assert.h>
#include <kivcore/Localizer.h>
#include <kivcore/Version.h>
#include <kivmetadata/Initialize.h>
#include <kivui/DrawbotImageResourceCache.h>
#include <kivui/ImageProvider.h>
#include <kivui/OS_ResourceManager.h>

#include <QFile>

#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace kivmetadataui {
namespace {

using kivui::utility::DrawbotImageResourceCache;
using kivui::utility::ImageProvider;
using kivui::utility::OS_ResourceManager;

std::int32_t sInitializationCount = 0;
ControlCreator sControlCreator;
std::unique_ptr<OS_ResourceManager> sResourceManager;
std::unique_ptr<DrawbotImageResourceCache> sImageResourceCache;
std::unique_ptr<ImageProvider> sImageProvider;

// A function that surely lives in this library (not a PLT stub of the
// program), so that its address names our own module.
void ModuleAnchor() {}

constexpr char16_t kDictionaryFolder[] = u":/kivmetadataui/locales";

// Clears the slot first and destroys the object afterwards, so that nothing
// met during destruction finds a dangling pointer.
template <typename T> void Release(std::unique_ptr<T> &slot)
{
    std::unique_ptr<T> doomed = std::move(slot);
    slot = nullptr;
    doomed.reset();
}

} // namespace

void Initialize()
{
    if (++sInitializationCount != 1) return;
    kivmetadata::Initialize();
    kivcore::config::Localizer::AddDictionaryFolder(kDictionaryFolder);

    const auto module = OS_ResourceManager::ModuleFromAddress(reinterpret_cast<void const *>(&ModuleAnchor));
    std::unique_ptr<OS_ResourceManager> fresh;
    try {
        fresh = module ? std::make_unique<OS_ResourceManager>(module)
                       : std::make_unique<OS_ResourceManager>(QStringLiteral(":/kivmetadataui/"));
    } catch (std::bad_alloc const &) {
        // Users of the resource manager treat null as "no resources".
    }
    std::unique_ptr<OS_ResourceManager> old = std::exchange(sResourceManager, std::move(fresh));
    old.reset();
}

void Terminate()
{
    // Not guarded against going below zero: an unmatched Terminate makes the
    // next Initialize a no-op too, as only the step to exactly 1 starts.
    if (--sInitializationCount != 0) return;
    if (sControlCreator) {
        ControlCreator doomed = std::exchange(sControlCreator, ControlCreator());
    }
    Release(sImageProvider);
    Release(sResourceManager);
    Release(sImageResourceCache);
    kivmetadata::Terminate();
}

char const *Version()
{
    return kivcore::Version();
}

void RegisterControlCreator(ControlCreator creator)
{
    ControlCreator previous = std::exchange(sControlCreator, std::move(creator));
    creator = nullptr;
    // `previous` is destroyed here, after the new creator is in place.
}

ControlCreator RegisteredControlCreator()
{
    KIV_ASSERT("src/Initialize", "kivmetadataui::RegisteredControlCreator", sInitializationCount >= 1);
    return sControlCreator;
}

namespace module {

OS_ResourceManager *GetResourceManager()
{
    return sResourceManager.get();
}

DrawbotImageResourceCache *GetImageResourceCache()
{
    if (!sImageResourceCache) {
        try {
            sImageResourceCache = std::make_unique<DrawbotImageResourceCache>();
        } catch (std::bad_alloc const &) {
        }
    }
    return sImageResourceCache.get();
}

ImageProvider *GetImageProvider()
{
    if (!sImageProvider) {
        DrawbotImageResourceCache *cache = GetImageResourceCache();
        try {
            sImageProvider = std::make_unique<ImageProvider>(sResourceManager.get(), nullptr, cache);
        } catch (std::bad_alloc const &) {
        }
    }
    return sImageProvider.get();
}

std::int32_t GetInitializationCount()
{
    return sInitializationCount;
}

std::string ReadStyleSheet(char const *inResourcePath)
{
    QFile file(QString::fromUtf8(inResourcePath));
    bool const opened = file.open(QIODevice::ReadOnly | QIODevice::Text);
    KIV_ASSERT("src/Initialize", "kivmetadataui::module::ReadStyleSheet", opened);
    if (!opened) return {};
    return file.readAll().toStdString();
}

} // namespace module
} // namespace kivmetadataui
