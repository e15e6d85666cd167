#pragma once

// The whole library.

#include "aq/core/collection.h"
#include "aq/core/enumerations.h"
#include "aq/core/error.h"
#include "aq/core/file_failure.h"
#include "aq/core/file_information.h"
#include "aq/core/time.h"
#include "aq/core/variant.h"
#include "aq/files/data_ascii.h"
#include "aq/files/data_sth.h"
#include "aq/files/header_sth.h"
#include "aq/masking/data_mask.h"
#include "aq/masking/header_mask.h"
#include "aq/masking/mask.h"
#include "aq/masking/mask_map.h"
#include "aq/masking/mask_row.h"
#include "aq/spectral/band.h"
#include "aq/spectral/metric.h"
#include "aq/spectral/metric_summary.h"
#include "aq/spectral/spectral_time_history.h"
#include "aq/spectral/spectrum.h"
