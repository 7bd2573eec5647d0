/** @file
 *  All of BvUtil's interface; the two classes for C++ only.
 */
#ifndef BVUTIL_BVUTIL_H
#define BVUTIL_BVUTIL_H

#include "bvutil/api.h"
#include "bvutil/bitmap_ex.h"
#include "bvutil/calculator.h"
#include "bvutil/env.h"
#include "bvutil/filter_host.h"
#include "bvutil/fio.h"
#include "bvutil/gdi_bitmaps.h"
#include "bvutil/gdiplus_services.h"
#include "bvutil/locations.h"
#include "bvutil/messages.h"
#include "bvutil/mini.h"
#include "bvutil/numeric.h"
#include "bvutil/strings.h"
#include "bvutil/text_exchange.h"
#include "bvutil/triangulation.h"

#ifdef __cplusplus
#include "bvutil/ini_file.h"
#include "bvutil/mat_file.h"
#endif

#endif
