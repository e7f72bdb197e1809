# 64-bit z/Architecture, big-endian.
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(TRIPLET s390x-linux-gnu)
set(EMULATOR qemu-s390x)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
