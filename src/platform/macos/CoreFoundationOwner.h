#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace vellmark {

/// Releases what a "Create" or "Copy" function of Core Foundation has handed over.
struct CFReleaser {
    void operator()(const void* object) const { CFRelease(object); }
};

/// Owns one reference to a Core Foundation object. Never wrap the result of a "Get" function.
template<typename Reference>
using CFOwner = std::unique_ptr<std::remove_pointer_t<Reference>, CFReleaser>;

/// Null when `text` is not UTF-8.
inline CFOwner<CFStringRef> makeCFString(std::string_view text) {
    return CFOwner<CFStringRef>(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text.data()),
                                static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false));
}

/// The text of `object` in UTF-8; absent when it is null or no string.
inline std::optional<std::string> textOfCFString(CFTypeRef object) {
    if (object == nullptr || CFGetTypeID(object) != CFStringGetTypeID()) {
        return std::nullopt;
    }
    const auto string = static_cast<CFStringRef>(object);
    const CFIndex capacity =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), kCFStringEncodingUTF8) + 1;
    std::string text(static_cast<std::size_t>(capacity), '\0');
    if (!CFStringGetCString(string, text.data(), capacity, kCFStringEncodingUTF8)) {
        return std::nullopt;
    }
    text.resize(text.find('\0'));
    return text;
}

} // namespace vellmark
