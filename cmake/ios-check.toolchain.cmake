# Cross-compiles for arm64-apple-ios14.0 on Linux with clang 14, without an
# Apple SDK: libc++'s headers from Debian's libc++-14-dev and glibc's arm64
# headers stand in for the SDK's C and C++ libraries, and
# platform/ios/check-sdk declares the Apple interfaces. The link is the one of
# the ios-sdk build, against stubs made from the declaration set; it proves
# that the sources compile and link for the target, not that they run.
include(${CMAKE_CURRENT_LIST_DIR}/ios-target.cmake)

execute_process(COMMAND ${QUENBY_CLANGXX} -print-resource-dir
  OUTPUT_VARIABLE quenby_resource_dir OUTPUT_STRIP_TRAILING_WHITESPACE)
set(QUENBY_LIBCXX_INCLUDE /usr/lib/llvm-14/include/c++/v1 CACHE PATH "libc++ headers")
set(QUENBY_ARM64_LIBC_INCLUDE /usr/aarch64-linux-gnu/include CACHE PATH "glibc arm64 headers")

# The Apple target predefines the nullability keywords that glibc uses as
# attribute macros; they are taken back for the check.
set(quenby_flags
  "${QUENBY_TARGET_FLAGS} -nostdinc++ -nostdinc -isystem ${QUENBY_LIBCXX_INCLUDE} -isystem ${quenby_resource_dir}/include"
  "-isystem ${QUENBY_ARM64_LIBC_INCLUDE} -U__nonnull -U__nullable -U__null_unspecified -D_GNU_SOURCE")
string(JOIN " " quenby_flags ${quenby_flags})
set(CMAKE_CXX_FLAGS_INIT "${quenby_flags}")
set(CMAKE_OBJCXX_FLAGS_INIT "${quenby_flags}")
