/* The calls and constants of the Verilog procedural interface (IEEE 1364 and 1800) that the bridge uses.
 *
 * Names, values and layouts are those of the standard's vpi_user.h. */
#ifndef MARLUNE_BRIDGE_VPI_VPI_H
#define MARLUNE_BRIDGE_VPI_VPI_H

#include <cstdint>

extern "C" {

using PLI_INT32 = std::int32_t;
using PLI_UINT32 = std::uint32_t;
using PLI_BYTE8 = char;

struct t_vpi_object; // never defined: only a handle's type
using vpiHandle = t_vpi_object*;

enum : PLI_INT32 { // kinds of objects
    vpiConstant = 7,
    vpiIntegerVar = 25,
    vpiMemoryWord = 30,
    vpiModule = 32,
    vpiNet = 36,
    vpiParameter = 41,
    vpiPort = 44,
    vpiRealVar = 47,
    vpiReg = 48,
    vpiSysTfCall = 85,
    vpiArgument = 89,
    vpiInternalScope = 92,
    vpiGenScope = 134,
    vpiLongIntVar = 610,
    vpiShortIntVar = 611,
    vpiIntVar = 612,
    vpiByteVar = 614,
    vpiStringVar = 616,
    vpiBitVar = 620
};

enum : PLI_INT32 { // properties
    vpiType = 1,
    vpiName = 2,
    vpiFullName = 3,
    vpiSize = 4,
    vpiFile = 5,
    vpiLineNo = 6,
    vpiVector = 18,
    vpiDirection = 20,
    vpiConstType = 40
};

enum : PLI_INT32 { vpiRealConst = 2 }; // a kind of constant

enum : PLI_INT32 { // directions of ports
    vpiInput = 1,
    vpiOutput = 2,
    vpiInout = 3
};

enum : PLI_INT32 { // kinds of time, formats of values, kinds of assignments
    vpiSimTime = 2,
    vpiSuppressTime = 3,
    vpiBinStrVal = 1,
    vpiIntVal = 6,
    vpiStringVal = 8,
    vpiVectorVal = 9,
    vpiSuppressVal = 13,
    vpiNoDelay = 1
};

enum : PLI_INT32 { // reasons for callbacks
    cbValueChange = 1,
    cbReadWriteSynch = 6,
    cbAfterDelay = 9,
    cbStartOfSimulation = 11,
    cbEndOfSimulation = 12
};

struct t_vpi_time {
    PLI_INT32 type;
    PLI_UINT32 high, low;
    double real;
};

struct t_vpi_vecval; // in svdpi.h

struct t_vpi_value {
    PLI_INT32 format;
    union {
        PLI_BYTE8* str;
        PLI_INT32 scalar;
        PLI_INT32 integer;
        double real;
        t_vpi_vecval* vector;
        void* structure; // of time or of strengths
    } value;
};

struct t_cb_data {
    PLI_INT32 reason;
    PLI_INT32 (*cb_rtn)(t_cb_data*);
    vpiHandle obj;
    t_vpi_time* time;
    t_vpi_value* value;
    PLI_INT32 index;
    PLI_BYTE8* user_data;
};

enum : PLI_INT32 { vpiSysTask = 1 };

struct t_vpi_systf_data {
    PLI_INT32 type;
    PLI_INT32 sysfunctype;
    const PLI_BYTE8* tfname;
    PLI_INT32 (*calltf)(PLI_BYTE8*);
    PLI_INT32 (*compiletf)(PLI_BYTE8*);
    PLI_INT32 (*sizetf)(PLI_BYTE8*);
    PLI_BYTE8* user_data;
};

struct t_vpi_vlog_info {
    PLI_INT32 argc;
    PLI_BYTE8** argv;
    PLI_BYTE8* product;
    PLI_BYTE8* version;
};

// Weak, because a program that calls this library directly has none of these.
[[gnu::weak]] vpiHandle vpi_register_cb(t_cb_data* data);
[[gnu::weak]] vpiHandle vpi_register_systf(t_vpi_systf_data* data);
[[gnu::weak]] vpiHandle vpi_handle(PLI_INT32 type, vpiHandle reference);
[[gnu::weak]] vpiHandle vpi_iterate(PLI_INT32 type, vpiHandle reference);
[[gnu::weak]] vpiHandle vpi_scan(vpiHandle iterator);
[[gnu::weak]] PLI_INT32 vpi_free_object(vpiHandle object);
[[gnu::weak]] PLI_INT32 vpi_get(PLI_INT32 property, vpiHandle object);
[[gnu::weak]] PLI_BYTE8* vpi_get_str(PLI_INT32 property, vpiHandle object);
[[gnu::weak]] void vpi_get_value(vpiHandle object, t_vpi_value* value);
[[gnu::weak]] vpiHandle vpi_put_value(vpiHandle object, t_vpi_value* value, t_vpi_time* time, PLI_INT32 flags);
[[gnu::weak]] void vpi_get_time(vpiHandle object, t_vpi_time* time);
[[gnu::weak]] PLI_INT32 vpi_get_vlog_info(t_vpi_vlog_info* info);
[[gnu::weak]] PLI_INT32 vpi_printf(PLI_BYTE8* format, ...);
}

#endif
