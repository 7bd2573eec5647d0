/** @file
 *  All of BvUtil's C interface.
 */
#ifndef BVUTIL_BVUTIL_H
#define BVUTIL_BVUTIL_H

#include "bvutil/api.h"
#include "bvutil/env.h"
#include "bvutil/filter_host.h"
#include "bvutil/messages.h"
#include "bvutil/strings.h"

#endif
