// The compiled part of toml++, which Debian has as a shared library only, from its headers.
#define TOML_IMPLEMENTATION
#include <toml++/toml.h>
