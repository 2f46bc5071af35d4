/// The requests of the keyboard extension. Their header is written for C and names a member with a word of
/// C++.
#pragma once

#include <xcb/xproto.h>

#define explicit explicitMember
#include <xcb/xkb.h>
#undef explicit
