// How many allocations a benchmark makes.
#ifndef MARLUNE_BENCH_FLIMEMORY_ALLOCATIONS_H
#define MARLUNE_BENCH_FLIMEMORY_ALLOCATIONS_H

#include <cstddef>

/// How often this program has called operator new.
extern std::size_t g_Allocations;

#endif
