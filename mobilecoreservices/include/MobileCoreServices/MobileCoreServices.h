// Uniform type identifiers: the functions and the system's type constants.
#pragma once

#include <MobileCoreServices/UTCoreTypes.h>
#include <MobileCoreServices/UTType.h>
