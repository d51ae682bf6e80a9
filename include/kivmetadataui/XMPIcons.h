#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <QImage>

namespace kivmetadataui {

// The XMP icon (16 by 16) from the library's images, through the module's
// image provider; null before Initialize. The dark icon is drawn for dark
// backgrounds (the v7 look), the light one for light backgrounds.
KIVMETADATAUI_EXPORT QImage GetXMPIconDark();
KIVMETADATAUI_EXPORT QImage GetXMPIconLight();

enum class PoweredByXMPLogo {
    kStacked, // "PoweredByXMP_72x33": the logo above the words
    kWide,    // "PoweredByXMP_105x15": one line
};
// The powered-by-XMP logo; null before Initialize.
KIVMETADATAUI_EXPORT QImage GetPoweredByXMPImage(PoweredByXMPLogo inLogo);

} // namespace kivmetadataui
