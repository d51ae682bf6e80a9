#include <kivmetadataui/XMPIcons.h>

#include "ModuleResources.h"

#include <kivui/ImageProvider.h>

namespace kivmetadataui {

namespace {

QImage ModuleImage(char const *inName)
{
    kivui::utility::ImageProvider const *provider = module::GetImageProvider();
    return provider ? provider->GetImage(inName) : QImage();
}

} // namespace

QImage GetXMPIconDark()
{
    return ModuleImage("XMPIcon_Dark");
}

QImage GetXMPIconLight()
{
    return ModuleImage("XMPIcon_Light");
}

QImage GetPoweredByXMPImage(PoweredByXMPLogo inLogo)
{
    return ModuleImage(inLogo == PoweredByXMPLogo::kStacked ? "PoweredByXMP_72x33" : "PoweredByXMP_105x15");
}

} // namespace kivmetadataui
