# What the two Linux-capable iOS builds share: clang cross-compiling for
# arm64-apple-ios14.0 with the platform left generic, so that CMake looks for
# no Xcode; the dylib is linked by hand (platform/ios/CMakeLists.txt).
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR arm64)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

find_program(QUENBY_CLANGXX NAMES clang++-14 clang++ REQUIRED)
set(CMAKE_CXX_COMPILER ${QUENBY_CLANGXX})
set(CMAKE_OBJCXX_COMPILER ${QUENBY_CLANGXX})
set(CMAKE_CXX_COMPILER_TARGET arm64-apple-ios14.0)
set(CMAKE_OBJCXX_COMPILER_TARGET arm64-apple-ios14.0)
# libc++, as on Apple's platforms: Debian's clang otherwise sets Objective-C++
# ARC up for libstdc++.
set(QUENBY_TARGET_FLAGS "-stdlib=libc++")
