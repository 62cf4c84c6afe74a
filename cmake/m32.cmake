# 32-bit programs on a 64-bit machine: g++-12-multilib, with the libraries of the architecture i386.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_CXX_COMPILER g++-12)

# The kernel's headers exist for the machine's own architecture only and are the same ones for both.
set(CMAKE_CXX_FLAGS_INIT "-m32 -idirafter /usr/include/x86_64-linux-gnu")

set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/i386-linux-gnu/pkgconfig:/usr/share/pkgconfig)

# What is built runs on this machine; where its kernel runs no 32-bit programs, by an emulator.
execute_process(COMMAND /lib/ld-linux.so.2 --version RESULT_VARIABLE refused OUTPUT_QUIET ERROR_QUIET)
if(refused)
  set(CMAKE_CROSSCOMPILING_EMULATOR qemu-i386)
else()
  set(CMAKE_CROSSCOMPILING_EMULATOR env)
endif()
