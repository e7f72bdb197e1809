# What the toolchain files of all machines share; each sets TRIPLET and EMULATOR before it gets
# here. Debian's cross compilers (g++-TRIPLET) build, its qemu-user runs the result in tests.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${TRIPLET}-g++)
set(CMAKE_STRIP ${TRIPLET}-strip)

# Nothing of this machine's libraries and headers is found by chance.
set(CMAKE_FIND_ROOT_PATH /usr/${TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR ${EMULATOR} -L /usr/${TRIPLET})
