// Objective-C type encodings: the code of each C++ type that crosses the
// runtime, the signature of a method built from its C++ function type, and a
// walker over encoded type strings.
#pragma once

#include <string>
#include <string_view>
#include <type_traits>

#include "rt/geometry.hpp"
#include "rt/types.hpp"

namespace rt {

template <typename>
inline constexpr bool kUnsupportedType = false;

// The @encode of each C++ type that may cross the runtime. An unsupported type
// does not compile, so a method the runtime cannot describe is caught at build
// time.
template <typename T>
std::string typeCode() {
  using std::is_same_v;
  if constexpr (is_same_v<T, void>)
    return "v";
  else if constexpr (is_same_v<T, bool>)
    return "B";  // BOOL is bool on arm64
  else if constexpr (is_same_v<T, char> || is_same_v<T, signed char>)
    return "c";
  else if constexpr (is_same_v<T, unsigned char>)
    return "C";
  else if constexpr (is_same_v<T, short>)
    return "s";
  else if constexpr (is_same_v<T, unsigned short>)
    return "S";
  else if constexpr (is_same_v<T, int>)
    return "i";
  else if constexpr (is_same_v<T, unsigned>)
    return "I";
  else if constexpr (is_same_v<T, long> || is_same_v<T, long long>)
    return "q";  // NSInteger, LP64
  else if constexpr (is_same_v<T, unsigned long> || is_same_v<T, unsigned long long>)
    return "Q";
  else if constexpr (is_same_v<T, float>)
    return "f";
  else if constexpr (is_same_v<T, double>)
    return "d";
  else if constexpr (is_same_v<T, Id>)
    return "@";
  else if constexpr (is_same_v<T, Class>)
    return "#";
  else if constexpr (is_same_v<T, SEL>)
    return ":";
  else if constexpr (is_same_v<T, IMP>)
    return "^?";
  else if constexpr (is_same_v<T, const char*> || is_same_v<T, char*>)
    return "*";
  else if constexpr (is_same_v<T, CGPoint>)
    return "{CGPoint=dd}";
  else if constexpr (is_same_v<T, CGSize>)
    return "{CGSize=dd}";
  else if constexpr (is_same_v<T, CGRect>)
    return "{CGRect={CGPoint=dd}{CGSize=dd}}";
  else if constexpr (std::is_pointer_v<T>)
    return "^" + typeCode<std::remove_cv_t<std::remove_pointer_t<T>>>();
  else
    static_assert(kUnsupportedType<T>, "no Objective-C type encoding for this type");
}

// The encoding of a method R (Id self, SEL cmd, A...), without offsets:
// "v@:q" for void fn(Id, SEL, long).
// Every send and call asks: after the first, a guard test inline, the
// building kept out of line.
template <typename R, typename... A>
[[gnu::noinline]] const std::string& buildSignature() {
  static const std::string s = typeCode<R>() + "@:" + (std::string() + ... + typeCode<A>());
  return s;
}
template <typename R, typename... A>
[[gnu::always_inline]] inline const std::string& signature() {
  static const std::string& s = buildSignature<R, A...>();
  return s;
}

// Skips one encoded type at `p`, with its qualifiers (r n N o O R V A j) and
// the offset digits after it, as NSGetSizeAndAlignment steps through a method
// encoding: "v24@0:8I16" walks v24, @0, :8, I16. Handles structs {..}, unions
// (..), arrays [..], pointers ^T, blocks @?, class-named objects @"Name" and
// bit fields bN. Returns the position of the next type; at the end of the
// string, or on a malformed type, the end of the string. A null `p` gives null.
const char* skipType(const char* p);

// The types of an encoding with qualifiers and offsets dropped, and blocks and
// class-named objects reduced to '@': "v24@0:8I16" → "v@:I",
// "v32@0:8@?16@\"NSString\"24" → "v@:@@". This is the form in which the
// simulated runtime compares a call with the method it reaches.
std::string normalizedEncoding(std::string_view types);

// True when a call made as `a` reaches a method encoded `b` safely on arm64
// (both normalized): integers of the same width agree whatever their sign
// (q Q l L, i I, s S, c C), objects agree with objects (@, #) and pointers
// with pointers (^T, *, :); everything else must be spelt the same. Bool (B)
// agrees only with bool: a char from the host may hold any byte, and a C++
// bool holding 2 is undefined.
bool sameCallTypes(std::string_view a, std::string_view b);

}  // namespace rt
