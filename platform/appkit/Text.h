// Text on its way into AppKit.
#pragma once

#include "text/Utf8.h"

#import <Foundation/Foundation.h>
#include <string>

namespace Kest::AppKit {

/// Autoreleased, never nil: what is not UTF-8 comes with replacement characters.
inline NSString* toNSString(const std::string& text)
{
    return [NSString stringWithUTF8String:Text::toUtf8(text).c_str()];
}

} // namespace Kest::AppKit
