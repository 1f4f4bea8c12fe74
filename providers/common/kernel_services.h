// What the kernel module keeps for the other modules, process-wide.
#ifndef PROVIDERS_COMMON_KERNEL_SERVICES_H
#define PROVIDERS_COMMON_KERNEL_SERVICES_H

#include "bridge/vendor_contract.h"

extern "C" {
// Names the codec libraries in use ("name version, name version"), for L_VersionInfo. The text is
// copied and takes the place of the one before; null and "" name none.
ORVO_VENDOR_API void KernelRegisterCodecs(const char* list);
// The mode last given to L_DefaultDithering, 0 before: for conversions whose caller names none.
ORVO_VENDOR_API unsigned KernelDefaultDithering();
}

#endif  // PROVIDERS_COMMON_KERNEL_SERVICES_H
