# Cross build with a Debian cross compiler, run under qemu-user. Set by
# tools/cross-test:
#   LYND_CROSS_TRIPLET  the GNU type (arm-linux-gnueabihf, s390x-linux-gnu...)
#   LYND_CROSS_CPU      its CPU as qemu names it (arm, mipsel, s390x...)
#   LYND_CROSS_SYSROOT  the target's libraries, unpacked from Debian packages
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES LYND_CROSS_TRIPLET LYND_CROSS_CPU LYND_CROSS_SYSROOT)

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${LYND_CROSS_CPU})
set(CMAKE_C_COMPILER ${LYND_CROSS_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${LYND_CROSS_TRIPLET}-g++)

# The compiler brings the C library; everything else comes from the sysroot
# and the roots given on the command line (the OpenWrt libraries that
# tools/build-openwrt-libs built), never from the host.
list(APPEND CMAKE_FIND_ROOT_PATH ${LYND_CROSS_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${LYND_CROSS_SYSROOT}/usr/lib/${LYND_CROSS_TRIPLET}/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${LYND_CROSS_SYSROOT})

# A misaligned load traps on MIPS and costs a kernel fix-up elsewhere.
set(CMAKE_C_FLAGS_INIT "-Werror=cast-align -Wcast-align=strict -Wno-psabi")
set(CMAKE_CXX_FLAGS_INIT "-Werror=cast-align -Wcast-align=strict -Wno-psabi")

# Tests and test discovery run the target's binaries through qemu-user, with
# the compiler's C library and the sysroot's shared libraries.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${LYND_CROSS_CPU} -L /usr/${LYND_CROSS_TRIPLET} -E
    LD_LIBRARY_PATH=${LYND_CROSS_SYSROOT}/lib/${LYND_CROSS_TRIPLET}:${LYND_CROSS_SYSROOT}/usr/lib/${LYND_CROSS_TRIPLET})
