# Cross-compiles for arm64-apple-ios14.0 against an iPhoneOS SDK the user
# supplies in QUENBY_IOS_SDK (the preset takes it from the environment): the
# SDK's headers, its libc++ and, at the link, its .tbd stubs. Linux with clang
# and ld64.lld, or macOS with Xcode's clang and ld.
include(${CMAKE_CURRENT_LIST_DIR}/ios-target.cmake)

if(NOT QUENBY_IOS_SDK)
  set(QUENBY_IOS_SDK "$ENV{QUENBY_IOS_SDK}")
endif()
# try_compile runs this file again in a project of its own.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QUENBY_IOS_SDK)

set(quenby_sdk_settings "${QUENBY_IOS_SDK}/SDKSettings.json")
set(quenby_sdk_name "")
if(QUENBY_IOS_SDK AND EXISTS "${quenby_sdk_settings}" AND EXISTS "${QUENBY_IOS_SDK}/usr/lib/libSystem.tbd")
  file(READ "${quenby_sdk_settings}" quenby_sdk_json)
  string(JSON quenby_sdk_name ERROR_VARIABLE quenby_json_error GET "${quenby_sdk_json}" CanonicalName)
  string(JSON QUENBY_IOS_SDK_VERSION ERROR_VARIABLE quenby_json_error GET "${quenby_sdk_json}" Version)
endif()
# The leading space keeps CMake from wrapping the line.
if(NOT quenby_sdk_name MATCHES "^iphoneos[0-9]")
  message(FATAL_ERROR " QUENBY_IOS_SDK='${QUENBY_IOS_SDK}' is not an iPhoneOS SDK: expected a folder iPhoneOS<version>.sdk holding SDKSettings.json (CanonicalName iphoneos...) and usr/lib/libSystem.tbd")
endif()

set(quenby_flags "${QUENBY_TARGET_FLAGS} -isysroot \"${QUENBY_IOS_SDK}\" -nostdinc++ -isystem \"${QUENBY_IOS_SDK}/usr/include/c++/v1\"")
set(CMAKE_CXX_FLAGS_INIT "${quenby_flags}")
set(CMAKE_OBJCXX_FLAGS_INIT "${quenby_flags}")
