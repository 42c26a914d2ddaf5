/* vrcw32 imaging library: image files. */
#ifndef VRCW32_ZEP_FILES_H
#define VRCW32_ZEP_FILES_H

#include "vrcw32/zep_core.h"

#endif
