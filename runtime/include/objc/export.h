// What a platform library publishes to the images that load it. Everything
// else stays inside its library (the build hides it by default), so that
// two copies of a loaded library never bind to each other's internals.
#pragma once

#define PV_EXPORT __attribute__((visibility("default")))
