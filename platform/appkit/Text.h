// Converts text for AppKit.
#pragma once

#include "text/Utf8.h"

#import <Foundation/Foundation.h>
#include <string>

namespace Kest::AppKit {

/// Returns the text, in which each invalid byte is replaced by U+FFFD; never nil. Autoreleased.
inline NSString* toNSString(const std::string& text)
{
    return [NSString stringWithUTF8String:Text::toUtf8(text).c_str()];
}

} // namespace Kest::AppKit
