# 32 bit ARM with hardware floating point, otherwise as arm64.cmake. Time is 64 bits wide,
# so that the boards log the right date after 2038.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_CXX_FLAGS_INIT "-D_FILE_OFFSET_BITS=64 -D_TIME_BITS=64 -Wno-psabi")
