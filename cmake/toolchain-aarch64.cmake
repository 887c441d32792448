# Cross-builds for AArch64 on a Debian machine of another architecture. The target's libraries are the arm64 packages
# of the same release, installed beside the machine's own; moc, rcc and uic are the machine's own.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)

set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

# Lets CTest run the tests; the arm64 loader and libraries are found at their ordinary places.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64-static)
