# The product build on macOS: arm64 iPhone OS 14 or later with the SDK of the
# selected Xcode (xcode-select), producing libquenby.dylib. Signing is left to
# the packaging step (scripts/package-ios.sh).
set(CMAKE_SYSTEM_NAME iOS)
set(CMAKE_OSX_SYSROOT iphoneos)
set(CMAKE_OSX_ARCHITECTURES arm64)
set(CMAKE_OSX_DEPLOYMENT_TARGET 14.0)
set(CMAKE_XCODE_ATTRIBUTE_CODE_SIGNING_ALLOWED NO)
