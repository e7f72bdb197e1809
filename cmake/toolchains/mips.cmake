# 32-bit MIPS, big-endian.
set(CMAKE_SYSTEM_PROCESSOR mips)
set(TRIPLET mips-linux-gnu)
set(EMULATOR qemu-mips)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
