/* The calls of the SystemVerilog direct programming interface that this library makes.
 *
 * Names, types and layouts agree with the standard header, which can be used instead
 * (CMake: MARLUNE_SVDPI_INCLUDE_DIR). */
#ifndef MARLUNE_PLATFORM_SVDPI_H
#define MARLUNE_PLATFORM_SVDPI_H

#include <stdint.h> // NOLINT(modernize-deprecated-headers): a C header

#ifdef __cplusplus
extern "C" {
#endif

// NOLINTBEGIN(modernize-use-using): a C header

#define sv_0 0
#define sv_1 1
#define sv_z 2
#define sv_x 3

typedef unsigned char svLogic;

/* 32 bits of a four-state vector, value and control bits: 0 is 00, 1 is 10, z is 01, x is 11 (aval, bval). */
typedef struct t_vpi_vecval {
    uint32_t aval;
    uint32_t bval;
} s_vpi_vecval;
typedef s_vpi_vecval svLogicVecVal;

svLogic svGetBitselLogic(const svLogicVecVal* vector, int bit);
void svPutBitselLogic(svLogicVecVal* vector, int bit, svLogic value);

// NOLINTEND(modernize-use-using)

#ifdef __cplusplus
}
#endif

#endif
