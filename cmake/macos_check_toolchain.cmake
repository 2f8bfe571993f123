# Builds for macOS on a machine without an Apple SDK, to check that it can be built; script/check-macos is its user.
# ORVANE_CHECK_ARCHITECTURE is arm64 or x86_64; ORVANE_CHECK_TOOLS is a directory with the compiler for it as cc and
# c++, and with ar and ranlib.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 22)
set(CMAKE_SYSTEM_PROCESSOR ${ORVANE_CHECK_ARCHITECTURE})
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ORVANE_CHECK_ARCHITECTURE ORVANE_CHECK_TOOLS)

set(CMAKE_C_COMPILER ${ORVANE_CHECK_TOOLS}/cc)
set(CMAKE_CXX_COMPILER ${ORVANE_CHECK_TOOLS}/c++)
set(CMAKE_OBJCXX_COMPILER ${ORVANE_CHECK_TOOLS}/c++)
set(CMAKE_AR ${ORVANE_CHECK_TOOLS}/ar)
set(CMAKE_RANLIB ${ORVANE_CHECK_TOOLS}/ranlib)
# CMake refuses the platform without one.
set(CMAKE_INSTALL_NAME_TOOL /usr/bin/llvm-install-name-tool-14)
# Neither exists here, and the compilers name their target themselves.
set(CMAKE_OSX_SYSROOT "" CACHE STRING "")
set(CMAKE_OSX_DEPLOYMENT_TARGET "" CACHE STRING "")

# Linking a trial program would build the C++ library once more, for the trial's options.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

set(stubs ${CMAKE_CURRENT_LIST_DIR}/../tests/macos/stubs)
# The compiler hands itself an -ObjC++ that it then calls unused.
set(CMAKE_OBJCXX_FLAGS_INIT "-isystem ${stubs}/include -Wno-unused-command-line-argument")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-F ${stubs}/Frameworks -L ${stubs}/lib")
