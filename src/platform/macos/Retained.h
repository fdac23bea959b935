#pragma once

#import <Foundation/Foundation.h>
#include <utility>

namespace vellmark {

/// Owns one reference to an Objective-C object. These sources are built without automatic reference
/// counting; `Object` is a pointer type such as NSStatusItem*.
template<typename Object>
class Retained {
public:
    Retained() = default;
    /// Takes over a reference that the caller owns (from alloc, copy …).
    static Retained adopt(Object object) {
        Retained owner;
        owner.object_ = object;
        return owner;
    }
    /// Adds a reference of its own.
    static Retained retain(Object object) { return adopt([object retain]); }

    Retained(Retained&& other) noexcept : object_(std::exchange(other.object_, nil)) {}
    Retained& operator=(Retained&& other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Retained() { [object_ release]; }

    Object get() const { return object_; }

private:
    Object object_ = nil;
};

} // namespace vellmark
