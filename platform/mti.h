/* The calls of the simulator's Foreign Language Interface that this library makes.
 *
 * Names, types and layouts agree with the header that comes with the simulator, which can be used instead
 * (CMake: MARLUNE_FLI_INCLUDE_DIR). Sizes are those of the machine's C ABI. */
#ifndef MARLUNE_PLATFORM_MTI_H
#define MARLUNE_PLATFORM_MTI_H

#include <stdint.h> // NOLINT(modernize-deprecated-headers): a C header

#ifdef __cplusplus
extern "C" {
#endif

// NOLINTBEGIN(modernize-use-using, modernize-redundant-void-arg, bugprone-reserved-identifier): a C header

typedef struct mtiDriverIdTag* mtiDriverIdT;
typedef struct mtiProcessIdTag* mtiProcessIdT;
typedef struct mtiRegionIdTag* mtiRegionIdT;
typedef struct mtiSignalIdTag* mtiSignalIdT;
typedef struct mtiTypeIdTag* mtiTypeIdT;
typedef struct mtiVariableIdTag* mtiVariableIdT;

typedef int mtiInt32T;
typedef unsigned int mtiUInt32T;
typedef long mtiLongT;
typedef mtiInt32T mtiDelayT;
typedef int64_t mtiTime64T;
typedef void (*mtiVoidFuncPtrT)(void*);

typedef enum mtiTypeKindEnum_ {
    MTI_TYPE_SCALAR = 0,
    MTI_TYPE_ARRAY = 1,
    MTI_TYPE_RECORD = 2,
    MTI_TYPE_ENUM = 3,
    MTI_TYPE_INTEGER = 4,
    MTI_TYPE_PHYSICAL = 5,
    MTI_TYPE_REAL = 6,
    MTI_TYPE_ACCESS = 7,
    MTI_TYPE_FILE = 8,
    MTI_TYPE_TIME = 9
} mtiTypeKindT;

typedef enum mtiDirectionEnum_ { MTI_INTERNAL = 0, MTI_DIR_IN = 1, MTI_DIR_OUT = 2, MTI_DIR_INOUT = 3 } mtiDirectionT;

typedef enum mtiProcessTriggerEnum_ { MTI_ACTIVE = 0, MTI_EVENT = 1 } mtiProcessTriggerT;

typedef enum mtiDriverModeEnum_ { MTI_INERTIAL = 0, MTI_TRANSPORT = 1 } mtiDriverModeT;

/* One entry of the list of generics or ports of an instance; a port entry uses u.port. */
typedef struct mtiInterfaceListStruct_ mtiInterfaceListT;
struct mtiInterfaceListStruct_ {
    char* name;
    mtiTypeIdT type;
    mtiDirectionT port_dir;
    union mtiGenericValUnion_ {
        mtiInt32T generic_value;
        double generic_value_real;
        mtiTime64T generic_value_time;
        void* generic_array_value;
        mtiVariableIdT generic_record_varid;
        mtiSignalIdT port;
    } u;
    mtiInterfaceListT* nxt;
};

mtiSignalIdT mti_FindPort(mtiInterfaceListT* ports, char* name);
char* mti_GetRegionFullName(mtiRegionIdT region); /* free with mti_VsimFree */
void mti_VsimFree(void* memory);

mtiProcessIdT mti_CreateProcess(char* name, mtiVoidFuncPtrT function, void* argument);
void mti_Sensitize(mtiProcessIdT process, mtiSignalIdT signal, mtiProcessTriggerT trigger);
mtiDriverIdT mti_CreateDriver(mtiSignalIdT signal);
void mti_SetDriverOwner(mtiDriverIdT driver, mtiProcessIdT process);
mtiInt32T mti_Now(void);
void mti_AddQuitCB(mtiVoidFuncPtrT function, void* argument);
void mti_AddRestartCB(mtiVoidFuncPtrT function, void* argument);

mtiTypeIdT mti_GetSignalType(mtiSignalIdT signal);
mtiTypeKindT mti_GetTypeKind(mtiTypeIdT type);
mtiTypeIdT mti_GetArrayElementType(mtiTypeIdT type);
mtiInt32T mti_TickLength(mtiTypeIdT type);
char* mti_GetSignalName(mtiSignalIdT signal);
mtiInt32T mti_GetSignalValue(mtiSignalIdT signal);
/* One byte per element; for a null buffer the simulator allocates one (free with mti_VsimFree). */
void* mti_GetArraySignalValue(mtiSignalIdT signal, void* buffer);
/* The value is an enumeration position, or the address of an array of them. */
void mti_SetSignalValue(mtiSignalIdT signal, mtiLongT value);
void mti_ScheduleDriver(mtiDriverIdT driver, mtiLongT value, mtiDelayT delay, mtiDriverModeT mode);

void mti_PrintFormatted(const char* format, ...);
void mti_Command(const char* command);
void mti_FatalError(void);

// NOLINTEND(modernize-use-using, modernize-redundant-void-arg, bugprone-reserved-identifier)

#ifdef __cplusplus
}
#endif

#endif
