/*
 * vrcw32 imaging library: the public C API (C99 and C++).
 * One header per subsystem; this one includes them all.
 */
#ifndef VRCW32_ZEP_H
#define VRCW32_ZEP_H

#include "vrcw32/zep_convert.h"
#include "vrcw32/zep_core.h"
#include "vrcw32/zep_files.h"
#include "vrcw32/zep_jpeg.h"
#include "vrcw32/zep_jpeg_files.h"
#include "vrcw32/zep_process.h"
#include "vrcw32/zep_mjpeg.h"
#include "vrcw32/zep_mraw.h"

#endif
