# What makes a fault in memory handling harder to use against the user, in optimised builds: checked library calls,
# guarded stacks, addresses that cannot be foretold, and tables of addresses that are read-only once the program runs.
# scripts/check_hardening.sh looks whether a built program has it all.
include(CheckPIESupported)
check_pie_supported()
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

set(optimised $<AND:$<NOT:$<CONFIG:Debug>>,$<NOT:$<BOOL:${BRENLOW_SANITIZE}>>>)
target_compile_options(brenlow_options INTERFACE
                       $<${optimised}:-U_FORTIFY_SOURCE> $<${optimised}:-D_FORTIFY_SOURCE=2>
                       $<${optimised}:-fstack-protector-strong>)
if(NOT APPLE)  # whose linker does both without being asked
  target_link_options(brenlow_options INTERFACE LINKER:-z,relro LINKER:-z,now)
endif()
