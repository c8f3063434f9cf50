// The program's version, in its one place.

#pragma once

inline constexpr char VERSION_TEXT[] = "0.7.1-beta";
