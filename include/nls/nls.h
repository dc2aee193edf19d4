/* Everything a caller of nls needs, in reading order. Valid C11 and C++20. */
#ifndef NLS_NLS_H
#define NLS_NLS_H

/* What everything starts from: linkage, statuses, records. */
#include "nls/base.h"
#include "nls/status.h"

#include "nls/records.h"

/* Opening a data file, and making objects from it. */
#include "nls/handle.h"
#include "nls/objects.h"

/* What a data file, a locale and a conversion offer and need. */
#include "nls/properties.h"

/* Text under a locale, and from one charset to another. */
#include "nls/chars.h"
#include "nls/convert.h"
#include "nls/strings.h"

/* Which of two texts sorts first, and keys that sort the same way. */
#include "nls/compare.h"

/* A collation that a database keeps with its data. */
#include "nls/dbcollation.h"

/* What conversions and comparisons come down to, and what older callers know. An ordinary caller does without. */
#include "nls/collation_routes.h"
#include "nls/dbcs_transforms.h"
#include "nls/icu.h"
#include "nls/inner.h"
#include "nls/transforms.h"

/* For a site that brings its own collation. */
#include "nls/usersort.h"

#endif
