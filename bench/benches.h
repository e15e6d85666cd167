#pragma once

#include <aq/aq.h>

namespace bench {

/// Gives the memory that a history of 32,767 records holds after it was read, in MiB.
double addHistories();
void addMaps();
void addPositions();
void addDelimited();

}  // namespace bench
