/* vrcw32 imaging library: colour maps and pixel-format conversion. */
#ifndef VRCW32_ZEP_CONVERT_H
#define VRCW32_ZEP_CONVERT_H

#include "vrcw32/zep_core.h"

#endif
