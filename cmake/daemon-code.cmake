# How the code that goes into lynd and lynd-check is built and linked: small,
# and with no C++ runtime library on the router (libstdc++ is about 0.4 MB of
# flash on an image that does not carry it). The simulator, the tests and the
# benchmarks link the daemon's library too and keep libstdc++ for themselves.

# Without threads, a static local needs no lock; its guard would come from
# libstdc++. Every section apart, so the link keeps only what is called. No
# symbol visible outside the binary unless it says so (g_dgb_lvl): a MIPS
# position-independent binary otherwise lists each one in its dynamic table.
# Without exceptions the unwind tables only serve a debugger's backtrace, and
# cost x86-64 a tenth of lynd; the sanitizers' reports keep them.
function(lynd_daemon_code target)
  target_compile_options(${target} PRIVATE -fno-threadsafe-statics -ffunction-sections -fdata-sections
                         -fvisibility=hidden)
  if(NOT LYND_SANITIZE AND NOT LYND_FUZZ)
    target_compile_options(${target} PRIVATE -fno-asynchronous-unwind-tables -fno-unwind-tables)
  endif()
  if(LYND_LTO)
    target_compile_options(${target} PRIVATE -flto -ffat-lto-objects)
  endif()
endfunction()

# Link-time optimisation takes a tenth off lynd (MinSizeRel builds it so). The
# objects keep their plain code as well: the simulator and the tests link them
# without it, and the runtime check reads their symbols.
if(CMAKE_BUILD_TYPE STREQUAL "MinSizeRel" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set(lynd_lto_default ON)
else()
  set(lynd_lto_default OFF)
endif()
option(LYND_LTO "Link lynd and lynd-check with link-time optimisation (GCC)" ${lynd_lto_default})

# The runtime pieces the daemon uses (operator new and delete, the pure virtual
# trap), linked by the two executables only: tests and sanitizers keep the
# library's, which the sanitizers replace with their own checking ones. An
# object, not an archive, so the link takes it whatever the order of libraries.
add_library(lynd_runtime OBJECT ${CMAKE_SOURCE_DIR}/src/platform/cxx_runtime.cpp)
lynd_daemon_code(lynd_runtime)

# A sanitizer's runtime needs libstdc++ itself, so a sanitized build links the
# usual way. Otherwise the C driver links, which adds no libstdc++ (CMake would,
# unless told not to): a symbol of it that slipped in fails the link.
if(LYND_SANITIZE OR LYND_FUZZ)
  set(LYND_LEAN_LINK OFF)
else()
  set(LYND_LEAN_LINK ON)
  list(REMOVE_ITEM CMAKE_CXX_IMPLICIT_LINK_LIBRARIES stdc++ supc++)
endif()

function(lynd_daemon_executable target)
  lynd_daemon_code(${target})
  target_link_options(${target} PRIVATE -Wl,--gc-sections $<$<BOOL:${LYND_LTO}>:-flto>)
  if(LYND_LEAN_LINK)
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:lynd_runtime>)
    set_target_properties(${target} PROPERTIES LINKER_LANGUAGE C)
  endif()
endfunction()
