// Foundation's NSString: the runtime's class (objc/string.h), whose Foundation
// methods are attached when this library loads, with formatting, the mutable
// subclass and character sets.
#pragma once

#include <Foundation/NSCharacterSet.h>
#include <Foundation/NSMutableString.h>
#include <Foundation/string_format.h>
#include <objc/string.h>
