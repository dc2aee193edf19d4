/* Everything a caller of nls needs, in reading order. Valid C11 and C++20. */
#ifndef NLS_NLS_H
#define NLS_NLS_H

/* What everything starts from: linkage, statuses, records. */
#include "nls/base.h"
#include "nls/status.h"

#include "nls/records.h"

/* Text under a locale. */
#include "nls/chars.h"
#include "nls/convert.h"
#include "nls/strings.h"

/* What the conversions between Unicode forms come down to; an ordinary caller converts through a conversion object. */
#include "nls/transforms.h"

#endif
