# 64 bit ARM, with Debian's cross compiler and its multiarch libraries. What is built runs
# here too where qemu's user emulation is registered with the kernel (qemu-user-static and
# binfmt-support).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
