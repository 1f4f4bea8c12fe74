# Files come from anywhere, so what reads them is built to stop where it is led astray: guarded
# stacks, checked copies, marked jump targets, and tables of addresses that are read-only once the
# program runs. Sanitizers do the same work better and do not go with it.
include(CheckCXXCompilerFlag)

add_library(orvo_hardening INTERFACE)
target_compile_options(orvo_hardening INTERFACE -fstack-protector-strong)
check_cxx_compiler_flag(-fcf-protection ORVO_HAS_CF_PROTECTION)
if(ORVO_HAS_CF_PROTECTION)
  target_compile_options(orvo_hardening INTERFACE -fcf-protection)
endif()
# The checks of copies need to be optimised.
target_compile_options(orvo_hardening INTERFACE
  "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
if(UNIX AND NOT APPLE)
  target_link_options(orvo_hardening INTERFACE LINKER:-z,relro,-z,now)
endif()
