#pragma once
// Everything kivcore exports.
#include <kivcore/Assert.h>
#include <kivcore/Exceptions.h>
#include <kivcore/FileUtils.h>
#include <kivcore/Flags.h>
#include <kivcore/Geometry.h>
#include <kivcore/Guid.h>
#include <kivcore/Localizer.h>
#include <kivcore/RefCounted.h>
#include <kivcore/StringUtils.h>
#include <kivcore/Version.h>
